// How a window comes up.
#include <algorithm>

#include "Desktop.h"
#include "MessageState.h"
#include "Placement.h"
#include "Widgets.h"

namespace desktop {

namespace {

constexpr int kDefaultOffset = 80;

LPCSTR MenuNameOfClass(HWND window) {
    const MessageLock state;
    return state->windows.Find(window)->windowClass.menuName;
}

bool MayBeSized(const CREATESTRUCTA& create) {
    return (create.style & static_cast<LONG>(WS_THICKFRAME)) != 0;
}

RECT FirstPlace(HWND handle, const CREATESTRUCTA& create, bool isChild) {
    int x = create.x;
    int y = create.y;
    int width = create.cx;
    int height = create.cy;
    const RECT screen = WorkAreaAround(nullptr);
    if (x == CW_USEDEFAULT) {
        x = screen.left + kDefaultOffset;
        y = screen.top + kDefaultOffset;
    }
    if (width == CW_USEDEFAULT) {
        width = (screen.right - screen.left) * 3 / 4;
        height = (screen.bottom - screen.top) * 3 / 4;
    }
    if (!isChild && MayBeSized(create)) {
        MINMAXINFO bounds;
        AskMinMax(handle, bounds);
        width = std::max<int>(width, bounds.ptMinTrackSize.x);
        height = std::max<int>(height, bounds.ptMinTrackSize.y);
    }
    return {x, y, x + std::max(width, 0), y + std::max(height, 0)};
}

}  // namespace

bool Desktop::BringUp(ScreenWindow& made, const CREATESTRUCTA& create) {
    const HWND handle = made.handle;
    const bool isChild = made.parent != nullptr;
    made.text = create.lpszName != nullptr ? create.lpszName : "";
    made.place = FirstPlace(handle, create, isChild);
    MakeWidget(made);
    Link(made);
    if (!isChild) {
        parts.attachMenu(made, create.hMenu, MenuNameOfClass(handle));
    }
    PlaceWidget(made);

    const auto parameter = reinterpret_cast<LPARAM>(&create);
    if (SendMessageA(handle, WM_NCCREATE, 0, parameter) == 0) {
        // A window that has not come up hears no WM_DESTROY.
        EndTree(handle);
        return false;
    }
    if (ScreenWindow* window = Find(handle)) {
        CalculateClient(*window, true, nullptr);
    }
    if (SendMessageA(handle, WM_CREATE, 0, parameter) == -1) {
        DestroyWindow(handle);
        return false;
    }
    if (isChild && Find(handle) != nullptr) {
        TellSize(handle);
        TellMove(handle);
    }
    if (Find(handle) != nullptr && (create.style & static_cast<LONG>(WS_VISIBLE)) != 0) {
        ShowWindow(handle, SW_SHOW);
    }
    return Find(handle) != nullptr;
}

}  // namespace desktop
