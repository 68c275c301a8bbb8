// Text of the resources, which is UTF-16, as UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kernel {

// The character that begins at the position, which moves behind it. Half of a pair becomes U+FFFD.
char32_t NextCharacter(std::u16string_view text, std::size_t& position);

void AppendUtf8(std::string& text, char32_t character);

std::string Utf8Of(std::u16string_view text);

}  // namespace kernel
