// Stands in for the platform's choosers of files and fonts: writes down what it is given, and answers at once. Whatever is
// linked with it has these in place of the platform's.
#pragma once

#include <windows.h>

#include <commdlg.h>

#include <functional>
#include <optional>
#include <string>

namespace scripted {

struct ChooserRequest {
    bool saves = false;
    HWND owner = nullptr;
    std::string filters;  // zero bytes as "|"
    DWORD firstFilter = 0;
    std::string fileName;
    std::string folder;
    std::string title;
    std::string extension;  // of a name without one
    DWORD flags = 0;
};

// The user picks that path each time; nothing is a cancel.
void AnswerChooser(std::optional<std::string> path);

// What the chooser was last given, if it was opened since the last call.
std::optional<ChooserRequest> TakeChooserRequest();

// The user in front of the font chooser; true for OK. Without one it is cancelled.
inline std::function<bool(CHOOSEFONTA& chooser)> onFont;

// The calls.
BOOL CALLBACK OpenFile(OPENFILENAMEA* chooser);
BOOL CALLBACK SaveFile(OPENFILENAMEA* chooser);
BOOL CALLBACK PickFont(CHOOSEFONTA* chooser);

}  // namespace scripted
