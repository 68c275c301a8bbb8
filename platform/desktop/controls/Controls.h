// The standard controls, each in a file of its own.
#pragma once

#include <windows.h>

class QWidget;

namespace desktop {

struct ScreenWindow;

// Registers "BUTTON", "EDIT", "STATIC", "LISTBOX" and "msctls_statusbar32".
void RegisterControlClasses();

// The widget of a standard control that paints itself, or null for windows of all other classes.
QWidget* MakeControlWidget(ScreenWindow& window, QWidget* parent);

// Each control's procedure, and the maker of its widget where it has one of its own.
LRESULT CALLBACK ButtonProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeButtonWidget(ScreenWindow& window, QWidget* parent);
LRESULT CALLBACK EditProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeEditWidget(ScreenWindow& window, QWidget* parent);
LRESULT CALLBACK StaticProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeStaticWidget(ScreenWindow& window, QWidget* parent);
LRESULT CALLBACK StatusBarProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
QWidget* MakeStatusBarWidget(ScreenWindow& window, QWidget* parent);
LRESULT CALLBACK ListBoxProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// WM_COMMAND with a notification to the parent, sent.
void NotifyParent(HWND control, WORD code);
// Gives a mouse or key message to the control's widget, as the event that it stands for. The window may be gone afterwards.
void GiveMouse(HWND control, UINT message, WPARAM wParam, LPARAM lParam);
void GiveKey(HWND control, int virtualKey, bool down, const char* text = "");
void SetControlFont(ScreenWindow& window, HFONT font);

}  // namespace desktop
