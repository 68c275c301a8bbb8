// What the wire format costs: cutting received bytes, reading replies, making requests.
//
// At 9600 baud a line brings 960 bytes a second, so all of these are some five orders of magnitude faster than needed; they
// are measured so that a change that makes one of them slow with the length of its input is seen.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "Fields.h"
#include "FrameCutter.h"
#include "Frames.h"

namespace {

constexpr const char* kTitle = "A title of exactly 32 characters";
constexpr int kMapDigits = 250;
constexpr std::uint32_t kMapItems = 1000;

std::string Block(const std::string& payload) {
    char digits[8];
    PutHex(static_cast<std::uint32_t>(payload.size()), 2, digits);
    const std::string body = std::string("50") + digits + payload;
    PutHex(ByteSum(body), 2, digits);
    return kDc4 + body + digits + kEtx;
}

const std::string& TitleReply() {
    static const std::string frame = Block(std::string("0500") + kTitle);
    return frame;
}

const std::string& MapReply() {
    static const std::string frame = Block("0300" + std::string(kMapDigits, 'A'));
    return frame;
}

// Bytes without any meaning, outside of a frame: no start byte among them, and no separator.
const std::string& Junk() {
    static const std::string bytes = [] {
        std::string made;
        for (int i = 0; i < 4096; ++i) {
            made += static_cast<char>(0x20 + i * 7 % 0xC0);
        }
        return made;
    }();
    return bytes;
}

void CountFrame(void* count, std::string_view frame) {
    *static_cast<std::size_t*>(count) += frame.size();
}

// Feeds the same bytes again and again, in chunks of at most so many.
void Cut(benchmark::State& state, const std::string& bytes, std::size_t chunkSize) {
    std::size_t handedOver = 0;
    FrameCutter cutter(CountFrame, &handedOver);
    for (auto _ : state) {
        for (std::string_view rest = bytes; !rest.empty(); rest.remove_prefix(std::min(chunkSize, rest.size()))) {
            cutter.Feed(rest.substr(0, chunkSize));
        }
    }
    benchmark::DoNotOptimize(handedOver);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes.size()));
}

void CutTitleReplies(benchmark::State& state) {
    Cut(state, TitleReply(), std::string::npos);
}
BENCHMARK(CutTitleReplies);

void CutMapReplies(benchmark::State& state) {
    Cut(state, MapReply(), std::string::npos);
}
BENCHMARK(CutMapReplies);

void CutMapRepliesByteByByte(benchmark::State& state) {
    Cut(state, MapReply(), 1);
}
BENCHMARK(CutMapRepliesByteByByte);

void CutJunk(benchmark::State& state) {
    Cut(state, Junk(), std::string::npos);
}
BENCHMARK(CutJunk);

// Frames that never end: each time the buffer is full it is given up.
void CutEndlessFrames(benchmark::State& state) {
    Cut(state, kDc4 + Junk(), std::string::npos);
}
BENCHMARK(CutEndlessFrames);

void ReadTitleReply(benchmark::State& state) {
    char text[kTitleSize];
    for (auto _ : state) {
        benchmark::DoNotOptimize(ClassifyFrame(TitleReply()));
        DecodeTitle(TitleReply(), text);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(ReadTitleReply);

void ReadMapReply(benchmark::State& state) {
    std::uint32_t set = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ClassifyFrame(MapReply()));
        for (std::uint32_t item = 1; item <= kMapItems; ++item) {
            set += MapBit(MapReply(), item) ? 1U : 0U;
        }
    }
    benchmark::DoNotOptimize(set);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kMapItems);
}
BENCHMARK(ReadMapReply);

template <class Encoder>
void Encode(benchmark::State& state, Encoder encoder) {
    char frame[kFrameSize];
    for (auto _ : state) {
        encoder(frame);
        benchmark::DoNotOptimize(frame);
        benchmark::ClobberMemory();
    }
}

void EncodeStatus(benchmark::State& state) {
    Encode(state, [](char* out) { EncodeStatusQuery(kStatusReady, out); });
}
BENCHMARK(EncodeStatus);

void EncodeMap(benchmark::State& state) {
    Encode(state, [](char* out) { EncodeMapQuery(kMapTracks, GroupCode(AlbumGroup(kAlbums)), out); });
}
BENCHMARK(EncodeMap);

void EncodeRead(benchmark::State& state) {
    Encode(state, [](char* out) { EncodeTitleRead(kKindAlbum, kAlbums, kTracks, out); });
}
BENCHMARK(EncodeRead);

void EncodeData(benchmark::State& state) {
    Encode(state, [](char* out) { EncodeTitleData(kTitle, out); });
}
BENCHMARK(EncodeData);

}  // namespace

BENCHMARK_MAIN();
