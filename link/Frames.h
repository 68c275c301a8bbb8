// The frames of the main unit's protocol: encoders for what is sent, checks and field access for what is received.
//
// Offsets are counted from the first byte of a frame, its start byte. Frames in memory are NUL-terminated and hold no other
// NUL.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "TitleNumbers.h"

inline constexpr char kStx = 0x02;
inline constexpr char kEtx = 0x03;
inline constexpr char kAck = 0x06;
inline constexpr char kDc1 = 0x11;
inline constexpr char kDc2 = 0x12;
inline constexpr char kDc3 = 0x13;
inline constexpr char kDc4 = 0x14;
inline constexpr char kNak = 0x15;
inline constexpr char kCan = 0x18;

// The size of every frame buffer. The longest frame that is sent has 40 bytes, the longest that has a meaning 262.
inline constexpr std::size_t kFrameSize = 1000;

inline constexpr std::uint8_t kStatusMenu = 0x60;   // StatusQuery parameter: is the unit in MENU mode?
inline constexpr std::uint8_t kStatusReady = 0x00;  // StatusQuery parameter: is the HDD selected and stopped?
inline constexpr std::uint8_t kCommandBD = 0xBD;
inline constexpr std::uint8_t kCommandBE = 0xBE;

enum MapKind : std::uint8_t { kMapDiscs = 0, kMapAlbums = 1, kMapTracks = 2 };
enum GroupKind : std::uint8_t { kKindDisc = 0, kKindAlbum = 1 };

inline constexpr std::uint16_t kProbeCode = 0xFFFF;

// The group code of a MapQuery for the Tracks of a group: n for Disc n, 0x2000 + n for Album n.
std::uint16_t GroupCode(GroupId group);
inline constexpr std::uint32_t kAlbumOfCode = 0xE000;  // set for an Album
inline constexpr std::uint32_t kNumberOfCode = 0x0FFF;

// Encoders. Each writes one frame and its NUL into `out`, which holds kFrameSize bytes.
void EncodeModelQuery(char* out);
void EncodeStatusQuery(std::uint8_t parameter, char* out);
void EncodeUnitCommand(std::uint8_t command, char* out);
void EncodeMapQuery(std::uint8_t mapKind, std::uint16_t groupCode, char* out);
// The number is the group's own within its kind, 1 to 999; track 0 is the group's own title.
void EncodeTitleRead(std::uint8_t groupKind, std::uint32_t number, std::uint32_t track, char* out);
void EncodeTitleWrite(std::uint8_t groupKind, std::uint32_t number, std::uint32_t track, char* out);
// Pads the text, of at most 32 bytes, with blanks to 32.
void EncodeTitleData(const char* text, char* out);

enum class FrameKind {
    kVoid,     // breaks its format, or is a lone ACK, NAK or CAN
    kIgnored,  // well formed, of a type that says nothing to us
    kModel,
    kStatus,
    kCommand,
    kMap,
    kTitleRead,
    kTitleWrite,
};

// What a received frame is, by its start byte, its checks and its type. The check field of a ModelReply is not looked at
// here, since a wrong one is reported and not merely void.
FrameKind ClassifyFrame(std::string_view frame);

// True if the check field of a ModelReply is right.
bool ModelSumMatches(std::string_view frame);

// The model number of a ModelReply: 1 or 2, or 0 for an id that is not known.
std::uint16_t ModelNumber(std::string_view frame);

// The hexadecimal digits at an offset; bytes beyond the end read as NUL.
std::uint32_t HexAt(std::string_view frame, std::size_t offset, int width);

// The value of a StatusReply.
inline constexpr std::size_t kStatusValueOffset = 5;
// The values of a received block frame.
inline constexpr std::size_t kBlockLengthOffset = 3;
inline constexpr std::size_t kBlockResultOffset = 7;
inline constexpr std::size_t kBlockDataOffset = 9;
inline constexpr std::uint32_t kMapReplyLength = 0xFE;
inline constexpr std::uint32_t kTitleReplyLength = 0x24;
inline constexpr std::uint32_t kWriteReplyLength = 0x04;

// Results 1 and 2 are refusals, every other value is acceptance.
bool IsRefusal(std::string_view frame);

// The bit of item n, 1 to 1000, in the bitmap of a MapReply.
bool MapBit(std::string_view frame, std::uint32_t item);

// Decodes the 32 title bytes of a TitleReadReply into `text` (33 bytes): what is not printable ASCII becomes a blank, blanks
// at the end go.
void DecodeTitle(std::string_view frame, char* text);
