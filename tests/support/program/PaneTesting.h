// What the tests of the pane need: titles in its store, its lists and its line, and the boxes that it shows.
#pragma once

#include <string>

#include "PaneRequests.h"
#include "ScriptedLink.h"
#include "ShellTesting.h"
#include "Titles.h"
#include "resource.h"

// Reads every box with that caption (a string id) while it lives, and presses its OK. It waits for so many to stand at once
// before it answers the first, which is the one on top.
class BoxReader {
public:
    explicit BoxReader(UINT captionId, int atOnce = 1);
    ~BoxReader();
    BoxReader(const BoxReader&) = delete;
    BoxReader& operator=(const BoxReader&) = delete;

    // Of all boxes so far, a line each.
    const std::string& Texts() const { return texts; }

private:
    static void CALLBACK OnTimer(HWND window, UINT message, UINT_PTR id, DWORD time);
    void Look();

    std::string caption;
    int atOnce;
    bool hasBegun = false;
    std::string texts;
    UINT_PTR timer;
    BoxReader* outer;  // a reader of other boxes at the same time
};

class PaneTest : public MainWindowTest {
protected:
    static void AddDisc(int disc, int tracks) { ::AddDisc(*scripted::Store(), disc, tracks); }
    static void AddAlbum(int album, int tracks) { ::AddAlbum(*scripted::Store(), album, tracks); }
    static std::string Title(GroupId group, TrackNo track) { return TitleOf(*scripted::Store(), group, track); }

    // Puts the rows of the store into both lists, with that group selected, whose tracks count as fetched.
    void Refill(GroupId group);
    // As the user selects a row of the groups.
    void Select(int row) { SelectIn(IDC_GROUP_LIST, row); }
    void SelectTrack(int row) { SelectIn(IDC_TRACK_LIST, row); }
    void SelectIn(int list, int row);
    // By its menu, and what comes of it.
    void Command(WORD command);
    // What the link says at its end, and what comes of it.
    void Hear(WORD operation, BYTE code = 0, BYTE status = ST_OK);

    std::string Rows(int list) const { return RowsOf(Control(list)); }
    int Selected(int list) const { return SelectedRowOf(Control(list)); }
    LOGFONTA FontOf(int list) const;
    // What the message line says once everything is served.
    std::string Line() const;
    // Waits until the link was asked for exactly that since the last scripted::Take.
    static bool Asked(const std::string& calls);
};
