#include "MainUnit.h"

#include <gtest/gtest.h>

#include "UnitFrames.h"

namespace mainunit {
namespace {

const std::string kModelQuery = std::string("\x11") + "000\x03";
const std::string kMenuQuery = std::string("\x02") + "52060\x03";
const std::string kStatusQuery = std::string("\x02") + "52000\x03";

std::string TitleRead(const std::string& entry) {
    return BlockFrame("05" + entry + "00000000");
}
std::string TitleWrite(const std::string& entry) {
    return BlockFrame("06" + entry + "00000000");
}
std::string Padded(std::string text) {
    text.resize(32, ' ');
    return text;
}
std::string TitleData(const std::string& text) {
    return BlockFrame(Padded(text));
}

const std::string kWriteAccepted = std::string("\x14") + "500406008F\x03";
const std::string kWriteRefused = std::string("\x14") + "5004060190\x03";

UnitLibrary SmallLibrary() {
    UnitLibrary library;
    library.SetTitle({GroupKind::kDisc, 1, 0}, "First");
    library.SetTitle({GroupKind::kDisc, 12, 3}, "Low Water");
    library.Add({GroupKind::kDisc, 12, 99});
    library.SetTitle({GroupKind::kDisc, 999, 0}, "");
    library.SetTitle({GroupKind::kAlbum, 7, 1}, "Track of an album");
    return library;
}

// A main unit that notes the problems which it logs.
class MainUnitTest : public testing::Test {
protected:
    void Start(const UnitSettings& settings = {}) {
        unit.emplace(SmallLibrary(), settings, [this](std::string_view, std::string_view problem) {
            if (!problem.empty()) {
                problems.emplace_back(problem);
            }
        });
    }

    // The bytes of the only reply; "none" when there is none.
    std::string Ask(const std::string& bytes) {
        const std::vector<Reply> replies = unit->Receive(bytes);
        EXPECT_LE(replies.size(), 1U);
        return replies.empty() ? "none" : replies.front().bytes;
    }

