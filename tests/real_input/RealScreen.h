// A screen with a window manager, and the keyboard and mouse before it.
#pragma once

#include <windows.h>

#include <filesystem>
#include <memory>
#include <string>

#include "Process.h"
#include "TemporaryFolder.h"

// An X server without a picture, and openbox. Made before the first window; all programs that are started later use it, with
// settings and locks of their own.
class RealScreen {
public:
    RealScreen();
    ~RealScreen();
    RealScreen(const RealScreen&) = delete;
    RealScreen& operator=(const RealScreen&) = delete;

    const std::filesystem::path& Folder() const { return folder.Path(); }

private:
    bool Start();

    const TemporaryFolder folder;
    std::unique_ptr<Process> server;
    std::unique_ptr<Process> manager;
};

// The one screen, made by main.
extern RealScreen* theScreen;

// Runs a command line and gives what it prints.
std::string Shell(const std::string& command);

// Runs xdotool with these arguments, "key ctrl+c" say, and gives what it prints. Fails the test if it fails, unless that is
// an answer.
std::string Xdotool(const std::string& arguments, bool mayFail = false);

// Moves the pointer to a place in a window's client area.
void PointAt(HWND window, int x, int y);

// The visible windows of that name, of any program; each is a number on a line.
std::string VisibleWindows(const std::string& name);
