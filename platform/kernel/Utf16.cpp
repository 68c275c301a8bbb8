#include "Utf16.h"

namespace kernel {

char32_t NextCharacter(std::u16string_view text, std::size_t& position) {
    const char16_t first = text[position++];
    if (first < 0xD800 || first > 0xDFFF) {
        return first;
    }
    const char16_t second = position < text.size() ? text[position] : u'\0';
    if (first > 0xDBFF || second < 0xDC00 || second > 0xDFFF) {
        return 0xFFFD;
    }
    ++position;
    return 0x10000 + ((first - 0xD800u) << 10) + (second - 0xDC00u);
}

void AppendUtf8(std::string& text, char32_t character) {
    const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
    const auto appendTrail = [&](int shift) { append(0x80 | ((character >> shift) & 0x3F)); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | (character >> 6));
        appendTrail(0);
    } else if (character < 0x10000) {
        append(0xE0 | (character >> 12));
        appendTrail(6);
        appendTrail(0);
    } else {
        append(0xF0 | (character >> 18));
        appendTrail(12);
        appendTrail(6);
        appendTrail(0);
    }
}

std::string Utf8Of(std::u16string_view text) {
    std::string result;
    for (std::size_t position = 0; position < text.size();) {
        AppendUtf8(result, NextCharacter(text, position));
    }
    return result;
}

}  // namespace kernel
