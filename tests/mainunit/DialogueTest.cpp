#include "Dialogue.h"

#include <gtest/gtest.h>

#include "UnitFrames.h"

namespace mainunit {
namespace {

TEST(Dialogue, NamesRequests) {
    const struct {
        std::string frame;
        const char* meaning;
    } cases[] = {
        {std::string("\x11") + "000\x03", "ModelQuery"},
        {std::string("\x02") + "52060\x03", "StatusQuery 0x60"},
        {std::string("\x02") + "07CBD\x03", "UnitCommand 0xBD"},
        {BlockFrame("0300000000000000"), "MapQuery Discs"},
        {BlockFrame("0301000000000000"), "MapQuery Albums"},
        {BlockFrame("0302FFFF00000000"), "MapQuery probe"},
        {BlockFrame("0302212300000000"), "MapQuery Tracks of Album 123"},
        {BlockFrame("0500120300000000"), "TitleRead Disc 12 track 3"},
        {BlockFrame("0620070000000000"), "TitleWrite Album 7"},
        {BlockFrame("Low\tWater                       "), "TitleData \"Low.Water\""},
        {"?!", "2 bytes"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(Dialogue::DescribeRequest(one.frame), one.meaning);
    }
}

TEST(Dialogue, NamesReplies) {
    const std::string titleReply = BlockReply(SubType::kTitleRead, 0, "Low Water                       ");
    std::string bitmap(250, '0');
    bitmap[0] = 'F';
    const struct {
        std::string frame;
        const char* meaning;
    } cases[] = {
        {ShortReply(kStatusReply, 0xFE), "StatusReply 0xFE"},
        {ShortReply(kCommandReply, 0), "CommandReply 0x00"},
        {ModelReply("C0071"), "ModelReply \"C0071\""},
        {BlockReply(SubType::kMap, 0, bitmap), "MapReply 4 items"},
        {BlockReply(SubType::kMap, 1), "MapReply refused, result 1"},
        {BlockReply(SubType::kMap, 0), "MapReply accepted"},
        {titleReply, "TitleReadReply \"Low Water\""},
        {BlockReply(SubType::kTitleRead, 2), "TitleReadReply refused, result 2"},
        {BlockReply(SubType::kTitleWrite, 0), "TitleWriteReply accepted"},
        {titleReply.substr(0, 20), "20 bytes, no sound frame"},
        {titleReply.substr(0, 20) + "x" + titleReply.substr(21), "44 bytes, no sound frame"},
        {std::string("\x14\x03"), "2 bytes, no sound frame"},
        {std::string("\x06"), "1 byte, no sound frame"},
        {"", "0 bytes, no sound frame"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(Dialogue::DescribeReply(one.frame), one.meaning);
    }
}

}  // namespace
}  // namespace mainunit
