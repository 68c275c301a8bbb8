// Dialog templates from resources.
#include "Templates.h"
#include "Utf16.h"

namespace kernel {
namespace {

constexpr unsigned kNumberFollows = 0xFFFF;
constexpr unsigned kFirstClass = 0x80;
const char* const kClasses[] = {"BUTTON", "EDIT", "STATIC", "LISTBOX", "SCROLLBAR", "COMBOBOX"};

// A text up to a zero, or a number behind a mark.
TextOrResource ReadTextOrResource(ByteReader& reader) {
    TextOrResource result;
    const char16_t first = reader.U16();
    if (first == kNumberFollows) {
        result.resource = reader.U16();
    } else if (first != 0) {
        result.text = Utf8Of(first + reader.Text());
    }
    return result;
}

// None for a number that stands for no class.
std::optional<std::string> ReadClass(ByteReader& reader) {
    TextOrResource name = ReadTextOrResource(reader);
    if (name.resource == 0) {
        return std::move(name.text);
    }
    const unsigned index = name.resource - kFirstClass;
    if (name.resource < kFirstClass || index >= std::size(kClasses)) {
        return std::nullopt;
    }
    return kClasses[index];
}

template <class Place>
void ReadPlace(ByteReader& reader, Place& place) {
    place.x = reader.I16();
    place.y = reader.I16();
    place.cx = reader.I16();
    place.cy = reader.I16();
}

bool ReadItem(ByteReader& reader, DialogItem& item) {
    reader.Align();
    item.style = reader.U32();
    item.exStyle = reader.U32();
    ReadPlace(reader, item);
    item.id = reader.I16();
    std::optional<std::string> className = ReadClass(reader);
    if (!className || className->empty()) {
        return false;
    }
    item.className = *std::move(className);
    item.title = ReadTextOrResource(reader);
    // Bytes for the control's creation, which no control of ours has.
    reader.Skip(reader.U16());
    return !reader.Failed();
}

}  // namespace

std::optional<DialogTemplate> ParseDialog(Bytes resource) {
    ByteReader reader(resource);
    DialogTemplate dialog;
    dialog.style = reader.U32();
    if (dialog.style >> 16 == 0xFFFF) {
        return std::nullopt;  // DIALOGEX.
    }
    dialog.exStyle = reader.U32();
    const unsigned count = reader.U16();
    ReadPlace(reader, dialog);

    const TextOrResource menu = ReadTextOrResource(reader);
    if (menu.resource != 0 || !menu.text.empty()) {
        return std::nullopt;
    }
    const TextOrResource className = ReadTextOrResource(reader);
    if (className.resource != 0) {
        return std::nullopt;
    }
    dialog.className = className.text;
    dialog.title = Utf8Of(reader.Text());
    if (dialog.style & DS_SETFONT) {
        dialog.fontPoints = reader.U16();
        dialog.fontFace = Utf8Of(reader.Text());
    }
    // The count is not trusted with a size: a wrong one meets the end of the bytes.
    for (unsigned i = 0; i < count; ++i) {
        DialogItem item;
        if (!ReadItem(reader, item)) {
            return std::nullopt;
        }
        dialog.items.push_back(std::move(item));
    }
    if (reader.Failed()) {
        return std::nullopt;
    }
    return dialog;
}

}  // namespace kernel
