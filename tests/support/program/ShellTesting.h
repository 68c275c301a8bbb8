// What the tests of the program's own windows need: its texts, its main window, and the whole program run step by step.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

// A string from the resources, in the user's language.
std::string Text(UINT id);

// A control's place in its parent, as "x,y widthxheight".
std::string PlaceOf(HWND control);

// What the program has kept from an earlier run is gone, and the scripted link is as new. Before each start.
void StartAnew();

// Runs WinMain in this thread, and the steps beside it in its message loop: each is called with the shown main window again
// and again until it gives true. Behind the last step the main window is destroyed, unless it is gone already. Gives what
// WinMain gives.
using Step = std::function<bool(HWND main)>;
int RunProgram(std::vector<Step> steps, HINSTANCE previousInstance = nullptr);

// What the help viewer is asked, where the tests stand in for it.
struct HelpRequest {
    HWND window;
    std::string file;
    UINT command;
    DWORD_PTR data;
};

// While it lives, the program finds a help viewer that only writes down what it is asked.
class HelpSpy {
public:
    HelpSpy();
    ~HelpSpy();
    HelpSpy(const HelpSpy&) = delete;
    HelpSpy& operator=(const HelpSpy&) = delete;

    // Called with each request; its result is the viewer's.
    std::function<HWND(const HelpRequest&)> onRequest;
};

// The main window with all that is in it, shown, without the program around it. A main unit without titles was found.
class MainWindowTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // With what is kept from an earlier run. What the link is asked meanwhile is left for the test.
    void Open();
    void Close();
    // The link says that it has found the main unit, and that this was read to its end.
    void Connect();
    // Until everything is served and no list is being filled any more.
    void Settle() const;

    HWND Pane() const { return FindWindowExA(main, nullptr, "#32770", nullptr); }
    HWND Control(int id) const { return GetDlgItem(Pane(), id); }
    HWND Bar() const;
    // What the status bar shows.
    std::string BarText() const;
    bool IsGrayed(UINT command) const { return (GetMenuState(GetMenu(main), command, MF_BYCOMMAND) & MF_GRAYED) != 0; }

    HelpSpy help;
    HWND main = nullptr;

private:
    bool IsRefilling() const;
};
