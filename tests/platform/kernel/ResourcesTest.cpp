// The search for resources, strings, and the file that they come in.
#include "Resources.h"

#include <cstring>

#include "TestSupport.h"

namespace {

// Chooses a language for as long as it lives.
class ChosenLanguage {
public:
    explicit ChosenLanguage(WORD language) : before(kernel::ResourceLanguage()) { kernel::SetResourceLanguage(language); }
    ~ChosenLanguage() { kernel::SetResourceLanguage(before); }
    ChosenLanguage(const ChosenLanguage&) = delete;
    ChosenLanguage& operator=(const ChosenLanguage&) = delete;

private:
    const WORD before;
};

std::string String(UINT id, int size = 100) {
    char buffer[101];
    std::memset(buffer, '#', sizeof buffer);
    const int length = LoadStringA(nullptr, id, buffer, size);
    EXPECT_EQ(length, static_cast<int>(std::strlen(buffer)));
    EXPECT_EQ(buffer[size], '#');
    return buffer;
}

TEST(Resources, LanguageIsTheLocales) {
    const WORD before = kernel::ResourceLanguage();
    for (const auto& [locale, language] : {std::pair("ja_JP.UTF-8", kernel::kJapanese), std::pair("ja", kernel::kJapanese),
                                           std::pair("de_DE.UTF-8", kernel::kEnglish), std::pair("C", kernel::kEnglish)}) {
        const EnvironmentVariable all("LC_ALL", locale);
        kernel::SetResourceLanguage(0);
        EXPECT_EQ(kernel::ResourceLanguage(), language) << locale;
    }
    kernel::SetResourceLanguage(before);
}

TEST(Resources, StringComesInTheLanguageOrInTheOther) {
    const ChosenCodePage page(932);
    {
        const ChosenLanguage language(kernel::kEnglish);
        EXPECT_EQ(String(16), "English");
        EXPECT_EQ(kernel::ToUtf8(String(40)), "日本語だけ");
        // The search is for blocks, as on Windows: a string that the language's block lacks is empty.
        EXPECT_EQ(String(17), "");
    }
    const ChosenLanguage language(kernel::kJapanese);
    EXPECT_EQ(kernel::ToUtf8(String(16)), "バージョン");
    EXPECT_EQ(String(15), "last of a block");
    EXPECT_EQ(String(16 + 0x10000), String(16));
    EXPECT_EQ(String(9999), "");
}

TEST(Resources, StringIsCutBetweenCharacters) {
    const ChosenCodePage page(932);
    const ChosenLanguage language(kernel::kJapanese);
    const std::string whole = String(17);
    ASSERT_EQ(whole.size(), 6u);  // Letters and half-width marks have one byte, the third character has two.
    for (int size = 1; size < 10; ++size) {
        const std::size_t room = static_cast<std::size_t>(size) - 1;
        EXPECT_EQ(String(17, size), whole.substr(0, room == 4 ? 3 : room)) << size;
    }
    char untouched = '#';
    EXPECT_EQ(LoadStringA(nullptr, 16, &untouched, 0), -1);
    EXPECT_EQ(untouched, '#');
}

TEST(Resources, CharacterThatThePageLacksBecomesAQuestionMark) {
    const ChosenCodePage page(1252);
    const ChosenLanguage language(kernel::kEnglish);
    EXPECT_EQ(String(18), "Dvo?\xE1k ? na\xEFve");
    const ChosenLanguage other(kernel::kJapanese);
    EXPECT_EQ(String(16), "?????");
}

TEST(Resources, AreFoundByTypeNumberAndLanguage) {
    const ChosenLanguage language(kernel::kEnglish);
    const auto find = [](LPCSTR type, WORD number, WORD wanted) {
        return FindResourceExA(nullptr, type, MAKEINTRESOURCEA(number), wanted);
    };
    ASSERT_NE(find(RT_MENU, 1, 0), nullptr);
    EXPECT_EQ(find(RT_MENU, 1, 0), find(RT_MENU, 1, kernel::kEnglish));
    EXPECT_EQ(find(RT_MENU, 1, kernel::kJapanese), nullptr);
    EXPECT_EQ(find(RT_MENU, 2, 0), nullptr);
    EXPECT_EQ(find(MAKEINTRESOURCEA(99), 1, 0), nullptr);

    // Behind one whose name is in letters.
    HRSRC data = find(MAKEINTRESOURCEA(10), 3, 0);
    ASSERT_EQ(SizeofResource(nullptr, data), 3u);
    EXPECT_EQ(std::memcmp(LockResource(LoadResource(nullptr, data)), "abc", 3), 0);
    EXPECT_EQ(SizeofResource(nullptr, nullptr), 0u);
    EXPECT_EQ(LoadResource(nullptr, nullptr), nullptr);
}

TEST(Resources, TemplatesOfEveryShapeAreRead) {
    const auto menu = kernel::ParseMenu(kernel::ResourceBytes(MAKEINTRESOURCEA(1), RT_MENU));
    ASSERT_TRUE(menu && menu->size() == 2 && menu->front().items.size() == 2);
    const kernel::MenuItem& popup = menu->front().items.front();
    ASSERT_EQ(popup.items.size(), 1u);
    EXPECT_EQ(popup.items.front().text, "C");
    EXPECT_EQ(menu->front().items.back().flags, MF_GRAYED);
    EXPECT_EQ(menu->back().id, 5);

    const auto dialog = kernel::ParseDialog(kernel::ResourceBytes(MAKEINTRESOURCEA(1), RT_DIALOG));
    ASSERT_TRUE(dialog && dialog->items.size() == 2);
    EXPECT_EQ(dialog->x, -3);
    EXPECT_EQ(dialog->items[0].className, "MY CLASS");  // The compiler writes class names in capitals.
    EXPECT_EQ(dialog->items[0].title.text, "題");
    EXPECT_EQ(dialog->items[1].title.resource, 12);
    EXPECT_EQ(dialog->items[1].id, -1);
}

}  // namespace
