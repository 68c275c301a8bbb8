// The input method of a window. The layer has one context, which every window has until it is taken away.
#include <imm.h>

#include <QGuiApplication>
#include <QInputMethod>
#include <QWidget>

#include "Desktop.h"

using desktop::Desktop;
using desktop::ScreenWindow;

namespace {

char theContext = 0;

HIMC Context() {
    return reinterpret_cast<HIMC>(&theContext);
}

// What a widget remembers while it has no context: that it has none, and whether an input method could compose in it before.
constexpr char kWithoutContext[] = "withoutInputContext";
constexpr char kTookText[] = "tookComposedText";

}  // namespace

HIMC ImmGetContext(HWND handle) {
    const ScreenWindow* window = Desktop::Get().Find(handle);
    return window != nullptr && !window->widget->property(kWithoutContext).toBool() ? Context() : nullptr;
}

HIMC ImmAssociateContext(HWND handle, HIMC context) {
    const ScreenWindow* window = Desktop::Get().Find(handle);
    if (window == nullptr || (context != nullptr && context != Context())) {
        return nullptr;
    }
    const HIMC before = ImmGetContext(handle);
    if (before == context) {
        return before;
    }
    QWidget& widget = *window->widget;
    if (context == nullptr) {
        widget.setProperty(kTookText, widget.testAttribute(Qt::WA_InputMethodEnabled));
    }
    widget.setAttribute(Qt::WA_InputMethodEnabled, context != nullptr && widget.property(kTookText).toBool());
    widget.setProperty(kWithoutContext, context == nullptr);
    if (Desktop::Get().focus == handle) {
        QGuiApplication::inputMethod()->update(Qt::ImEnabled);
    }
    return before;
}

BOOL ImmReleaseContext(HWND handle, HIMC context) {
    return Desktop::Get().Find(handle) != nullptr && context == Context();
}
