// The process: its one copy, the order of its start and its end, and what it does when the start fails.
#include <algorithm>

#include "AppWindow.h"
#include "Harness.h"
#include "HtmlHelpCall.h"
#include "MessageLog.h"
#include "ShellTesting.h"
#include "resource.h"

namespace {

// Whether nobody holds the lock that keeps a second copy out.
bool IsLockFree() {
    HANDLE mutex = CreateMutexA(nullptr, FALSE, Text(IDS_TITLE).c_str());
    const bool existed = GetLastError() == ERROR_ALREADY_EXISTS;
    CloseHandle(mutex);
    return !existed;
}

// Whether the main window's class is free, which it is as long as no copy has gone on to make a window.
bool IsClassFree() {
    const bool isFree = AppWindow::RegisterMainClass(GetModuleHandleA(nullptr)) == 1;
    if (isFree) {
        UnregisterClassA(kMainClassName, GetModuleHandleA(nullptr));
    }
    return isFree;
}

// As the program's own window does when something in it cannot be made.
LRESULT CALLBACK RefuseCreation(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_DESTROY) {
        PostQuitMessage(0);
    }
    return message == WM_CREATE ? -1 : DefWindowProcA(window, message, wParam, lParam);
}

void RegisterOther(WNDPROC procedure) {
    WNDCLASSEXA other = {};
    other.cbSize = sizeof other;
    other.lpfnWndProc = procedure;
    other.hInstance = GetModuleHandleA(nullptr);
    other.lpszClassName = kMainClassName;
    ASSERT_NE(RegisterClassExA(&other), 0);
}

void ExpectStartFailure(HWND box) {
    EXPECT_NE(FindWindowExA(box, nullptr, nullptr, Text(IDS_ERROR_START).c_str()), nullptr);
    EXPECT_EQ(GetWindow(box, GW_OWNER), nullptr);
}

}  // namespace

TEST(ShellStartTest, HelpAndPaneInTheirOrder) {
    for (const bool isHelpOpen : {false, true}) {
        HWND main = nullptr;
        std::vector<std::string> story;
        HelpSpy help;
        help.onRequest = [&](const HelpRequest& request) -> HWND {
            if (main == nullptr) {
                main = FindWindowA(kMainClassName, nullptr);
            }
            const bool hasPane = FindWindowExA(main, nullptr, "#32770", nullptr) != nullptr;
            const std::string where =
                std::string(IsWindowVisible(main) ? ", shown" : ", hidden") + (hasPane ? ", pane" : "");
            const std::string whose = request.window == main ? " main" : request.window == nullptr ? "" : " other";
            const std::string file = request.file.empty() ? "" : " " + request.file;
            switch (request.command) {
                case HH_INITIALIZE:
                    *reinterpret_cast<DWORD*>(request.data) = 4711;
                    story.push_back("initialize" + whose + file + where);
                    return nullptr;
                case HH_GET_WIN_HANDLE:
                    EXPECT_FALSE(IsLockFree());
                    story.push_back("window" + whose + file + " " + reinterpret_cast<const char*>(request.data) +
                                    (hasPane ? ", pane" : ""));
                    return isHelpOpen ? GetDesktopWindow() : nullptr;
                case HH_CLOSE_ALL: story.push_back(hasPane ? "close all, pane" : "close all"); return nullptr;
                case HH_UNINITIALIZE:
                    story.push_back("uninitialize " + std::to_string(request.data) + (hasPane ? ", pane" : ""));
                    return nullptr;
                default: ADD_FAILURE() << "help command " << request.command; return nullptr;
            }
        };
        EXPECT_EQ(RunProgram({[&story](HWND) {
                      story.emplace_back("loop");
                      return true;
                  }}),
                  0);
        std::vector<std::string> expected = {"initialize, hidden, pane", "loop", "window main Tesselia.chm MyWin01, pane",
                                             "close all, pane", "uninitialize 4711, pane"};
        if (!isHelpOpen) {
            expected.erase(expected.begin() + 3);
        }
        EXPECT_EQ(story, expected);
        EXPECT_FALSE(IsWindow(main));
        EXPECT_EQ(theApp, nullptr);
        EXPECT_TRUE(IsLockFree());
    }
}

TEST(ShellStartTest, ASecondCopyBringsTheFirstForward) {
    HWND first = MakeTestWindow(Text(IDS_TITLE).c_str(), WS_OVERLAPPEDWINDOW);
    EXPECT_EQ(RunProgram({}), 0);
    EXPECT_TRUE(IsWindowVisible(first));
    EXPECT_TRUE(PumpUntil([first] { return GetForegroundWindow() == first; }));
    EXPECT_TRUE(IsClassFree());
    EXPECT_TRUE(IsLockFree()) << "the second copy leaves nothing behind";
    DestroyWindow(first);
}

