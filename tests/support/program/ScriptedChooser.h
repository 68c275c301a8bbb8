// Stands in for the platform's file chooser: writes down what it is given, and answers at once. Whatever is linked with it
// has this one in place of the platform's.
#pragma once

#include <windows.h>

#include <commdlg.h>

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

// The two calls.
BOOL CALLBACK OpenFile(OPENFILENAMEA* chooser);
BOOL CALLBACK SaveFile(OPENFILENAMEA* chooser);

}  // namespace scripted
