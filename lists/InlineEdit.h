// The text box that a list opens over a row while its title is edited.
#pragma once

#include <windows.h>

#include "WindowBase.h"

// Serves one edit. It gives back a clean text and knows nothing of titles. Enter and the loss of the focus end the edit: the
// list hears of it by UC_END_EDIT, posted, and deletes the object then, when the editor's own messages are through.
class InlineEdit : public WindowBase {
public:
    // `owner` is the list's pointer to this object. It is emptied if the object has to go on its own, because the list's
    // window was destroyed under it.
    explicit InlineEdit(InlineEdit*& owner) : owner(owner) {}
    ~InlineEdit() override;

    // Makes the control, without an input method and for at most 32 bytes. The rectangle is in the parent's client area.
    // Gives 1 or 0.
    int Create(DWORD style, const RECT& rect, HWND parent, int id);

    void SetEditFont(HFONT font);
    // Takes the focus; Enter gives it back to the window that had it.
    void TakeFocus();
    void SetText(const char* text);
    // `end` -1: up to the end.
    void SelectRange(int start, int end);

    // Fills `out` with zeros and copies the text, at most capacity - 1 bytes. What is not printable ASCII is a blank, a
    // double-byte character one blank. Gives the number of bytes.
    int GetCleanText(char* out, int capacity) const;

    bool IsEnterPressed() const { return enterPressed; }
    HWND Window() const { return hwnd; }

    void OnKeyDown(UINT virtualKey, BOOL isDown, int repeat, UINT flags) override;
    void OnKillFocus(HWND otherWindow) override;
    void OnNcDestroy() override;

private:
    InlineEdit*& owner;
    bool enterPressed = false;
    HWND prevFocus = nullptr;  // had the focus before
};
