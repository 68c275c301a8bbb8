// Menus and accelerators from resources.
#include "Templates.h"
#include "Utf16.h"

namespace kernel {
namespace {

constexpr UINT kLastItem = 0x0080;
constexpr int kMaxDepth = 10;
constexpr BYTE kLastAccelerator = 0x80;

// Reads the items up to the one that says that it is the last of its popup.
bool ReadItems(ByteReader& reader, std::vector<MenuItem>& items, int depth) {
    if (depth > kMaxDepth) {
        return false;
    }
    UINT flags;
    do {
        flags = reader.U16();
        MenuItem item;
        item.flags = flags & ~kLastItem;
        if (!(flags & MF_POPUP)) {
            item.id = reader.U16();
        }
        item.text = Utf8Of(reader.Text());
        if (reader.Failed()) {
            return false;
        }
        if (!(flags & MF_POPUP) && item.id == 0 && item.text.empty()) {
            item.flags |= MF_SEPARATOR;
        }
        if ((flags & MF_POPUP) && !ReadItems(reader, item.items, depth + 1)) {
            return false;
        }
        items.push_back(std::move(item));
    } while (!(flags & kLastItem));
    return true;
}

}  // namespace

std::optional<std::vector<MenuItem>> ParseMenu(Bytes resource) {
    ByteReader reader(resource);
    const unsigned version = reader.U16();
    reader.Skip(reader.U16());
    std::vector<MenuItem> items;
    if (version != 0 || !ReadItems(reader, items, 1)) {
        return std::nullopt;
    }
    return items;
}

std::optional<std::vector<ACCEL>> ParseAccelerators(Bytes resource) {
    ByteReader reader(resource);
    std::vector<ACCEL> entries;
    BYTE flags;
    do {
        flags = reader.U8();
        reader.Skip(1);
        ACCEL entry;
        entry.fVirt = static_cast<BYTE>(flags & ~kLastAccelerator);
        entry.key = reader.U16();
        entry.cmd = reader.U16();
        reader.Skip(2);
        if (reader.Failed()) {
            return std::nullopt;
        }
        entries.push_back(entry);
    } while (!(flags & kLastAccelerator));
    return entries;
}

}  // namespace kernel
