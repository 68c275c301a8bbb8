// What the client sends: the cutting of its bytes into frames, and the strict reading of one frame.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "UnitLibrary.h"

namespace mainunit {

using library::Entry;
using library::GroupKind;
using library::IsPrintable;
using library::UnitLibrary;

inline constexpr std::uint8_t kParameterStatus = 0x00;
inline constexpr std::uint8_t kParameterMenu = 0x60;
inline constexpr std::uint8_t kCommandBd = 0xBD;
inline constexpr std::uint8_t kCommandBe = 0xBE;

enum class MapKind { kDiscs = 0, kAlbums = 1, kTracks = 2 };

// One well formed frame of the client.
struct UnitRequest {
    enum class Kind { kModelQuery, kStatusQuery, kUnitCommand, kMapQuery, kTitleRead, kTitleWrite, kTitleData };

    Kind kind = Kind::kModelQuery;
    std::uint8_t code = 0;  // StatusQuery: the parameter; UnitCommand: the command
    MapKind map = MapKind::kDiscs;
    bool probe = false;  // MapQuery for tracks that asks for no group at all
    Entry entry;         // TitleRead, TitleWrite; MapQuery for tracks: the group
    std::string text;    // TitleData: 32 bytes as they came
};

// Reads one piece of the cutter. On failure the result is false and `problem` says why it is no frame that can be answered.
bool ReadRequest(std::string_view piece, UnitRequest& request, std::string& problem);

// Cuts the bytes of one direction into pieces, at whatever places they were parted on the way: frames, from their start byte
// to their ETX, and between them what belongs to no frame.
class PieceCutter {
public:
    static PieceCutter ForRequests();
    static PieceCutter ForReplies();

    // A start byte drops an unfinished frame, so that one lost byte costs one frame. The pieces come in their order and,
    // together with what is held for the next call, are exactly the bytes received.
    std::vector<std::string> Feed(std::string_view bytes);

    // Bytes of an unfinished frame, at most the length of the longest frame.
    std::size_t Held() const { return held.size(); }
    const std::string& HeldBytes() const { return held; }

private:
    PieceCutter(std::string_view starts, std::size_t longest) : starts(starts), longest(longest) {}

    std::string_view starts;
    std::size_t longest;
    std::string held;
    bool inFrame = false;
};

}  // namespace mainunit
