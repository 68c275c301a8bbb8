#include "Faults.h"

#include <algorithm>
#include <cassert>
#include <charconv>

#include "UnitFrames.h"

namespace mainunit {

namespace {

constexpr int kLongestDelayMs = 60000;
constexpr int kMostBytes = 1000;

struct RateName {
    std::string_view name;
    double FaultRates::* rate;
};
constexpr RateName kRates[] = {
    {"lost", &FaultRates::lost},       {"corrupted", &FaultRates::corrupted}, {"split", &FaultRates::split},
    {"doubled", &FaultRates::doubled}, {"late", &FaultRates::late},           {"stray", &FaultRates::stray},
    {"junk", &FaultRates::junk},       {"refused", &FaultRates::refused},     {"silence", &FaultRates::silence},
    {"foreign", &FaultRates::foreign},
};

struct LimitName {
    std::string_view name;
    int FaultRates::* limit;
    int most;
};
constexpr LimitName kLimits[] = {
    {"split-gap-ms", &FaultRates::splitGapMs, kLongestDelayMs},
    {"doubled-delay-ms", &FaultRates::doubledDelayMs, kLongestDelayMs},
    {"foreign-lead-ms", &FaultRates::foreignLeadMs, kLongestDelayMs},
    {"late-min-ms", &FaultRates::lateMinMs, kLongestDelayMs},
    {"late-max-ms", &FaultRates::lateMaxMs, kLongestDelayMs},
    {"junk-bytes", &FaultRates::junkBytes, kMostBytes},
    {"silence-replies", &FaultRates::silenceReplies, kMostBytes},
};

template <class Number>
bool ReadWhole(std::string_view text, Number& number) {
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    return problem == std::errc() && end == text.data() + text.size();
}

bool SetOne(std::string_view name, std::string_view value, FaultRates& rates, std::string& error) {
    for (const RateName& known : kRates) {
        double rate = 0;
        if (known.name != name) {
            continue;
        }
        if (!ReadWhole(value, rate) || !(rate >= 0 && rate <= 1)) {
            error = std::string(name) + " takes a rate from 0 to 1";
            return false;
        }
        rates.*known.rate = rate;
        return true;
    }
    for (const LimitName& known : kLimits) {
        int limit = 0;
        if (known.name != name) {
            continue;
        }
        if (!ReadWhole(value, limit) || limit < 0 || limit > known.most) {
            error = std::string(name) + " takes a number from 0 to " + std::to_string(known.most);
            return false;
        }
        rates.*known.limit = limit;
        return true;
    }
    error = "no fault is named \"" + std::string(name) + "\"";
    return false;
}

bool IsBlock(const std::string& bytes) {
    return bytes.size() >= 12 && bytes.front() == kDc4;
}

}  // namespace

bool ParseFaultRates(std::string_view text, FaultRates& rates, std::string& error) {
    FaultRates read = rates;
    while (!text.empty()) {
        const std::size_t comma = text.find(',');
        const std::string_view part = text.substr(0, comma);
        const std::size_t equals = part.find('=');
        if (equals == std::string_view::npos) {
            error = "\"" + std::string(part) + "\" is not of the form name=value";
            return false;
        }
        if (!SetOne(part.substr(0, equals), part.substr(equals + 1), read, error)) {
            return false;
        }
        text = comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);
    }
    if (read.lateMinMs > read.lateMaxMs) {
        error = "late-min-ms is above late-max-ms";
        return false;
    }
    rates = read;
    return true;
}

Faults::Faults(std::uint64_t seed, const FaultRates& rates) : rates(rates) {
    UnitRandom seeds(seed);
    for (std::size_t kind = 0; kind < kKinds; ++kind) {
        randoms.emplace_back(seeds.Next());
    }
}

void Faults::SetRates(const FaultRates& newRates) {
    rates = newRates;
    silenceLeft = 0;
}

std::vector<Chunk> Faults::Apply(const std::vector<Reply>& replies) {
    std::vector<Chunk> chunks;
    for (const Reply& reply : replies) {
        Deliver(reply, chunks);
    }
    assert(std::none_of(chunks.begin(), chunks.end(), [](const Chunk& chunk) { return chunk.bytes.empty(); }));
    std::stable_sort(chunks.begin(), chunks.end(), [](const Chunk& a, const Chunk& b) { return a.delayMs < b.delayMs; });
    return chunks;
}

bool Faults::Strikes(Kind kind, double rate) {
    const bool strikes = Of(kind).Chance(rate);
    counts[static_cast<std::size_t>(kind)] += strikes ? 1 : 0;
    return strikes;
}

