#include "ResourceFile.h"

namespace kernel {
namespace {

constexpr unsigned kNumberFollows = 0xFFFF;

std::uint16_t ReadNumber(ByteReader& reader) {
    const std::uint16_t first = reader.U16();
    if (first == kNumberFollows) {
        return reader.U16();
    }
    if (first != 0) {
        reader.Text();
    }
    return 0;
}

}  // namespace

std::vector<Resource> ReadResourceFile(Bytes file) {
    std::vector<Resource> resources;
    ByteReader reader(file);
    while (reader.Left() > 0) {
        const std::uint32_t dataSize = reader.U32();
        const std::uint32_t headerSize = reader.U32();
        if (headerSize < 8) {
            break;
        }
        // Both sizes are multiples of four before this header, so it may count its padding from its own start.
        ByteReader header(reader.Take(headerSize - 8));
        Resource resource;
        resource.type = ReadNumber(header);
        resource.name = ReadNumber(header);
        header.Align();
        header.Skip(4 + 2);  // The version of the data, and flags that no longer mean anything.
        resource.language = header.U16();
        resource.data = reader.Take(dataSize);
        reader.Align();
        if (reader.Failed() || header.Failed()) {
            break;
        }
        // The file begins with an empty resource of type 0, which marks the format.
        if (resource.type != 0) {
            resources.push_back(std::move(resource));
        }
    }
    return resources;
}

}  // namespace kernel
