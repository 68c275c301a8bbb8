// The standard file of compiled resources (.res).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ByteReader.h"

namespace kernel {

// What a type or a resource is called: a name in capital letters, or a number if the name is empty.
struct ResourceId {
    std::uint16_t number = 0;
    std::u16string name;

    bool operator==(const ResourceId&) const = default;
};

struct Resource {
    ResourceId type;
    ResourceId name;
    std::uint16_t language = 0;
    Bytes data;
};

// The resources of a file in its order, up to the first that is damaged. Their data lie in the bytes given. Any thread.
std::vector<Resource> ReadResourceFile(Bytes file);

}  // namespace kernel
