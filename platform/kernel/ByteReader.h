// Reads little-endian numbers and texts from bytes that may be damaged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace kernel {

using Bytes = std::span<const std::byte>;

// Once something reaches beyond the end the reader has failed for good: it gives zeros and empty texts from then on, so that
// a whole structure can be read before the question is asked.
class ByteReader {
public:
    explicit ByteReader(Bytes bytes) : bytes(bytes) {}

    bool Failed() const { return failed; }
    std::size_t Position() const { return position; }
    std::size_t Left() const { return bytes.size() - position; }

    Bytes Take(std::size_t count) {
        if (failed || count > Left()) {
            failed = true;
            return {};
        }
        position += count;
        return bytes.subspan(position - count, count);
    }
    void Skip(std::size_t count) { Take(count); }
    // To the next multiple of four, counted from the first byte. The padding behind the last structure may be missing.
    void Align() {
        const std::size_t padding = (4 - position % 4) % 4;
        Skip(padding < Left() ? padding : Left());
    }

    std::uint8_t U8() { return static_cast<std::uint8_t>(Number(1)); }
    std::uint16_t U16() { return static_cast<std::uint16_t>(Number(2)); }
    std::int16_t I16() { return static_cast<std::int16_t>(U16()); }
    std::uint32_t U32() { return Number(4); }
    std::int32_t I32() { return static_cast<std::int32_t>(U32()); }

    // UTF-16 up to a zero, which is taken as well.
    std::u16string Text() {
        std::u16string text;
        while (const char16_t unit = U16()) {
            text += unit;
        }
        return text;
    }

private:
    std::uint32_t Number(std::size_t size) {
        const Bytes taken = Take(size);
        std::uint32_t number = 0;
        for (std::size_t i = 0; i < taken.size(); ++i) {
            number |= std::to_integer<std::uint32_t>(taken[i]) << (8 * i);
        }
        return number;
    }

    Bytes bytes;
    std::size_t position = 0;
    bool failed = false;
};

}  // namespace kernel
