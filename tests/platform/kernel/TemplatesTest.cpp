// Templates from damaged bytes: nothing is read beyond them, and what is not whole is nothing.
#include "Templates.h"

#include <cstring>
#include <random>
#include <vector>

#include "Resources.h"
#include "TestSupport.h"

namespace {

using Buffer = std::vector<std::byte>;

class Writer {
public:
    Writer& Put(std::uint32_t value, int size) {
        for (int i = 0; i < size; ++i) {
            bytes.push_back(static_cast<std::byte>(value >> (8 * i)));
        }
        return *this;
    }
    Writer& Repeat(int count, std::uint32_t value, int size) {
        for (int i = 0; i < count; ++i) {
            Put(value, size);
        }
        return *this;
    }
    const Buffer& Bytes() const { return bytes; }

private:
    Buffer bytes;
};

Buffer Whole(LPCSTR type) {
    const kernel::Bytes bytes = kernel::ResourceBytes(MAKEINTRESOURCEA(1), type);
    EXPECT_FALSE(bytes.empty());
    return Buffer(bytes.begin(), bytes.end());
}

// Two by two pixels of the depth, whose picture and mask the caller adds.
Writer IconHeader(unsigned depth, unsigned colours) {
    Writer writer;
    writer.Put(40, 4).Put(2, 4).Put(4, 4).Put(1, 2).Put(depth, 2).Put(0, 4).Repeat(3, 0, 4).Put(colours, 4).Put(0, 4);
    return writer;
}

std::vector<kernel::IconImage> ParseOneIcon(const Buffer& icon) {
    Writer group;
    group.Put(0, 2).Put(1, 2).Put(1, 2).Repeat(12, 0, 1).Put(1, 2);
    return kernel::ParseIconGroup(group.Bytes(),
                                  [&icon](WORD id) { return id == 1 ? kernel::Bytes(icon) : kernel::Bytes(); });
}

TEST(Templates, PartIsNothing) {
    const auto expectNothing = [](const Buffer& whole, auto parse) {
        ASSERT_TRUE(parse(whole));
        // The last item is as short as its text, and what follows the text may be padding.
        for (std::size_t size = 0; size + 2 < whole.size(); ++size) {
            const Buffer part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_FALSE(parse(part)) << size << " of " << whole.size();
        }
    };
    expectNothing(Whole(RT_MENU), kernel::ParseMenu);
    expectNothing(Whole(RT_DIALOG), kernel::ParseDialog);
    Writer accelerators;
    accelerators.Put(1, 2).Put('A', 2).Put(1, 4).Put(0x81, 2).Put('B', 2).Put(2, 4);
    expectNothing(accelerators.Bytes(), kernel::ParseAccelerators);
}

// What comes out is of no interest; the sanitizers look on.
TEST(Templates, ChangedBytesAreSurvived) {
    std::mt19937 random(20260101);
    Writer icon = IconHeader(4, 0);
    icon.Repeat(16, 0x123456, 4).Repeat(4, 0x21, 4);
    for (const Buffer& whole : {Whole(RT_MENU), Whole(RT_DIALOG), icon.Bytes()}) {
        for (int run = 0; run < 2000; ++run) {
            Buffer bytes = whole;
            for (int i = 0; i < 3; ++i) {
                bytes[random() % bytes.size()] = static_cast<std::byte>(random());
            }
            kernel::ParseMenu(bytes);
            kernel::ParseDialog(bytes);
            kernel::ParseAccelerators(bytes);
            kernel::StringInBlock(bytes, random() % 16);
            for (const kernel::IconImage& image : ParseOneIcon(bytes)) {
                ASSERT_EQ(image.pixels.size(), static_cast<std::size_t>(image.width * image.height));
            }
        }
    }
}

// Rows from the bottom, colours by palette, mask over both.
TEST(Icons, BothDepthsGiveTheSamePixels) {
    constexpr std::uint32_t kRed = 0xFF0000;
    constexpr std::uint32_t kBlue = 0x0000FF;
    const auto mask = [](Writer writer) { return writer.Put(0x00, 4).Put(0x40, 4).Bytes(); };  // Top right is transparent.
    Writer four = IconHeader(4, 2);
    four.Put(kRed, 4).Put(kBlue, 4).Put(0x01, 4).Put(0x10, 4);
    Writer eight = IconHeader(8, 2);
    eight.Put(kRed, 4).Put(kBlue, 4).Put(0x0100, 4).Put(0x0001, 4);
    for (const Writer& writer : {four, eight}) {
        const auto images = ParseOneIcon(mask(writer));
        ASSERT_EQ(images.size(), 1u);
        SCOPED_TRACE(images[0].bitsPerPixel);
        EXPECT_EQ(images[0].pixels, (std::vector<std::uint32_t>{0xFF0000FF, 0, 0xFFFF0000, 0xFF0000FF}));
    }
}

}  // namespace
