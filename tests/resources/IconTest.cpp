// The icon: what its group promises to the system that chooses an image, and what the images hold.
#include <set>
#include <vector>

#include "ByteReader.h"
#include "Found.h"

namespace {

kernel::Bytes Image(WORD id) {
    return Found(RT_ICON, id, kJapanese);
}

// Width, height and depth.
using Kind = std::vector<int>;

TEST(IconResource, HasTwoSizesInTwoDepths) {
    EXPECT_TRUE(Found(RT_GROUP_ICON, 109, kEnglish).empty());
    const kernel::Bytes group = Found(RT_GROUP_ICON, 109, kJapanese);

    const std::vector<Kind> expected = {{32, 32, 4}, {16, 16, 4}, {32, 32, 8}, {16, 16, 8}};
    kernel::ByteReader reader(group);
    reader.Skip(4);
    ASSERT_EQ(reader.U16(), expected.size());
    std::vector<Kind> promised;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const int width = reader.U8();
        const int height = reader.U8();
        reader.Skip(4);
        const int depth = reader.U16();
        const std::uint32_t bytes = reader.U32();
        EXPECT_EQ(Image(reader.U16()).size(), bytes);
        promised.push_back({width, height, depth});
    }
    EXPECT_EQ(promised, expected);

    std::vector<Kind> held;
    for (const kernel::IconImage& image : kernel::ParseIconGroup(group, Image)) {
        held.push_back({image.width, image.height, image.bitsPerPixel});
    }
    EXPECT_EQ(held, expected);
}

TEST(IconResource, ImagesShowTheDrawing) {
    for (const kernel::IconImage& image : kernel::ParseIconGroup(Found(RT_GROUP_ICON, 109, kJapanese), Image)) {
        SCOPED_TRACE(testing::Message() << image.width << " pixels, depth " << image.bitsPerPixel);
        const auto at = [&image](int x, int y) {  // In sixteenths of the side.
            const int scale = image.width / 16;
            return image.pixels[static_cast<std::size_t>(y * scale * image.width + x * scale)];
        };
        // Nothing in the corners above the disc; the label is white inside its dark frame, and the cursor on it is red.
        EXPECT_EQ(at(0, 0) >> 24, 0u);
        EXPECT_EQ(at(15, 0) >> 24, 0u);
        EXPECT_EQ(at(13, 12), 0xFFFFFFFFu);
        EXPECT_LT(at(0, 15) & 0xFF0000, 0x400000u);
        EXPECT_EQ(at(0, 15) >> 24, 0xFFu);
        const std::uint32_t cursor = at(11, 12);
        EXPECT_GT((cursor >> 16) & 0xFF, 2 * (cursor & 0xFF));

        // An image of 256 colours that had no more than 16 would be the other one again.
        const std::set<std::uint32_t> colours(image.pixels.begin(), image.pixels.end());
        EXPECT_EQ(colours.size() > 16, image.bitsPerPixel == 8);
    }
}

}  // namespace
