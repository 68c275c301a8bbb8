// What the group list and the track list have in common.
#pragma once

#include <windows.h>

#include "InlineEdit.h"
#include "RefillRequests.h"
#include "Shared.h"
#include "TitleNumbers.h"
#include "WindowBase.h"
#include "WorkerThread.h"

class TitleStore;

// A native owner-drawn list box with a frame and two step arrows of its own, rows of three columns, a selection that the
// object follows, an editor that opens by clicks, and a refresher that fills the rows on a thread of its own.
//
// A row's text is label, number and title, with a tab between them and every "&" of the title doubled, since text drawing
// takes "&" for a mark. A row's value is the GroupId in the high and the TrackNo in the low 16 bits.
//
// On the thread of the windows, but for RebuildTick and Populate. In this order: construct, StartWorker, AttachDlgItem,
// SetStore. Results are 1 or 0; no failure shows a message.
class CTitleList : public WindowBase {
public:
    ~CTitleList() override;

    // Starts the refresher. 0 if it runs already or no thread came up.
    int StartWorker();

    // Not owned; null takes it away, and returns when nobody reads it any more.
    void SetStore(TitleStore* newStore);
    // With 0 an edit that ends is thrown away, and none begins.
    void SetCommitEnabled(BOOL enabled);
    // The font of rows and editor, which also sets the columns. Null, or one without a name or that cannot be made: the font
    // that the control has. The rows have to be filled anew afterwards.
    void SetListFont(const LOGFONTA* description);
    // What is shown, from the next refill on.
    void SetDisplayRanges(const DisplayRanges& ranges) { requests.SetRanges(ranges); }
    // Has the rows filled anew. A refill under way is given up.
    virtual void RequestRefill(GroupId group) = 0;
    // A refill is asked for or under way.
    bool IsRefilling() const { return requests.IsRequested() || requests.IsRebuilding(); }

    // 1 if an editor is open and the window is none or the editor's.
    int OwnsEditor(HWND window) const;
    // What the selected row stands for; either may be null. 0 without a selected row.
    int GetSelectedIds(GroupId* group, TrackNo* track) const;
    // The selected row as this object knows it, -1 for none.
    int SelectedRow() const { return curSel; }
    // The next selection counts as a change, whichever it is.
    void ForgetSelection() { curSel = -1; }
    // Selects a row of the control; OnSelChange has to follow.
    void SelectRow(int rowIndex);
    void ClearRows();
    // Puts another title on a row; null leaves the field empty.
    int ReplaceRowText(int rowIndex, const char* text);

    // Opens the editor on the selected row. While rows are filled it does nothing: they may stand for other titles than a
    // moment ago.
    virtual int BeginEdit();
    // Closes the editor. 1 if its text was committed.
    virtual int EndEdit();
    // Gives the selected row's title another text, in the store and on a row. 0 if the title cannot be edited, or while rows
    // are filled.
    virtual int ApplyTitle(int rowIndex, const char* text);
    // The refresher's work, once in a period on its own thread.
    virtual void RebuildTick();

    void OnAttach() override;
    void OnKeyDown(UINT virtualKey, BOOL isDown, int repeat, UINT flags) override;
    void OnKillFocus(HWND otherWindow) override;
    void OnLButtonDown(BOOL isDouble, int x, int y, WPARAM keys) override;
    void OnLButtonUp(int x, int y, WPARAM keys) override;
    void OnMeasureItem(MEASUREITEMSTRUCT* item) override;
    void OnMouseMove(int x, int y, WPARAM keys) override;
    void OnMouseWheel(int turn, int x, int y) override;
    void OnNcCalcSize(int zero, RECT* rect) override;
    LRESULT OnNcHitTest(int x, int y) override;
    void OnSetFocus(HWND otherWindow) override;
    void OnTimer(UINT_PTR timerId) override;
    void OnUserMessage(WPARAM code, LPARAM value) override;
    void OnSelChange() override;

protected:
    // Distances from the window's edges to the frame's outline and to the client area, and a row's head as wide as any, with
    // the gap to the title as trailing blanks.
    CTitleList(const RECT& frameRect, const RECT& clientInset, const char* widthSample);

    // Every subclass's destructor calls it, for the refresher calls the subclass. May run twice.
    void Shutdown();

