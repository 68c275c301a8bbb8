#include "UnitRequest.h"

#include <gtest/gtest.h>

#include "UnitFrames.h"

namespace mainunit {
namespace {

std::string Frame(char start, const std::string& body) {
    return start + body + kEtx;
}

// A block frame with a right check sum, whatever the text from offset 1 on.
std::string Block(const std::string& body) {
    return Frame(kDc4, body + Hex(SumOf(body), 2));
}

const std::string kAbcData = "5020abc" + std::string(29, ' ') + "8D";

UnitRequest Read(const std::string& frame) {
    UnitRequest request;
    std::string problem;
    EXPECT_TRUE(ReadRequest(frame, request, problem)) << problem;
    return request;
}

TEST(UnitRequest, ReadsTheShortFrames) {
    EXPECT_EQ(Read(Frame(kDc1, "000")).kind, UnitRequest::Kind::kModelQuery);

    const UnitRequest menu = Read(Frame(kStx, "52060"));
    EXPECT_EQ(menu.kind, UnitRequest::Kind::kStatusQuery);
    EXPECT_EQ(menu.code, 0x60);
    EXPECT_EQ(Read(Frame(kStx, "52000")).code, 0x00);

    const UnitRequest command = Read(Frame(kStx, "07CBD"));
    EXPECT_EQ(command.kind, UnitRequest::Kind::kUnitCommand);
    EXPECT_EQ(command.code, 0xBD);
    EXPECT_EQ(Read(Frame(kStx, "07CBE")).code, 0xBE);
}

TEST(UnitRequest, ReadsMapQueries) {
    EXPECT_EQ(Read(Frame(kDc4, "50100300000000000000C9")).map, MapKind::kDiscs);
    EXPECT_EQ(Read(Frame(kDc4, "50100301000000000000CA")).map, MapKind::kAlbums);
    EXPECT_TRUE(Read(Frame(kDc4, "50100302FFFF0000000023")).probe);

    const UnitRequest disc = Read(Frame(kDc4, "50100302001200000000CE"));
    EXPECT_EQ(disc.kind, UnitRequest::Kind::kMapQuery);
    EXPECT_EQ(disc.map, MapKind::kTracks);
    EXPECT_FALSE(disc.probe);
    EXPECT_EQ(disc.entry, (Entry{GroupKind::kDisc, 12, 0}));
    EXPECT_EQ(Read(Frame(kDc4, "50100302212300000000D3")).entry, (Entry{GroupKind::kAlbum, 123, 0}));
}

TEST(UnitRequest, ReadsTitleFrames) {
    const UnitRequest track = Read(Frame(kDc4, "50100500120300000000D1"));
    EXPECT_EQ(track.kind, UnitRequest::Kind::kTitleRead);
    EXPECT_EQ(track.entry, (Entry{GroupKind::kDisc, 12, 3}));
    EXPECT_EQ(Read(Frame(kDc4, "50100520070000000000D4")).entry, (Entry{GroupKind::kAlbum, 7, 0}));
    EXPECT_EQ(Read(Frame(kDc4, "50100600120300000000D2")).kind, UnitRequest::Kind::kTitleWrite);

    const UnitRequest data = Read(Frame(kDc4, kAbcData));
    EXPECT_EQ(data.kind, UnitRequest::Kind::kTitleData);
    EXPECT_EQ(data.text, "abc" + std::string(29, ' '));
}

TEST(UnitRequest, RefusesWhatBreaksTheFormat) {
    const struct {
        const char* problem;
        std::string piece;
    } cases[] = {
        {"bytes outside a frame", "abc"},
        {"frame without its end", std::string(1, kDc1) + "000"},
        {"a frame from DC1 that is no ModelQuery", Frame(kDc1, "001")},
        {"a frame from DC1 that is no ModelQuery", Frame(kDc1, "0000")},
        {"short frame of a wrong length", Frame(kStx, "5206")},
        {"short frame of a wrong length", Frame(kStx, "520600")},
        {"short frame of no known kind", Frame(kStx, "52160")},
        {"StatusQuery: parameter digit out of range", Frame(kStx, "5206A")},
        {"StatusQuery: parameter not known", Frame(kStx, "52061")},
        {"UnitCommand: command not known", Frame(kStx, "07CBF")},
        {"UnitCommand: command not known", Frame(kStx, "07Cbd")},
        {"block frame with a wrong head", Block("51100300000000000000")},
        {"block frame with a wrong head", Frame(kDc4, "50")},
        {"block frame of a wrong length", Block("501003000000000000000")},
        {"block frame of a wrong length", Block("50110300000000000000")},
        {"block frame with a wrong check sum", Frame(kDc4, "50100300000000000000C8")},
        {"block frame with a wrong check sum", Frame(kDc4, "50100300000000000000c9")},
        {"block frame of no known length", Block("500803000000")},
        {"block frame of no known length", Block("50040601")},
        {"block frame without its eight zeros", Block("50100300000000000001")},
        {"block frame of no known kind", Block("50100400000000000000")},
        {"MapQuery: kind out of range", Block("50100303000000000000")},
        {"MapQuery: group code without tracks", Block("50100300000100000000")},
        {"MapQuery: group code out of range", Block("50100302000000000000")},
        {"MapQuery: group code out of range", Block("50100302100100000000")},
        {"MapQuery: group code out of range", Block("5010030200A100000000")},
        {"title frame: group or track out of range", Block("50100500000300000000")},
        {"title frame: group or track out of range", Block("50100510010300000000")},
        {"title frame: group or track out of range", Block("501006001 0300000000")},
        {"frame with a zero byte", Block("5020ab" + std::string(30, '\0'))},
    };
    for (const auto& one : cases) {
        UnitRequest request;
        std::string problem;
        EXPECT_FALSE(ReadRequest(one.piece, request, problem)) << one.problem << ": " << one.piece;
        // The length is settled before the sum, so a case may fail only for the reason that it was made for.
        EXPECT_EQ(problem, one.problem) << one.piece;
    }
}

TEST(PieceCutter, PutsFramesTogetherAtAnyPartition) {
    const std::string first = Frame(kDc4, kAbcData);
    const std::string second = Frame(kStx, "52060");
    const std::string stream = first + second;
    for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
        PieceCutter cutter = PieceCutter::ForRequests();
        std::vector<std::string> pieces = cutter.Feed(stream.substr(0, cut));
        for (const std::string& piece : cutter.Feed(stream.substr(cut))) {
            pieces.push_back(piece);
        }
        EXPECT_EQ(pieces, (std::vector{first, second})) << "cut at " << cut;
        EXPECT_EQ(cutter.Held(), 0U);
    }
}

TEST(PieceCutter, RecoversAndHoldsNoMoreThanAFrame) {
    const std::string query = Frame(kStx, "52060");
    PieceCutter cutter = PieceCutter::ForRequests();
    // A frame that lost its end gives way to the next start byte; junk and separators stand as pieces of their own.
    EXPECT_EQ(cutter.Feed(std::string(1, kDc4) + "5010" + query), (std::vector{std::string(1, kDc4) + "5010", query}));
    EXPECT_EQ(cutter.Feed("\r\n" + query + "x"), (std::vector<std::string>{"\r\n", query, "x"}));

    std::size_t passed = 0;
    for (const std::string& piece : cutter.Feed(kDc4 + std::string(100'000, 'x'))) {
        passed += piece.size();
    }
    EXPECT_EQ(passed + cutter.Held(), 100'001U);
    EXPECT_LE(cutter.Held(), 40U);
    EXPECT_EQ(cutter.Feed(query).back(), query);
}

}  // namespace
}  // namespace mainunit
