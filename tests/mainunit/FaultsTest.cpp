#include "Faults.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "UnitFrames.h"

namespace mainunit {
namespace {

const Reply kTitle{BlockReply(SubType::kTitleRead, kAccepted, "Low Water                       "), 20};
const Reply kStatus{ShortReply(kStatusReply, 0x40), 20};

FaultRates Rates(const char* text) {
    FaultRates rates;
    std::string error;
    EXPECT_TRUE(ParseFaultRates(text, rates, error)) << error;
    return rates;
}

constexpr char kEverything[] =
    "lost=0.1,corrupted=0.1,split=0.3,doubled=0.1,late=0.1,stray=0.1,junk=0.1,refused=0.1,silence=0.05,foreign=0.1";

std::vector<Chunk> Drive(Faults& faults, int rounds) {
    std::vector<Chunk> all;
    for (int round = 0; round < rounds; ++round) {
        for (Chunk& chunk : faults.Apply({round % 2 == 0 ? kTitle : kStatus})) {
            all.push_back(std::move(chunk));
        }
    }
    return all;
}

TEST(Faults, PassesAllOnWithoutRates) {
    Faults faults(1);
    EXPECT_EQ(faults.Apply({kTitle, kStatus}), (std::vector<Chunk>{{kTitle.bytes, 20}, {kStatus.bytes, 20}}));
    EXPECT_TRUE(faults.Apply({}).empty());
}

TEST(Faults, ComeTheSameFromTheSameSeed) {
    Faults one(42, Rates(kEverything));
    Faults same(42, Rates(kEverything));
    Faults other(43, Rates(kEverything));
    const std::vector<Chunk> first = Drive(one, 500);
    EXPECT_EQ(first, Drive(same, 500));
    EXPECT_NE(first, Drive(other, 500));
}

TEST(Faults, StrikeAtTheirRateAndEachKindIsCounted) {
    Faults faults(7, Rates(kEverything));
    Drive(faults, 4000);
    for (std::size_t kind = 0; kind < Faults::kKinds; ++kind) {
        const int count = faults.Count(static_cast<Faults::Kind>(kind));
        EXPECT_GT(count, 100) << kind;
        EXPECT_LT(count, 1500) << kind;
    }
    // The silence of six replies that is drawn here ends when the faults are turned off.
    faults.SetRates({});
    for (int round = 0; round < 10; ++round) {
        EXPECT_EQ(faults.Apply({kStatus}), (std::vector<Chunk>{{kStatus.bytes, 20}}));
    }
}

TEST(Faults, LoseAndSilence) {
    Faults lost(1, Rates("lost=1"));
    EXPECT_TRUE(lost.Apply({kTitle, kStatus}).empty());

    Faults silent(5, Rates("silence=0.02,silence-replies=50"));
    int longest = 0;
    for (int round = 0, now = 0; round < 1000; ++round) {
        now = silent.Apply({kStatus}).empty() ? now + 1 : 0;
        longest = std::max(longest, now);
    }
    EXPECT_GT(longest, 10) << "silences span several replies";
    EXPECT_LT(silent.Count(Faults::Kind::kSilence), 1000);
}

TEST(Faults, DoubleAndDelayWithinTheirLimits) {
    Faults doubled(3, Rates("doubled=1,doubled-delay-ms=70"));
    Faults late(3, Rates("late=1,late-min-ms=500,late-max-ms=600"));
    for (int round = 0; round < 200; ++round) {
        const std::vector<Chunk> twice = doubled.Apply({kTitle});
        ASSERT_EQ(twice.size(), 2U);
        EXPECT_EQ(twice[0], (Chunk{kTitle.bytes, 20}));
        EXPECT_EQ(twice[1].bytes, kTitle.bytes);
        EXPECT_LE(twice[1].delayMs, 90);

        const std::vector<Chunk> once = late.Apply({kTitle});
        ASSERT_EQ(once.size(), 1U);
        EXPECT_EQ(once[0].bytes, kTitle.bytes);
        EXPECT_GE(once[0].delayMs, 520);
        EXPECT_LE(once[0].delayMs, 620);
    }
}

TEST(FaultRates, AreReadStrictly) {
    const FaultRates rates = Rates("lost=0.25,late=1,late-min-ms=5,late-max-ms=9");
    EXPECT_EQ(rates.lost, 0.25);
    EXPECT_EQ(rates.late, 1.0);
    EXPECT_EQ(rates.lateMaxMs, 9);
    const struct {
        const char* text;
        const char* error;
    } cases[] = {
        {"lost", "\"lost\" is not of the form name=value"},
        {"lost=0.1,,late=1", "\"\" is not of the form name=value"},
        {"lost=1.1", "lost takes a rate from 0 to 1"},
        {"lost=-0.1", "lost takes a rate from 0 to 1"},
        {"lost=nan", "lost takes a rate from 0 to 1"},
        {"lost=0.1x", "lost takes a rate from 0 to 1"},
        {"loss=0.1", "no fault is named \"loss\""},
        {"junk-bytes=1001", "junk-bytes takes a number from 0 to 1000"},
        {"late-min-ms=10,late-max-ms=5", "late-min-ms is above late-max-ms"},
    };
    for (const auto& one : cases) {
        FaultRates untouched;
        std::string error;
        EXPECT_FALSE(ParseFaultRates(one.text, untouched, error)) << one.text;
        EXPECT_EQ(error, one.error);
        EXPECT_EQ(untouched.lost, 0);
    }
}

}  // namespace
}  // namespace mainunit
