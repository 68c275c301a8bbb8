// One object for one native control: what the control does is written as virtual operations, not as a window procedure.
#pragma once

#include <windows.h>

// The object replaces the control's window procedure and sees each message first; then the control's own procedure runs as
// it would without the object. So a handler can neither swallow a message nor change its result. Two messages end here:
// WM_NCHITTEST and WM_GETDLGCODE.
//
// The owner creates the object, binds it to a complete control and deletes it; deleting it destroys the control. All of it
// belongs to the thread of the windows.
class WindowBase {
public:
    WindowBase() = default;
    virtual ~WindowBase();
    WindowBase(const WindowBase&) = delete;
    WindowBase& operator=(const WindowBase&) = delete;

    // Takes over the window procedure of `hwnd`. Gives 1, or 0 if there is no window, if the object is attached already, or
    // if the procedure cannot be replaced.
    int Attach();

    // Attach to a control of a dialog. Gives 0 also if the dialog has no such control.
    int AttachDlgItem(HWND dialog, int id);

    // Puts the control's own procedure back.
    void Detach();

    // Destroys the control. It is detached before, so that the object hears nothing of its end; that happens only if
    // somebody else destroys the control.
    void DestroyNative();

    // Moves the focus at a Tab: there is no dialog navigation in the program's message loop. Gives 1 if the key is to go to
    // OnKeyDown.
    int HandleTabKey(UINT virtualKey, BOOL isDown, int repeat, UINT flags);

    // From Attach, before the object is tied to the window: what this provokes in the control is the control's own business.
    virtual void OnAttach() {}

    virtual LRESULT WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    // Each is named after its message. Coordinates and sizes are signed and in pixels, `keys` are the MK_ flags.
    virtual void OnDrawItem(DRAWITEMSTRUCT*) {}
    virtual LRESULT OnGetDlgCode(LPARAM lParam);
    // `repeat` counts presses in this message, `flags` is the high word of its lParam.
    virtual void OnKeyDown(UINT /*virtualKey*/, BOOL /*isDown*/, int /*repeat*/, UINT /*flags*/) {}
    virtual void OnKillFocus(HWND /*otherWindow*/) {}
    virtual void OnLButtonDown(BOOL /*isDouble*/, int /*x*/, int /*y*/, WPARAM /*keys*/) {}
    virtual void OnLButtonUp(int /*x*/, int /*y*/, WPARAM /*keys*/) {}
    virtual void OnMeasureItem(MEASUREITEMSTRUCT*) {}
    virtual void OnMouseMove(int /*x*/, int /*y*/, WPARAM /*keys*/) {}
    // `turn` is positive away from the user, WHEEL_DELTA for a notch. The place is the pointer's on the screen.
    virtual void OnMouseWheel(int /*turn*/, int /*x*/, int /*y*/) {}
    // The first argument is always 0. Whichever form the message has, it begins with the window's rectangle.
    virtual void OnNcCalcSize(int /*zero*/, RECT*) {}
    // The object may delete itself here.
    virtual void OnNcDestroy() {}
    virtual LRESULT OnNcHitTest(int x, int y);
    virtual void OnNcPaint(HRGN /*region*/) {}
    virtual void OnSetFocus(HWND /*otherWindow*/) {}
    virtual void OnSize(WPARAM /*kind*/, int /*width*/, int /*height*/) {}
    virtual void OnTimer(UINT_PTR /*timerId*/) {}
    // A code of PaneRequests.h or one between lists, and its argument.
    virtual void OnUserMessage(WPARAM /*code*/, LPARAM /*value*/) {}
    // No message: whoever learns that the selection has changed calls it.
    virtual void OnSelChange() {}

protected:
    HWND hwnd = nullptr;   // none before the object is bound, and again after DestroyNative
    DWORD dialogCode = 0;  // answers WM_GETDLGCODE; with DLGC_WANTTAB Tab is a key like any other

private:
    static LRESULT CALLBACK StaticWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Route(UINT message, WPARAM wParam, LPARAM lParam);
    void RouteMouse(UINT message, WPARAM wParam, LPARAM lParam);

    WNDPROC prevWndProc = nullptr;  // the procedure that was replaced; none while not attached
};
