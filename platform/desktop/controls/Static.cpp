// The class "STATIC": one line of text, plain or sunken, or an icon.
#include <QLabel>
#include <QPixmap>

#include "Controls.h"
#include "Desktop.h"
#include "Icons.h"
#include "Text.h"

namespace desktop {

namespace {

constexpr DWORD kTypeMask = 0x001F;

bool IsIcon(HWND label) {
    return (StyleOf(label) & kTypeMask) == SS_ICON;
}

QLabel& LabelOf(const ScreenWindow& window) {
    return static_cast<QLabel&>(*window.widget);
}

void ShowText(const ScreenWindow& window) {
    if (!IsIcon(window.handle)) {
        const bool plain = HasStyle(window.handle, SS_NOPREFIX);
        LabelOf(window).setText(ToQString(plain ? window.text : WithoutMarks(window.text)));
    }
}

struct Shown : ControlState {
    HICON icon = nullptr;
};

LRESULT SetIcon(ScreenWindow& window, HICON icon) {
    if (window.control == nullptr) {
        window.control = std::make_unique<Shown>();
    }
    auto& shown = static_cast<Shown&>(*window.control);
    const HICON before = std::exchange(shown.icon, icon);
    const QIcon picture = IconOf(icon);
    LabelOf(window).setPixmap(picture.pixmap(kLargeIcon, window.widget->devicePixelRatioF()));
    // An icon fits itself, whatever its template says.
    SetWindowPos(window.handle, nullptr, 0, 0, kLargeIcon.width(), kLargeIcon.height(),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    return reinterpret_cast<LRESULT>(before);
}

}  // namespace

QWidget* MakeStaticWidget(ScreenWindow& window, QWidget* parent) {
    auto* label = new QLabel(parent);
    window.widget = label;
    label->setTextFormat(Qt::PlainText);
    const bool centred = HasStyle(window.handle, SS_CENTERIMAGE);
    label->setAlignment(Qt::AlignLeft | (centred ? Qt::AlignVCenter : Qt::AlignTop));
    label->setWordWrap(!centred && !IsIcon(window.handle));
    if (HasStyle(window.handle, SS_SUNKEN)) {
        label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        label->setLineWidth(1);
    }
    ShowText(window);
    return label;
}

LRESULT CALLBACK StaticProc(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    ScreenWindow* window = Desktop::Get().Find(handle);
    if (window == nullptr) {
        return 0;
    }
    switch (message) {
        case WM_SETTEXT:
            DefWindowProcA(handle, message, wParam, lParam);
            ShowText(*window);
            return TRUE;
        case WM_SETFONT: SetControlFont(*window, reinterpret_cast<HFONT>(wParam)); return 0;
        case WM_GETFONT: return reinterpret_cast<LRESULT>(window->font);
        case WM_GETDLGCODE: return DLGC_STATIC;
        case WM_NCHITTEST: return HTTRANSPARENT;
        case STM_SETICON: return SetIcon(*window, reinterpret_cast<HICON>(wParam));
        default: return DefWindowProcA(handle, message, wParam, lParam);
    }
}

}  // namespace desktop
