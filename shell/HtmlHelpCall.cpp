#include "HtmlHelpCall.h"

namespace {

using HtmlHelpProc = HWND(WINAPI*)(HWND window, LPCSTR file, UINT command, DWORD_PTR data);

constexpr char kRegisteredAt[] = "CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32";
constexpr char kUsualName[] = "hhctrl.ocx";
constexpr WORD kHtmlHelpA = 14;
constexpr DWORD kPathSize = 260;

HelpLoader helpLoader = {LoadLibraryA, GetProcAddress};
HMODULE helpLibrary = nullptr;
HtmlHelpProc helpProc = nullptr;
bool helpSearchFailed = false;

HMODULE LoadRegisteredLibrary() {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, kRegisteredAt, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return nullptr;
    }
    // The registry does not promise a terminator.
    char path[kPathSize + 1] = "";
    DWORD size = kPathSize;
    const LSTATUS status = RegQueryValueExA(key, nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(path), &size);
    RegCloseKey(key);
    return status == ERROR_SUCCESS ? helpLoader.load(path) : nullptr;
}

void FindLibrary() {
    helpLibrary = LoadRegisteredLibrary();
    if (helpLibrary == nullptr) {
        helpLibrary = helpLoader.load(kUsualName);
    }
    helpSearchFailed = helpLibrary == nullptr;
}

}  // namespace

HWND HtmlHelpCall(HWND window, LPCSTR file, UINT command, DWORD_PTR data) {
    if (helpLibrary == nullptr && !helpSearchFailed) {
        FindLibrary();
        if (helpSearchFailed) {
            return nullptr;
        }
    }
    if (helpProc == nullptr) {
        // By way of a type that any function pointer may take on.
        auto* found = reinterpret_cast<void (*)()>(helpLoader.find(helpLibrary, MAKEINTRESOURCEA(kHtmlHelpA)));
        helpProc = reinterpret_cast<HtmlHelpProc>(found);
        if (helpProc == nullptr) {
            helpSearchFailed = true;
            return nullptr;
        }
    }
    return helpProc(window, file, command, data);
}

void UseHelpLoader(const HelpLoader& loader) {
    helpLoader = loader;
    helpLibrary = nullptr;
    helpProc = nullptr;
    helpSearchFailed = false;
}
