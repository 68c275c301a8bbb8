// The process itself: its one copy, its main window, the way of every command, and the order of start and end.
#pragma once

#include <windows.h>

#include <memory>

#include "EditorPane.h"
#include "MessageService.h"
#include "StatusBar.h"

inline constexpr char kMainClassName[] = "Tesselia_VRD-QX";
inline constexpr char kHelpFile[] = "Tesselia.chm";

// There is one at a time: theApp. On the thread of the windows. Titles and the main unit are none of its business, they are
// the pane's.
class AppWindow {
public:
    AppWindow() = default;
    // Runs Shutdown, lets another copy start, and sets theApp to null.
    virtual ~AppWindow();
    AppWindow(const AppWindow&) = delete;
    AppWindow& operator=(const AppWindow&) = delete;

    // 1 if another copy runs; its window, if it has one yet, has then come forward. From the call on no other copy starts.
    int CheckSingleInstance(HINSTANCE instance);

    // Gives 1 or 0.
    static int RegisterMainClass(HINSTANCE instance);

    // Makes the main window, not shown yet, with all that is in it. Null on failure, of which nobody has been told but for
    // the pane's.
    static HWND CreateMainWindow(HINSTANCE instance);

private:
    static LRESULT CALLBACK MainWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    int OnCreate(HWND window);
    void OnDestroy();
    void Shutdown();
    void OnClose();
    void OnEndSession(bool ends);
    void OnSize(WPARAM kind, int width, int height);
    void OnSetFocus();
    static void OnGetMinMaxInfo(MINMAXINFO* info);

    // --- Settings (AppWindowSettings.cpp)
    int LoadSettings(HWND window);
    void SaveSettings() const;

    // --- Menu (AppWindowCommands.cpp)
    void OnCommand(WORD command);
    void OnPaneCommand(WORD command);
    void OnMenuSelect(UINT item, UINT flags, HMENU menu);
    void UpdateMenu(HMENU menu);
    void ToggleStatusBar();
    void ShowAbout();

    bool hasStarted = false;  // OnCreate came as far as the settings
    HWND hWnd = nullptr;      // the main window, from WM_CREATE to Shutdown
    HANDLE hMutex = nullptr;  // keeps other copies out, from CheckSingleInstance to the end
    std::unique_ptr<StatusBar> statusBar;
    std::unique_ptr<EditorPane> editorPane;
    std::unique_ptr<MessageService> messageService;
};

// The one AppWindow, for its window procedure. Set before the main window exists.
extern AppWindow* theApp;

// What HH_INITIALIZE gives and HH_UNINITIALIZE wants back. As wide as a pointer, since nobody tells how much a 64-bit help
// viewer writes.
extern DWORD_PTR helpCookie;
