// The class "msctls_statusbar32": one line at the bottom of its parent, with a grip to size the window by.
#include <commctrl.h>

#include <QStatusBar>

#include "Controls.h"
#include "Desktop.h"
#include "Placement.h"
#include "Text.h"

namespace desktop {

namespace {

struct Parts : ControlState {
    bool fitting = false;  // it is moving itself
    std::vector<std::string> texts{std::string()};
};

Parts& PartsOf(ScreenWindow& window) {
    if (window.control == nullptr) {
        window.control = std::make_unique<Parts>();
    }
    return static_cast<Parts&>(*window.control);
}

constexpr WPARAM kPartMask = 0xFF;

LRESULT SetPartText(ScreenWindow& window, WPARAM part, const char* text) {
    Parts& parts = PartsOf(window);
    const std::size_t number = part & kPartMask;
    if (number >= parts.texts.size()) {
        return FALSE;
    }
    parts.texts[number] = text != nullptr ? text : "";
    // Only the first part shows; the program has no others.
    if (number == 0) {
        static_cast<QStatusBar*>(window.widget)->showMessage(ToQString(parts.texts[0]));
    }
    return TRUE;
}

LRESULT GetPartText(ScreenWindow& window, WPARAM part, char* buffer) {
    const Parts& parts = PartsOf(window);
    if (part >= parts.texts.size()) {
        return 0;
    }
    const std::string& text = parts.texts[part];
    text.copy(buffer, text.size());
    buffer[text.size()] = '\0';
    return static_cast<LRESULT>(text.size());
}

// The bar knows its own place.
void FitParent(HWND handle) {
    const ScreenWindow* window = Desktop::Get().Find(handle);
    const QSize parent = window->parent->ClientSize();
    const int height = window->widget->sizeHint().height();
    MoveWindow(handle, 0, parent.height() - height, parent.width(), height, TRUE);
}

}  // namespace

QWidget* MakeStatusBarWidget(ScreenWindow& window, QWidget* parent) {
    auto* bar = new QStatusBar(parent);
    bar->setSizeGripEnabled(HasStyle(window.handle, SBARS_SIZEGRIP));
    bar->setAutoFillBackground(true);
    // The bar's height has to be the same with and without a text.
    bar->setMinimumHeight(bar->fontMetrics().height() + 6);
    return bar;
}

LRESULT CALLBACK StatusBarProc(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    ScreenWindow* window = Desktop::Get().Find(handle);
    if (window == nullptr) {
        return 0;
    }
    switch (message) {
        case WM_CREATE: FitParent(handle); return 0;
        case WM_SIZE:
            // Its own change of size ends up here as well.
            if (!PartsOf(*window).fitting) {
                PartsOf(*window).fitting = true;
                FitParent(handle);
                if (ScreenWindow* after = Desktop::Get().Find(handle)) {
                    PartsOf(*after).fitting = false;
                }
            }
            return 0;
        case SB_SETPARTS: PartsOf(*window).texts.resize(std::max<WPARAM>(wParam, 1)); return TRUE;
        case SB_SETTEXTA: return SetPartText(*window, wParam, reinterpret_cast<const char*>(lParam));
        case SB_GETTEXTA: return GetPartText(*window, wParam, reinterpret_cast<char*>(lParam));
        case WM_SETFONT: SetControlFont(*window, reinterpret_cast<HFONT>(wParam)); return 0;
        case WM_GETFONT: return reinterpret_cast<LRESULT>(window->font);
        default: return DefWindowProcA(handle, message, wParam, lParam);
    }
}

}  // namespace desktop
