// The sender's pace, its repeats and time-outs, starting and stopping.
#include <gtest/gtest.h>

#include "LinkHarness.h"

namespace {

TEST(Connecting, FindsTheModelAndChecksTheStatus) {
    RunLink([](LinkHarness& run) {
        EXPECT_FALSE(run.link.Connect("COM7"));
        ASSERT_TRUE(run.Ends(run.link.Connect("COM1"), OP_CONNECT));
        EXPECT_EQ(run.unit.FrameTexts(), (std::vector<std::string>{"000", "52060", "52000"}));
        EXPECT_EQ(
            run.posted,
            (std::vector<Posted>{
                {LM_PROGRESS, 69633, 0}, {LM_RESULT, 1118209, 1}, {LM_PROGRESS, 135169, 0}, {LM_RESULT, OP_CONNECT, 0}}));
        EXPECT_FALSE(run.link.IsOperationActive());
        EXPECT_EQ(run.link.Model(), 1);
    });
}

TEST(Connecting, CostsTwoSecondsOnAPortWithNobodyThere) {
    RunLink([](LinkHarness& run) {
        run.unit.Answer(kModelQuery, {""});
        ASSERT_TRUE(run.link.Connect("COM1"));
        const std::uint64_t start = run.Now();
        ASSERT_TRUE(run.WaitForResult(PackResult(OP_CONNECT, RC_MODEL, ST_TIMEOUT)));
        EXPECT_NEAR(static_cast<double>(run.Now() - start), 2.3e6, 0.3e6);
        EXPECT_EQ(run.unit.Count(kModelQuery), 1U);
        ASSERT_TRUE(run.WaitUntil([&] { return !run.link.IsOperationActive(); }, 100));
        EXPECT_TRUE(run.link.GetAllTitles());
    });
}

TEST(Connecting, TellsAModelReplyWithAWrongSumAndTakesAnUnknownModel) {
    RunLink([](LinkHarness& run) {
        run.unit.Answer(kModelQuery, {Framed(kDc2, "C00530009C")});
        ASSERT_TRUE(run.Ends(run.link.Connect("COM1"), PackResult(OP_CONNECT, RC_MODEL, ST_TIMEOUT)));
        EXPECT_TRUE(run.HasResult(PackResult(OP_CONNECT, RC_MODEL, ST_BAD_CHECKSUM)));
        EXPECT_EQ(run.link.Model(), 0);

        run.unit.Answer(kModelQuery, {Framed(kDc2, "X9999000CC")});
        ASSERT_TRUE(run.Ends(run.link.Connect("COM1"), OP_CONNECT));
        EXPECT_EQ(run.link.Model(), 0);
    });
}

TEST(Connecting, LeavesNothingOpenIfAThreadIsRefused) {
    RunLink([](LinkHarness& run) {
        int refused = 0;
        for (int attempt = 0; attempt < 40; ++attempt) {
            Simulation::Current()->SetFaults({.threadFailure = 0.3});
            const bool connected = run.link.Connect("COM1");
            Simulation::Current()->SetFaults({});
            if (!connected) {
                ++refused;
                EXPECT_FALSE(run.link.GetAllTitles());
                const HANDLE port = CreateFileA("COM1", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
                ASSERT_NE(port, INVALID_HANDLE_VALUE);
                CloseHandle(port);
            }
        }
        // Often enough that each of the three threads was the one.
        EXPECT_GT(refused, 15);
        EXPECT_LT(refused, 40);
        EXPECT_TRUE(run.ConnectQuietly());
    });
}

TEST(Sender, RepeatsOnceAndTimesOut) {
    RunConnected([](LinkHarness& run) {
        run.unit.Answer(kMenuQuery, {""});
        ASSERT_TRUE(run.link.GetAllTitles());
        const std::size_t before = run.unit.Frames().size();
        ASSERT_TRUE(run.WaitForResult(PackResult(OP_GET_ALL, RC_STATUS, ST_TIMEOUT)));
        const std::vector<Sent>& frames = run.unit.Frames();
        ASSERT_EQ(frames.size(), before + 2);
        EXPECT_EQ(frames[before].frame, kMenuQuery);
        EXPECT_EQ(frames[before + 1].frame, kMenuQuery);
        const auto apart = static_cast<double>(frames[before + 1].timeUs - frames[before].timeUs);
        EXPECT_NEAR(apart, 2.25e6, 0.25e6);
        EXPECT_NEAR(static_cast<double>(run.Now() - frames[before].timeUs), 2 * apart, 0.3e6);
        EXPECT_EQ(run.Results(), 1U);
        EXPECT_TRUE(run.WaitUntil([&] { return !run.link.IsOperationActive(); }, 100));
    });
}

TEST(Sender, DoesNotRepeatWhatWasAnsweredDuringThePause) {
    RunConnected([](LinkHarness& run) {
        run.unit.Answer(kReadyQuery, {"", "", UnitStatus("40")});
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), PackResult(OP_GET_ALL, RC_STATUS, ST_TIMEOUT)));
        const std::vector<Sent>& frames = run.unit.Frames();
        const std::uint64_t repeatAfter = frames.back().timeUs - frames[frames.size() - 2].timeUs;
        const std::size_t before = run.unit.Count(kReadyQuery);
        ASSERT_TRUE(run.link.GetAllTitles());
        ASSERT_TRUE(run.WaitUntil([&] { return run.LastFrame() == "52060"; }, 10000));
        run.unit.SetDelay(repeatAfter - 60'000);
        // The next step begins while the sender still stands in the pause before the repeat.
        ASSERT_TRUE(run.WaitUntil([&] { return run.LastFrame() == "50100300000000000000"; }, 10000));
        run.Pass(400);
        EXPECT_EQ(run.unit.Count(kReadyQuery), before + 1);
        EXPECT_EQ(run.unit.Count(MapQuery(kMapDiscs, 0)), 1U);
    });
}

