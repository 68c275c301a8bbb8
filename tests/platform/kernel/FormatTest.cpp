// wsprintfA, beside what Windows gives for the same formats.
#include <cstring>
#include <string>

#include "TestSupport.h"
#include "win/resources.h"

namespace {

template <class... Arguments>
std::string Formatted(const char* format, Arguments... arguments) {
    char buffer[1025];
    std::memset(buffer, '#', sizeof buffer);
    const int length = wsprintfA(buffer, format, arguments...);
    EXPECT_EQ(static_cast<std::size_t>(length), std::strlen(buffer));
    return buffer;
}

TEST(Format, NumbersAndTextsAsOnWindows) {
    EXPECT_EQ(Formatted("%d|%5d|%-5d|%05d|%u|%x|%X|%c|%s|%%", -3, 42, 42, 42, 4000000000u, 0xbeef, 0xbeef, 'A', "str"),
              "-3|   42|42   |00042|4000000000|beef|BEEF|A|str|%");
    EXPECT_EQ(Formatted("%5s|%-5s|%05s|%5c|%-5c|", "ab", "ab", "ab", 'x', 'x'), "   ab|ab   |   ab|    x|x    |");
    EXPECT_EQ(Formatted("%05d|%-05d|%08X|%03x|%1d", -42, 42, 255, 1, 1234), "-0042|42   |000000FF|001|1234");
    EXPECT_EQ(Formatted("%d|%d", -2147483647 - 1, 2147483647), "-2147483648|2147483647");
    EXPECT_EQ(Formatted("%s", static_cast<const char*>(nullptr)), "(null)");
    EXPECT_EQ(Formatted(""), "");
}

TEST(Format, ResultStaysWithinTheBuffer) {
    const std::string most(1023, 'y');
    EXPECT_EQ(Formatted("%s", most.c_str()), most);

    char buffer[1025];
    buffer[1024] = '#';
    for (const char* format : {"%s%d", "%sxyz", "ab%s", "%2000d%s"}) {
        EXPECT_EQ(format[1] == '2' ? wsprintfA(buffer, format, 1, "a") : wsprintfA(buffer, format, most.c_str(), 12), 1024);
        EXPECT_EQ(std::strlen(buffer), 1023u) << format;
        EXPECT_EQ(buffer[1024], '#');
    }
}

}  // namespace
