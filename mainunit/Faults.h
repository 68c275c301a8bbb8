// Faults: what goes wrong between the main unit and the client, drawn from a seed.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "MainUnit.h"
#include "UnitRandom.h"

namespace mainunit {

// Each rate, 0 to 1, is the share of the replies that the fault befalls. Times are milliseconds.
struct FaultRates {
    double lost = 0;       // the reply does not arrive
    double corrupted = 0;  // one byte is another one, or the check sum is wrong
    double split = 0;      // the reply arrives in several pieces
    double doubled = 0;    // the reply arrives once more
    double late = 0;       // the reply takes its time
    double stray = 0;      // a control byte stands before, in or behind the reply
    double junk = 0;       // random bytes stand before or behind the reply
    double refused = 0;    // a block reply becomes a refusal with result 1 or 2; others stay
    double silence = 0;    // this reply and the following ones do not arrive
    double foreign = 0;    // a well-formed short reply, to a command that nobody sent, stands before the reply

    int splitGapMs = 40;       // longest pause between two pieces
    int doubledDelayMs = 200;  // longest delay of the second copy
    int foreignLeadMs = 200;   // longest time between a foreign reply and the right one
    int lateMinMs = 100;
    int lateMaxMs = 3000;
    int junkBytes = 12;      // most junk bytes at one place
    int silenceReplies = 6;  // most replies that one silence swallows
};

// Reads "lost=0.1,late=0.05,late-max-ms=500". Names are those of FaultRates in lower case with hyphens (split-gap-ms,
// doubled-delay-ms, foreign-lead-ms, late-min-ms, late-max-ms, junk-bytes, silence-replies). On failure the result is false,
// `rates` is unchanged and `error` says why.
bool ParseFaultRates(std::string_view text, FaultRates& rates, std::string& error);

// Bytes that go on the line together.
struct Chunk {
    std::string bytes;  // never empty
    int delayMs = 0;    // from the same moment as Reply::delayMs

    bool operator==(const Chunk&) const = default;
};

// The same seed, rates and replies give the same chunks. Each kind draws from numbers of its own, so that turning one kind
// off leaves the others where they were. Not safe for use by several threads at once.
class Faults {
public:
    enum class Kind { kLost, kCorrupted, kSplit, kDoubled, kLate, kStray, kJunk, kRefused, kSilence, kForeign };
    static constexpr std::size_t kKinds = 10;

    explicit Faults(std::uint64_t seed, const FaultRates& rates = {});

    // The replies to one portion of received bytes, as they reach the line: ordered by delay, equal delays in the order
    // of the replies. Without faults each reply is one chunk.
    std::vector<Chunk> Apply(const std::vector<Reply>& replies);

    // From the next reply on; a silence that is under way ends.
    void SetRates(const FaultRates& newRates);

    // How often a kind has struck so far; for Silence, the replies that were swallowed.
    int Count(Kind kind) const { return counts[static_cast<std::size_t>(kind)]; }

private:
    bool Strikes(Kind kind, double rate);
    UnitRandom& Of(Kind kind) { return randoms[static_cast<std::size_t>(kind)]; }
    bool Swallowed();
    void Corrupt(std::string& bytes);
    std::vector<Chunk> Split(const Chunk& whole);
    void AddStray(std::string& bytes);
    std::string Junk();
    void Deliver(const Reply& reply, std::vector<Chunk>& chunks);

    FaultRates rates;
    std::vector<UnitRandom> randoms;
    std::array<int, kKinds> counts{};
    int silenceLeft = 0;
};

}  // namespace mainunit
