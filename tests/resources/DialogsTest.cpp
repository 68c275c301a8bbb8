// The three dialogs: every control with its place and its whole style.
#include <string>
#include <vector>

#include "Found.h"

namespace {

struct Control {
    int id;
    std::string className;
    std::string text;
    int x, y, cx, cy;
    DWORD style;
    WORD picture = 0;

    bool operator==(const Control&) const = default;
};

void PrintTo(const Control& c, std::ostream* out) {
    *out << c.id << " " << c.className << " \"" << c.text << "\" " << c.x << ", " << c.y << ", " << c.cx << ", " << c.cy
         << " style 0x" << std::hex << c.style << std::dec << " picture " << c.picture;
}

// What every dialog of the program has in common is checked here.
void ExpectDialog(int id, WORD language, DWORD style, int cx, int cy, const std::vector<Control>& expected) {
    SCOPED_TRACE(testing::Message() << "dialog " << id << ", language " << language);
    const auto dialog = kernel::ParseDialog(Found(RT_DIALOG, id, language));
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->style, style);
    EXPECT_EQ(dialog->exStyle, 0u);
    EXPECT_EQ(dialog->cx, cx);
    EXPECT_EQ(dialog->cy, cy);
    EXPECT_EQ(dialog->title, "");
    EXPECT_EQ(dialog->className, "");
    EXPECT_EQ(dialog->fontPoints, 9);
    EXPECT_EQ(dialog->fontFace, language == kEnglish ? "MS Sans Serif" : "ＭＳ Ｐゴシック");

    std::vector<Control> controls;
    for (const kernel::DialogItem& item : dialog->items) {
        EXPECT_EQ(item.exStyle, 0u);
        controls.push_back(
            {item.id, item.className, item.title.text, item.x, item.y, item.cx, item.cy, item.style, item.title.resource});
    }
    EXPECT_EQ(controls, expected);
}

TEST(DialogResource, PaneIsTheSameInBothLanguages) {
    for (const WORD language : kBoth) {
        ExpectDialog(103, language, 0x40000040, 275, 246,
                     {{1004, "BUTTON", "Stop", 39, 7, 19, 14, 0x50030000},
                      {1000, "LISTBOX", "", 7, 32, 127, 207, 0x500101E3},
                      {1001, "LISTBOX", "", 139, 45, 129, 194, 0x50010163},
                      {1002, "BUTTON", "Sync", 7, 7, 31, 14, 0x50030000},
                      {1003, "STATIC", "", 60, 7, 208, 15, 0x50001200}});
    }
}

TEST(DialogResource, AboutHasItsOwnPlacesInEachLanguage) {
    ExpectDialog(105, kEnglish, 0x80C008C0, 201, 85,
                 {{1, "BUTTON", "OK", 143, 7, 50, 14, 0x50010000},
                  {1004, "STATIC", "", 15, 37, 174, 12, 0x50020200},
                  {1005, "STATIC", "", 23, 51, 170, 12, 0x50020200},
                  {1006, "STATIC", "", 22, 66, 171, 12, 0x50020200},
                  {-1, "STATIC", "", 9, 7, 20, 20, 0x50000003, 109}});
    ExpectDialog(105, kJapanese, 0x80C008C0, 190, 87,
                 {{1, "BUTTON", "OK", 133, 7, 50, 14, 0x50010000},
                  {1004, "STATIC", "", 17, 39, 166, 12, 0x50020200},
                  {1005, "STATIC", "", 22, 53, 161, 12, 0x50020200},
                  {1006, "STATIC", "", 22, 68, 161, 12, 0x50020200},
                  {-1, "STATIC", "", 8, 7, 20, 20, 0x50000003, 109}});
}

}  // namespace
