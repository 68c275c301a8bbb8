#include "UnitFrames.h"

#include <cassert>

namespace mainunit {

namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

std::string Digits(unsigned value, int width, unsigned base) {
    std::string text(static_cast<std::size_t>(width), '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit) {
        *digit = kDigits[value % base];
        value /= base;
    }
    return text;
}

std::optional<int> ReadDigits(std::string_view field, int base) {
    assert(field.size() <= 4);
    int value = 0;
    for (const char byte : field) {
        const std::size_t digit = kDigits.substr(0, static_cast<std::size_t>(base)).find(byte);
        if (digit == std::string_view::npos) {
            return std::nullopt;
        }
        value = value * base + static_cast<int>(digit);
    }
    return value;
}

}  // namespace

std::string Hex(unsigned value, int width) {
    return Digits(value, width, 16);
}

std::string Dec(int value, int width) {
    return Digits(static_cast<unsigned>(value), width, 10);
}

std::optional<int> ReadHex(std::string_view field) {
    return ReadDigits(field, 16);
}

std::optional<int> ReadDec(std::string_view field) {
    return ReadDigits(field, 10);
}

std::uint8_t SumOf(std::string_view bytes) {
    unsigned sum = 0;
    for (const char byte : bytes) {
        sum += static_cast<unsigned char>(byte);
    }
    return static_cast<std::uint8_t>(sum & 0xFF);
}

std::string BlockFrame(std::string_view payload) {
    assert(payload.size() <= 0xFF);
    std::string body = "50" + Hex(static_cast<unsigned>(payload.size()), 2);
    body += payload;
    return kDc4 + body + Hex(SumOf(body), 2) + kEtx;
}

std::string ShortReply(std::uint8_t type, std::uint8_t value) {
    return std::string(1, kStx) + "@0" + Hex(type, 2) + Hex(value, 2) + kEtx;
}

std::string ModelReply(std::string_view model) {
    assert(model.size() == 5);
    // The byte behind the id and the data are free; no client reads them.
    const std::string body = std::string(model) + "0" + "00";
    return kDc2 + body + Hex(SumOf(body), 2) + kEtx;
}

std::string BlockReply(SubType subType, std::uint8_t result, std::string_view data) {
    std::string payload = Hex(static_cast<unsigned>(subType), 2) + Hex(result, 2);
    payload += data;
    return BlockFrame(payload);
}

}  // namespace mainunit
