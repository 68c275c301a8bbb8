// Every string in both languages.
#include <algorithm>
#include <string>

#include "Found.h"
#include "Utf16.h"

namespace {

// Both ends of each run of numbers.
constexpr UINT kRuns[][2] = {{7001, 7001}, {7011, 7016}, {7101, 7105}, {7107, 7118},
                             {7201, 7209}, {7301, 7315}, {7401, 7403}};

std::string String(UINT id, WORD language) {
    const kernel::Bytes block = Found(RT_STRING, kernel::StringBlockOf(id), language);
    return kernel::Utf8Of(kernel::StringInBlock(block, kernel::StringIndexOf(id)));
}

TEST(StringResource, EachNumberHasATextInBothLanguagesAndNoOtherHas) {
    for (const WORD language : kBoth) {
        for (UINT id = 6992; id < 7520; ++id) {
            const bool isText = std::any_of(std::begin(kRuns), std::end(kRuns),
                                            [id](const auto& run) { return id >= run[0] && id <= run[1]; });
            EXPECT_EQ(String(id, language).empty(), !isText) << id << " " << language;
        }
    }
}

// Fullwidth and halfwidth letters, and all bytes of a text that looks like a slip of the pen but is what users know.
TEST(StringResource, TextsComeThroughUnchanged) {
    EXPECT_EQ(String(7311, kEnglish), "Time out error occurred .");
    EXPECT_EQ(String(7311, kJapanese), "タイムアウトしました");
    EXPECT_EQ(String(7304, kJapanese), "機器のモードをＨＤＤにし、再生停止にして下さい。");
    EXPECT_EQ(String(7117, kJapanese), "Tesselia の Help を表示");
    EXPECT_EQ(String(7014, kJapanese), "unkown");
    for (const UINT id : {7001U, 7012U, 7015U, 7016U, 7201U, 7301U}) {
        EXPECT_EQ(String(id, kEnglish), String(id, kJapanese)) << id;
    }
}

}  // namespace
