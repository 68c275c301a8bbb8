// The time between opening and closing a menu.
#pragma once

#include <windows.h>

#include <QObject>
#include <QPoint>
#include <deque>

namespace desktop {

class MenuBarWidget;
class PopupWidget;
struct Menu;
struct MenuEntry;

// Serves messages while the menu is open, and takes keys and mouse for itself, as on Windows: what the window hears of it,
// and when, is the loop's doing alone. One at a time, on the stack of who opens the menu. Focus and active window stay as
// they are.
class MenuLoop : public QObject {
public:
    explicit MenuLoop(HWND window);
    ~MenuLoop() override;
    // Null while no menu is open.
    static MenuLoop* Running();

    void RunByKey(char letter);
    void RunByMouse(QPoint screen);

    // From the widgets, in the middle of the window system's events; the loop acts on them later. A press beside the menu
    // closes the popup at once, so that Qt gives the press to what lies there; then false.
    bool MousePressed(QPoint screen);
    void MouseReleased(QPoint screen);
    void MouseMoved(QPoint screen);
    void PopupHidden(const PopupWidget& popup);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class MouseKind { kPress, kRelease, kMove };
    struct MouseEntry {
        MouseKind kind;
        QPoint screen;
    };

    void Begin();
    void Serve();
    void End();
    bool IsThere() const;
    // Sends to the window; false if the menu is closed or gone afterwards.
    bool Tell(UINT message, WPARAM wParam, LPARAM lParam);
    MenuBarWidget* Bar() const;
    PopupWidget* OpenPopup() const;
    MenuEntry* BarEntry() const;
    Menu* PopupMenu() const;
    int CountOfBar() const;

    // What is highlighted and open. Each tells the window.
    void SelectBar(int item);
    void Open(bool selectFirst);
    void Close();
    void SelectItem(int item);
    void TellSelected(const MenuEntry& entry, UINT number, HMENU menu);
    void Choose();
    void MoveOnBar(int item);

    bool TakeMessage(const MSG& message);
    void KeyDown(const MSG& message);
    void BarKey(const MSG& message);
    void PopupKey(const MSG& message);
    void Step(int from, int by);
    void Letter(char letter);

    void Remember(MouseKind kind, QPoint screen);
    void TakeMouse(const MouseEntry& entry);
    void MouseOnBar(MouseKind kind, int item);
    void MouseOnPopup(MouseKind kind, int item);

    const HWND window;
    const HMENU menu;
    const HWND activeBefore;
    int barItem = -1;       // highlighted on the bar
    int popupItem = -1;     // highlighted in the open popup
    bool isOpen = false;    // the popup of barItem
    bool isHiding = false;  // its widget goes by our own doing
    bool ended = false;
    bool f10Pressed = false;
    WORD chosen = 0;
    std::deque<MouseEntry> mouse;
};

}  // namespace desktop
