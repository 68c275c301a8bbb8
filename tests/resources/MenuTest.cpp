// The menu.
#include <string>
#include <vector>

#include "Found.h"

namespace {

struct Row {
    std::string text;
    int id;
    UINT flags;

    bool operator==(const Row&) const = default;
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.text << " " << row.id << " flags " << row.flags;
}

// The whole tree, each popup before its items.
void AddRows(const std::vector<kernel::MenuItem>& items, std::vector<Row>& rows) {
    for (const kernel::MenuItem& item : items) {
        rows.push_back({item.text, item.id, item.flags});
        AddRows(item.items, rows);
    }
}

std::vector<Row> ExpectedMenu(const std::string& version) {
    return {
        {"File(&F)", 0, MF_POPUP},
        {"Import(&I)", 40001, 0},
        {"Export(&E)", 40002, 0},
        {"Close(&C)", 40003, 0},
        {"Edit(&E)", 0, MF_POPUP},
        {"Undo(&U)\tCtrl+U", 40004, 0},
        {"", 0, MF_SEPARATOR},
        {"Clear(&C)\tDelete", 40005, 0},
        {"View(&V)", 0, MF_POPUP},
        {"Get One Group(&1)", 40017, 0},
        {"Get All Title(&G)", 40009, 0},
        {"Synchro Group Data(&S)", 40008, 0},
        {"Send All Title(&A)", 40010, 0},
        {"Stop(&Q)", 40019, 0},
        {"Tool(&T)", 0, MF_POPUP},
        {"Option(&O)", 40011, 0},
        {"Connection(&C)", 40018, 0},
        {"", 0, MF_SEPARATOR},
        {"Font(&F)", 40016, 0},
        {"", 0, MF_SEPARATOR},
        {"StatusBar(&S)", 40012, MF_CHECKED},
        {"Help(&H)", 0, MF_POPUP | MF_HELP},
        {"Help Topics(&H)", 40013, 0},
        {version, 40014, 0},
    };
}

TEST(MenuResource, HasEveryItemInBothLanguages) {
    for (const WORD language : kBoth) {
        SCOPED_TRACE(language);
        const auto menu = kernel::ParseMenu(Found(RT_MENU, 101, language));
        ASSERT_TRUE(menu);
        EXPECT_EQ(menu->size(), 5u);
        std::vector<Row> rows;
        AddRows(*menu, rows);
        EXPECT_EQ(rows, ExpectedMenu(language == kEnglish ? "Version Info(&A)..." : "ﾊﾞｰｼﾞｮﾝ情報(&A)..."));
    }
}

}  // namespace
