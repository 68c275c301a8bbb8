#include "CodePage.h"

#include "TestSupport.h"

namespace {

using kernel::FromUtf8;
using kernel::ToUtf8;

TEST(CodePage, FollowsTheLocale) {
    struct Case {
        const char* all;
        const char* ctype;
        const char* lang;
        unsigned page;
    };
    const Case cases[] = {
        {"", "", "ja_JP.UTF-8", 932},
        {"", "ja_JP.eucJP", "de_DE.UTF-8", 932},
        {"C", "ja_JP.UTF-8", "ja_JP.UTF-8", 1252},
        {"ja", "", "", 932},
        {"", "", "japanese", 932},
        {"", "", "jam_JM.UTF-8", 1252},
        {"", "", "", 1252},
        {"", "en_GB.UTF-8", "ja_JP", 1252},
    };
    for (const Case& c : cases) {
        const EnvironmentVariable all("LC_ALL", c.all);
        const EnvironmentVariable ctype("LC_CTYPE", c.ctype);
        const EnvironmentVariable lang("LANG", c.lang);
        EXPECT_EQ(kernel::CodePageOfLocale(), c.page) << c.all << '/' << c.ctype << '/' << c.lang;
    }
}

TEST(CodePage, EveryByteOfTheWesternPageComesBack) {
    const ChosenCodePage page(1252);
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
        EXPECT_FALSE(IsDBCSLeadByte(static_cast<BYTE>(i)));
    }
    const std::string text = ToUtf8(bytes);
    EXPECT_EQ(FromUtf8(text), bytes);
    EXPECT_EQ(ToUtf8("\x80 \xE9 \x81"), "\u20AC \u00E9 \xC2\x81");
    // No byte, no text that looks alike, and no half character.
    for (const char* none : {"\u8868", "\xC2\x80", "a\xC3", "\xFF"}) {
        EXPECT_EQ(FromUtf8(none), std::nullopt) << none;
    }
}

TEST(CodePage, DoubleBytesOfTheJapanesePage) {
    const ChosenCodePage page(932);
    for (int i = 0; i < 256; ++i) {
        const bool lead = (i >= 0x81 && i <= 0x9F) || (i >= 0xE0 && i <= 0xFC);
        EXPECT_EQ(IsDBCSLeadByte(static_cast<BYTE>(i)) != FALSE, lead) << i;
    }
    // The second bytes of these look like a backslash, a bar and a lead byte; the last is a byte of its own.
    const std::string bytes = "\x95\x5C\x83\x7C\x90\x8C\xB1";
    EXPECT_EQ(ToUtf8(bytes), "\u8868\u30DD\u9154\uFF71");
    EXPECT_EQ(FromUtf8("\u8868\u30DD\u9154\uFF71"), bytes);
    EXPECT_EQ(ToUtf8("C:\\~"), "C:\\~");
    // A yen sign is no backslash here, or it would cut a path in two.
    for (const char* none : {"\u00A5", "\u20AC", "\xE8\xA1"}) {
        EXPECT_EQ(FromUtf8(none), std::nullopt) << none;
    }
}

TEST(CodePage, BrokenJapaneseTextLosesOnlyWhatIsBroken) {
    const ChosenCodePage page(932);
    EXPECT_EQ(ToUtf8("a\x95"), "a\uFFFD");
    EXPECT_EQ(ToUtf8("\x95\nb"), "\uFFFD\nb");
    EXPECT_EQ(ToUtf8("\xFF\x95\x5C"), "\uFFFD\u8868");
    EXPECT_EQ(ToUtf8("\x81\xAD|"), "\uFFFD|");  // A pair that the page leaves empty.
    const std::string longText(10'000, '\xB1');
    EXPECT_EQ(ToUtf8(longText).size(), 3 * longText.size());
    EXPECT_EQ(FromUtf8(ToUtf8(longText)), longText);
}

}  // namespace
