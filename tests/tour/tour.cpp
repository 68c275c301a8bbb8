// Runs the program by itself, from one stage to the next, and saves a picture of each: for a machine without a display.
//
//   tour FOLDER      the language is taken from LANG, as everywhere
//
// A main unit has to be on COM1. Keys do what keys can do, so the pictures show what a user would come to. Exit code 0 if
// every stage was reached and the program ended by itself.
#include <windows.h>

#include <cctype>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "AppWindow.h"
#include "Pictures.h"
#include "RunWithDesktop.h"
#include "resource.h"

namespace {

constexpr UINT kLookMs = 50;
constexpr DWORD kLimitMs = 60000;
// Longer than the line to the main unit is ever silent in the middle of something.
constexpr DWORD kLongStillMs = 700;
constexpr DWORD kShortStillMs = 200;
constexpr int kExitFailed = 1;

void Press(std::vector<BYTE> keys) {
    for (const BYTE key : keys) {
        keybd_event(key, 0, 0, 0);
    }
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        keybd_event(*key, 0, KEYEVENTF_KEYUP, 0);
    }
}

// Letters and blanks.
void Type(const char* text) {
    for (const char* letter = text; *letter != '\0'; ++letter) {
        const auto key = static_cast<BYTE>(std::toupper(*letter));
        if (std::isupper(static_cast<unsigned char>(*letter)) != 0) {
            Press({VK_SHIFT, key});
        } else {
            Press({key});
        }
    }
}

// Closes the menu that is open, and opens another one.
void OpenMenu(BYTE letter) {
    Press({VK_ESCAPE});
    Press({VK_ESCAPE});
    Press({VK_MENU, letter});
}

HWND Control(HWND main, int id) {
    return GetDlgItem(FindWindowExA(main, nullptr, "#32770", nullptr), id);
}

struct Stage {
    const char* name;
    DWORD stillMs;
    void (*begin)(HWND main);
};

constexpr Stage kStages[] = {
    {"titles", kLongStillMs, [](HWND) {}},
    {"editor", kShortStillMs,
     [](HWND main) {
         SetFocus(Control(main, IDC_GROUP_LIST));
         Press({VK_RETURN});
     }},
    {"edited", kShortStillMs,
     [](HWND) {
         Type("Typed on a real keyboard");
         Press({VK_RETURN});
         Press({VK_RETURN});
         Type("First track");
         Press({VK_RETURN});
         Press({VK_RETURN});
         Type("Not meant");
         Press({VK_RETURN});
     }},
    {"undone", kShortStillMs, [](HWND) { Press({VK_CONTROL, 'U'}); }},
    {"menu-file", kShortStillMs, [](HWND) { OpenMenu('F'); }},
    {"import", kShortStillMs, [](HWND) { Press({'I'}); }},
    {"imported", kLongStillMs, [](HWND) { desktop::ChooseFile("titles.csv"); }},
    {"export", kShortStillMs,
     [](HWND) {
         OpenMenu('F');
         Press({'E'});
     }},
    {"exported", kLongStillMs, [](HWND) { desktop::ChooseFile("saved.csv"); }},
    {"synced", kLongStillMs,
     [](HWND) {
         OpenMenu('V');
         Press({'S'});
     }},
    {"menu-edit", kShortStillMs, [](HWND) { OpenMenu('E'); }},
    {"menu-view", kShortStillMs, [](HWND) { OpenMenu('V'); }},
    {"menu-tool", kShortStillMs, [](HWND) { OpenMenu('T'); }},
    {"ranges", kShortStillMs, [](HWND) { Press({'O'}); }},
    {"refused", kShortStillMs,
     [](HWND) {
         Press({'9'});
         Press({VK_TAB});
         Press({'3'});
         Press({VK_RETURN});
     }},
    {"narrowed", kLongStillMs,
     [](HWND) {
         Press({VK_RETURN});
         Press({'2'});
         Press({VK_TAB});
         Press({'6'});
         Press({VK_RETURN});
     }},
    {"menu-help", kShortStillMs, [](HWND) { OpenMenu('H'); }},
    {"about", kShortStillMs,
     [](HWND) {
         Press({VK_DOWN});
         Press({VK_RETURN});
     }},
    {"closing", kShortStillMs,
     [](HWND) {
         Press({VK_RETURN});
         Press({VK_MENU, VK_F4});
     }},
};

// A stage is over when its picture has come about and stood still for some time.
class Tour {
public:
    explicit Tour(std::string folder) : folder(std::move(folder)) {}

    void Look(HWND main) {
        const DWORD now = GetTickCount();
        if (!hasBegun) {
            Current().begin(main);
            hasBegun = true;
            since = now;
            stillSince = now;
            return;
        }
        std::string picture = desktop::PictureOfWindows();
        if (picture.empty() || picture != last) {
            stillSince = now;
            last = std::move(picture);
        } else if (now - stillSince >= Current().stillMs && IsThrough(main)) {
            Save();
        }
        if (now - since > kLimitMs) {
            std::fprintf(stderr, "The stage %s does not come to its end\n", Current().name);
            std::exit(kExitFailed);
        }
    }

    bool IsOver() const { return stage == std::size(kStages); }

private:
    const Stage& Current() const { return kStages[stage]; }

    // A transfer ends with both lists filled and nothing to tell; what was sent looks as it did before. All else shows.
    bool IsThrough(HWND main) const {
        if (Current().stillMs == kShortStillMs) {
            return last != saved;
        }
        return SendMessageA(Control(main, IDC_MESSAGE_LINE), WM_GETTEXTLENGTH, 0, 0) == 0 &&
               SendMessageA(Control(main, IDC_GROUP_LIST), LB_GETCOUNT, 0, 0) > 0 &&
               SendMessageA(Control(main, IDC_TRACK_LIST), LB_GETCOUNT, 0, 0) > 0;
    }

    void Save() {
        char number[8];
        std::snprintf(number, sizeof number, "%02zu-", stage + 1);
        const std::string path = folder + "/" + number + Current().name + ".png";
        std::ofstream file(path, std::ios::binary);
        file << last;
        file.close();
        if (!file) {
            std::fprintf(stderr, "%s cannot be written\n", path.c_str());
            std::exit(kExitFailed);
        }
        std::puts(path.c_str());
        saved = last;
        hasBegun = false;
        ++stage;
        if (IsOver()) {
            Press({'Y'});
        }
    }

    std::string folder;
    std::size_t stage = 0;
    bool hasBegun = false;
    DWORD since = 0;       // the stage began
    DWORD stillSince = 0;  // the picture is as it is now
    std::string last;
    std::string saved;
};

Tour* tour = nullptr;

void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD) {
    HWND main = FindWindowA(kMainClassName, nullptr);
    if (main != nullptr && IsWindowVisible(main) && !tour->IsOver()) {
        tour->Look(main);
    }
}

int RunTour(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "tour FOLDER\n");
        return kExitFailed;
    }
    Tour running(argv[1]);
    tour = &running;
    // A timer without a window is served by every modal loop.
    SetTimer(nullptr, 0, kLookMs, OnTimer);
    char noCommandLine[] = "";
    const int result = WinMain(GetModuleHandleA(nullptr), nullptr, noCommandLine, SW_SHOW);
    if (!running.IsOver()) {
        std::fprintf(stderr, "The program ended before its time\n");
        return kExitFailed;
    }
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    return RunWithDesktop(argc, argv, RunTour);
}
