// Fields, frames and the cutting of the stream, byte by byte.
#include "Frames.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Fields.h"
#include "FrameCutter.h"
#include "LinkHarness.h"

namespace {

using namespace std::string_literals;

std::string Dec(std::uint32_t value, int width) {
    char out[16] = {};
    return PutDec(value, width, out) ? out : "refused";
}

std::string Hex(std::uint32_t value, int width) {
    char out[16] = {};
    return PutHex(value, width, out) ? out : "refused";
}

struct HexRead {
    std::uint32_t value;
    bool good;
    bool operator==(const HexRead&) const = default;
};

HexRead ReadHex(std::string_view text, int width) {
    HexRead read = {};
    read.good = GetHex(text, width, read.value);
    return read;
}

std::vector<std::string> Cut(const std::vector<std::string>& chunks) {
    std::vector<std::string> frames;
    FrameCutter cutter(
        [](void* owner, std::string_view frame) { static_cast<std::vector<std::string>*>(owner)->emplace_back(frame); },
        &frames);
    for (const std::string& chunk : chunks) {
        cutter.Feed(chunk);
    }
    return frames;
}

TEST(Fields, WriteTheLowDigitsAndRefuseImpossibleWidths) {
    EXPECT_EQ(Hex(0xFFFF, 4), "FFFF");
    EXPECT_EQ(Hex(0xABCDE, 5), "ABCDE");
    EXPECT_EQ(Hex(0x1234, 2), "34");
    EXPECT_EQ(Hex(1, 0), "refused");
    EXPECT_EQ(Hex(1, 6), "refused");
    EXPECT_EQ(Dec(7, 3), "007");
    EXPECT_EQ(Dec(1234, 3), "234");
    EXPECT_EQ(Dec(1, 0), "refused");
}

TEST(Fields, ReadAsFarAsTheDigitsGo) {
    EXPECT_EQ(ReadHex("fF", 2), (HexRead{0xFF, true}));
    EXPECT_EQ(ReadHex("4G", 2), (HexRead{4, false}));
    EXPECT_EQ(ReadHex("4 ", 2), (HexRead{4, true}));
    EXPECT_EQ(ReadHex("4", 2), (HexRead{4, true}));
    EXPECT_EQ(ReadHex("12345", 2), (HexRead{0x12, true}));
    EXPECT_EQ(ByteSum(""), 0);
    EXPECT_EQ(ByteSum("\xFF\x02"), 1);
    EXPECT_TRUE(SumMatches("\xFF\x02", "01"));
    EXPECT_FALSE(SumMatches("\xFF\x02", "02"));
}

TEST(Frames, AreEncodedByteByByte) {
    char out[kFrameSize];
    const auto encoded = [&](auto encode, auto... arguments) {
        encode(arguments..., out);
        return std::string(out);
    };
    EXPECT_EQ((std::string{kStx, kEtx, kDc1, kDc2, kDc3, kDc4}), "\x02\x03\x11\x12\x13\x14");
    EXPECT_EQ(encoded(EncodeModelQuery), Framed(kDc1, "000"));
    EXPECT_EQ(encoded(EncodeStatusQuery, kStatusMenu), Framed(kStx, "52060"));
    EXPECT_EQ(encoded(EncodeStatusQuery, kStatusReady), Framed(kStx, "52000"));
    EXPECT_EQ(encoded(EncodeUnitCommand, kCommandBD), Framed(kStx, "07CBD"));
    EXPECT_EQ(encoded(EncodeUnitCommand, kCommandBE), Framed(kStx, "07CBE"));
    EXPECT_EQ(encoded(EncodeMapQuery, kMapDiscs, std::uint16_t{0}), Framed(kDc4, "50100300000000000000C9"));
    EXPECT_EQ(encoded(EncodeMapQuery, kMapAlbums, std::uint16_t{0}), Framed(kDc4, "50100301000000000000CA"));
    EXPECT_EQ(encoded(EncodeMapQuery, kMapTracks, kProbeCode), Framed(kDc4, "50100302FFFF0000000023"));
    EXPECT_EQ(encoded(EncodeMapQuery, kMapTracks, GroupCode(12)), Framed(kDc4, "50100302001200000000CE"));
    EXPECT_EQ(encoded(EncodeMapQuery, kMapTracks, GroupCode(AlbumGroup(123))), Framed(kDc4, "50100302212300000000D3"));
    EXPECT_EQ(encoded(EncodeTitleRead, kKindDisc, 12U, 3U), Framed(kDc4, "50100500120300000000D1"));
    EXPECT_EQ(encoded(EncodeTitleRead, kKindAlbum, 7U, 0U), Framed(kDc4, "50100520070000000000D4"));
    EXPECT_EQ(encoded(EncodeTitleRead, kKindAlbum, 123U, 0U).substr(7, 4), "2123");
    EXPECT_EQ(encoded(EncodeTitleWrite, kKindDisc, 12U, 3U), Framed(kDc4, "50100600120300000000D2"));
}

TEST(Frames, TitleDataIsPadded) {
    char out[kFrameSize];
    EncodeTitleData("abc", out);
    EXPECT_EQ(std::string(out), Framed(kDc4, "5020abc" + std::string(29, ' ') + "8D"));
    const std::string full(32, '~');
    EncodeTitleData(full.c_str(), out);
    EXPECT_EQ(std::string(out).substr(5, 32), full);
    EncodeTitleData("", out);
    EXPECT_EQ(std::string(out).substr(5, 32), std::string(32, ' '));
}

TEST(Frames, ReceivedOnesAreToldApart) {
    const struct {
        const char* what;
        std::string frame;
        FrameKind kind;
    } cases[] = {
        {"status", Framed(kStx, "@05240"), FrameKind::kStatus},
        {"status, other second byte", Framed(kStx, "@15240"), FrameKind::kStatus},
        {"command", Framed(kStx, "@05800"), FrameKind::kCommand},
        {"last command type", Framed(kStx, "@05F00"), FrameKind::kCommand},
        {"type of no meaning", Framed(kStx, "@05700"), FrameKind::kIgnored},
        {"type outside the family", Framed(kStx, "@06240"), FrameKind::kVoid},
        {"no at sign", Framed(kStx, "A05240"), FrameKind::kVoid},
        {"wrong second byte", Framed(kStx, "@25240"), FrameKind::kVoid},
        {"one byte too long", Framed(kStx, "@052400"), FrameKind::kVoid},
        {"one byte short", Framed(kStx, "@0524"), FrameKind::kVoid},
        {"model", Framed(kDc2, "C00530009B"), FrameKind::kModel},
        {"model with data", Framed(kDc2, "C0071002abXX"), FrameKind::kModel},
        {"model, length too long", Framed(kDc2, "C00530019B"), FrameKind::kVoid},
        {"write reply", Framed(kDc4, "500406008F"), FrameKind::kTitleWrite},
        {"read reply", UnitBlock("0500" + std::string(32, ' ')), FrameKind::kTitleRead},
        {"map", UnitBlock("0300" + std::string(250, '0')), FrameKind::kMap},
        {"wrong check field", Framed(kDc4, "500406008E"), FrameKind::kVoid},
        {"result 3F", UnitBlock("063F"), FrameKind::kVoid},
        {"result 3F of an unknown sub-type", UnitBlock("093F"), FrameKind::kVoid},
        {"unknown sub-type", UnitBlock("0900"), FrameKind::kIgnored},
        {"block of another family", Framed(kDc4, "400406008E"), FrameKind::kVoid},
        {"block length beyond the frame", Framed(kDc4, "50FF06008F"), FrameKind::kVoid},
        {"DC1", Framed(kDc1, "000"), FrameKind::kVoid},
        {"DC3", Framed(kDc3, "000"), FrameKind::kVoid},
        {"lone control byte", "", FrameKind::kVoid},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(ClassifyFrame(each.frame), each.kind) << each.what;
    }
    EXPECT_TRUE(ModelSumMatches(Framed(kDc2, "C00530009B")));
    EXPECT_FALSE(ModelSumMatches(Framed(kDc2, "C00530009C")));
    EXPECT_EQ(ModelNumber(Framed(kDc2, "C00530009B")), 1);
    EXPECT_EQ(ModelNumber(Framed(kDc2, "C00710009B")), 2);
    EXPECT_EQ(ModelNumber(Framed(kDc2, "C00720009B")), 0);
}

TEST(Frames, MapBitsAndTitlesAreDecoded) {
    std::string digits(250, '0');
    digits[0] = '8';    // item 1
    digits[3] = '1';    // item 16
    digits[249] = '1';  // item 1000
    const std::string map = UnitBlock("0300" + digits);
    for (std::uint32_t item = 1; item <= 1000; ++item) {
        EXPECT_EQ(MapBit(map, item), item == 1 || item == 16 || item == 1000) << item;
    }
    EXPECT_TRUE(IsRefusal(UnitBlock("0301")) && IsRefusal(UnitBlock("0302")));
    EXPECT_FALSE(IsRefusal(UnitBlock("0300")) || IsRefusal(UnitBlock("0303")));

    const struct {
        std::string wire;
        std::string text;
    } titles[] = {
        {"ab" + std::string(30, ' '), "ab"},
        {std::string(32, ' '), ""},
        {" \xE9x\x7F~" + std::string(27, ' '), "  x ~"},
        {std::string(31, ' ') + "z", std::string(31, ' ') + "z"},
        {std::string(32, 'M'), std::string(32, 'M')},
        {"a\x1F\x80" + std::string(29, ' '), "a"},
    };
    for (const auto& title : titles) {
        char text[kTitleSize];
        DecodeTitle(UnitBlock("0500" + title.wire), text);
        EXPECT_EQ(text, title.text);
    }
}

TEST(FrameCutter, PutsFramesTogetherAtAnySplit) {
    const std::string frame = UnitBlock("0500title" + std::string(27, ' '));
    for (std::size_t split = 0; split <= frame.size(); ++split) {
        EXPECT_EQ(Cut({frame.substr(0, split), "\r\n", frame.substr(split)}), std::vector{frame}) << split;
    }
    std::vector<std::string> bytes;
    for (const char c : frame) {
        bytes.emplace_back(1, c);
    }
    EXPECT_EQ(Cut(bytes), std::vector{frame});
}

TEST(FrameCutter, GivesOneFrameForEachPiece) {
    const std::string one = Framed(kStx, "@05240");
    const std::string two = Framed(kStx, "@052FF");
    using Frames = std::vector<std::string>;
    const struct {
        const char* what;
        std::vector<std::string> chunks;
        Frames frames;
    } cases[] = {
        {"second frame of a piece is lost", {one + two}, {one}},
        {"a separator keeps both", {one + "\r" + two}, {one, two}},
        {"two chunks keep both", {one, two}, {one, two}},
        {"a start byte drops the old frame", {"\x02@05" + two}, {two}},
        {"an ETX with nothing before it", {"\x03\x03" + one}, {one}},
        {"bytes outside a frame", {"junk\x03junk" + one}, {one}},
        {"junk at the end of a chunk", {"junk", "\x03", one}, {one}},
        {"a lone ACK", {"\x06"}, {""}},
        {"a NAK within a frame", {"\x02@0\x15" + one, one}, {"", one}},
        {"a CAN between frames", {one + "\n\x18\n" + two}, {one, "", two}},
        {"a NUL hides the rest of its chunk", {"\x02@05"s + '\0' + two, "240\x03"}, {one}},
        {"separators alone", {"\r\n\r\n", ""}, {}},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(Cut(each.chunks), each.frames) << each.what;
    }
}

TEST(FrameCutter, DropsWhatIsTooLongAndGoesOn) {
    const std::string frame = Framed(kStx, "@05240");
    const std::string fits = "\x14" + std::string(kFrameSize - 2, 'x') + "\x03";
    EXPECT_EQ(Cut({fits}), std::vector{fits});
    const std::string tooLong = "\x14" + std::string(kFrameSize - 1, 'x') + "\x03";
    EXPECT_EQ(Cut({tooLong + frame}), std::vector{frame});
    const std::string endless(5000, 'x');
    EXPECT_EQ(Cut({"\x14" + endless, endless, "\x03", frame}), std::vector{frame});
    EXPECT_EQ(Cut({endless + frame}), std::vector{frame});
}

}  // namespace
