// The box that tells the version.
#pragma once

#include <windows.h>

class AboutBox {
public:
    AboutBox() = default;
    virtual ~AboutBox() = default;
    AboutBox(const AboutBox&) = delete;
    AboutBox& operator=(const AboutBox&) = delete;

    // Stands until Enter or its button ends it.
    void Run(HWND owner);

private:
    static INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    static void FillIn(HWND dialog);
};
