// The class "BUTTON": push buttons and group boxes.
#include <QGroupBox>
#include <QPushButton>
#include <QStyleOptionButton>

#include "Controls.h"
#include "Desktop.h"
#include "Placement.h"
#include "Text.h"

namespace desktop {

namespace {

constexpr DWORD kTypeMask = 0x000F;

DWORD TypeOf(HWND button) {
    return StyleOf(button) & kTypeMask;
}

// Qt does not know which control has the focus of the layer.
class PushButton : public QPushButton {
public:
    using QPushButton::QPushButton;
    void ShowFocus(bool focused) {
        hasFocus = focused;
        update();
    }

protected:
    void initStyleOption(QStyleOptionButton* option) const override {
        QPushButton::initStyleOption(option);
        if (hasFocus) {
            option->state |= QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
        }
    }

private:
    bool hasFocus = false;
};

bool IsGroupBox(HWND button) {
    return TypeOf(button) == BS_GROUPBOX;
}

// Qt takes the same marks in a text.
void ShowText(const ScreenWindow& window) {
    if (auto* box = qobject_cast<QGroupBox*>(window.widget)) {
        box->setTitle(ToQString(window.text));
    } else if (auto* button = qobject_cast<QPushButton*>(window.widget)) {
        button->setText(ToQString(window.text));
    }
}

void ShowDefault(const ScreenWindow& window) {
    if (auto* button = qobject_cast<QPushButton*>(window.widget)) {
        button->setDefault(TypeOf(window.handle) == BS_DEFPUSHBUTTON);
    }
}

// The widget shows the press; when the button counts as clicked is decided here.
class Press : public ControlState {
public:
    bool byMouse = false;
    bool byKey = false;
    bool inside = false;
};

Press& PressOf(ScreenWindow& window) {
    if (window.control == nullptr) {
        window.control = std::make_unique<Press>();
    }
    return static_cast<Press&>(*window.control);
}

void ShowPressed(const ScreenWindow& window, bool pressed) {
    if (auto* button = qobject_cast<QPushButton*>(window.widget)) {
        button->setDown(pressed);
    }
}

void ShowFocus(const ScreenWindow& window, bool focused) {
    if (auto* button = dynamic_cast<PushButton*>(window.widget)) {
        button->ShowFocus(focused);
    }
}

bool IsInside(const ScreenWindow& window, LPARAM lParam) {
    const int x = static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(lParam)));
    const int y = static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(lParam)));
    return QRect(QPoint(0, 0), window.ClientSize()).contains(x, y);
}

void BeginMousePress(HWND handle) {
    SetCapture(handle);
    SetFocus(handle);
    if (ScreenWindow* window = Desktop::Get().Find(handle)) {
        PressOf(*window).byMouse = true;
        PressOf(*window).inside = true;
        ShowPressed(*window, true);
    }
}

void EndPress(HWND handle, bool clicked) {
    ScreenWindow* window = Desktop::Get().Find(handle);
    Press& press = PressOf(*window);
    press.byMouse = false;
    press.byKey = false;
    ShowPressed(*window, false);
    if (GetCapture() == handle) {
        ReleaseCapture();
    }
    if (clicked && IsWindow(handle)) {
        NotifyParent(handle, BN_CLICKED);
    }
}

void FollowMouse(ScreenWindow& window, LPARAM lParam) {
    Press& press = PressOf(window);
    if (press.byMouse) {
        press.inside = IsInside(window, lParam);
        ShowPressed(window, press.inside);
    }
}

LRESULT Click(HWND handle) {
    SendMessageA(handle, WM_LBUTTONDOWN, 0, 0);
    if (IsWindow(handle)) {
        SendMessageA(handle, WM_LBUTTONUP, 0, 0);
    }
    return 0;
}

LRESULT DialogCode(HWND handle) {
    if (IsGroupBox(handle)) {
        return DLGC_STATIC;
    }
    return DLGC_BUTTON | (TypeOf(handle) == BS_DEFPUSHBUTTON ? DLGC_DEFPUSHBUTTON : DLGC_UNDEFPUSHBUTTON);
}

LRESULT SetButtonStyle(ScreenWindow& window, WPARAM style) {
    SetStyleBits(window.handle, kTypeMask, false);
    SetStyleBits(window.handle, static_cast<DWORD>(style) & kTypeMask, true);
    ShowDefault(window);
    return 0;
}

}  // namespace

QWidget* MakeButtonWidget(ScreenWindow& window, QWidget* parent) {
    if (IsGroupBox(window.handle)) {
        window.widget = new QGroupBox(parent);
    } else {
        auto* button = new PushButton(parent);
        button->setAutoDefault(false);
        window.widget = button;
    }
    ShowText(window);
    ShowDefault(window);
    return window.widget;
}

LRESULT CALLBACK ButtonProc(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    ScreenWindow* window = Desktop::Get().Find(handle);
    if (window == nullptr || (IsGroupBox(handle) && message >= WM_MOUSEFIRST && message <= WM_MOUSELAST)) {
        return 0;
    }
    switch (message) {
        case WM_SETTEXT:
            DefWindowProcA(handle, message, wParam, lParam);
            ShowText(*window);
            return TRUE;
        case WM_SETFONT: SetControlFont(*window, reinterpret_cast<HFONT>(wParam)); return 0;
        case WM_GETFONT: return reinterpret_cast<LRESULT>(window->font);
        case WM_GETDLGCODE: return DialogCode(handle);
        case WM_NCHITTEST: return IsGroupBox(handle) ? HTTRANSPARENT : DefWindowProcA(handle, message, wParam, lParam);
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK: BeginMousePress(handle); return 0;
        case WM_MOUSEMOVE: FollowMouse(*window, lParam); return 0;
        case WM_LBUTTONUP:
            if (PressOf(*window).byMouse) {
                EndPress(handle, IsInside(*window, lParam));
            }
            return 0;
        case WM_KEYDOWN:
            if (wParam == VK_SPACE && !PressOf(*window).byKey) {
                PressOf(*window).byKey = true;
                ShowPressed(*window, true);
                SetCapture(handle);
            }
            return 0;
        case WM_KEYUP:
            if (wParam == VK_SPACE && PressOf(*window).byKey) {
                EndPress(handle, true);
            }
            return 0;
        case WM_SETFOCUS: ShowFocus(*window, true); return 0;
        case WM_KILLFOCUS: ShowFocus(*window, false); [[fallthrough]];
        case WM_CAPTURECHANGED:
            PressOf(*window) = {};
            ShowPressed(*window, false);
            return 0;
        case BM_CLICK: return Click(handle);
        case BM_SETSTYLE: return SetButtonStyle(*window, wParam);
        default: return DefWindowProcA(handle, message, wParam, lParam);
    }
}

}  // namespace desktop
