// What screen readers are told, asked as they ask.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QWidget>
#include <string>

#include "Desktop.h"
#include "DesktopTests.h"
#include "Dialogs.h"

namespace {

class Access : public testing::Test {
protected:
    Access() {
        top = MakeTopLevel("Top");
        list = Add("LISTBOX", LBS_OWNERDRAWVARIABLE | LBS_HASSTRINGS | LBS_NOTIFY, RECT{10, 10, 210, 110}, top);
        for (const char* row : {"Dsc\t1\tSea && Sand", "Dsc\t2\t", "Alb\t12\tLast"}) {
            SendMessageA(list, LB_INSERTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(row));
        }
    }
    ~Access() override { DestroyWindow(top); }

    static HWND Add(const char* className, DWORD style, RECT place, HWND parent) {
        return CreateWindowExA(0, className, "", WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                               place.right - place.left, place.bottom - place.top, parent, nullptr, nullptr, nullptr);
    }
    static QAccessibleInterface* Of(HWND window) {
        return QAccessible::queryAccessibleInterface(desktop::Desktop::Get().Find(window)->widget);
    }
    static std::string NameOf(QAccessibleInterface* access) { return access->text(QAccessible::Name).toStdString(); }

    HWND top = nullptr;
    HWND list = nullptr;
};

TEST_F(Access, RowsAreReadWithTheirFields) {
    QAccessibleInterface* rows = Of(list);
    ASSERT_EQ(rows->role(), QAccessible::List);
    SetWindowTextA(list, "Groups");
    EXPECT_EQ(NameOf(rows), "Groups");
    ASSERT_EQ(rows->childCount(), 3);
    EXPECT_EQ(NameOf(rows->child(0)), "Dsc 1 Sea & Sand");
    EXPECT_EQ(NameOf(rows->child(1)), "Dsc 2");
    EXPECT_EQ(rows->child(2)->role(), QAccessible::ListItem);
    EXPECT_EQ(rows->indexOfChild(rows->child(2)), 2);
    EXPECT_EQ(rows->child(2)->parent(), rows);
    const QPoint middle = rows->child(1)->rect().center();
    EXPECT_EQ(rows->childAt(middle.x(), middle.y()), rows->child(1));

    QAccessibleInterface* gone = rows->child(2);
    SendMessageA(list, LB_DELETESTRING, 1, 0);
    EXPECT_EQ(rows->childCount(), 2);
    EXPECT_FALSE(gone->isValid());
    EXPECT_EQ(NameOf(rows->child(1)), "Alb 12 Last");
    EXPECT_EQ(NameOf(gone), "");
    SendMessageA(list, LB_RESETCONTENT, 0, 0);
    EXPECT_EQ(rows->childCount(), 0);
    EXPECT_EQ(rows->child(0), nullptr);
}

TEST_F(Access, TheSelectedRowAndTheOneWithTheKeysAreMarked) {
    QAccessibleInterface* rows = Of(list);
    SendMessageA(list, LB_SETCURSEL, 1, 0);
    EXPECT_TRUE(rows->child(1)->state().selected);
    EXPECT_FALSE(rows->child(1)->state().focused);
    ASSERT_TRUE(ServeUntil([this] { return GetForegroundWindow() == top; }));
    SetFocus(list);
    SendMessageA(list, WM_KEYDOWN, VK_DOWN, 0);
    EXPECT_TRUE(rows->child(2)->state().selected);
    EXPECT_TRUE(rows->child(2)->state().focused);
    EXPECT_FALSE(rows->child(1)->state().selected);
    EXPECT_EQ(rows->focusChild(), rows->child(2));
    EnableWindow(list, FALSE);
    EXPECT_TRUE(rows->child(2)->state().disabled);
}

TEST_F(Access, FieldsHaveNames) {
    SendMessageA(list, LB_SETCURSEL, 0, 0);
    HWND editor = Add("EDIT", 0, RECT{0, 0, 80, 18}, list);
    EXPECT_EQ(NameOf(Of(editor)), "Dsc 1 Sea & Sand");
    EXPECT_EQ(Of(list)->childCount(), 4) << "the rows, and the editor behind them";
    EXPECT_EQ(Of(list)->indexOfChild(Of(editor)), 3);

    HWND frame = Add("BUTTON", BS_GROUPBOX, RECT{0, 120, 300, 170}, top);
    SetWindowTextA(frame, "Disc");
    SetWindowTextA(Add("STATIC", 0, RECT{10, 130, 50, 150}, top), "From");
    HWND from = Add("EDIT", 0, RECT{60, 130, 100, 150}, top);
    SetWindowTextA(Add("STATIC", 0, RECT{110, 130, 150, 150}, top), "To");
    HWND to = Add("EDIT", 0, RECT{160, 130, 200, 150}, top);
    desktop::NameFields(top);
    EXPECT_EQ(NameOf(Of(from)), "Disc From");
    EXPECT_EQ(NameOf(Of(to)), "Disc To");
}

}  // namespace