TEST(Sender, KeepsFramesApartAndGoesOnAtTheNextTick) {
    RunLink([](LinkHarness& run) {
        run.unit.SetDelay(700'000);
        ASSERT_TRUE(run.ConnectQuietly());
        run.unit.SetDelay(1000);
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        const std::vector<Sent>& frames = run.unit.Frames();
        for (std::size_t i = 1; i < frames.size(); ++i) {
            EXPECT_GE(frames[i].timeUs - frames[i - 1].timeUs, 120'000U) << frames[i].frame;
        }
        // Status, status, map, two Discs, map, one Album: a chain of seven, each within its pause, a few ticks and the line.
        EXPECT_LT(frames.back().timeUs - frames[frames.size() - 7].timeUs, 6 * 480'000U);
    });
}

TEST(Stopping, IsImmediateWhenIdleAndWaitsASecondForAReply) {
    RunLink([](LinkHarness& run) {
        const auto expectNoWait = [&run](const char* when) {
            run.Pass(100);
            const std::uint64_t start = run.Now();
            run.link.StopOperation();
            EXPECT_LT(run.Now() - start, 5000U) << when;
        };
        expectNoWait("before anything");
        ASSERT_TRUE(run.ConnectQuietly());
        expectNoWait("after an operation");
        run.unit.Answer(kMenuQuery, {""});
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), PackResult(OP_GET_ALL, RC_STATUS, ST_TIMEOUT)));
        expectNoWait("after one that timed out");

        run.posted.clear();
        ASSERT_TRUE(run.link.GetAllTitles());
        const std::size_t before = run.unit.Frames().size();
        ASSERT_TRUE(run.WaitUntil([&] { return run.unit.Frames().size() > before; }, 1000));
        const std::uint64_t stopped = run.Now();
        run.link.StopOperation();
        // A thousand sleeps of a millisecond, each of which may take a little longer.
        EXPECT_GE(run.Now() - stopped, 1'000'000U);
        EXPECT_LE(run.Now() - stopped, 3'000'000U);
        EXPECT_FALSE(run.link.IsOperationActive());
        run.Pass(6000);
        EXPECT_EQ(run.Results(), 0U);
        EXPECT_EQ(run.unit.Frames().size(), before + 1);
    });
}

