// Blocks of strings from resources.
#include "Templates.h"

namespace kernel {

std::u16string StringInBlock(Bytes block, unsigned index) {
    ByteReader reader(block);
    for (unsigned i = 0; i < index && !reader.Failed(); ++i) {
        reader.Skip(std::size_t{2} * reader.U16());
    }
    std::u16string text;
    ByteReader units(reader.Take(std::size_t{2} * reader.U16()));
    while (units.Left() >= 2) {
        text += static_cast<char16_t>(units.U16());
    }
    return text;
}

}  // namespace kernel
