// The child dialog that fills the main window above the status bar.
#pragma once

#include <windows.h>

#include <memory>

#include "CListLeft.h"
#include "CListRight.h"
#include "DeviceLink.h"
#include "Lock.h"
#include "MessageLine.h"
#include "PaneButtons.h"
#include "Shared.h"
#include "TitleStore.h"
#include "WorkerThread.h"

class MessageService;
class TitleFile;

// Joins the pieces: the titles, the link to the main unit, the two lists, the buttons and the message line. There is one at
// a time: thePane. On the thread of the windows, but for the group watcher's step.
//
// Titles are fetched by commands, and by the group watcher, which asks for the tracks of a group as soon as it is selected.
// What the link has to say comes as messages (EditorPaneLink.cpp); what the user wants, as commands
// (EditorPaneCommands.cpp).
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

    // Begins the search for the main unit. Gives 1, or 0 if there is nothing to search with.
    int StartLink();

    // Fills the upper left of the main window's client area with that size in pixels. The lists come to the top of the
    // z-order, on which the order of the Tab key rests.
    void Layout(int width, int height);

    // Gives the focus to the control that lost it last, if there was one.
    void RestoreFocus();

    // Commits the title that is being edited, if there is one.
    void EndInlineEdits() const;

    // Ends the link and every thread, and lets all titles go. May run twice.
    void Destroy();

    // --- Settings
    void SetCurrentGroup(GroupId group) { currentGroup = group; }
    // The group selected now, -1 for none.
    GroupId CurrentGroupForSaving();
    // Take effect when the link starts.
    void SetRanges(const DisplayRanges& newRanges) { ranges = newRanges; }
    const DisplayRanges& Ranges() const { return ranges; }
    // Null is ignored. Takes effect by ApplyFont.
    void SetLogFont(const LOGFONTA* description);
    void GetLogFont(LOGFONTA* description) const;
    // Gives the lists the font of the description; one that cannot be made changes nothing.
    void ApplyFont();

    // --- The menu, by command id: IDM_IMPORT and IDM_EXPORT, which give 1 if titles went through; IDM_UNDO, IDM_CLEAR and
    // IDM_ENTER; those of the View menu but for the font; IDM_OPTION and IDM_CONNECTION
    int OnFileCommand(WORD command);
    void OnEditCommand(WORD command);
    void OnTransferCommand(WORD command);
    void OnToolCommand(WORD command);
    void ChooseDisplayFont();

    // 1 or 0.
    int IsLinkIdle() const;
    int CanUndoEdit() const;
    int CanClearTitle() { return ClearTitle(false); }

private:
    static INT_PTR CALLBACK PaneDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void OnInitDialog(HWND dialog);
    bool CreateList(CTitleList& list, HWND dialog, int id);
    CTitleList* ListOf(UINT id) const;
    BOOL OnDrawItem(LPARAM item);
    BOOL OnMeasureItem(LPARAM item);
    BOOL OnCommand(WPARAM wParam);
    BOOL OnTimer(WPARAM id);
    void OnPaneRequest(WPARAM code, LPARAM argument);
    void OnGroupChanged(GroupId group);
    void DestroyLists();

    HWND Control(int id) const { return GetDlgItem(hDlg, id); }
    GroupId GetSelectedGroup() const;
    void SetControlsEnabled(BOOL enabled);
    void PushRanges();
    // Have the list filled anew, with that group selected or shown.
    void RefreshGroups(GroupId group) { groupList->RequestRefill(group); }
    void RefreshTracks(GroupId group) { trackList->RequestRefill(group); }
    void ClearLine() { line.Set(MessageLine::kEmpty, -1, -1); }

    // --- The link (EditorPaneLink.cpp)
    static void GroupWorkerStep(LPARAM pane);
    void FetchSelectedTracks();
    void Disarm();
    void CutOffLink();
    void DropLinkMessages() const;
    void ScanNextPort(BYTE status);
    void RequestAllGroups();
    void ShowLinkError(BYTE status, UINT defaultId);
    void OnLinkProgress(WPARAM wParam, LPARAM lParam);
    void OnLinkResult(WPARAM wParam);
    void OnConnectResult(BYTE code, BYTE status);
    void OnGetAllResult(BYTE code, BYTE status);
    void OnGroupResult(WORD operation, BYTE code, BYTE status);
    void Connected();

    // --- Commands (EditorPaneCommands.cpp)
    void BeginTransfer();
    void StopTransfer();
    void UndoLastEdit();
    void ShowUndone(GroupId group, TrackNo track, const char* text);
    int ClearTitle(bool apply);
    void EnterKey();
    void EditDisplayRanges();
    void Reconnect();
    void InitFont();

    // --- Files (EditorPaneFiles.cpp)
    int ImportTitles(GroupId group);
    void OverwriteTitles(GroupId group, const TitleFile& file) const;
    int ExportTitles(GroupId group);

    HWND hDlg = nullptr;
    HWND focusControl = nullptr;  // gets the focus back
    std::unique_ptr<CListLeft> groupList;
    std::unique_ptr<CListRight> trackList;
    std::unique_ptr<SyncButton> syncButton;
    std::unique_ptr<StopButton> stopButton;
    MessageService* messageService = nullptr;
    std::unique_ptr<TitleStore> titleStore;
    std::unique_ptr<DeviceLink> deviceLink;
    MessageLine line;
    DisplayRanges ranges;
    bool dialogReady = false;        // OnInitDialog came to its end
    bool scanning = false;           // the port scan has begun
    bool firstConnect = false;       // after the connect, fetch all titles
    int scanPortNumber = 0;          // of the COM port tried last
    LOGFONTA logFont = {};           // of the lists
    char importPath[MAX_PATH] = "";  // chosen last
    char exportPath[MAX_PATH] = "";

    // The watcher looks at all three, and writes fetchedGroup. The lock is around its decision and the start that follows
    // from it, so that whoever has disarmed it and holds the lock knows that it starts nothing more.
    CriticalSection watchLock;
    Shared<LONG> watchArmed = 0;        // the watcher may fetch tracks
    Shared<GroupId> currentGroup = -1;  // that the pane works on; -1 for none
    Shared<GroupId> fetchedGroup = -1;  // whose tracks were last asked for; -1 has them fetched
    WorkerThread groupWorker;
};

// The one pane, for its dialog procedure.
extern EditorPane* thePane;
