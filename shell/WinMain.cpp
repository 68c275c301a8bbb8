// The entry of the program.
#include <windows.h>

#include <new>

#include "AppWindow.h"
#include "HtmlHelpCall.h"
#include "resource.h"

namespace {

constexpr int kTextSize = 500;
constexpr int kCaptionSize = 100;

class StartFailureBox {
public:
    // Loads its texts at once: later there may be too little memory for them.
    explicit StartFailureBox(HINSTANCE instance) {
        LoadStringA(instance, IDS_ERROR_CAPTION, caption, kCaptionSize);
        LoadStringA(instance, IDS_ERROR_START, text, kTextSize);
    }
    // The end of a main window that came to nothing has asked for the end of the program, which would take the box away.
    void Show() const {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) && message.message != WM_QUIT) {
            DispatchMessageA(&message);
        }
        MessageBoxA(nullptr, text, caption, MB_OK);
    }

private:
    char caption[kCaptionSize] = "";
    char text[kTextSize] = "";
};

// Returns the main window, with its keys in `accelerators`; null after showing an error.
HWND Start(HINSTANCE instance, HINSTANCE previousInstance, const StartFailureBox& failureBox, HACCEL& accelerators) {
    if (previousInstance == nullptr && AppWindow::RegisterMainClass(instance) == 0) {
        failureBox.Show();
        return nullptr;
    }
    HWND window = AppWindow::CreateMainWindow(instance);
    if (window == nullptr) {
        failureBox.Show();
        return nullptr;
    }
    accelerators = LoadAcceleratorsA(instance, MAKEINTRESOURCEA(IDR_ACCELERATORS));
    if (accelerators == nullptr) {
        failureBox.Show();
        return nullptr;
    }
    return window;
}

// Until the program ends. No dialog keys here: the controls of the pane move the focus themselves.
int RunMessageLoop(HWND window, HACCEL accelerators) {
    MSG message = {};
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        if (!TranslateAcceleratorA(window, accelerators, &message)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
    return static_cast<int>(message.wParam);
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previousInstance, LPSTR /*commandLine*/, int showCommand) {
    const StartFailureBox failureBox(instance);
    theApp = new (std::nothrow) AppWindow;
    if (theApp == nullptr) {
        failureBox.Show();
        return 0;
    }
    int result = 0;
    if (theApp->CheckSingleInstance(instance) == 0) {
        HACCEL accelerators = nullptr;
        HWND window = Start(instance, previousInstance, failureBox, accelerators);
        if (window != nullptr) {
            HtmlHelpCall(nullptr, nullptr, HH_INITIALIZE, reinterpret_cast<DWORD_PTR>(&helpCookie));
            ShowWindow(window, showCommand);
            UpdateWindow(window);
            result = RunMessageLoop(window, accelerators);
            // At the end of the session the window is still there.
            if (IsWindow(window)) {
                DestroyWindow(window);
            }
        }
    }
    delete theApp;
    return result;
}
