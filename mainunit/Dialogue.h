// Dialogue: the frames of the line in words, for the log.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace mainunit {

// Lines such as
//     12.345 > TitleRead Disc 12 track 3                14 35 30 ...
//     12.410 < TitleReadReply "Low Water"               14 35 30 ...
// ">" goes to the main unit, "<" comes from it. Lines hold printable ASCII alone, whatever the bytes are.
class Dialogue {
public:
    // What the bytes say; bytes that are no whole and sound frame are called what they are.
    static std::string DescribeRequest(std::string_view bytes);
    static std::string DescribeReply(std::string_view bytes);

    // `timeMs` is the caller's time, from whatever start. `problem` is empty or stands in brackets behind the meaning.
    static std::string RequestLine(std::int64_t timeMs, std::string_view bytes, std::string_view problem = {});
    static std::string ReplyLine(std::int64_t timeMs, std::string_view bytes);
};

}  // namespace mainunit
