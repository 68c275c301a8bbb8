#include "Harness.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

constexpr DWORD kLookMs = 5;
constexpr UINT kAnswerPeriodMs = 10;

MSG dispatched = {};
bool isDispatching = false;
DialogAnswer* innermostAnswer = nullptr;

void Serve(MSG& message, HWND dialog) {
    if (dialog != nullptr && IsWindow(dialog) && IsDialogMessageA(dialog, &message)) {
        return;
    }
    TranslateMessage(&message);
    dispatched = message;
    isDispatching = true;
    DispatchMessageA(&message);
    isDispatching = false;
}

}  // namespace

bool PumpUntil(const std::function<bool()>& condition, HWND dialog, DWORD limitMs) {
    const DWORD begin = GetTickCount();
    while (true) {
        MSG message;
        bool isMet = condition();
        while (!isMet && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            Serve(message, dialog);
            isMet = condition();
        }
        if (isMet) {
            return true;
        }
        if (GetTickCount() - begin >= limitMs) {
            return false;
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, kLookMs, QS_ALLINPUT);
    }
}

bool PumpAll(HWND dialog) {
    const DWORD begin = GetTickCount();
    MSG message;
    // What a window system has to say of a change comes a moment later.
    do {
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            Serve(message, dialog);
            if (GetTickCount() - begin >= kLimitMs) {
                return false;
            }
        }
    } while (MsgWaitForMultipleObjects(0, nullptr, FALSE, kLookMs, QS_ALLINPUT) != WAIT_TIMEOUT);
    return true;
}

bool IsDispatched(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!isDispatching || dispatched.hwnd != window || dispatched.message != message || dispatched.wParam != wParam ||
        dispatched.lParam != lParam) {
        return false;
    }
    isDispatching = false;
    return true;
}

bool BringForward(HWND window) {
    SetForegroundWindow(window);
    return PumpUntil([window] { return GetForegroundWindow() == window && GetActiveWindow() == window; });
}

void PressKeys(std::initializer_list<int> virtualKeys) {
    for (const int* key = virtualKeys.begin(); key != virtualKeys.end(); ++key) {
        keybd_event(static_cast<BYTE>(*key), 0, 0, 0);
    }
    for (const int* key = virtualKeys.end(); key != virtualKeys.begin();) {
        keybd_event(static_cast<BYTE>(*--key), 0, KEYEVENTF_KEYUP, 0);
    }
}

HeldKey::HeldKey(int virtualKey) : key(static_cast<BYTE>(virtualKey)) {
    // Soon after a window has come forward the window system may tell what is held on its real keyboard, which is nothing;
    // so the key is pressed until it stays down for a while.
    constexpr int kLooks = 4;
    int looksHeld = 0;
    const bool isHeld = PumpUntil([&] {
        const bool held = (GetAsyncKeyState(key) & 0x8000) != 0;
        if (!held) {
            keybd_event(key, 0, 0, 0);
        }
        looksHeld = held ? looksHeld + 1 : 0;
        return looksHeld >= kLooks;
    });
    EXPECT_TRUE(isHeld) << "key " << virtualKey;
}

HeldKey::~HeldKey() {
    keybd_event(key, 0, KEYEVENTF_KEYUP, 0);
}

void PostClick(HWND window, int x, int y) {
    PostDrag(window, x, y, x, y);
}

void PostDrag(HWND window, int x, int y, int xRelease, int yRelease) {
    PostMessageA(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y)));
    if (x != xRelease || y != yRelease) {
        PostMessageA(window, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(static_cast<WORD>(xRelease), static_cast<WORD>(yRelease)));
    }
    PostMessageA(window, WM_LBUTTONUP, 0, MAKELPARAM(static_cast<WORD>(xRelease), static_cast<WORD>(yRelease)));
}

RECT ScreenOf(HWND window) {
    MONITORINFO info = {};
    info.cbSize = sizeof info;
    EXPECT_TRUE(GetMonitorInfoA(MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY), &info));
    return info.rcMonitor;
}

std::string WindowText(HWND window) {
    char text[1024] = "";
    GetWindowTextA(window, text, sizeof text);
    return text;
}

HWND FindDialog(const char* caption) {
    HWND dialog = nullptr;
    while ((dialog = FindWindowExA(nullptr, dialog, "#32770", caption)) != nullptr) {
        if (GetWindowThreadProcessId(dialog, nullptr) == GetCurrentThreadId() && IsWindowVisible(dialog)) {
            return dialog;
        }
    }
    return nullptr;
}

DialogAnswer::DialogAnswer(const char* caption, int buttonId, std::function<void(HWND)> inspect)
    : caption(caption), buttonId(buttonId), inspect(std::move(inspect)), outer(innermostAnswer) {
    innermostAnswer = this;
    // A timer without a window is served by every modal loop of the thread.
    timer = SetTimer(nullptr, 0, kAnswerPeriodMs, OnTimer);
}

DialogAnswer::~DialogAnswer() {
    KillTimer(nullptr, timer);
    innermostAnswer = outer;
    EXPECT_TRUE(given) << "no dialog \"" << caption << "\" was open";
}

void CALLBACK DialogAnswer::OnTimer(HWND, UINT, UINT_PTR id, DWORD) {
    for (DialogAnswer* answer = innermostAnswer; answer != nullptr; answer = answer->outer) {
        if (answer->timer == id) {
            answer->Look();
            return;
        }
    }
}

void DialogAnswer::Look() {
    HWND dialog = given || looking ? nullptr : FindDialog(caption.c_str());
    if (dialog == nullptr) {
        return;
    }
    looking = true;
    if (inspect) {
        inspect(dialog);
    }
    HWND button = GetDlgItem(dialog, buttonId);
    EXPECT_NE(button, nullptr) << "\"" << caption << "\" has no button " << buttonId;
    PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(static_cast<WORD>(buttonId), BN_CLICKED), reinterpret_cast<LPARAM>(button));
    given = true;
    looking = false;
}
