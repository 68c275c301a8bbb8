// Whatever bytes come in: the cutting into frames, and the reading of one frame.
//
// The input is the bytes of the line in the portions in which they arrive; the byte 0xFE ends a portion. Aborts where
// something does not hold that must hold for any bytes.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Check.h"
#include "FrameCutter.h"
#include "Frames.h"

namespace {

constexpr char kEndOfPortion = static_cast<char>(0xFE);
constexpr std::string_view kStartBytes = "\x02\x11\x12\x13\x14";
// A frame lies between its start byte and its ETX, without any byte that would have ended or begun it elsewhere.
constexpr std::string_view kNeverInside("\0\n\r\x02\x03\x06\x11\x12\x13\x14\x15\x18", 12);
constexpr std::size_t kPayloadOffset = 5;
constexpr std::uint32_t kMapItems = 1000;

using Frames = std::vector<std::string>;

void CheckShape(std::string_view frame) {
    if (frame.empty()) {
        return;
    }
    CHECK(frame.size() >= 2 && frame.size() <= kFrameSize);
    CHECK(kStartBytes.find(frame.front()) != std::string_view::npos);
    CHECK(frame.back() == kEtx);
    CHECK(frame.substr(1, frame.size() - 2).find_first_of(kNeverInside) == std::string_view::npos);
}

// A block frame that passed its sum check does not pass it with any one byte of its payload changed.
void CheckSum(std::string_view frame) {
    const std::uint32_t length = HexAt(frame, kBlockLengthOffset, 2);
    for (std::size_t i = kPayloadOffset; i < kPayloadOffset + length; i += 1 + length / 8) {
        std::string changed(frame);
        changed[i] = static_cast<char>(changed[i] ^ 1);
        CHECK(ClassifyFrame(changed) == FrameKind::kVoid);
    }
}

void CheckTitle(std::string_view frame) {
    char text[kTitleSize];
    std::fill(std::begin(text), std::end(text), '\x7F');
    DecodeTitle(frame, text);
    char* const end = std::find(std::begin(text), std::end(text), '\0');
    CHECK(end != std::end(text));
    CHECK(std::all_of(std::begin(text), end, [](char c) { return c >= 0x20 && c <= 0x7E; }));
    CHECK(end == std::begin(text) || end[-1] != ' ');
}

// Reads the bytes as each kind of reply; out of memory of exactly their size, so that a look behind the end is found.
void Read(std::string_view bytes) {
    const auto exact = std::make_unique<char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), exact.get());
    const std::string_view frame(exact.get(), bytes.size());

    const FrameKind kind = ClassifyFrame(frame);
    CHECK(kind == ClassifyFrame(frame));
    CHECK(!frame.empty() || kind == FrameKind::kVoid);
    if (kind != FrameKind::kVoid && frame.front() == kDc4) {
        CheckSum(frame);
    }
    CHECK(ModelNumber(frame) <= 2);
    ModelSumMatches(frame);
    IsRefusal(frame);
    // Steps of seven meet each of the bytes, eight items each, and all of their bits.
    for (std::uint32_t item = 1; item <= kMapItems; item += 7) {
        // Two digits for eight items: behind the end of the frame there is none.
        const bool inside = kBlockDataOffset + std::size_t{2} * ((item - 1) / 8) < frame.size();
        CHECK(!MapBit(frame, item) || inside);
    }
    CheckTitle(frame);
}

void Keep(void* frames, std::string_view frame) {
    CheckShape(frame);
    static_cast<Frames*>(frames)->emplace_back(frame);
}

// How a portion may be parted makes no difference, but for what it loses: everything behind a NUL, and in each piece
// between CR and LF everything behind its frame. Without these bytes, fed one by one, the frames are the same.
class ByteByByte {
public:
    Frames Cut(const std::vector<std::string>& portions) {
        for (const std::string& portion : portions) {
            FeedPortion(portion);
        }
        return std::move(frames);
    }

private:
    void FeedPortion(std::string_view portion) {
        bool lost = false;
        for (const char& byte : portion.substr(0, portion.find('\0'))) {
            const std::size_t before = frames.size();
            if (byte == '\r' || byte == '\n') {
                lost = false;
            } else if (!lost) {
                cutter.Feed(std::string_view(&byte, 1));
                lost = frames.size() > before;
            }
        }
    }

    Frames frames;
    FrameCutter cutter{Keep, &frames};
};

std::vector<std::string> PortionsOf(std::string_view input) {
    std::vector<std::string> portions(1);
    for (const char byte : input) {
        if (byte == kEndOfPortion) {
            portions.emplace_back();
        } else {
            portions.back() += byte;
        }
    }
    return portions;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    Read(input);

    const std::vector<std::string> portions = PortionsOf(input);
    Frames frames;
    FrameCutter cutter(Keep, &frames);
    for (const std::string& portion : portions) {
        cutter.Feed(portion);
    }
    for (const std::string& frame : frames) {
        Read(frame);
    }
    CHECK(frames == ByteByByte().Cut(portions));

    // After a reset nothing of the old line is left.
    cutter.Reset();
    Frames again;
    std::swap(frames, again);
    for (const std::string& portion : portions) {
        cutter.Feed(portion);
    }
    CHECK(frames == again);
    return 0;
}
