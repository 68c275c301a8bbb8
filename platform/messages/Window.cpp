#include "Window.h"

#include "WindowClasses.h"

#include <cstring>

Window::Window(WindowClass& windowClass, MessageQueue& owner, const CREATESTRUCTA& create)
    : windowClass(windowClass),
      owner(owner),
      parent(create.hwndParent),
      procedure(windowClass.procedure),
      style(create.style),
      exStyle(static_cast<LONG>(create.dwExStyle)),
      id(reinterpret_cast<LONG_PTR>(create.hMenu)),
      instance(reinterpret_cast<LONG_PTR>(create.hInstance)),
      extra(static_cast<std::size_t>(windowClass.windowExtra)) {
    windowClass.windows++;
}

Window::~Window() {
    windowClass.windows--;
}

bool Window::IsExtra(int index) const {
    return index >= 0 && static_cast<std::size_t>(index) + sizeof(LONG_PTR) <= extra.size();
}

LONG_PTR* Window::Field(int index) {
    switch (index) {
        case GWLP_USERDATA: return &userData;
        case GWL_STYLE: return &style;
        case GWL_EXSTYLE: return &exStyle;
        case GWLP_ID: return &id;
        case GWLP_HINSTANCE: return &instance;
        default: return nullptr;
    }
}

bool Window::GetLong(int index, LONG_PTR& value) const {
    if (index == GWLP_WNDPROC) {
        value = reinterpret_cast<LONG_PTR>(procedure);
    } else if (const LONG_PTR* field = const_cast<Window*>(this)->Field(index)) {
        value = *field;
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
    } else if (LONG_PTR* field = Field(index)) {
        *field = value;
    } else {
        std::memcpy(extra.data() + index, &value, sizeof value);
    }
    return true;
}