TEST(ShellStartTest, AFirstCopyWithoutAWindowIsFoundByItsLock) {
    {
        AppWindow first;
        EXPECT_EQ(first.CheckSingleInstance(GetModuleHandleA(nullptr)), 0);
        EXPECT_EQ(RunProgram({}), 0);
        EXPECT_TRUE(IsClassFree());
        AppWindow third;
        EXPECT_EQ(third.CheckSingleInstance(GetModuleHandleA(nullptr)), 1) << "the first still holds it";
    }
    AppWindow next;
    EXPECT_EQ(next.CheckSingleInstance(GetModuleHandleA(nullptr)), 0);
}

TEST(ShellStartTest, AFailedStartSaysSoAndEnds) {
    HelpSpy help;
    help.onRequest = [](const HelpRequest& request) -> HWND {
        ADD_FAILURE() << "help command " << request.command;
        return nullptr;
    };
    HINSTANCE instance = GetModuleHandleA(nullptr);
    {
        SCOPED_TRACE("the class is taken");
        RegisterOther(DefWindowProcA);
        DialogAnswer answer(Text(IDS_ERROR_CAPTION).c_str(), IDOK, ExpectStartFailure);
        EXPECT_EQ(RunProgram({}), 0);
        UnregisterClassA(kMainClassName, instance);
    }
    {
        // With a previous instance there is a class already, here one that makes no windows.
        SCOPED_TRACE("the window cannot be made");
        RegisterOther(RefuseCreation);
        DialogAnswer answer(Text(IDS_ERROR_CAPTION).c_str(), IDOK, ExpectStartFailure);
        EXPECT_EQ(RunProgram({}, instance), 0);
        UnregisterClassA(kMainClassName, instance);
    }
    EXPECT_EQ(theApp, nullptr);
    EXPECT_TRUE(IsLockFree());
}

TEST(ShellStartTest, AcceleratorsWorkInTheLoop) {
    HelpSpy help;
    MessageLog log({WM_COMMAND});
    std::string commands;
    const auto seen = [&](const char* command) {
        return [&, command](HWND) {
            commands += log.Take();
            return commands.find(command) != std::string::npos;
        };
    };
    RunProgram({[&](HWND main) {
                    log.Watch(main, "main");
                    const bool isForward = BringForward(main);
                    PressKeys({VK_CONTROL, 'U'});
                    return isForward;
                },
                seen("main WM_COMMAND id 40004 code 1 from nobody"),
                [](HWND) {
                    PressKeys({VK_RETURN});
                    return true;
                },
                seen("main WM_COMMAND id 40007 code 1 from nobody")});
}

TEST(ShellStartTest, TheClosingQuestion) {
    HelpSpy help;
    const std::string caption = Text(IDS_INFO_CAPTION);
    int questions = 0;
    const auto answer = [&](HWND main, int button, UINT message, WPARAM wParam) {
        DialogAnswer given(caption.c_str(), button, [&](HWND box) {
            ++questions;
            EXPECT_NE(FindWindowExA(box, nullptr, nullptr, Text(IDS_ASK_CLOSE).c_str()), nullptr);
            EXPECT_EQ(GetWindow(box, GW_OWNER), main);
            EXPECT_EQ(GetDlgItem(box, IDOK), nullptr);
        });
        SendMessageA(main, message, wParam, 0);
    };
    const int result = RunProgram({[&](HWND main) {
                                       answer(main, IDNO, WM_CLOSE, 0);
                                       answer(main, IDNO, WM_COMMAND, IDM_CLOSE);
                                       EXPECT_TRUE(IsWindowVisible(main));
                                       EXPECT_TRUE(IsWindowEnabled(main));
                                       return true;
                                   },
                                   [&](HWND main) {
                                       // A close from outside while a box stands: whoever opened it still needs the window.
                                       DialogAnswer given("Box", IDOK, [&](HWND) { SendMessageA(main, WM_CLOSE, 0, 0); });
                                       MessageBoxA(main, "Stands", "Box", MB_OK);
                                       EXPECT_TRUE(IsWindow(main));
                                       return true;
                                   },
                                   [&](HWND main) {
                                       answer(main, IDYES, WM_CLOSE, 0);
                                       EXPECT_FALSE(IsWindow(main));
                                       return true;
                                   }});
    EXPECT_EQ(result, 0);
    EXPECT_EQ(questions, 3);
}
