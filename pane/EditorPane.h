// The child dialog that fills the main window above the status bar.
#pragma once

#include <windows.h>

#include <memory>

#include "CListLeft.h"
#include "CListRight.h"
#include "StopButton.h"
#include "SyncButton.h"
#include "TitleStore.h"

class MessageService;

// Holds the controls and the keyboard focus. There is one at a time: thePane. On the thread of the windows.
class EditorPane {
public:
    EditorPane() = default;
    virtual ~EditorPane();
    EditorPane(const EditorPane&) = delete;
    EditorPane& operator=(const EditorPane&) = delete;

    // Not owned; null is ignored.
    void SetMessageService(MessageService* service);

    // Makes the dialog as a child of the window and shows it. Gives 1, or 0 if something could not be made; what was made
    // goes with Destroy.
    int Create(HWND parent);

    // Fills the upper left of the main window's client area with that size in pixels. The lists come to the top of the
    // z-order, on which the order of the Tab key rests.
    void Layout(int width, int height);

    // Gives the focus to the control that lost it last, if there was one.
    void RestoreFocus();

    // May run twice.
    void Destroy();

    // For the menu: 1 or 0. No transfer can run, nothing can be undone and no title be cleared while there is no link, no
    // store and no title.
    int IsLinkIdle() const { return 0; }
    int CanUndoEdit() const { return 0; }
    int CanClearTitle() const { return 0; }

private:
    static INT_PTR CALLBACK PaneDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void OnInitDialog(HWND dialog);
    bool CreateList(CTitleList& list, HWND dialog, int id);
    CTitleList* ListOf(UINT id) const;
    BOOL OnDrawItem(LPARAM item);
    BOOL OnMeasureItem(LPARAM item);
    BOOL OnCommand(WPARAM wParam);
    void OnPaneRequest(WPARAM code, LPARAM argument);
    void DestroyLists();

    HWND hMainWnd = nullptr;
    HWND hDlg = nullptr;
    HWND focusControl = nullptr;  // gets the focus back
    std::unique_ptr<CListLeft> groupList;
    std::unique_ptr<CListRight> trackList;
    std::unique_ptr<SyncButton> syncButton;
    std::unique_ptr<StopButton> stopButton;
    MessageService* messageService = nullptr;
    std::unique_ptr<TitleStore> titleStore;
    GroupId currentGroup = -1;  // that the pane works on
    LONG dialogReady = 0;       // OnInitDialog came to its end
};

// The one pane, for its dialog procedure.
extern EditorPane* thePane;
