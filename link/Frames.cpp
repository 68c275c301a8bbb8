#include "Frames.h"

#include <cassert>
#include <cstring>

#include "Fields.h"

namespace {

constexpr std::uint32_t kShortPayload = 0x10;
constexpr GroupId kAlbumCode = 0x2000;
constexpr std::uint32_t kSubTypeMap = 3;
constexpr std::uint32_t kSubTypeTitleRead = 5;
constexpr std::uint32_t kSubTypeTitleWrite = 6;
constexpr std::uint32_t kResultVoid = 0x3F;
constexpr std::uint32_t kTypeStatus = 0x52;
constexpr std::uint32_t kTypeCommandFirst = 0x58;
constexpr std::uint32_t kTypeCommandLast = 0x5F;
constexpr std::size_t kBlockHead = 5;  // bytes in front of the payload
constexpr std::size_t kModelHead = 9;  // bytes in front of the data of a ModelReply

char ByteAt(std::string_view frame, std::size_t offset) {
    return offset < frame.size() ? frame[offset] : '\0';
}

std::string_view Slice(std::string_view frame, std::size_t offset, std::size_t count) {
    return offset < frame.size() ? frame.substr(offset, count) : std::string_view();
}

// Puts head, check field and ETX around a payload that already stands at its place in `out`.
void CloseBlock(std::uint32_t payloadLength, char* out) {
    char length[3];
    PutHex(payloadLength, 2, length);
    out[0] = kDc4;
    out[1] = '5';
    out[2] = '0';
    std::memcpy(out + 3, length, 2);
    char* end = out + kBlockHead + payloadLength;
    PutHex(ByteSum({out + 1, payloadLength + kBlockHead - 1}), 2, end);
    end[2] = kEtx;
    end[3] = '\0';
}

// The eight digits "0" that close every payload of 16 bytes.
void PutPayloadTail(char* out) {
    std::memset(out + 13, '0', 8);
}

void EncodeTitleRequest(std::uint32_t subType, std::uint8_t groupKind, std::uint32_t number, std::uint32_t track,
                        char* out) {
    assert(groupKind <= kKindAlbum && number >= 1 && number <= kDiscs && track <= kTracks);
    PutHex(subType, 2, out + 5);
    PutHex(groupKind * 2U, 1, out + 7);
    PutDec(number, 3, out + 8);
    PutDec(track, 2, out + 11);
    PutPayloadTail(out);
    CloseBlock(kShortPayload, out);
}

FrameKind ClassifyShortReply(std::string_view frame) {
    const char second = ByteAt(frame, 2);
    if (ByteAt(frame, 1) != '@' || (second != '0' && second != '1') || ByteAt(frame, 3) != '5' || ByteAt(frame, 7) != kEtx) {
        return FrameKind::kVoid;
    }
    const std::uint32_t type = HexAt(frame, 3, 2);
    if (type == kTypeStatus) {
        return FrameKind::kStatus;
    }
    return type >= kTypeCommandFirst && type <= kTypeCommandLast ? FrameKind::kCommand : FrameKind::kIgnored;
}

FrameKind ClassifyModelReply(std::string_view frame) {
    const std::uint32_t length = HexAt(frame, 7, 2);
    return ByteAt(frame, kModelHead + length + 2) == kEtx ? FrameKind::kModel : FrameKind::kVoid;
}

FrameKind ClassifyBlock(std::string_view frame) {
    const std::uint32_t length = HexAt(frame, kBlockLengthOffset, 2);
    const std::size_t check = kBlockHead + length;
    if (ByteAt(frame, 1) != '5' || ByteAt(frame, check + 2) != kEtx ||
        !SumMatches(Slice(frame, 1, check - 1), Slice(frame, check, 2))) {
        return FrameKind::kVoid;
    }
    if (HexAt(frame, kBlockResultOffset, 2) == kResultVoid) {
        return FrameKind::kVoid;
    }
    switch (HexAt(frame, kBlockHead, 2)) {
        case kSubTypeMap: return FrameKind::kMap;
        case kSubTypeTitleRead: return FrameKind::kTitleRead;
        case kSubTypeTitleWrite: return FrameKind::kTitleWrite;
        default: return FrameKind::kIgnored;
    }
}

}  // namespace

