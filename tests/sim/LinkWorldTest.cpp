// The link in many seeded worlds. A failing seed prints the command that repeats it.
#include <gtest/gtest.h>

#include <cstdlib>

#include "LinkWorld.h"

namespace {

constexpr std::uint64_t kShards = 10;

class LinkWorlds : public testing::TestWithParam<std::uint64_t> {};

TEST_P(LinkWorlds, HoldWhatTheyPromise) {
    int late = 0;
    int misfiled = 0;
    for (std::uint64_t seed = GetParam(); seed <= TESSELIA_SIM_SEEDS; seed += kShards) {
        const WorldOptions options = WorldOptions::Draw(seed, Canary::kNone);
        const WorldOutcome outcome = RunWorld(options);
        ASSERT_TRUE(outcome.passed) << "repeat with: build/checked/bin/sim_run --seed " << seed << "\n"
                                    << options.Text() << "\n"
                                    << outcome.report;
        late += options.repliesInTime ? 0 : 1;
        misfiled += outcome.misfiled;
        // A share of the runs is done twice, and must come out the same to the last decision.
        if (seed % 20 == 0) {
            EXPECT_EQ(RunWorld(options).traceHash, outcome.traceHash) << "seed " << seed << " does not repeat";
        }
    }
    RecordProperty("worlds with replies later than the repeat", late);
    RecordProperty("titles misfiled in them", misfiled);
}

INSTANTIATE_TEST_SUITE_P(Shard, LinkWorlds, testing::Range<std::uint64_t>(1, kShards + 1));

TEST(Canaries, AreFoundInEveryRun) {
    const struct {
        Canary canary;
        const char* finding;
    } canaries[] = {
        {Canary::kWrongTitle, "wrong number"},
        {Canary::kLostEdit, "an edit is lost"},
        {Canary::kHastyFrame, "120 ms"},
        {Canary::kFrameAfterStop, "a stop has begun"},
        {Canary::kUnheardRefusal, "under a success"},
        {Canary::kStaleTitle, "what the unit holds"},
    };
    for (const auto& each : canaries) {
        for (std::uint64_t seed = 1; seed <= 5; ++seed) {
            const WorldOutcome outcome = RunWorld(WorldOptions::Draw(seed, each.canary));
            EXPECT_FALSE(outcome.passed) << each.finding << ", seed " << seed;
            EXPECT_NE(outcome.report.find(each.finding), std::string::npos) << outcome.report.substr(0, 300);
        }
    }
}

}  // namespace
