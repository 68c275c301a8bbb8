// The main window and the process around it: how they come to be, and how they end.
#include "AppWindow.h"

#include <new>

#include "HtmlHelpCall.h"
#include "WindowPlacement.h"
#include "resource.h"

AppWindow* theApp = nullptr;
DWORD_PTR helpCookie = 0;

namespace {

constexpr int kTitleTextSize = 100;
constexpr char kHelpWindowType[] = "MyWin01";

constexpr LONG kMinWidth = 300;
constexpr LONG kMinHeight = 170;

}  // namespace

AppWindow::~AppWindow() {
    Shutdown();
    if (hMutex != nullptr) {
        CloseHandle(hMutex);
    }
    theApp = nullptr;
}

int AppWindow::CheckSingleInstance(HINSTANCE instance) {
    char title[kTitleTextSize] = "";
    LoadStringA(instance, IDS_TITLE, title, kTitleTextSize);
    HWND other = FindWindowExA(nullptr, nullptr, nullptr, title);
    hMutex = CreateMutexA(nullptr, TRUE, title);
    const bool existed = GetLastError() == ERROR_ALREADY_EXISTS;
    if (other != nullptr) {
        BringWindowToTop(other);
        ShowWindow(other, SW_SHOWNORMAL);
        SetForegroundWindow(other);
        return 1;
    }
    // A copy that is still starting has no window to bring forward.
    return existed ? 1 : 0;
}

int AppWindow::RegisterMainClass(HINSTANCE instance) {
    WNDCLASSEXA mainClass = {};
    mainClass.cbSize = sizeof mainClass;
    mainClass.lpfnWndProc = MainWndProc;
    mainClass.hInstance = instance;
    mainClass.hIcon = LoadIconA(instance, MAKEINTRESOURCEA(IDI_TESSELIA));
    mainClass.lpszMenuName = MAKEINTRESOURCEA(IDR_MENU);
    mainClass.lpszClassName = kMainClassName;
    return RegisterClassExA(&mainClass) != 0 ? 1 : 0;
}

HWND AppWindow::CreateMainWindow(HINSTANCE instance) {
    char title[kTitleTextSize] = "";
    LoadStringA(instance, IDS_TITLE, title, kTitleTextSize);
    return CreateWindowExA(WS_EX_CLIENTEDGE, kMainClassName, title, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, 0, 0,
                           nullptr, nullptr, instance, nullptr);
}

LRESULT CALLBACK AppWindow::MainWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    // After a start that failed the window may outlive the object.
    if (theApp == nullptr) {
        return DefWindowProcA(window, message, wParam, lParam);
    }
    return theApp->Dispatch(window, message, wParam, lParam);
}

LRESULT AppWindow::Dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const WORD low = LOWORD(static_cast<DWORD_PTR>(lParam));
    const WORD high = HIWORD(static_cast<DWORD_PTR>(lParam));
    switch (message) {
        case WM_CREATE: return OnCreate(window) != 0 ? 0 : -1;
        case WM_DESTROY: OnDestroy(); return 0;
        case WM_SIZE: OnSize(wParam, static_cast<SHORT>(low), static_cast<SHORT>(high)); return 0;
        case WM_SETFOCUS: OnSetFocus(); return 0;
        case WM_CLOSE: OnClose(); return 0;
        case WM_ENDSESSION: OnEndSession(wParam != 0); return 0;
        case WM_GETMINMAXINFO: OnGetMinMaxInfo(reinterpret_cast<MINMAXINFO*>(lParam)); return 0;
        case WM_COMMAND: OnCommand(LOWORD(wParam)); return 0;
        case WM_MENUSELECT: OnMenuSelect(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HMENU>(lParam)); return 0;
        default: return DefWindowProcA(window, message, wParam, lParam);
    }
}

int AppWindow::OnCreate(HWND window) {
    hWnd = window;
    messageService.reset(new (std::nothrow) MessageService);
    statusBar.reset(new (std::nothrow) StatusBar);
    if (!messageService || !statusBar) {
        return 0;
    }
    messageService->Attach(window);
    messageService->SetInfoCaption(IDS_INFO_CAPTION);
    messageService->SetErrorCaption(IDS_ERROR_CAPTION);
    statusBar->Create(window);
    editorPane.reset(new (std::nothrow) EditorPane);
    if (editorPane) {
        editorPane->SetMessageService(messageService.get());
    }
    if (!editorPane || editorPane->Create(window) == 0) {
        messageService->ShowError(IDS_ERROR_START);
        return 0;
    }
    hasStarted = true;
    if (LoadSettings(window) == 0) {
        PlaceWindow(window, kDefaultWidth, kDefaultHeight, kDefaultX, kDefaultY);
    }
    editorPane->ApplyFont();
    // The window is not shown yet while the main unit is looked for.
    editorPane->StartLink();
    return 1;
}

void AppWindow::OnDestroy() {
    const auto windowType = reinterpret_cast<DWORD_PTR>(kHelpWindowType);
    if (HtmlHelpCall(hWnd, kHelpFile, HH_GET_WIN_HANDLE, windowType) != nullptr) {
        HtmlHelpCall(nullptr, nullptr, HH_CLOSE_ALL, 0);
    }
    HtmlHelpCall(nullptr, nullptr, HH_UNINITIALIZE, helpCookie);
    Shutdown();
    PostQuitMessage(0);
}

void AppWindow::Shutdown() {
    // A start that failed has no settings of its own, and those of the run before stay.
    if (hasStarted) {
        SaveSettings();
    }
    // The pane's controls hand the focus back to the main window while they go, which must find no pane then.
    if (const std::unique_ptr<EditorPane> pane = std::move(editorPane)) {
        pane->Destroy();
    }
    statusBar.reset();
    messageService.reset();
    hWnd = nullptr;
}

void AppWindow::OnClose() {
    // While a box stands, whoever has opened it goes on behind it and needs all that is here.
    if (!IsWindowEnabled(hWnd)) {
        return;
    }
    if (messageService && messageService->ShowInfo(IDS_ASK_CLOSE, MB_YESNO | MB_ICONQUESTION) == IDYES) {
        DestroyWindow(hWnd);
    }
}

// The system may end the process as soon as this returns, so everything is saved first. The window goes only after the
// message loop and every box in it have ended: whoever opened a box still needs the pane.
void AppWindow::OnEndSession(bool ends) {
    if (!ends || !hasStarted || !editorPane) {
        return;
    }
    editorPane->EndInlineEdits();
    SaveSettings();
    PostQuitMessage(0);
}

void AppWindow::OnSize(WPARAM kind, int width, int height) {
    if (!statusBar || !editorPane) {
        return;
    }
    statusBar->OnParentSize(kind, width, height);
    int barWidth = 0;
    int barHeight = 0;
    statusBar->GetSize(barWidth, barHeight);
    editorPane->Layout(width, height - barHeight);
}

void AppWindow::OnSetFocus() {
    if (editorPane) {
        editorPane->RestoreFocus();
    }
}

void AppWindow::OnGetMinMaxInfo(MINMAXINFO* info) {
    info->ptMinTrackSize = {kMinWidth, kMinHeight};
}
