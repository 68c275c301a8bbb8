// Message boxes with texts from the resources.
#pragma once

#include <windows.h>

// On the thread of the windows.
class MessageService {
public:
    MessageService() = default;
    virtual ~MessageService() = default;
    MessageService(const MessageService&) = delete;
    MessageService& operator=(const MessageService&) = delete;

    // The owner of all boxes, whose instance has the texts. Gives 1, or 0 for a window without an instance.
    int Attach(HWND window);

    // The captions, by string number. Give 1, or 0 if there is no such string.
    int SetInfoCaption(UINT id);
    int SetErrorCaption(UINT id);

    // Show a box with string `id`, empty if there is none, and give the button that ended it. `style` is that of
    // MessageBoxA.
    int ShowInfo(UINT id, UINT style);
    int ShowError(UINT id);

private:
    static constexpr int kCaptionSize = 100;

    int LoadCaption(UINT id, char* caption);
    int Show(UINT id, const char* caption, UINT style);

    HWND hWnd = nullptr;
    HINSTANCE hInstance = nullptr;
    char infoCaption[kCaptionSize] = "";
    char errorCaption[kCaptionSize] = "";
};
