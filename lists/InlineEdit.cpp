#include "InlineEdit.h"

#include <imm.h>

#include <cstring>

#include "PaneRequests.h"
#include "TitleNumbers.h"

namespace {

// Shown by nobody: the list sets the title before the user sees the control. "Type here", in the code page of a Japanese
// system.
constexpr char kFirstText[] = "\x82\xB1\x82\xB1\x82\xC9\x93\xFC\x97\xCD";

constexpr char kFirstPrintable = 0x20;
constexpr char kLastPrintable = 0x7E;

}  // namespace

InlineEdit::~InlineEdit() {
    DestroyNative();
}

int InlineEdit::Create(DWORD style, const RECT& rect, HWND parent, int id) {
    auto* instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(parent, GWLP_HINSTANCE));
    hwnd = CreateWindowExA(0, "EDIT", kFirstText, style, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                           parent, reinterpret_cast<HMENU>(static_cast<LONG_PTR>(id)), instance, nullptr);
    if (hwnd == nullptr) {
        return 0;
    }
    SendMessageA(hwnd, EM_LIMITTEXT, kTitleLength, 0);
    HIMC inputMethod = ImmGetContext(hwnd);
    ImmAssociateContext(hwnd, nullptr);
    ImmReleaseContext(hwnd, inputMethod);
    return Attach();
}

void InlineEdit::SetEditFont(HFONT font) {
    SendMessageA(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
}

void InlineEdit::TakeFocus() {
    prevFocus = SetFocus(hwnd);
}

void InlineEdit::SetText(const char* text) {
    SetWindowTextA(hwnd, text);
}

void InlineEdit::SelectRange(int start, int end) {
    SendMessageA(hwnd, EM_SETSEL, static_cast<WPARAM>(start), end);
}

int InlineEdit::GetCleanText(char* out, int capacity) const {
    char raw[kTitleSize] = "";
    const int length = GetWindowTextA(hwnd, raw, sizeof raw);
    std::memset(out, 0, static_cast<size_t>(capacity));
    int count = 0;
    for (int i = 0; i < length && count < capacity - 1; ++i) {
        const char byte = raw[i];
        if (IsDBCSLeadByte(static_cast<BYTE>(byte))) {
            ++i;
        }
        const bool isPrintable = byte >= kFirstPrintable && byte <= kLastPrintable;
        out[count++] = isPrintable ? byte : ' ';
    }
    return count;
}

void InlineEdit::OnKeyDown(UINT virtualKey, BOOL isDown, int /*repeat*/, UINT /*flags*/) {
    if (virtualKey == VK_RETURN) {
        enterPressed = enterPressed || isDown;
        SetFocus(prevFocus);
    }
}

void InlineEdit::OnKillFocus(HWND /*otherWindow*/) {
    PostPaneRequest(hwnd, UC_END_EDIT, 0);
}

// The control is going already, and with it what ties it to the object.
void InlineEdit::OnNcDestroy() {
    Detach();
    hwnd = nullptr;
    owner = nullptr;
    delete this;
}
