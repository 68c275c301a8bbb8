#include "MessageService.h"

namespace {

constexpr int kTextSize = 500;

}  // namespace

int MessageService::Attach(HWND window) {
    auto* instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE));
    if (instance == nullptr) {
        return 0;
    }
    hWnd = window;
    hInstance = instance;
    return 1;
}

int MessageService::SetInfoCaption(UINT id) {
    return LoadCaption(id, infoCaption);
}

int MessageService::SetErrorCaption(UINT id) {
    return LoadCaption(id, errorCaption);
}

int MessageService::LoadCaption(UINT id, char* caption) {
    return LoadStringA(hInstance, id, caption, kCaptionSize) > 0 ? 1 : 0;
}

int MessageService::ShowInfo(UINT id, UINT style) {
    return Show(id, infoCaption, style);
}

int MessageService::ShowError(UINT id) {
    return Show(id, errorCaption, MB_ICONHAND);
}

int MessageService::Show(UINT id, const char* caption, UINT style) {
    char text[kTextSize] = "";
    LoadStringA(hInstance, id, text, kTextSize);
    return MessageBoxA(hWnd, text, caption, style);
}
