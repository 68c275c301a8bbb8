// The About box, the message boxes with texts from the resources, and the way to the help viewer.
#include <windows.h>

#include "Harness.h"
#include "HtmlHelpCall.h"
#include "MessageLog.h"
#include "MessageService.h"
#include "ShellTesting.h"
#include "resource.h"

namespace {

// Runs the About box, and lets `look` look at it before its button ends it.
class AboutBoxTest : public MainWindowTest {
protected:
    void Run(const std::function<void(HWND)>& look) {
        DialogAnswer answer(Text(IDS_ABOUT_TITLE).c_str(), IDOK, look);
        SendMessageA(main, WM_COMMAND, IDM_VERSION_INFO, 0);
        EXPECT_EQ(FindDialog(Text(IDS_ABOUT_TITLE).c_str()), nullptr);
        EXPECT_TRUE(IsWindowEnabled(main));
    }
};

HWND boxInFront = nullptr;

void CALLBACK PressEnterInBox(HWND, UINT, UINT_PTR timer, DWORD) {
    HWND box = FindDialog(Text(IDS_ABOUT_TITLE).c_str());
    if (box != nullptr && GetForegroundWindow() == box) {
        boxInFront = box;
        KillTimer(nullptr, timer);
        PressKeys({VK_RETURN});
    }
}

// How often the library of the help viewer was looked for.
struct Search {
    std::vector<std::string> libraries;
    int entries = 0;
    HMODULE library = nullptr;
    bool hasEntry = false;
    std::vector<HelpRequest> requests;
};
Search* currentSearch = nullptr;

HWND WINAPI AnswerHelp(HWND window, LPCSTR file, UINT command, DWORD_PTR data) {
    currentSearch->requests.push_back({window, file, command, data});
    return window;
}

HMODULE WINAPI LoadHelp(LPCSTR name) {
    currentSearch->libraries.emplace_back(name);
    return currentSearch->library;
}

FARPROC WINAPI FindHelp(HMODULE library, LPCSTR name) {
    EXPECT_EQ(library, currentSearch->library);
    EXPECT_EQ(name, MAKEINTRESOURCEA(14));
    ++currentSearch->entries;
    return currentSearch->hasEntry ? reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(&AnswerHelp)) : nullptr;
}

class HtmlHelpCallTest : public testing::Test {
protected:
    void SetUp() override {
        currentSearch = &search;
        UseHelpLoader({LoadHelp, FindHelp});
    }
    void TearDown() override { UseHelpLoader({LoadLibraryA, GetProcAddress}); }

    Search search;
};

}  // namespace

TEST_F(AboutBoxTest, TellsNameVersionAndNotice) {
    Run([this](HWND box) {
        EXPECT_EQ(WindowText(GetDlgItem(box, IDC_ABOUT_NAME)), Text(IDS_TITLE));
        EXPECT_EQ(WindowText(GetDlgItem(box, IDC_ABOUT_VERSION)), "Version 1.0.3.0");
        EXPECT_EQ(WindowText(GetDlgItem(box, IDC_ABOUT_NOTICE)), Text(IDS_NOTICE));
        EXPECT_FALSE(Text(IDS_NOTICE).empty());
        EXPECT_FALSE(IsWindowEnabled(main));
        EXPECT_EQ(GetWindow(box, GW_OWNER), main);
    });
}

TEST_F(AboutBoxTest, EscapeDoesNothing) {
    MessageLog log({WM_COMMAND});
    Run([&log](HWND box) {
        log.Watch(box, "box");
        ASSERT_TRUE(BringForward(box));
        PressKeys({VK_ESCAPE});
        std::string commands;
        EXPECT_TRUE(PumpUntil([&] { return !(commands += log.Take()).empty(); }, box));
        EXPECT_EQ(commands, "box WM_COMMAND id 2 code 0 from nobody\n");
        SendMessageA(box, WM_COMMAND, IDOK, 0);
        SendMessageA(box, WM_COMMAND, IDCANCEL, reinterpret_cast<LPARAM>(GetDlgItem(box, IDC_ABOUT_NAME)));
        SendMessageA(box, WM_CLOSE, 0, 0);
        EXPECT_TRUE(PumpAll(box));
        EXPECT_TRUE(IsWindowVisible(box)) << "only its button ends it";
    });
}

TEST_F(AboutBoxTest, EnterEndsIt) {
    boxInFront = nullptr;
    const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, PressEnterInBox);
    SendMessageA(main, WM_COMMAND, IDM_VERSION_INFO, 0);
    KillTimer(nullptr, timer);
    EXPECT_NE(boxInFront, nullptr);
    EXPECT_FALSE(IsWindow(boxInFront));
}

TEST(MessageServiceTest, RefusesWhatIsNotThere) {
    MessageService service;
    EXPECT_EQ(service.Attach(nullptr), 0);
    EXPECT_EQ(service.SetErrorCaption(7999), 0) << "there is no such string";
}

TEST_F(HtmlHelpCallTest, AMachineWithoutHelpIsSearchedOnce) {
    EXPECT_EQ(HtmlHelpCall(nullptr, "Tesselia.chm", HH_DISPLAY_TOC, 0), nullptr);
    const size_t attempts = search.libraries.size();
    ASSERT_GE(attempts, 1U);
    EXPECT_LE(attempts, 2U) << "the registered one, if there is one, and the usual name";
    EXPECT_EQ(search.libraries.back(), "hhctrl.ocx");
    EXPECT_EQ(search.entries, 0);
    for (int call = 1; call <= 3; ++call) {
        EXPECT_EQ(HtmlHelpCall(nullptr, "Tesselia.chm", HH_DISPLAY_TOC, 0), nullptr);
        EXPECT_EQ(search.libraries.size(), attempts);
        EXPECT_EQ(search.entries, call);
    }
}

TEST_F(HtmlHelpCallTest, ALibraryWithoutTheEntryIsNoHelp) {
    search.library = GetModuleHandleA(nullptr);
    EXPECT_EQ(HtmlHelpCall(nullptr, "Tesselia.chm", HH_DISPLAY_TOC, 0), nullptr);
    EXPECT_EQ(HtmlHelpCall(nullptr, "Tesselia.chm", HH_DISPLAY_TOC, 0), nullptr);
    EXPECT_EQ(search.libraries.size(), 1U);
    EXPECT_EQ(search.entries, 2);
}

TEST_F(HtmlHelpCallTest, TheViewerIsFoundOnceAndGetsEachCall) {
    search.library = GetModuleHandleA(nullptr);
    search.hasEntry = true;
    HWND desktop = GetDesktopWindow();
    EXPECT_EQ(HtmlHelpCall(desktop, "Tesselia.chm", HH_DISPLAY_TOC, 5), desktop);
    EXPECT_EQ(HtmlHelpCall(nullptr, "Other.chm", HH_CLOSE_ALL, 0), nullptr);
    EXPECT_EQ(search.libraries.size(), 1U);
    EXPECT_EQ(search.entries, 1);
    ASSERT_EQ(search.requests.size(), 2U);
    EXPECT_EQ(search.requests[0].file, "Tesselia.chm");
    EXPECT_EQ(search.requests[0].data, 5U);
    EXPECT_EQ(search.requests[1].command, HH_CLOSE_ALL);
}
