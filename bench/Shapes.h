// Texts of title files, as large as the benchmarks want them.
#pragma once

#include <string>
#include <string_view>

inline constexpr std::size_t kShapeSize = 16 << 20;

// The same text again and again.
inline std::string Repeated(std::string_view text) {
    std::string all;
    all.reserve(kShapeSize + text.size());
    while (all.size() < kShapeSize) {
        all += text;
    }
    return all;
}

inline std::string CsvRows() {
    return Repeated("12,\"A title with \"\"quotes\"\" in it\"\r\n");
}

inline std::string TabTextRows() {
    return Repeated("12\tA title as it is\r\n");
}

inline std::string PlayListEntries() {
    return "<ASX>" + Repeated("<ENTRY><TITLE>A title</TITLE><REF HREF=\"http://a/b.mp3\" /></ENTRY>\r\n") + "</ASX>";
}
