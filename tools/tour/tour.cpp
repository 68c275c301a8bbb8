// Runs the program by itself, from one stage to the next, and saves a picture of each: for a machine without a display.
//
//   tour FOLDER      the language is taken from LANG, as everywhere
//
// Keys do what keys can do, so the pictures show what a user would come to. Exit code 0 if every stage was reached and the
// program ended by itself.
#include <windows.h>

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
constexpr DWORD kLimitMs = 10000;
constexpr int kExitFailed = 1;

void Press(std::vector<BYTE> keys) {
    for (const BYTE key : keys) {
        keybd_event(key, 0, 0, 0);
    }
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        keybd_event(*key, 0, KEYEVENTF_KEYUP, 0);
    }
}

// Closes the menu that is open, and opens another one.
void OpenMenu(BYTE letter) {
    Press({VK_ESCAPE});
    Press({VK_ESCAPE});
    Press({VK_MENU, letter});
}

struct Stage {
    const char* name;
    void (*begin)(HWND main);
};

constexpr Stage kStages[] = {
    {"main", [](HWND) {}},
    {"menu-file", [](HWND) { OpenMenu('F'); }},
    {"menu-edit", [](HWND) { OpenMenu('E'); }},
    {"menu-view", [](HWND) { OpenMenu('V'); }},
    {"menu-tool", [](HWND) { OpenMenu('T'); }},
    {"menu-help", [](HWND) { OpenMenu('H'); }},
    {"about",
     [](HWND) {
         Press({VK_DOWN});
         Press({VK_RETURN});
     }},
    {"closing",
     [](HWND) {
         Press({VK_RETURN});
         Press({VK_MENU, VK_F4});
     }},
};

// A stage is over when its picture differs from the one before and stands still.
class Tour {
public:
    explicit Tour(std::string folder) : folder_(std::move(folder)) {}

    void Look(HWND main) {
        if (!hasBegun_) {
            Current().begin(main);
            hasBegun_ = true;
            since_ = GetTickCount();
            return;
        }
        std::string now = desktop::PictureOfWindows();
        const bool isDone = !now.empty() && now != saved_ && now == last_;
        last_ = std::move(now);
        if (isDone) {
            Save();
        } else if (GetTickCount() - since_ > kLimitMs) {
            std::fprintf(stderr, "The stage %s is not reached\n", Current().name);
            std::exit(kExitFailed);
        }
    }

    bool IsOver() const { return stage_ == std::size(kStages); }

private:
    const Stage& Current() const { return kStages[stage_]; }

    void Save() {
        const std::string path = folder_ + "/" + std::to_string(stage_ + 1) + "-" + Current().name + ".png";
        std::ofstream file(path, std::ios::binary);
        file << last_;
        file.close();
        if (!file) {
            std::fprintf(stderr, "%s cannot be written\n", path.c_str());
            std::exit(kExitFailed);
        }
        std::puts(path.c_str());
        saved_ = last_;
        hasBegun_ = false;
        ++stage_;
        if (IsOver()) {
            Press({'Y'});
        }
    }

    std::string folder_;
    std::size_t stage_ = 0;
    bool hasBegun_ = false;
    DWORD since_ = 0;
    std::string last_;
    std::string saved_;
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
