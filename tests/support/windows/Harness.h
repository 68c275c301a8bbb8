// What every window test needs: serving messages until something has come about, keys and mouse, and answers for modal
// dialogs.
//
// All of it is for the test's own thread, which is the one that owns the windows.
#pragma once

#include <windows.h>

#include <functional>
#include <initializer_list>
#include <string>

// Long enough for a loaded machine; a test that works never gets near it.
inline constexpr DWORD kLimitMs = 10000;

// Serves messages until the condition holds; false when the limit is over. The condition is looked at behind each message
// and at least every few milliseconds. Messages for `dialog`, if one is given, go through IsDialogMessageA, as in the
// program's loop.
bool PumpUntil(const std::function<bool()>& condition, HWND dialog = nullptr, DWORD limitMs = kLimitMs);

// Serves what the queue of this thread holds now, paint and timer messages included, and what comes of that, until nothing
// is left. False if that never happens within the limit.
bool PumpAll(HWND dialog = nullptr);

// Whether the message is one that PumpUntil or PumpAll has taken from the queue and is dispatching just now, and not one
// that was sent. True once for each.
bool IsDispatched(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// Makes the window the one that keys go to, and waits for it.
bool BringForward(HWND window);

// Presses the keys in that order and releases them in the opposite one, as a hand on the keyboard would:
// PressKeys({VK_SHIFT, VK_TAB}). The messages are in the queue some time later.
void PressKeys(std::initializer_list<int> virtualKeys);

// Holds a key down as long as it lives, for what looks at the keyboard itself (GetAsyncKeyState): there a chord by PressKeys
// may be over before its message is served. Serves messages until the key counts as held.
class HeldKey {
public:
    explicit HeldKey(int virtualKey);
    ~HeldKey();
    HeldKey(const HeldKey&) = delete;
    HeldKey& operator=(const HeldKey&) = delete;

private:
    BYTE key;
};

// Posts a press of the left button at a place in the window's client area, and its release, at another place if one is
// given.
void PostClick(HWND window, int x, int y);
void PostDrag(HWND window, int x, int y, int xRelease, int yRelease);

// Deletes a key below HKEY_LOCAL_MACHINE, with all keys below it. The layer, which cannot delete, starts an empty registry.
void ClearRegistry(const char* key);

// The screen that the window is on, the primary one for null.
RECT ScreenOf(HWND window);

// The text of a window, at most 1023 bytes.
std::string WindowText(HWND window);

// Answers the next dialog with that caption, while whoever opened it is in its modal loop: waits until it is visible, lets
// `inspect` look at it, and presses the button. A dialog that has not come when this object goes is a failure of the test.
class DialogAnswer {
public:
    DialogAnswer(const char* caption, int buttonId, std::function<void(HWND)> inspect = {});
    ~DialogAnswer();
    DialogAnswer(const DialogAnswer&) = delete;
    DialogAnswer& operator=(const DialogAnswer&) = delete;

    bool Given() const { return given; }

private:
    static void CALLBACK OnTimer(HWND window, UINT message, UINT_PTR id, DWORD time);
    void Look();

    std::string caption;
    int buttonId;
    std::function<void(HWND)> inspect;
    UINT_PTR timer;
    bool given = false;
    bool looking = false;  // `inspect` may serve messages, and the timer with them
    DialogAnswer* outer;   // an answer that waits for another dialog at the same time
};

// The visible dialog of this thread with that caption, or null: a message box or any other window of class "#32770".
HWND FindDialog(const char* caption);
