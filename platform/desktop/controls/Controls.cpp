// What the standard controls have in common.
#include "Controls.h"

#include <commctrl.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>
#include <cstring>

#include "Desktop.h"
#include "GdiObjects.h"
#include "Placement.h"
#include "Text.h"

namespace desktop {

namespace {

Qt::MouseButtons ButtonsOf(WPARAM keys) {
    Qt::MouseButtons buttons;
    buttons.setFlag(Qt::LeftButton, (keys & MK_LBUTTON) != 0);
    buttons.setFlag(Qt::RightButton, (keys & MK_RBUTTON) != 0);
    buttons.setFlag(Qt::MiddleButton, (keys & MK_MBUTTON) != 0);
    return buttons;
}

}  // namespace

void RegisterControlClasses() {
    AddClass("Button", ButtonProc, kDoubleClicks);
    AddClass("Edit", EditProc, kDoubleClicks);
    AddClass("Static", StaticProc, kDoubleClicks);
    AddClass("ListBox", ListBoxProc, kDoubleClicks);
    AddClass(STATUSCLASSNAMEA, StatusBarProc, kDoubleClicks);
}

QWidget* MakeControlWidget(ScreenWindow& window, QWidget* parent) {
    if (window.parent == nullptr) {
        return nullptr;
    }
    if (IsClass(window.handle, "BUTTON")) {
        return MakeButtonWidget(window, parent);
    }
    if (IsClass(window.handle, "EDIT")) {
        return MakeEditWidget(window, parent);
    }
    if (IsClass(window.handle, "STATIC")) {
        return MakeStaticWidget(window, parent);
    }
    return IsClass(window.handle, STATUSCLASSNAMEA) ? MakeStatusBarWidget(window, parent) : nullptr;
}

void NotifyParent(HWND control, WORD code) {
    SendMessageA(GetParent(control), WM_COMMAND, MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(control)), code),
                 reinterpret_cast<LPARAM>(control));
}

void GiveMouse(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
    const ScreenWindow* window = Desktop::Get().Find(control);
    const QPointF client(static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(lParam))),
                         static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(lParam))));
    const QPointF local = client + QPointF(window->client.left, window->client.top);
    QEvent::Type type = QEvent::MouseMove;
    Qt::MouseButton button = Qt::NoButton;
    switch (message) {
        case WM_LBUTTONDOWN: type = QEvent::MouseButtonPress, button = Qt::LeftButton; break;
        case WM_LBUTTONDBLCLK: type = QEvent::MouseButtonDblClick, button = Qt::LeftButton; break;
        case WM_LBUTTONUP: type = QEvent::MouseButtonRelease, button = Qt::LeftButton; break;
        default: break;
    }
    QMouseEvent event(type, local, window->widget->mapToGlobal(local), button, ButtonsOf(wParam),
                      Desktop::Get().keyboard.Modifiers());
    Desktop::Get().GiveToWidget(control, event);
}

void GiveKey(HWND control, int virtualKey, bool down, const char* text) {
    QKeyEvent event(down ? QEvent::KeyPress : QEvent::KeyRelease, QtKeyOf(virtualKey), Desktop::Get().keyboard.Modifiers(),
                    ToQString(text));
    Desktop::Get().GiveToWidget(control, event);
}

void SetControlFont(ScreenWindow& window, HFONT font) {
    window.font = font;
    window.widget->setFont(drawing::FontOf(font));
}

}  // namespace desktop

void InitCommonControls() {}
