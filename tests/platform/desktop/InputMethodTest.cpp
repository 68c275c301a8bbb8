// Cutting a window off from the input method.
#include <gtest/gtest.h>
#include <imm.h>

#include <QWidget>

#include "Desktop.h"
#include "DesktopTests.h"

namespace {

bool Composes(HWND window) {
    return desktop::Desktop::Get().Find(window)->widget->testAttribute(Qt::WA_InputMethodEnabled);
}

TEST(InputMethod, AWindowWithoutAContextComposesNoText) {
    HWND parent = MakeTopLevel("Input method");
    HWND edit = CreateWindowExA(0, "EDIT", "", WS_CHILD | WS_VISIBLE, 0, 0, 100, 20, parent, nullptr, nullptr, nullptr);
    ASSERT_NE(edit, nullptr);
    EXPECT_TRUE(Composes(edit));
    HIMC context = ImmGetContext(edit);
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(ImmAssociateContext(edit, nullptr), context);
    EXPECT_FALSE(Composes(edit));
    EXPECT_EQ(ImmGetContext(edit), nullptr);
    EXPECT_TRUE(ImmReleaseContext(edit, context));
    EXPECT_EQ(ImmAssociateContext(edit, nullptr), nullptr);
    EXPECT_EQ(ImmAssociateContext(edit, context), nullptr);
    EXPECT_TRUE(Composes(edit));
    DestroyWindow(parent);
    EXPECT_EQ(ImmGetContext(edit), nullptr);
}

}  // namespace
