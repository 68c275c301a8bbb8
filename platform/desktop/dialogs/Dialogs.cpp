// Dialogs: how they are made, what they do with messages, and the loop of the modal ones.
#include "Dialogs.h"

#include <utility>

#include "Desktop.h"
#include "Placement.h"
#include "Resources.h"
#include "Text.h"

namespace desktop {

namespace {

struct DialogState : ControlState {
    ~DialogState() override {
        if (font != nullptr) {
            DeleteObject(font);
        }
    }
    HFONT font = nullptr;
    HWND focus = nullptr;  // the control that had it when the dialog became inactive
    int defaultId = IDOK;
    bool ended = false;
    INT_PTR result = 0;
    std::unique_ptr<OwnerDisabled> ownerDisabled;
};

DialogState* StateOf(HWND dialog) {
    const ScreenWindow* window = Desktop::Get().Find(dialog);
    return window != nullptr ? dynamic_cast<DialogState*>(window->control.get()) : nullptr;
}

constexpr int kDotsPerInch = 96;
constexpr int kPointsPerInch = 72;

HFONT MakeFont(const std::string& faceUtf8, int points) {
    LOGFONTA description{};
    description.lfHeight = -(points * kDotsPerInch + kPointsPerInch / 2) / kPointsPerInch;
    description.lfWeight = FW_NORMAL;
    description.lfCharSet = DEFAULT_CHARSET;
    const std::string face = FromQString(QString::fromStdString(faceUtf8));
    face.copy(description.lfFaceName, sizeof description.lfFaceName - 1);
    return CreateFontIndirectA(&description);
}

// The size of the font's average character, on which dialog units rest.
SIZE BaseUnits(HFONT font) {
    constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    constexpr int kCount = 52;
    HDC dc = GetDC(nullptr);
    HGDIOBJ before = font != nullptr ? SelectObject(dc, font) : nullptr;
    SIZE extent{};
    TEXTMETRICA metrics{};
    GetTextExtentPoint32A(dc, kLetters, kCount, &extent);
    GetTextMetricsA(dc, &metrics);
    if (before != nullptr) {
        SelectObject(dc, before);
    }
    ReleaseDC(nullptr, dc);
    return {(extent.cx / (kCount / 2) + 1) / 2, metrics.tmHeight};
}

// Rounded to the nearest.
int Scaled(int units, int base, int unitsPerBase) {
    return (units * base + unitsPerBase / 2) / unitsPerBase;
}

RECT ToPixels(int x, int y, int cx, int cy, SIZE base) {
    constexpr int kAcross = 4;
    constexpr int kDown = 8;
    const int left = Scaled(x, base.cx, kAcross);
    const int top = Scaled(y, base.cy, kDown);
    return {left, top, left + Scaled(cx, base.cx, kAcross), top + Scaled(cy, base.cy, kDown)};
}

POINT PlaceOf(const kernel::DialogTemplate& dialog, const RECT& pixels, HWND parent) {
    if ((dialog.style & WS_CHILD) != 0) {
        return {pixels.left, pixels.top};
    }
    const RECT screen = WorkAreaAround(parent);
    POINT place{pixels.left, pixels.top};
    if ((dialog.style & DS_CENTER) != 0) {
        return {(screen.left + screen.right - (pixels.right - pixels.left)) / 2,
                (screen.top + screen.bottom - (pixels.bottom - pixels.top)) / 2};
    }
    if (parent != nullptr) {
        ClientToScreen(parent, &place);
    }
    place.x = std::max(screen.left, std::min(place.x, screen.right - (pixels.right - pixels.left)));
    place.y = std::max(screen.top, std::min(place.y, screen.bottom - (pixels.bottom - pixels.top)));
    return place;
}

HWND FirstTabStop(HWND dialog) {
    HWND first = GetNextDlgTabItem(dialog, nullptr, FALSE);
    return first != nullptr && HasStyle(first, WS_TABSTOP) ? first : nullptr;
}

std::string InCodePage(const std::string& utf8) {
    return FromQString(QString::fromStdString(utf8));
}

void AddTemplateControl(HWND dialog, const kernel::DialogItem& item, SIZE base) {
    HWND control = AddControl(dialog, item.className.c_str(), InCodePage(item.title.text).c_str(), item.id, item.style,
                              ToPixels(item.x, item.y, item.cx, item.cy, base));
    if (control != nullptr && item.title.resource != 0) {
        HICON icon = LoadIconA(nullptr, MAKEINTRESOURCEA(item.title.resource));
        SendMessageA(control, STM_SETICON, reinterpret_cast<WPARAM>(icon), 0);
    }
}

HWND MakeFromTemplate(const kernel::DialogTemplate& dialog, HWND parent, DLGPROC procedure, LPARAM parameter) {
    HFONT font = dialog.fontPoints > 0 ? MakeFont(dialog.fontFace, dialog.fontPoints) : nullptr;
    const SIZE base = BaseUnits(font);
    const RECT pixels = ToPixels(dialog.x, dialog.y, dialog.cx, dialog.cy, base);
    HWND made = MakeEmptyDialog(dialog.style, InCodePage(dialog.title).c_str(), PlaceOf(dialog, pixels, parent),
                                QSize(pixels.right - pixels.left, pixels.bottom - pixels.top), parent, font, procedure);
    if (made == nullptr) {
        return nullptr;
    }
    for (const kernel::DialogItem& item : dialog.items) {
        AddTemplateControl(made, item, base);
    }
    FinishDialog(made, parameter, dialog.style);
    return IsWindow(made) ? made : nullptr;
}

}  // namespace

HWND MakeEmptyDialog(DWORD style, const char* title, POINT place, QSize client, HWND parent, HFONT font, DLGPROC procedure) {
    HWND dialog = CreateWindowExA(WS_EX_CONTROLPARENT, "#32770", title, style & ~WS_VISIBLE, place.x, place.y,
                                  client.width(), client.height(), parent, nullptr, GetModuleHandleA(nullptr), nullptr);
    ScreenWindow* window = Desktop::Get().Find(dialog);
    if (window == nullptr) {
        if (font != nullptr) {
            DeleteObject(font);
        }
        return nullptr;
    }
    auto state = std::make_unique<DialogState>();
    state->font = font;
    window->font = font;
    window->control = std::move(state);
    // What is around the client area comes on top.
    const QSize missing = client - window->ClientSize();
    if (!missing.isNull()) {
        const QSize size = window->Size() + missing;
        SetWindowPos(dialog, nullptr, 0, 0, size.width(), size.height(), SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    SetWindowLongPtrA(dialog, DWLP_DLGPROC, reinterpret_cast<LONG_PTR>(procedure));
    if (font != nullptr) {
        SendMessageA(dialog, WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
    }
    return dialog;
}

HWND AddControl(HWND dialog, const char* className, const char* text, int id, DWORD style, const RECT& place) {
    HWND control = CreateWindowExA(0, className, text, style | WS_CHILD, place.left, place.top, place.right - place.left,
                                   place.bottom - place.top, dialog, reinterpret_cast<HMENU>(static_cast<LONG_PTR>(id)),
                                   GetModuleHandleA(nullptr), nullptr);
    const DialogState* state = StateOf(dialog);
    if (control != nullptr && state != nullptr && state->font != nullptr) {
        SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(state->font), 0);
    }
    return control;
}

void FinishDialog(HWND dialog, LPARAM parameter, DWORD style) {
    HWND first = FirstTabStop(dialog);
    const bool setFocus =
        SendMessageA(dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), parameter) != 0 && first != nullptr;
    if (setFocus && IsWindow(first)) {
        if (DialogState* state = StateOf(dialog)) {
            state->focus = first;
        }
        FocusControl(first);
    }
    if (IsWindow(dialog)) {
        NameFields(dialog);
    }
    if (IsWindow(dialog) && (style & WS_VISIBLE) != 0) {
        ShowWindow(dialog, SW_SHOWNORMAL);
    }
}

void RegisterDialogClass() {
    // Room for DWLP_MSGRESULT and DWLP_DLGPROC.
    AddClass("#32770", DefDlgProcA, kDoubleClicks, 2 * static_cast<int>(sizeof(LONG_PTR)));
}

OwnerDisabled::OwnerDisabled(HWND owner) {
    const ScreenWindow* root = Desktop::Get().Root(Desktop::Get().Find(owner));
    if (root != nullptr && IsWindowEnabled(root->handle)) {
        disabled = root->handle;
        EnableWindow(disabled, FALSE);
    }
}

void OwnerDisabled::Restore() {
    if (HWND window = std::exchange(disabled, nullptr)) {
        EnableWindow(window, TRUE);
    }
}

INT_PTR RunModal(HWND dialog, std::unique_ptr<OwnerDisabled> ownerDisabled, HWND idleOwner) {
    DialogState* state = StateOf(dialog);
    if (state == nullptr) {
        return -1;
    }
    state->ownerDisabled = std::move(ownerDisabled);
    if (!state->ended) {
        ShowWindow(dialog, SW_SHOWNORMAL);
    }
    MSG message;
    while ((state = StateOf(dialog)) != nullptr && !state->ended) {
        if (idleOwner != nullptr && !PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE)) {
            SendMessageA(idleOwner, WM_ENTERIDLE, MSGF_DIALOGBOX, reinterpret_cast<LPARAM>(dialog));
            // The owner may have ended the dialog.
            if ((state = StateOf(dialog)) == nullptr || state->ended) {
                break;
            }
        }
        if (GetMessageA(&message, nullptr, 0, 0) <= 0) {
            PostQuitMessage(static_cast<int>(message.wParam));
            break;
        }
        if (!IsDialogMessageA(dialog, &message)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
    state = StateOf(dialog);
    if (state == nullptr) {
        return 0;
    }
    const INT_PTR result = state->result;
    if (state->ownerDisabled != nullptr) {
        state->ownerDisabled->Restore();
    }
    DestroyWindow(dialog);
    return result;
}

// --- The procedure

namespace {

bool IsAnsweredDirectly(UINT message) {
    return message == WM_INITDIALOG || message == WM_CTLCOLORLISTBOX;
}

void KeepFocus(HWND dialog) {
    DialogState* state = StateOf(dialog);
    if (state != nullptr && IsChild(dialog, GetFocus())) {
        state->focus = GetFocus();
    }
}

void GiveFocusBack(HWND dialog) {
    const DialogState* state = StateOf(dialog);
    HWND control = state != nullptr && IsWindow(state->focus) ? state->focus : FirstTabStop(dialog);
    if (control != nullptr) {
        SetFocus(control);
    }
}

LRESULT EraseDialog(HWND dialog, HDC dc) {
    RECT client;
    GetClientRect(dialog, &client);
    FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
    return 1;
}

LRESULT DefaultForDialog(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    DialogState* state = StateOf(dialog);
    switch (message) {
        case WM_ERASEBKGND: return EraseDialog(dialog, reinterpret_cast<HDC>(wParam));
        case WM_ACTIVATE:
            if (LOWORD(wParam) == WA_INACTIVE) {
                KeepFocus(dialog);
            } else {
                GiveFocusBack(dialog);
            }
            return 0;
        case WM_SETFOCUS: GiveFocusBack(dialog); return 0;
        case WM_CLOSE:
            PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED),
                         reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDCANCEL)));
            return 0;
        case WM_SETFONT: return 0;
        case WM_GETFONT: return state != nullptr ? reinterpret_cast<LRESULT>(state->font) : 0;
        case DM_GETDEFID: return state != nullptr ? MAKELONG(state->defaultId, DC_HASDEFID) : 0;
        case DM_SETDEFID:
            if (state != nullptr) {
                state->defaultId = static_cast<int>(wParam);
            }
            return TRUE;
        default: return DefWindowProcA(dialog, message, wParam, lParam);
    }
}

}  // namespace

}  // namespace desktop

