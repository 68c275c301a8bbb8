// The calls that also reach the window of another copy of the program.
#include "Desktop.h"
#include "SingleInstance.h"

using desktop::Desktop;

HWND FindWindowA(LPCSTR className, LPCSTR title) {
    return FindWindowExA(nullptr, nullptr, className, title);
}

HWND FindWindowExA(HWND parent, HWND childAfter, LPCSTR className, LPCSTR title) {
    HWND found = Desktop::Get().FindByName(parent, childAfter, className, title);
    const bool mayBeElsewhere =
        found == nullptr && parent == nullptr && childAfter == nullptr && className == nullptr && title != nullptr;
    return mayBeElsewhere && desktop::AskForOtherCopy(title) ? desktop::OtherCopy() : found;
}

BOOL SetForegroundWindow(HWND window) {
    return desktop::IsOtherCopy(window) ? desktop::BringOtherCopyForward() : Desktop::Get().BringToFront(window);
}