    // Fills the rows, on the refresher's thread, and stops when the refill is no longer the latest.
    virtual void Populate(const Refill& refill) = 0;
    // The latest refill is through: select, and tell.
    virtual void OnRefilled() = 0;
    // The wheel stands still again.
    virtual void EndTurn();
    bool IsTurning() const { return turnTimer != 0; }
    // Whether the user may change this title, if it is there.
    virtual bool IsEditable(GroupId, TrackNo) const { return true; }
    // The row of a title, -1 if it has none.
    int FindRow(GroupId group, TrackNo track) const;
    // The editor stays over the row of its title, wherever that is now, and the selection with it.
    void FollowEdit();
    // Adds a row behind the others, from any thread. False if the list refuses it.
    bool InsertRow(int rowIndex, const char* label, int number, const char* title, GroupId group, TrackNo track) const;

    // --- Geometry, in window coordinates
    SIZE WindowSize() const;
    RECT ClientArea() const;
    RECT UpArrow() const;
    RECT DownArrow() const;

    // --- Painting (CTitleListPainting.cpp)
    struct RowLook {
        COLORREF background;
        COLORREF text;
        COLORREF rules;
    };
    static RowLook LookOf(UINT itemState);
    // Not while the editor is open.
    bool IsRowToPaint(const DRAWITEMSTRUCT& item) const;
    // With or without rules above and below. Gives the row's height.
    int PaintRow(const DRAWITEMSTRUCT& item, const RowLook& look, bool hasRules) const;
    HRGN CreateOutline() const;
    // What of the window lies outside the shape, in the colour of the pane.
    void FillCorners(HDC dc, HRGN shape) const;
    // What of the shape lies outside the client area and the arrows.
    void FillBand(HDC dc, HRGN shape) const;
    void AddClientAndArrows(HRGN shape) const;
    void FrameShape(HDC dc, HRGN shape) const;
    void DrawArrows(HDC dc) const;
    void RedrawAll() const;
    // Tells the parent that the selection has changed, as the control does when the user selects.
    void PostSelChange() const;

    RECT frameRect;
    RECT clientInset;
    int charWidth = 0;  // average width of a character; with rowHeight 0: no row was measured yet
    int rowHeight = 0;
    bool arrowTracking = false;    // a press on an arrow is under way
    InlineEdit* editor = nullptr;  // owned; it empties the pointer if it has to go on its own
    // What the editor was opened on: the rows may change under it.
    GroupId editGroup = -1;
    TrackNo editTrack = 0;
    char editText[50] = "";
    char originalText[50] = "";
    int curSel = -1;
    bool commitEnabled = true;
    bool enterCommitted = false;          // the edit that is ending was ended by Enter
    Shared<TitleStore*> store = nullptr;  // written by the thread of the windows, read by the refresher
    RefillRequests requests;

private:
    static void RebuildProc(LPARAM list);
    void EndRefill(const Refill& refill);
    void SetRowHeight(int rowIndex);
    bool GetRowText(int rowIndex, char* text) const;
    bool OpenEditor();
    void CloseEditor();
    bool EditorRect(RECT& rect) const;
    int StoreTitle(GroupId group, TrackNo track, const char* text);
    bool CanEditSelection() const;
    int SetTitle(GroupId group, TrackNo track, int rowIndex, const char* text);
    bool IsClickOnSelection(int x, int y) const;
    bool IsInClient(int x, int y) const;
    POINT ToWindow(int x, int y) const;
    void DrawArrow(bool isPressed) const;
    void PaintFields(HDC dc, const RECT& row, const char* text) const;
    void StepSelection();
    void MoveSelection(int rows);
    void EndTracking();
    bool MakeFont(const LOGFONTA* description);
    void MeasureColumns();

    RECT arrowRect = {};         // of the arrow that is pressed
    int arrowKind = 0;           // 0 up, 1 down, 8 neither
    bool arrowPressed = false;   // the pointer is inside it
    int repeatInterval = -1;     // ticks between two steps
    int repeatCount = -1;        // ticks since the last one
    UINT_PTR repeatTimer = 0;    // not 0 while it runs
    int wheelRest = 0;           // of the mouse wheel, less than a notch
    UINT_PTR turnTimer = 0;      // not 0 from a notch to the end of the turn
    bool clickInClient = false;  // the last press began in the client area
    bool editArmed = true;       // a click on the selected row opens the editor
    bool editBusy = false;       // the editor is being opened or closed
    HFONT listFont = nullptr;    // owned
    LOGFONTA logFont = {};       // what it was made from
    char widthSample[20] = "";
    int labelWidth = 0;     // width of the sample
    int numberRight = 0;    // without its trailing blanks
    int fontRowHeight = 0;  // of a row in listFont, 0 without one
    WorkerThread worker;
    bool workerStarted = false;
};
