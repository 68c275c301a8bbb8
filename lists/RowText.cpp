#include "RowText.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

constexpr int kNumberDigits = 3;

}  // namespace

void EscapeAmpersands(char* text, std::size_t capacity) {
    const std::string plain = text;
    std::size_t written = 0;
    const auto write = [&](char byte) {
        if (written + 1 < capacity) {
            text[written++] = byte;
        }
    };
    for (const char byte : plain) {
        write(byte);
        if (byte == '&') {
            write(byte);
        }
    }
    text[written] = '\0';
}

void UnescapeAmpersands(char* text) {
    char* to = text;
    for (const char* from = text; *from != '\0'; ++from) {
        if (*from == '&') {
            ++from;
        }
        if (*from == '\0') {
            break;
        }
        *to++ = *from;
    }
    *to = '\0';
}

char* TitleField(char* rowText) {
    char* tab = std::strrchr(rowText, '\t');
    return tab != nullptr ? tab + 1 : nullptr;
}

RowFields SplitRow(const char* rowText) {
    const char* end = rowText + std::strlen(rowText);
    const char* labelEnd = std::find(rowText, end, '\t');
    const char* number = std::min(labelEnd + 1, end);
    const char* numberEnd = std::find(number, end, '\t');
    const char* title = std::min(numberEnd + 1, end);
    return {rowText, static_cast<int>(labelEnd - rowText),
            number,  std::min(static_cast<int>(numberEnd - number), kNumberDigits),
            title,   static_cast<int>(end - title)};
}
