// MessageLog: what windows are told, one line for each message, in the order in which it happens.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <map>
#include <string>
#include <vector>

// One log at a time. A line names the window, the message and the parameters that matter to a program, such as
//
//     main WM_COMMAND id 101 code 0 from button
//     * main WM_PAINT
//
// with a star before what came out of the queue; all else was sent. Windows made by MakeTestWindow are recorded from their
// first message on, others once they are watched. The log must go after the windows.
class MessageLog {
public:
    // Nothing but these messages is recorded.
    explicit MessageLog(std::initializer_list<UINT> messages);
    ~MessageLog();
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    void Watch(HWND window, const char* name);
    // The name alone, for a window whose own procedure calls Add.
    void Name(HWND window, const char* name) { names[window] = name; }
    // Other messages from now on.
    void Record(std::initializer_list<UINT> newMessages);
    // A line of the test's own between the messages.
    void Note(const std::string& line);

    // What has been recorded since the last call, each line with its end.
    std::string Take();

    // For the procedures of the windows.
    static void Add(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    static LRESULT CALLBACK WatchProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    std::string NameOf(HWND window) const;
    std::string Describe(UINT message, WPARAM wParam, LPARAM lParam) const;

    std::vector<UINT> messages;
    std::map<HWND, std::string> names;
    std::map<HWND, WNDPROC> procedures;
    std::string lines;
};

// The lines as Take gives them.
std::string Lines(std::initializer_list<const char*> lines);

// A window of a plain class of the test: what it is told goes to the log, if there is one, under its title as its name, and
// from there to DefWindowProcA; a paint message is answered by validating. Gone with its test by DestroyWindow.
HWND MakeTestWindow(const char* title, DWORD style, HWND parent = nullptr, int width = 300, int height = 200,
                    HMENU menu = nullptr);

// A visible child with a tab stop, gone with its parent.
HWND MakeChild(const char* className, DWORD style, HWND parent, int id, int x, int y, int width, int height);

// What a test window does with a message in place of DefWindowProcA; null for nothing of its own. True if it is done with
// it.
using MessageHook = bool (*)(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
void SetMessageHook(MessageHook hook);
