// The registered window classes of the process.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

struct WindowClass {
    std::string name;       // in one case, to be found by
    std::string shownName;  // as it was given
    WNDPROC procedure = nullptr;
    int windowExtra = 0;  // bytes beside each window, not negative
    UINT style = 0;
    HICON icon = nullptr;
    HBRUSH background = nullptr;
    LPCSTR menuName = nullptr;  // a number in place of a name, or null
    int windows = 0;            // that exist now; a class with windows stays
};

// Every call wants the lock of MessageState. A class stays at its address until it is removed.
class WindowClasses {
public:
    // 0 if it cannot be; else a number that stands for no class: nobody asks for one by its atom.
    ATOM Add(const WNDCLASSEXA& description);

    // Compares without regard to case. Null if there is none.
    WindowClass* Find(LPCSTR name) const;

    // False for an unknown class and for one that has windows.
    bool Remove(LPCSTR name);

private:
    std::vector<std::unique_ptr<WindowClass>> classes;
};
