// What the layer knows of one window.
#include "Window.h"

#include "WindowClasses.h"

#include <cstring>

Window::Window(WindowClass& windowClass, MessageQueue& owner, HWND parent)
    : windowClass(windowClass),
      owner(owner),
      parent(parent),
      procedure(windowClass.procedure),
      extra(static_cast<std::size_t>(windowClass.windowExtra)) {
    windowClass.windows++;
}

Window::~Window() {
    windowClass.windows--;
}

bool Window::IsExtra(int index) const {
    return index >= 0 && static_cast<std::size_t>(index) + sizeof(LONG_PTR) <= extra.size();
}

bool Window::GetLong(int index, LONG_PTR& value) const {
    if (index == GWLP_WNDPROC) {
        value = reinterpret_cast<LONG_PTR>(procedure);
    } else if (index == GWLP_USERDATA) {
        value = userData;
    } else if (IsExtra(index)) {
        // An offset need not be aligned.
        std::memcpy(&value, extra.data() + index, sizeof value);
    } else {
        return false;
    }
    return true;
}

bool Window::SetLong(int index, LONG_PTR value, LONG_PTR& previous) {
    if (!GetLong(index, previous)) {
        return false;
    }
    if (index == GWLP_WNDPROC) {
        procedure = reinterpret_cast<WNDPROC>(value);
    } else if (index == GWLP_USERDATA) {
        userData = value;
    } else {
        std::memcpy(extra.data() + index, &value, sizeof value);
    }
    return true;
}