TEST(Stopping, LetsTheReplyInFlightComeIn) {
    RunConnected([](LinkHarness& run) {
        run.unit.SetDelay(300'000);
        ASSERT_TRUE(run.link.GetAllTitles());
        ASSERT_TRUE(run.WaitUntil([&] { return run.LastFrame() == "50100500010000000000"; }, 20000));
        run.link.StopOperation();
        EXPECT_TRUE(run.store.IsKnown(1, 0));
        EXPECT_EQ(run.Results(), 0U);
    });
}

TEST(Stopping, IsOverWhenTheReplyIsIn) {
    const char* questions[] = {"000",
                               "52060",
                               "52000",
                               "50100600010000000000",
                               "50100300000000000000",
                               "50100302FFFF00000000",
                               "50100302000100000000",
                               "50100500010100000000"};
    for (const std::string question : questions) {
        RunLink([&](LinkHarness& run) {
            run.unit.SetDelay(300'000);
            run.Edit(1, 0, "new");
            ASSERT_TRUE(run.link.Connect("COM1"));
            if (question != "000") {
                ASSERT_TRUE(run.WaitForResult(OP_CONNECT));
                const bool tracks = question.substr(0, 8) == "50100302" || question.substr(0, 8) == "50100500";
                ASSERT_TRUE(tracks ? run.link.GetGroupTracks(1) : run.link.SendGroup(1));
            }
            const std::size_t before = run.unit.Frames().size();
            ASSERT_TRUE(run.WaitUntil(
                [&] { return run.unit.Frames().size() > before && run.unit.FrameTexts().back() == question; }, 20000))
                << question;
            const std::uint64_t stopped = run.Now();
            run.link.StopOperation();
            EXPECT_GE(run.Now() - stopped, 200'000U) << question;
            EXPECT_LE(run.Now() - stopped, 700'000U) << question;
        });
    }
}

TEST(Stopping, IsNotUndoneByADriverThatIsTellingOfAStep) {
    RunConnected([](LinkHarness& run) {
        for (DWORD after = 0; after < 60; ++after) {
            Simulation::Current()->SetFaults({.stallChance = 0.3, .stallMs = 5});
            ASSERT_TRUE(run.link.GetAllTitles());
            run.Pass(after % 20);
            run.link.StopOperation();
            Simulation::Current()->SetFaults({});
            const std::size_t before = run.unit.Frames().size();
            run.Pass(300);
            EXPECT_EQ(run.unit.Frames().size(), before);
        }
    });
}

TEST(Starting, ReplacesWhatRunsWithoutAWord) {
    RunConnected([](LinkHarness& run) {
        ASSERT_TRUE(run.link.GetAllTitles());
        run.Pass(400);
        ASSERT_TRUE(run.Ends(run.link.GetGroupTracks(1), OP_GET_TRACKS));
        EXPECT_FALSE(run.HasResult(OP_GET_ALL));
        EXPECT_TRUE(run.store.IsKnown(1, 3));
    });
}

TEST(Starting, RefusesGroupsOutsideTheRangesAndLetsWhatRunsGoOn) {
    RunLink([](LinkHarness& run) {
        EXPECT_FALSE(run.link.GetAllTitles());
        EXPECT_FALSE(run.link.SendAllTitles());
        ASSERT_TRUE(run.ConnectQuietly());
        ASSERT_TRUE(run.link.GetAllTitles());
        EXPECT_FALSE(run.link.GetOneGroup(-1));
        EXPECT_FALSE(run.link.GetGroupTracks(1999));
        EXPECT_FALSE(run.link.SendGroup(1999));
        EXPECT_TRUE(run.WaitForResult(OP_GET_ALL));

        DisplayRanges ranges;
        ranges.discFrom = ranges.discTo = 0;
        run.link.SetDisplayRanges(ranges);
        EXPECT_FALSE(run.link.GetOneGroup(5));
        EXPECT_TRUE(run.link.GetOneGroup(1005));
        ranges.discFrom = 10;
        ranges.discTo = 20;
        ranges.albumFrom = 1;
        ranges.albumTo = 1;
        run.link.SetDisplayRanges(ranges);
        EXPECT_FALSE(run.link.GetOneGroup(9));
        EXPECT_TRUE(run.link.GetOneGroup(10));
        EXPECT_TRUE(run.link.GetOneGroup(20));
        EXPECT_FALSE(run.link.GetOneGroup(21));
        EXPECT_TRUE(run.link.GetGroupTracks(1000));
        EXPECT_FALSE(run.link.GetGroupTracks(1001));
    });
}

TEST(DeadLine, TimesOutAndComesBack) {
    RunConnected([](LinkHarness& run) {
        run.unit.Line().Unplug();
        EXPECT_TRUE(run.Ends(run.link.GetAllTitles(), PackResult(OP_GET_ALL, RC_STATUS, ST_TIMEOUT)));
        run.unit.Line().Plug();
        EXPECT_TRUE(run.ConnectQuietly());
        run.unit.Line().RejectWrites(true);
        EXPECT_TRUE(run.Ends(run.link.GetAllTitles(), PackResult(OP_GET_ALL, RC_STATUS, ST_TIMEOUT)));
        run.unit.Line().RejectWrites(false);
        run.posted.clear();
        EXPECT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL)) << "a failure that passes is over";
        run.unit.Line().SetBusy(true);
        EXPECT_FALSE(run.link.Connect("COM1"));
        EXPECT_FALSE(run.link.GetAllTitles());
    });
}

}  // namespace