LRESULT DefDlgProcA(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto procedure = reinterpret_cast<DLGPROC>(GetWindowLongPtrA(dialog, DWLP_DLGPROC));
    if (procedure == nullptr) {
        return desktop::DefaultForDialog(dialog, message, wParam, lParam);
    }
    SetWindowLongPtrA(dialog, DWLP_MSGRESULT, 0);
    const INT_PTR result = procedure(dialog, message, wParam, lParam);
    if (!IsWindow(dialog)) {
        return 0;
    }
    if (desktop::IsAnsweredDirectly(message) && result != 0) {
        return result;
    }
    return result != 0 ? GetWindowLongPtrA(dialog, DWLP_MSGRESULT)
                       : desktop::DefaultForDialog(dialog, message, wParam, lParam);
}

HWND CreateDialogParamA(HINSTANCE, LPCSTR resource, HWND parent, DLGPROC procedure, LPARAM parameter) {
    const auto dialog = kernel::ParseDialog(kernel::ResourceBytes(resource, RT_DIALOG));
    return dialog ? desktop::MakeFromTemplate(*dialog, parent, procedure, parameter) : nullptr;
}

INT_PTR DialogBoxParamA(HINSTANCE instance, LPCSTR resource, HWND owner, DLGPROC procedure, LPARAM parameter) {
    if (owner != nullptr && !IsWindow(owner)) {
        return 0;
    }
    auto disabled = std::make_unique<desktop::OwnerDisabled>(owner);
    HWND dialog = CreateDialogParamA(instance, resource, owner, procedure, parameter);
    return dialog != nullptr ? desktop::RunModal(dialog, std::move(disabled), owner) : -1;
}

BOOL EndDialog(HWND dialog, INT_PTR result) {
    desktop::DialogState* state = desktop::StateOf(dialog);
    if (state == nullptr) {
        return FALSE;
    }
    state->ended = true;
    state->result = result;
    // Before the dialog goes, so that its owner is the window that becomes active.
    if (state->ownerDisabled != nullptr) {
        state->ownerDisabled->Restore();
    }
    ShowWindow(dialog, SW_HIDE);
    // The loop looks at the flag behind the next message.
    PostMessageA(dialog, WM_NULL, 0, 0);
    return TRUE;
}
