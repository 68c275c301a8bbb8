#include "Fields.h"

#include <cstddef>

namespace {

constexpr int kMostHexDigits = 5;

// The value of a hexadecimal digit, or -1.
int HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return -1;
}

}  // namespace

bool PutHex(std::uint32_t value, int width, char* out) {
    if (width < 1 || width > kMostHexDigits) {
        return false;
    }
    for (int i = width - 1; i >= 0; --i) {
        out[i] = "0123456789ABCDEF"[value & 0xF];
        value >>= 4;
    }
    out[width] = '\0';
    return true;
}

bool PutDec(std::uint32_t value, int width, char* out) {
    if (width < 1) {
        return false;
    }
    for (int i = width - 1; i >= 0; --i) {
        out[i] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    out[width] = '\0';
    return true;
}

bool GetHex(std::string_view text, int width, std::uint32_t& value) {
    value = 0;
    for (int i = 0; i < width; ++i) {
        const char c = static_cast<std::size_t>(i) < text.size() ? text[static_cast<std::size_t>(i)] : '\0';
        const int digit = HexDigit(c);
        if (digit < 0) {
            return c == ' ' || c == '\0';
        }
        value = value * 16 + static_cast<std::uint32_t>(digit);
    }
    return true;
}

std::uint8_t ByteSum(std::string_view bytes) {
    unsigned sum = 0;
    for (const char c : bytes) {
        sum += static_cast<unsigned char>(c);
    }
    return static_cast<std::uint8_t>(sum & 0xFF);
}

bool SumMatches(std::string_view bytes, std::string_view field) {
    std::uint32_t expected = 0;
    GetHex(field, 2, expected);
    return ByteSum(bytes) == expected;
}
