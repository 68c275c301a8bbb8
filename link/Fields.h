// The fixed-width fields of the wire: hexadecimal and decimal numbers in ASCII digits, and the sum check.
#pragma once

#include <cstdint>
#include <string_view>

// Writes `width` upper case hexadecimal digits of `value`, most significant first, and a terminating NUL into `out`, which
// holds at least width + 1 bytes. A width of 0 or above 5 writes nothing and gives false.
bool PutHex(std::uint32_t value, int width, char* out);

// Writes `width` decimal digits with leading zeros and a terminating NUL into `out`, which holds at least width + 1 bytes. A
// number too wide for its field keeps its low digits. A width below 1 writes nothing and gives false.
bool PutDec(std::uint32_t value, int width, char* out);

// Sets `value` to the number in up to `width` hexadecimal digits of either case. Stops at the first byte that is no digit,
// or at the end of the text; `value` keeps what was read so far and the result is true only if that byte is a blank or a
// NUL.
bool GetHex(std::string_view text, int width, std::uint32_t& value);

// The sum of the bytes modulo 256, 0 for none.
std::uint8_t ByteSum(std::string_view bytes);

// True if the sum of `bytes` equals the two hexadecimal digits at the start of `field`.
bool SumMatches(std::string_view bytes, std::string_view field);