    std::optional<MainUnit> unit;
    std::vector<std::string> problems;
};

TEST_F(MainUnitTest, TellsModelAndStatusWithItsLatency) {
    Start({.menu = 0x01, .latencyMs = 35});
    const std::vector<Reply> replies = unit->Receive(kModelQuery + kMenuQuery);
    ASSERT_EQ(replies.size(), 2U);
    EXPECT_EQ(replies[0].bytes, std::string("\x12") + "C00530009B\x03");
    EXPECT_EQ(replies[1].bytes, std::string("\x02") + "@05201\x03");
    EXPECT_EQ(replies[1].delayMs, 35);
    EXPECT_EQ(Ask(kStatusQuery), std::string("\x02") + "@05240\x03");
    EXPECT_TRUE(problems.empty());
}

TEST_F(MainUnitTest, WalksThroughItsStatusAndWaitsForTheCommandThatAStateNeeds) {
    Start({.status = {0xFE, 0xFD, 0x04, 0x40}});
    const auto status = [this] { return Ask(kStatusQuery).substr(5, 2); };
    const auto command = [this](const char* digits) { return Ask(std::string("\x02") + "07C" + digits + "\x03"); };
    EXPECT_EQ(status(), "FE");
    EXPECT_EQ(status(), "FD");
    EXPECT_EQ(command("BE"), std::string("\x02") + "@05800\x03");
    EXPECT_EQ(status(), "FD") << "the wrong command changes nothing";
    command("BD");
    EXPECT_EQ(status(), "04");
    command("BE");
    EXPECT_EQ(status(), "40");
    command("BD");
    EXPECT_EQ(status(), "40");
    unit->Configure({.status = {0x00}});
    EXPECT_EQ(status(), "00");
    EXPECT_EQ(status(), "00");
}

TEST_F(MainUnitTest, TellsByBitmapWhatExists) {
    Start();
    const std::string discs = Ask(BlockFrame("0300000000000000"));
    ASSERT_EQ(discs.size(), 262U);
    EXPECT_EQ(discs.substr(0, 9), std::string("\x14") + "50FE0300");
    EXPECT_EQ(Hex(SumOf(std::string_view(discs).substr(1, 258)), 2), discs.substr(259, 2));
    std::string expected(250, '0');
    expected.replace(0, 4, "8010");      // discs 1 and 12
    expected.replace(2 * 124, 2, "02");  // disc 999
    EXPECT_EQ(discs.substr(9, 250), expected);

    expected.assign(250, '0');
    expected[1] = '2';  // album 7
    EXPECT_EQ(Ask(BlockFrame("0301000000000000")).substr(9, 250), expected);

    expected.assign(250, '0');
    expected.replace(0, 2, "20");       // track 3
    expected.replace(2 * 12, 2, "20");  // track 99
    EXPECT_EQ(Ask(BlockFrame("0302001200000000")).substr(9, 250), expected);
    EXPECT_TRUE(problems.empty());
}

TEST_F(MainUnitTest, RefusesMapsAsSet) {
    const std::string probe = BlockFrame("0302FFFF00000000");
    const std::string refused = BlockFrame("0301");
    Start();
    EXPECT_EQ(Ask(probe), refused);
    EXPECT_EQ(Ask(BlockFrame("0302001300000000")), refused) << "tracks of a disc that does not exist";
    EXPECT_EQ(Ask(BlockFrame("0302201200000000")), refused) << "there is a disc 12 but no album 12";
    unit->Configure({.probeAccepted = true, .refuseMaps = true});
    EXPECT_EQ(Ask(probe), BlockFrame("0300"));
    EXPECT_EQ(Ask(BlockFrame("0300000000000000")), refused);
    EXPECT_EQ(Ask(BlockFrame("0302001200000000")), refused);
}

TEST_F(MainUnitTest, ReadsTitles) {
    Start();
    EXPECT_EQ(Ask(TitleRead("001203")), BlockFrame("0500" + Padded("Low Water")));
    EXPECT_EQ(Ask(TitleRead("200701")), BlockFrame("0500" + Padded("Track of an album")));
    EXPECT_EQ(Ask(TitleRead("099900")), BlockFrame("0500" + Padded(""))) << "an empty title is a title";
    EXPECT_EQ(Ask(TitleRead("001200")), BlockFrame("0502")) << "exists without a title";
    EXPECT_EQ(Ask(TitleRead("001204")), BlockFrame("0501"));
    EXPECT_EQ(Ask(TitleRead("000200")), BlockFrame("0501"));
}

TEST_F(MainUnitTest, TakesATitleInTwoSteps) {
    Start();
    EXPECT_EQ(Ask(TitleWrite("001203")), kWriteAccepted);
    EXPECT_FALSE(unit->TakeChanged());
    EXPECT_EQ(Ask(TitleData("High\xE9 Water\x7F!")), "none");
    EXPECT_EQ(*unit->Library().Title({GroupKind::kDisc, 12, 3}), "High  Water !");
    EXPECT_TRUE(unit->TakeChanged());
    EXPECT_FALSE(unit->TakeChanged());

    EXPECT_EQ(Ask(TitleWrite("001200")), kWriteAccepted) << "an entry without a title can get one";
    EXPECT_EQ(Ask(TitleWrite("001200")), kWriteAccepted) << "a repeated request is no new one";
    Ask(TitleData(std::string(32, 'x')));
    EXPECT_EQ(*unit->Library().Title({GroupKind::kDisc, 12, 0}), std::string(32, 'x'));
    EXPECT_TRUE(problems.empty());
    EXPECT_EQ(unit->Malformed(), 0);
}

TEST_F(MainUnitTest, RefusesTitlesThatHaveNoPlace) {
    Start();
    for (const char* entry : {"200701", "001204", "000200", "200800"}) {
        EXPECT_EQ(Ask(TitleWrite(entry)), kWriteRefused) << entry;
        EXPECT_EQ(Ask(TitleData("lost")), "none");
    }
    EXPECT_EQ(unit->Malformed(), 4) << "no TitleData may follow a refusal";

    Ask(TitleWrite("000100"));
    Ask(TitleData("kept"));
    Ask(TitleData("doubled"));
    EXPECT_EQ(unit->Malformed(), 5);
    EXPECT_EQ(*unit->Library().Title({GroupKind::kDisc, 1, 0}), "kept");

    problems.clear();
    Ask(TitleWrite("000100"));
    Ask(kMenuQuery);
    EXPECT_EQ(problems, std::vector<std::string>{"the accepted TitleWrite of Disc 1 got no TitleData"});
    Ask(TitleData("too late"));
    EXPECT_EQ(unit->Malformed(), 6);
    EXPECT_EQ(*unit->Library().Title({GroupKind::kDisc, 1, 0}), "kept");
}

TEST_F(MainUnitTest, WritesOnlyWhenReadyIfSetSo) {
    Start({.status = {0xFE, 0x40}, .writeNeedsReady = true});
    EXPECT_EQ(Ask(TitleWrite("000100")), kWriteRefused);
    Ask(kStatusQuery);
    EXPECT_EQ(Ask(TitleWrite("000100")), kWriteRefused);
    Ask(kStatusQuery);
    EXPECT_EQ(Ask(TitleWrite("000100")), kWriteAccepted);
}

TEST_F(MainUnitTest, LeavesMalformedBytesUnansweredAndGoesOn) {
    Start();
    EXPECT_EQ(Ask("junk" + kMenuQuery.substr(0, 3)), "none");
    EXPECT_EQ(Ask(kMenuQuery), std::string("\x02") + "@052FF\x03");
    EXPECT_EQ(problems, (std::vector<std::string>{"bytes outside a frame", "frame without its end"}));
    // Damage on the line does not cost an accepted write: the client may send the title once more.
    Ask(TitleWrite("000100"));
    std::string damaged = TitleData("damaged");
    damaged[6] = 'X';
    Ask(damaged);
    Ask(TitleData("whole"));
    EXPECT_EQ(*unit->Library().Title({GroupKind::kDisc, 1, 0}), "whole");
    EXPECT_EQ(unit->Malformed(), 3);
}

}  // namespace
}  // namespace mainunit
