// The frames of the line as bytes: control bytes, fields, check sums, and the replies that the main unit sends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mainunit {

inline constexpr char kStx = 0x02;
inline constexpr char kEtx = 0x03;
inline constexpr char kAck = 0x06;
inline constexpr char kLf = 0x0A;
inline constexpr char kCr = 0x0D;
inline constexpr char kDc1 = 0x11;
inline constexpr char kDc2 = 0x12;
inline constexpr char kDc3 = 0x13;
inline constexpr char kDc4 = 0x14;
inline constexpr char kNak = 0x15;
inline constexpr char kCan = 0x18;

// A title fills its field on the line exactly: the text, then blanks.
inline constexpr std::size_t kTitleBytes = 32;
// A bitmap always has room for items 1 to 1000, whatever it counts.
inline constexpr std::size_t kBitmapBytes = 125;

inline constexpr std::uint8_t kStatusReply = 0x52;
inline constexpr std::uint8_t kCommandReply = 0x58;

// What a block frame is about: the first field of its payload, in both directions.
enum class SubType : std::uint8_t { kMap = 3, kTitleRead = 5, kTitleWrite = 6 };

// The second field of a reply's payload. Any value but these two refusals and 0x3F is acceptance.
inline constexpr std::uint8_t kAccepted = 0;
inline constexpr std::uint8_t kNoSuchEntry = 1;
inline constexpr std::uint8_t kNoTitle = 2;

// The number in `width` digits, most significant first, upper case. Digits that do not fit are lost from the left.
std::string Hex(unsigned value, int width);
std::string Dec(int value, int width);

// The number of a field in which every byte is a digit; hexadecimal digits count in upper case only, as they are sent.
// Fields are at most 4 bytes wide.
std::optional<int> ReadHex(std::string_view field);
std::optional<int> ReadDec(std::string_view field);

// The sum of the bytes modulo 256.
std::uint8_t SumOf(std::string_view bytes);

// DC4, the payload with its length before it and its check field behind it, ETX. The payload has at most 255 bytes.
std::string BlockFrame(std::string_view payload);

std::string ShortReply(std::uint8_t type, std::uint8_t value);
// `model` has exactly 5 bytes.
std::string ModelReply(std::string_view model);
// A block reply with a result and whatever follows it.
std::string BlockReply(SubType subType, std::uint8_t result, std::string_view data = {});

}  // namespace mainunit
