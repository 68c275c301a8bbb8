// The class "EDIT": one line of text, which scrolls whether ES_AUTOHSCROLL is given or not. All text goes in through Insert,
// whatever road it comes by; what a double click selects is the desktop's own idea of a word.
#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMenu>
#include <algorithm>
#include <climits>
#include <cstring>

#include "Controls.h"
#include "Desktop.h"
#include "EditWidget.h"
#include "GdiObjects.h"
#include "ListAccess.h"
#include "Text.h"

namespace desktop {

namespace {

// What the keys with Ctrl mean as characters.
constexpr BYTE kCopyKey = 3;
constexpr BYTE kBackspaceKey = 8;
constexpr BYTE kPasteKey = 22;
constexpr BYTE kCutKey = 24;
constexpr BYTE kUndoKey = 26;
constexpr BYTE kFirstSign = 32;
constexpr BYTE kBackspaceWithCtrl = 127;

struct EditState : ControlState {
    int limitBytes = INT_MAX;
    char lead = 0;  // the first byte of a pair whose second one is still to come
};

EditState& StateOf(ScreenWindow& window) {
    if (window.control == nullptr) {
        window.control = std::make_unique<EditState>();
    }
    return static_cast<EditState&>(*window.control);
}

EditWidget& WidgetOf(const ScreenWindow& window) {
    return static_cast<EditWidget&>(*window.widget);
}

// Before the change shows, and behind it.
void TellChange(HWND handle) {
    NotifyParent(handle, EN_UPDATE);
    if (IsWindow(handle)) {
        NotifyParent(handle, EN_CHANGE);
    }
}

// As much of the text as there is room for in place of what is selected, in whole characters.
QString WhatFits(const ScreenWindow& window, const QString& text, int limit) {
    const EditWidget& widget = WidgetOf(window);
    int room = limit - (widget.ByteLength() - widget.SelectedBytes());
    QString fitting;
    for (const QChar each : text) {
        room -= static_cast<int>(FromQString(each).size());
        if (room < 0) {
            break;
        }
        fitting += each;
    }
    return fitting;
}

// A text that is too long counts as a change even if nothing of it fits.
void Insert(HWND handle, const QString& text) {
    ScreenWindow* window = Desktop::Get().Find(handle);
    if (text.isEmpty() && !WidgetOf(*window).hasSelectedText()) {
        return;
    }
    const QString fitting = WhatFits(*window, text, StateOf(*window).limitBytes);
    if (fitting.size() < text.size()) {
        NotifyParent(handle, EN_MAXTEXT);
        window = Desktop::Get().Find(handle);
    }
    if (window != nullptr) {
        WidgetOf(*window).insert(fitting);
        TellChange(handle);
    }
}

// Runs a change of the widget's own, and tells about it if it has changed anything.
template <class Change>
void Edit(HWND handle, Change change) {
    EditWidget& widget = WidgetOf(*Desktop::Get().Find(handle));
    const QString before = widget.text();
    change(widget);
    if (widget.text() != before) {
        TellChange(handle);
    }
}

void Paste(HWND handle, QClipboard::Mode from) {
    QString text = QGuiApplication::clipboard()->text(from);
    const auto isBreak = [](QChar c) { return c == u'\r' || c == u'\n'; };
    text.truncate(std::find_if(text.begin(), text.end(), isBreak) - text.begin());
    // What the code page lacks shows at once as a blank; a question mark could not be told from one that was meant.
    text = ToQString(FromQString(text.normalized(QString::NormalizationForm_C), ' '));
    if (!text.isEmpty()) {
        Insert(handle, text);
    }
}

void Clear(HWND handle) {
    Edit(handle, [](EditWidget& widget) {
        if (widget.hasSelectedText()) {
            widget.del();
        }
    });
}

void Copy(const ScreenWindow& window) {
    if (WidgetOf(window).hasSelectedText()) {
        WidgetOf(window).copy();
    }
}

// Step by step, as this desktop's users know it; a second time does not bring back what the first one took.
void Undo(HWND handle) {
    Edit(handle, [](EditWidget& widget) { widget.undo(); });
}

bool IsHeld(int virtualKey) {
    return Desktop::Get().keyboard.IsDown(virtualKey);
}

void DeleteKey(HWND handle) {
    const bool marked = WidgetOf(*Desktop::Get().Find(handle)).hasSelectedText();
    if (IsHeld(VK_SHIFT) && marked) {
        SendMessageA(handle, WM_CUT, 0, 0);
    } else if (IsHeld(VK_SHIFT)) {
        Edit(handle, [](EditWidget& widget) { widget.backspace(); });
    } else {
        Edit(handle, [marked](EditWidget& widget) {
            if (IsHeld(VK_CONTROL) && !marked) {
                widget.end(true);
            }
            widget.del();
        });
    }
}

void InsertKey(HWND handle) {
    if (IsHeld(VK_SHIFT)) {
        SendMessageA(handle, WM_PASTE, 0, 0);
    } else if (IsHeld(VK_CONTROL)) {
        SendMessageA(handle, WM_COPY, 0, 0);
    }
}

void MoveCursor(EditWidget& widget, bool forward) {
    const bool mark = IsHeld(VK_SHIFT);
    if (IsHeld(VK_CONTROL)) {
        forward ? widget.cursorWordForward(mark) : widget.cursorWordBackward(mark);
    } else {
        forward ? widget.cursorForward(mark) : widget.cursorBackward(mark);
    }
}

void Key(HWND handle, int virtualKey) {
    EditWidget& widget = WidgetOf(*Desktop::Get().Find(handle));
    switch (virtualKey) {
        case VK_LEFT:
        case VK_UP: MoveCursor(widget, false); break;
        case VK_RIGHT:
        case VK_DOWN: MoveCursor(widget, true); break;
        case VK_HOME: widget.home(IsHeld(VK_SHIFT)); break;
        case VK_END: widget.end(IsHeld(VK_SHIFT)); break;
        case VK_DELETE: DeleteKey(handle); break;
        case VK_INSERT: InsertKey(handle); break;
        default: break;
    }
}

void ControlCharacter(HWND handle, BYTE character) {
    switch (character) {
        case kCopyKey: SendMessageA(handle, WM_COPY, 0, 0); break;
        case kBackspaceKey: Edit(handle, [](EditWidget& widget) { widget.backspace(); }); break;
        case kPasteKey: SendMessageA(handle, WM_PASTE, 0, 0); break;
        case kCutKey: SendMessageA(handle, WM_CUT, 0, 0); break;
        case kUndoKey: SendMessageA(handle, WM_UNDO, 0, 0); break;
        default: break;
    }
}

void Character(HWND handle, BYTE byte) {
    EditState& state = StateOf(*Desktop::Get().Find(handle));
    std::string bytes(1, static_cast<char>(byte));
    if (state.lead != 0) {
        bytes.insert(bytes.begin(), std::exchange(state.lead, '\0'));
    } else if (IsDBCSLeadByte(byte)) {
        state.lead = static_cast<char>(byte);
        return;
    } else if (byte < kFirstSign || byte == kBackspaceWithCtrl) {
        ControlCharacter(handle, byte);
        return;
    }
    const bool isDigit = bytes.size() == 1 && byte >= '0' && byte <= '9';
    if (isDigit || !HasStyle(handle, ES_NUMBER)) {
        Insert(handle, ToQString(bytes));
    }
}

LRESULT SetText(ScreenWindow& window, const char* text) {
    EditWidget& widget = WidgetOf(window);
    widget.setText(ToQString(text != nullptr ? text : ""));
    widget.setCursorPosition(0);
    TellChange(window.handle);
    return TRUE;
}

LRESULT CopyText(const ScreenWindow& window, WPARAM size, char* buffer) {
    if (size == 0) {
        return 0;
    }
    const std::string text = WidgetOf(window).Bytes();
    const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
    return static_cast<LRESULT>(length);
}

LRESULT TellSelection(const ScreenWindow& window, DWORD* start, DWORD* end) {
    const EditWidget::Range range = WidgetOf(window).Selected();
    if (start != nullptr) {
        *start = static_cast<DWORD>(range.first);
    }
    if (end != nullptr) {
        *end = static_cast<DWORD>(range.end);
    }
    constexpr int kMost = 0xFFFF;
    return range.end > kMost ? -1 : MAKELONG(static_cast<DWORD_PTR>(range.first), static_cast<DWORD_PTR>(range.end));
}

LRESULT Select(const ScreenWindow& window, int start, int end) {
    EditWidget& widget = WidgetOf(window);
    if (start < 0) {
        widget.deselect();
    } else {
        widget.Select(start, end < 0 ? INT_MAX : end);
    }
    return TRUE;
}

void Press(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (GetFocus() != handle) {
        SetFocus(handle);
    }
    if (IsWindow(handle)) {
        SetCapture(handle);
        GiveMouse(handle, message, wParam, lParam);
    }
}

void Release(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    GiveMouse(handle, message, wParam, lParam);
    if (GetCapture() == handle) {
        ReleaseCapture();
    }
}

QPoint WidgetPoint(const ScreenWindow& window, LPARAM lParam) {
    const auto packed = static_cast<DWORD_PTR>(lParam);
    return {window.client.left + static_cast<SHORT>(LOWORD(packed)), window.client.top + static_cast<SHORT>(HIWORD(packed))};
}

// What is selected anywhere on the screen goes where the middle button is released, where the window system has such a
// thing.
void PasteSelected(HWND handle, LPARAM lParam) {
    if (QGuiApplication::clipboard()->supportsSelection()) {
        const ScreenWindow& window = *Desktop::Get().Find(handle);
        WidgetOf(window).PutCursorAt(WidgetPoint(window, lParam));
        Paste(handle, QClipboard::Selection);
    }
}

// The entries come back as messages, since the menu is open while the program runs on.
void OpenMenu(const ScreenWindow& window, LPARAM lParam) {
    const HWND handle = window.handle;
    const EditWidget& widget = WidgetOf(window);
    auto* menu = new QMenu(window.widget);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [menu, handle](const char* text, UINT message, bool enabled, LPARAM parameter = 0) {
        QAction* action = menu->addAction(QCoreApplication::translate("QLineEdit", text));
        action->setEnabled(enabled);
        QObject::connect(action, &QAction::triggered, [=] { PostMessageA(handle, message, 0, parameter); });
    };
    add("&Undo", WM_UNDO, widget.isUndoAvailable());
    menu->addSeparator();
    add("Cu&t", WM_CUT, widget.hasSelectedText());
    add("&Copy", WM_COPY, widget.hasSelectedText());
    add("&Paste", WM_PASTE, !QGuiApplication::clipboard()->text().isEmpty());
    add("Delete", WM_CLEAR, widget.hasSelectedText());
    menu->addSeparator();
    add("Select All", EM_SETSEL, !widget.text().isEmpty(), -1);
    menu->popup(widget.mapToGlobal(WidgetPoint(window, lParam)));
}

LRESULT MouseMessage(ScreenWindow& window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK: Press(window.handle, message, wParam, lParam); break;
        case WM_MOUSEMOVE: GiveMouse(window.handle, message, wParam, lParam); break;
        case WM_LBUTTONUP: Release(window.handle, message, wParam, lParam); break;
        case WM_MBUTTONUP: PasteSelected(window.handle, lParam); break;
        case WM_RBUTTONUP: OpenMenu(window, lParam); break;
        default: break;
    }
    return 0;
}

LRESULT EditMessage(ScreenWindow& window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case EM_GETSEL: return TellSelection(window, reinterpret_cast<DWORD*>(wParam), reinterpret_cast<DWORD*>(lParam));
        case EM_SETSEL: return Select(window, static_cast<int>(wParam), static_cast<int>(lParam));
        case EM_REPLACESEL: Insert(window.handle, ToQString(reinterpret_cast<const char*>(lParam))); return TRUE;
        case EM_LIMITTEXT:
            StateOf(window).limitBytes = wParam == 0 ? INT_MAX : static_cast<int>(std::min<WPARAM>(wParam, INT_MAX));
            return 0;
        case WM_COPY: Copy(window); return 0;
        case WM_CUT:
            Copy(window);
            Clear(window.handle);
            return 0;
        case WM_PASTE: Paste(window.handle, QClipboard::Clipboard); return 0;
        case WM_CLEAR: Clear(window.handle); return 0;
        case WM_UNDO: Undo(window.handle); return TRUE;
        default: return DefWindowProcA(window.handle, message, wParam, lParam);
    }
}

}  // namespace