std::uint16_t GroupCode(GroupId group) {
    assert(group >= 1 && group <= kGroups);
    return static_cast<std::uint16_t>(IsAlbum(group) ? kAlbumCode + AlbumNumber(group) : group);
}

void EncodeModelQuery(char* out) {
    const char frame[] = {kDc1, '0', '0', '0', kEtx, '\0'};
    std::memcpy(out, frame, sizeof frame);
}

void EncodeStatusQuery(std::uint8_t parameter, char* out) {
    // Each half byte plus 0x30, which is a decimal digit for the two parameters in use.
    const char frame[] = {
        kStx, '5', '2', '0', static_cast<char>(0x30 + (parameter >> 4)), static_cast<char>(0x30 + (parameter & 0xF)),
        kEtx, '\0'};
    std::memcpy(out, frame, sizeof frame);
}

void EncodeUnitCommand(std::uint8_t command, char* out) {
    std::memcpy(out,
                "\x02"
                "07C",
                4);
    PutHex(command, 2, out + 4);
    out[6] = kEtx;
    out[7] = '\0';
}

void EncodeMapQuery(std::uint8_t mapKind, std::uint16_t groupCode, char* out) {
    PutHex(kSubTypeMap, 2, out + 5);
    PutHex(mapKind, 2, out + 7);
    if (mapKind != kMapTracks) {
        std::memset(out + 9, '0', 4);
    } else if (groupCode == kProbeCode) {
        std::memset(out + 9, 'F', 4);
    } else {
        PutHex(groupCode >> 12, 1, out + 9);
        PutDec(groupCode & 0xFFFU, 3, out + 10);
    }
    PutPayloadTail(out);
    CloseBlock(kShortPayload, out);
}

void EncodeTitleRead(std::uint8_t groupKind, std::uint32_t number, std::uint32_t track, char* out) {
    EncodeTitleRequest(kSubTypeTitleRead, groupKind, number, track, out);
}

void EncodeTitleWrite(std::uint8_t groupKind, std::uint32_t number, std::uint32_t track, char* out) {
    EncodeTitleRequest(kSubTypeTitleWrite, groupKind, number, track, out);
}

void EncodeTitleData(const char* text, char* out) {
    std::memset(out + kBlockHead, ' ', kTitleLength);
    std::memcpy(out + kBlockHead, text, strnlen(text, kTitleLength));
    CloseBlock(kTitleLength, out);
}

FrameKind ClassifyFrame(std::string_view frame) {
    switch (ByteAt(frame, 0)) {
        case kStx: return ClassifyShortReply(frame);
        case kDc2: return ClassifyModelReply(frame);
        case kDc4: return ClassifyBlock(frame);
        default: return FrameKind::kVoid;
    }
}

bool ModelSumMatches(std::string_view frame) {
    const std::size_t check = kModelHead + HexAt(frame, 7, 2);
    return SumMatches(Slice(frame, 1, check - 1), Slice(frame, check, 2));
}

std::uint16_t ModelNumber(std::string_view frame) {
    const std::string_view id = Slice(frame, 1, 5);
    if (id == "C0053") {
        return 1;
    }
    return id == "C0071" ? 2 : 0;
}

std::uint32_t HexAt(std::string_view frame, std::size_t offset, int width) {
    std::uint32_t value = 0;
    GetHex(Slice(frame, offset, static_cast<std::size_t>(width)), width, value);
    return value;
}

bool IsRefusal(std::string_view frame) {
    const std::uint32_t result = HexAt(frame, kBlockResultOffset, 2);
    return result == 1 || result == 2;
}

bool MapBit(std::string_view frame, std::uint32_t item) {
    const std::uint32_t index = item - 1;
    return (HexAt(frame, kBlockDataOffset + std::size_t{2} * (index / 8), 2) & (0x80U >> (index % 8))) != 0;
}

void DecodeTitle(std::string_view frame, char* text) {
    std::size_t length = 0;
    for (std::size_t i = 0; i < kTitleLength; ++i) {
        const char c = ByteAt(frame, kBlockDataOffset + i);
        text[i] = c >= 0x20 && c <= 0x7E ? c : ' ';
        if (text[i] != ' ') {
            length = i + 1;
        }
    }
    text[length] = '\0';
}
