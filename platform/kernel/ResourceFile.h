// The standard file of compiled resources (.res).
#pragma once

#include <cstdint>
#include <vector>

#include "ByteReader.h"

namespace kernel {

// Type and name are numbers; 0 stands for one in letters, which nobody asks for.
struct Resource {
    std::uint16_t type = 0;
    std::uint16_t name = 0;
    std::uint16_t language = 0;
    Bytes data;
};

// The resources of a file in its order, up to the first that is damaged. Their data lie in the bytes given. Any thread.
std::vector<Resource> ReadResourceFile(Bytes file);

}  // namespace kernel