bool Faults::Swallowed() {
    if (silenceLeft > 0) {
        --silenceLeft;
        ++counts[static_cast<std::size_t>(Kind::kSilence)];
        return true;
    }
    if (!Strikes(Kind::kSilence, rates.silence)) {
        return false;
    }
    silenceLeft = Of(Kind::kSilence).Between(1, rates.silenceReplies) - 1;
    return true;
}

void Faults::Deliver(const Reply& reply, std::vector<Chunk>& chunks) {
    if (Swallowed() || Strikes(Kind::kLost, rates.lost)) {
        return;
    }
    Chunk whole{reply.bytes, reply.delayMs};
    if (IsBlock(whole.bytes) && Strikes(Kind::kRefused, rates.refused)) {
        const auto result = static_cast<std::uint8_t>(Of(Kind::kRefused).Between(kNoSuchEntry, kNoTitle));
        whole.bytes = BlockFrame(whole.bytes.substr(5, 2) + Hex(result, 2));
    }
    if (Strikes(Kind::kCorrupted, rates.corrupted)) {
        Corrupt(whole.bytes);
    }
    if (Strikes(Kind::kLate, rates.late)) {
        whole.delayMs += Of(Kind::kLate).Between(rates.lateMinMs, rates.lateMaxMs);
    }
    if (Strikes(Kind::kForeign, rates.foreign)) {
        chunks.push_back({ShortReply(kCommandReply, 0), whole.delayMs});
        whole.delayMs += Of(Kind::kForeign).Between(0, rates.foreignLeadMs);
    }
    const Chunk copy = whole;
    if (Strikes(Kind::kStray, rates.stray)) {
        AddStray(whole.bytes);
    }
    if (Strikes(Kind::kJunk, rates.junk)) {
        const bool before = Of(Kind::kJunk).Chance(0.5);
        whole.bytes = before ? Junk() + whole.bytes : whole.bytes + Junk();
    }
    if (Strikes(Kind::kSplit, rates.split)) {
        const std::vector<Chunk> pieces = Split(whole);
        chunks.insert(chunks.end(), pieces.begin(), pieces.end());
    } else {
        chunks.push_back(whole);
    }
    if (Strikes(Kind::kDoubled, rates.doubled)) {
        // The second copy can only follow the last byte of the first.
        const int delay = chunks.back().delayMs + Of(Kind::kDoubled).Between(0, rates.doubledDelayMs);
        chunks.push_back({copy.bytes, delay});
    }
}

void Faults::Corrupt(std::string& bytes) {
    UnitRandom& random = Of(Kind::kCorrupted);
    const int last = static_cast<int>(bytes.size()) - 1;
    const bool hasCheckSum = bytes.front() == kDc4 || bytes.front() == kDc2;
    if (hasCheckSum && random.Chance(0.5)) {
        // Another sum in proper digits, so that nothing but the comparison can find it.
        const std::size_t field = bytes.size() - 3;
        const int sum = ReadHex(std::string_view(bytes).substr(field, 2)).value_or(0);
        bytes.replace(field, 2, Hex(static_cast<unsigned>(sum + random.Between(1, 255)) & 0xFF, 2));
        return;
    }
    char& byte = bytes[static_cast<std::size_t>(random.Between(0, last))];
    byte = static_cast<char>(static_cast<unsigned char>(byte) ^ random.Between(1, 255));
}

std::vector<Chunk> Faults::Split(const Chunk& whole) {
    UnitRandom& random = Of(Kind::kSplit);
    std::vector<Chunk> pieces;
    std::string rest = whole.bytes;
    int delayMs = whole.delayMs;
    for (int left = random.Between(2, 5); left > 1 && rest.size() > 1; --left) {
        const auto size = static_cast<std::size_t>(random.Between(1, static_cast<int>(rest.size()) - 1));
        pieces.push_back({rest.substr(0, size), delayMs});
        rest.erase(0, size);
        delayMs += random.Between(0, rates.splitGapMs);
    }
    pieces.push_back({rest, delayMs});
    return pieces;
}

void Faults::AddStray(std::string& bytes) {
    constexpr char kStrays[] = {kAck, kNak, kCan, kCr, kLf, kDc3};
    UnitRandom& random = Of(Kind::kStray);
    const auto place = static_cast<std::size_t>(random.Between(0, static_cast<int>(bytes.size())));
    bytes.insert(place, 1, kStrays[random.Between(0, std::size(kStrays) - 1)]);
}

std::string Faults::Junk() {
    UnitRandom& random = Of(Kind::kJunk);
    std::string junk(static_cast<std::size_t>(random.Between(1, rates.junkBytes)), ' ');
    for (char& byte : junk) {
        byte = static_cast<char>(random.Between(0, 255));
    }
    return junk;
}

}  // namespace mainunit
