// The images of icons from resources: a picture of 16 or 256 colours, and below it a mask of one bit a pixel.
#include <cstdlib>

#include "Templates.h"

namespace kernel {
namespace {

constexpr std::uint32_t kHeaderSize = 40;
constexpr std::int32_t kMaxSide = 256;  // An icon has no larger one, and damaged bytes shall not ask for memory.
constexpr std::uint32_t kOpaque = 0xFF000000;

struct Header {
    std::int32_t width = 0;
    std::int32_t height = 0;
    unsigned bitsPerPixel = 0;
    std::uint32_t coloursUsed = 0;
};

// Rows are stored from the bottom up, each filled to a multiple of four bytes.
class Rows {
public:
    Rows(ByteReader& reader, const Header& header, unsigned bitsPerPixel)
        : height(static_cast<std::size_t>(header.height)),
          stride((static_cast<std::size_t>(header.width) * bitsPerPixel + 31) / 32 * 4),
          bytes(reader.Take(stride * height)),
          bitsPerPixel(bitsPerPixel) {}

    // The number that is stored for a pixel, of 1, 4 or 8 bits.
    std::uint32_t At(std::size_t x, std::size_t y) const {
        const Bytes row = bytes.subspan((height - 1 - y) * stride, stride);
        const std::size_t bit = x * bitsPerPixel;
        const auto byte = std::to_integer<std::uint32_t>(row[bit / 8]);
        return (byte >> (8 - bitsPerPixel - bit % 8)) & ((1u << bitsPerPixel) - 1);
    }

private:
    std::size_t height;
    std::size_t stride;
    Bytes bytes;
    unsigned bitsPerPixel;
};

std::optional<Header> ReadHeader(ByteReader& reader) {
    const std::uint32_t size = reader.U32();
    Header header;
    header.width = reader.I32();
    header.height = reader.I32() / 2;  // Picture and mask are counted together.
    const unsigned planes = reader.U16();
    header.bitsPerPixel = reader.U16();
    const std::uint32_t compression = reader.U32();
    reader.Skip(12);
    header.coloursUsed = reader.U32();
    reader.Skip(4);

    const unsigned bits = header.bitsPerPixel;
    const bool knownDepth = bits == 4 || bits == 8;
    if (reader.Failed() || size != kHeaderSize || planes != 1 || compression != 0 || !knownDepth) {
        return std::nullopt;
    }
    if (header.width < 1 || header.width > kMaxSide || header.height < 1 || header.height > kMaxSide) {
        return std::nullopt;
    }
    return header;
}

std::vector<std::uint32_t> ReadPalette(ByteReader& reader, const Header& header) {
    std::vector<std::uint32_t> palette;
    const std::uint32_t possible = 1u << header.bitsPerPixel;
    const std::uint32_t count = header.coloursUsed == 0 || header.coloursUsed > possible ? possible : header.coloursUsed;
    for (std::uint32_t i = 0; i < count; ++i) {
        palette.push_back(reader.U32() | kOpaque);
    }
    palette.resize(possible, kOpaque);  // A pixel may name a colour that is not there; it is black.
    return palette;
}

std::optional<IconImage> ParseIcon(Bytes bytes) {
    ByteReader reader(bytes);
    const std::optional<Header> header = ReadHeader(reader);
    if (!header) {
        return std::nullopt;
    }
    const std::vector<std::uint32_t> palette = ReadPalette(reader, *header);
    const Rows picture(reader, *header, header->bitsPerPixel);
    const Rows mask(reader, *header, 1);
    if (reader.Failed()) {
        return std::nullopt;
    }

    IconImage image;
    image.width = header->width;
    image.height = header->height;
    image.bitsPerPixel = static_cast<int>(header->bitsPerPixel);
    for (int row = 0; row < image.height; ++row) {
        for (int column = 0; column < image.width; ++column) {
            const auto x = static_cast<std::size_t>(column);
            const auto y = static_cast<std::size_t>(row);
            image.pixels.push_back(mask.At(x, y) != 0 ? 0 : palette[picture.At(x, y)]);
        }
    }
    return image;
}

}  // namespace

std::vector<IconImage> ParseIconGroup(Bytes group, const IconBytes& iconBytes) {
    constexpr unsigned kIcon = 1;
    ByteReader reader(group);
    std::vector<IconImage> images;
    reader.Skip(2);
    if (reader.U16() != kIcon) {
        return images;
    }
    const unsigned count = reader.U16();
    for (unsigned i = 0; i < count; ++i) {
        // Sizes and depths stand here as well, but the image itself says what it is.
        reader.Skip(12);
        const WORD id = reader.U16();
        if (reader.Failed()) {
            break;
        }
        if (std::optional<IconImage> image = ParseIcon(iconBytes(id))) {
            images.push_back(*std::move(image));
        }
    }
    return images;
}

}  // namespace kernel
