// The class "msctls_statusbar32": one line at the bottom of its parent, with a grip to size the window by.
#include <commctrl.h>

#include <QStatusBar>

#include "Controls.h"
#include "Desktop.h"
#include "Placement.h"
#include "Text.h"

namespace desktop {

namespace {

struct Fitting : ControlState {
    bool fitting = false;  // it is moving itself
};

Fitting& FittingOf(ScreenWindow& window) {
    if (window.control == nullptr) {
        window.control = std::make_unique<Fitting>();
    }
    return static_cast<Fitting&>(*window.control);
}

LRESULT SetPartText(ScreenWindow& window, const char* text) {
    window.text = text;
    static_cast<QStatusBar*>(window.widget)->showMessage(ToQString(window.text));
    return TRUE;
}

LRESULT GetPartText(const ScreenWindow& window, char* buffer) {
    window.text.copy(buffer, window.text.size());
    buffer[window.text.size()] = '\0';
    return static_cast<LRESULT>(window.text.size());
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
            if (!FittingOf(*window).fitting) {
                FittingOf(*window).fitting = true;
                FitParent(handle);
                if (ScreenWindow* after = Desktop::Get().Find(handle)) {
                    FittingOf(*after).fitting = false;
                }
            }
            return 0;
        // The program has one part, with the number 0.
        case SB_SETPARTS: return TRUE;
        case SB_SETTEXTA: return SetPartText(*window, reinterpret_cast<const char*>(lParam));
        case SB_GETTEXTA: return GetPartText(*window, reinterpret_cast<char*>(lParam));
        case WM_SETFONT: SetControlFont(*window, reinterpret_cast<HFONT>(wParam)); return 0;
        case WM_GETFONT: return reinterpret_cast<LRESULT>(window->font);
        default: return DefWindowProcA(handle, message, wParam, lParam);
    }
}

}  // namespace desktop
