// The desktop of the thread that runs the program: its windows, who has the focus, and the road from the window system's
// events to messages.
#pragma once

#include <windows.h>

#include <QObject>
#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "DesktopParts.h"
#include "Keyboard.h"
#include "Screen.h"
#include "ScreenWindow.h"

class QApplication;
class QEvent;
class QInputMethodEvent;

namespace desktop {

inline constexpr UINT kDoubleClicks = 0x0008;  // CS_DBLCLKS

// Registers a class of the layer itself.
void AddClass(LPCSTR name, WNDPROC procedure, UINT style, int extraBytes = 0);
// In any letters.
bool IsClass(HWND window, const char* name);

// Whether a mouse message tells of a button that goes down.
bool IsPress(UINT message);

// Something that the user or the window system has done, not yet a message.
struct InputEvent {
    enum class Kind { kKey, kText, kMouse, kWheel, kClose };
    Kind kind;
    HWND topLevel = nullptr;  // of the mouse and of what is closed
    UINT message = 0;         // of the mouse; WM_KEYDOWN or WM_KEYUP of a key
    int virtualKey = 0;
    bool elsewhere = false;  // another program hears of this key
    std::string text;        // bytes of the code page that the key means, or that an input method has made
    POINT screen{0, 0};      // where the pointer is
    WPARAM mouseKeys = 0;    // MK_ flags
    int wheel = 0;
    DWORD timeMs = 0;
};

// One for the process, made before and destroyed after all windows. All members are for its thread but Wake.
class Desktop : public QObject, public Screen {
public:
    explicit Desktop(const DesktopParts& parts);
    ~Desktop() override;
    static Desktop& Get();
    // Whether the calling thread is the desktop's.
    static bool IsOwnThread();

    // --- Screen
    HWND CreateScreenWindow(const CREATESTRUCTA& create) override;
    bool IsScreenWindow(HWND window) const override;
    void DestroyScreenWindow(HWND window) override;
    LRESULT DefaultProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;
    void Poll() override;
    bool TakeInput(MSG& found, const MessageFilter& filter, bool remove) override;
    bool TakePaint(MSG& found, const MessageFilter& filter) override;
    void Wait(DWORD milliseconds) override;
    void Wake() override;

    // --- Windows
    ScreenWindow* Find(HWND window) const;
    ScreenWindow* FindByWidget(const QObject* widget) const;
    ScreenWindow* Root(ScreenWindow* window) const;
    const std::vector<ScreenWindow*>& TopLevel() const { return topLevel; }
    std::vector<ScreenWindow*>& Siblings(const ScreenWindow& window);
    HWND DesktopWindow() const { return desktopWindow; }
    // FindWindowExA among the windows of this process.
    HWND FindByName(HWND parent, HWND childAfter, LPCSTR className, LPCSTR title) const;
    // Behind all its siblings.
    void Link(ScreenWindow& window);
    void Unlink(ScreenWindow& window);
    void PutBehind(ScreenWindow& window, HWND insertAfter);

    // --- Input (Input.cpp)
    void AddInput(InputEvent event);
    // Another program gets the keys from now on, and the releases of those that are held.
    void ReleaseKeys();
    // Gives an event to the control's own widget, past the filter that turns events into messages.
    void GiveToWidget(HWND window, QEvent& event);
    const std::string* TextOf(const MSG& message) const;

    // --- Focus (Activation.cpp)
    // While the user is elsewhere the window system is not asked for the front.
    bool Activate(HWND window, WPARAM how);
    // The same with the window's root, which comes to the front wherever the user is.
    bool BringToFront(HWND window);
    void Deactivate();
    HWND ChangeFocus(HWND window);
    void SyncFocus();
    // Until the window system has done it, no window at all may be active; that is none of the program's business.
    void AskForActivation(QWidget& widget);
    // A dialog of Qt's above a disabled window. Returns the one before it, which is put back when it closes.
    struct Chooser {
        QWidget* dialog = nullptr;
        HWND owner = nullptr;
    };
    Chooser SetChooser(Chooser now) { return std::exchange(chooser, now); }
    void FollowWindowSystem();
    // The window is going, or is hidden or disabled: who has the focus or is active instead?
    void LeaveFocus(ScreenWindow& window);

    const DesktopParts parts;
    HWND active = nullptr;
    HWND focus = nullptr;
    bool isElsewhere = false;  // the user has gone to another program and not come back
    HWND capture = nullptr;
    Keyboard keyboard;     // as of the messages fetched so far
    Keyboard keyboardNow;  // as of the events that have come in

    // --- Painting
    void WantPaint();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool BringUp(ScreenWindow& window, const CREATESTRUCTA& create);
    void HideForGood(ScreenWindow& window);
    void TellDestroy(HWND window);
    void EndTree(HWND window);
    void ClearTrash();
    void HandleEvents(bool wait);
    bool ToMessage(const InputEvent& event, MSG& message);
    bool KeyMessage(const InputEvent& event, MSG& message) const;
    bool MouseMessage(const InputEvent& event, MSG& message);
    void TakeOff(const InputEvent& event, const MSG& message);
    void AddKeyElsewhere(int virtualKey, bool down);
    // Shift, Ctrl and Alt are as an event tells, but for `except`, the key of the event itself.
    void FollowModifiers(Qt::KeyboardModifiers modifiers, int except = 0);
    bool FilterEvent(ScreenWindow& window, QEvent& event);
    bool FilterInputMethod(ScreenWindow& window, QInputMethodEvent& event);
    void KeepPopupInFront(HWND disabled);
    ScreenWindow* FirstInvalid(const std::vector<ScreenWindow*>& windows, const MessageFilter& filter) const;

    std::unordered_map<HWND, std::unique_ptr<ScreenWindow>> windows;
    std::vector<ScreenWindow*> topLevel;  // front first
    std::vector<QWidget*> trash;          // of windows that are gone, while their events may still be under way
    HWND desktopWindow = nullptr;
    std::deque<InputEvent> input;
    MSG lastKey{};         // the key message fetched last
    std::string lastText;  // and what it means
    const QObject* lastActiveWidget = nullptr;
    Chooser chooser;
    bool awaitsActivation = false;
    DWORD awaitedSinceMs = 0;
    const QEvent* given = nullptr;  // the event that goes to a widget on purpose
    int giving = 0;                 // depth of such calls
    int inWindowSystem = 0;         // depth of calls that handle the window system's events
    DWORD lastPollMs = 0;
};

}  // namespace desktop
