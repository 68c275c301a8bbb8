#include "ShellTesting.h"

#include <commctrl.h>

#include "AppWindow.h"
#include "CTitleList.h"
#include "Harness.h"
#include "HtmlHelpCall.h"
#include "ScriptedLink.h"
#include "resource.h"

namespace {

HelpSpy* helpSpy = nullptr;

HWND WINAPI SpiedHelp(HWND window, LPCSTR file, UINT command, DWORD_PTR data) {
    const HelpRequest request{window, file == nullptr ? "" : file, command, data};
    return helpSpy->onRequest ? helpSpy->onRequest(request) : nullptr;
}

HMODULE WINAPI LoadSpy(LPCSTR) {
    return GetModuleHandleA(nullptr);
}

FARPROC WINAPI FindSpy(HMODULE, LPCSTR) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(&SpiedHelp));
}

struct Script {
    std::vector<Step> steps;
    size_t next = 0;
    bool isBusy = false;  // a step may serve messages, and the timer with them
    DWORD begin = 0;
};
Script* script = nullptr;

void CALLBACK RunStep(HWND, UINT, UINT_PTR, DWORD) {
    HWND main = FindWindowA(kMainClassName, nullptr);
    if (script->isBusy || main == nullptr || !IsWindowVisible(main)) {
        return;
    }
    script->isBusy = true;
    if (script->next < script->steps.size() && script->steps[script->next](main)) {
        ++script->next;
        script->begin = GetTickCount();
    }
    const bool isLate = GetTickCount() - script->begin > kLimitMs;
    EXPECT_FALSE(isLate) << "step " << script->next << " does not come to its end";
    if ((isLate || script->next == script->steps.size()) && IsWindow(main)) {
        DestroyWindow(main);
    }
    script->isBusy = false;
}

}  // namespace

std::string Text(UINT id) {
    char text[500] = "";
    LoadStringA(GetModuleHandleA(nullptr), id, text, sizeof text);
    return text;
}

void StartAnew() {
    ClearRegistry(R"(SOFTWARE\ORVANE\HDD/CD recorder\Tesselia)");
    scripted::Reset();
}

std::string PlaceOf(HWND control) {
    RECT rect = {};
    GetWindowRect(control, &rect);
    POINT corner = {rect.left, rect.top};
    ScreenToClient(GetParent(control), &corner);
    return std::to_string(corner.x) + "," + std::to_string(corner.y) + " " + std::to_string(rect.right - rect.left) + "x" +
           std::to_string(rect.bottom - rect.top);
}

int RunProgram(std::vector<Step> steps, HINSTANCE previousInstance) {
    StartAnew();
    Script running{std::move(steps), 0, false, GetTickCount()};
    script = &running;
    const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, RunStep);
    char noCommandLine[] = "";
    HINSTANCE instance = GetModuleHandleA(nullptr);
    const int result = WinMain(instance, previousInstance, noCommandLine, SW_SHOW);
    KillTimer(nullptr, timer);
    script = nullptr;
    EXPECT_EQ(running.next, running.steps.size()) << "the program ended before its time";
    if (previousInstance == nullptr) {
        UnregisterClassA(kMainClassName, instance);
    }
    return result;
}

HelpSpy::HelpSpy() {
    helpSpy = this;
    UseHelpLoader({LoadSpy, FindSpy});
}

HelpSpy::~HelpSpy() {
    UseHelpLoader({LoadLibraryA, GetProcAddress});
    helpSpy = nullptr;
}

void MainWindowTest::SetUp() {
    StartAnew();
    Open();
    Connect();
}

void MainWindowTest::TearDown() {
    Close();
}

void MainWindowTest::Open() {
    HINSTANCE instance = GetModuleHandleA(nullptr);
    theApp = new AppWindow;
    ASSERT_EQ(AppWindow::RegisterMainClass(instance), 1);
    main = AppWindow::CreateMainWindow(instance);
    ASSERT_NE(main, nullptr);
    ShowWindow(main, SW_SHOW);
    ASSERT_TRUE(BringForward(main));
    // The font fills the lists anew, which must not see what a test puts into the store.
    Settle();
}

void MainWindowTest::Close() {
    if (main == nullptr) {
        return;
    }
    DestroyWindow(main);
    PumpAll();
    main = nullptr;
    delete theApp;
    UnregisterClassA(kMainClassName, GetModuleHandleA(nullptr));
}

void MainWindowTest::Connect() {
    scripted::PostResult(Pane(), OP_CONNECT);
    scripted::PostResult(Pane(), OP_GET_ALL);
    Settle();
    scripted::Take();
}

void MainWindowTest::Settle() const {
    // What is posted may ask for a refill, and the end of the groups' may bring about one of the tracks.
    do {
        ASSERT_TRUE(PumpUntil([this] { return !IsRefilling(); }));
        ASSERT_TRUE(PumpAll());
    } while (IsRefilling());
}

bool MainWindowTest::IsRefilling() const {
    bool isRefilling = false;
    for (const int id : {IDC_GROUP_LIST, IDC_TRACK_LIST}) {
        // Each control knows its object.
        const LONG_PTR object = Control(id) == nullptr ? 0 : GetWindowLongPtrA(Control(id), GWLP_USERDATA);
        const auto* list = static_cast<const CTitleList*>(reinterpret_cast<const WindowBase*>(object));
        isRefilling = isRefilling || (list != nullptr && list->IsRefilling());
    }
    return isRefilling;
}

HWND MainWindowTest::Bar() const {
    return GetDlgItem(main, IDC_STATUS_BAR);
}

std::string MainWindowTest::BarText() const {
    char text[500] = "";
    SendMessageA(Bar(), SB_GETTEXTA, 0, reinterpret_cast<LPARAM>(text));
    return text;
}
