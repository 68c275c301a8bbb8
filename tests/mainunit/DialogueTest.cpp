#include "Dialogue.h"

#include <gtest/gtest.h>

#include "UnitFrames.h"

namespace mainunit {
namespace {

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