QWidget* MakeEditWidget(ScreenWindow& window, QWidget* parent) {
    const auto exStyle = static_cast<DWORD>(GetWindowLongPtrA(window.handle, GWL_EXSTYLE));
    auto* widget = new EditWidget(parent, StyleOf(window.handle), exStyle);
    widget->setText(ToQString(window.text));
    widget->setCursorPosition(0);
    // An edit in a list is there for the selected row.
    widget->setAccessibleName(SelectedRowText(window.parent->handle));
    return widget;
}

LRESULT CALLBACK EditProc(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    ScreenWindow* window = Desktop::Get().Find(handle);
    if (window == nullptr) {
        return 0;
    }
    if (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) {
        return MouseMessage(*window, message, wParam, lParam);
    }
    switch (message) {
        case WM_SETTEXT: return SetText(*window, reinterpret_cast<const char*>(lParam));
        case WM_GETTEXT: return CopyText(*window, wParam, reinterpret_cast<char*>(lParam));
        case WM_GETTEXTLENGTH: return WidgetOf(*window).ByteLength();
        case WM_SETFONT: SetControlFont(*window, reinterpret_cast<HFONT>(wParam)); return 0;
        case WM_GETFONT: return reinterpret_cast<LRESULT>(window->font);
        case WM_GETDLGCODE: return DLGC_HASSETSEL | DLGC_WANTCHARS | DLGC_WANTARROWS;
        case WM_SETFOCUS: NotifyParent(handle, EN_SETFOCUS); return 0;
        case WM_KILLFOCUS:
            StateOf(*window).lead = 0;
            NotifyParent(handle, EN_KILLFOCUS);
            return 0;
        case WM_KEYDOWN: Key(handle, static_cast<int>(wParam)); return 0;
        case WM_CHAR: Character(handle, static_cast<BYTE>(wParam)); return 0;
        default: return EditMessage(*window, message, wParam, lParam);
    }
}

}  // namespace desktop
