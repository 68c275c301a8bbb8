// The track list: one row for each track that is shown of the group selected in the group list.
#pragma once

#include "CTitleList.h"

// Only the tracks of Discs can be edited.
class CListRight : public CTitleList {
public:
    CListRight();
    ~CListRight() override;

    // The group list's selection: where its row stands, in that list's window, and its group. With another group the list
    // is empty at once, and the pane hears of it by UC_GROUP_CHANGED; the rows come when the pane asks for them.
    void SetLinkedRow(const RECT& rect, GroupId newGroup);

    // Fills in the group's tracks; nothing to do for group 0. Clears the pane's message line when that is done.
    void RequestRefill(GroupId newGroup) override;
    // The same for a group that was just selected; what the line tells of the main unit meanwhile stays.
    void ShowTracks(GroupId newGroup);
    // The row of a track, -1 if it has none.
    int FindTrackRow(GroupId wantedGroup, TrackNo wantedTrack) const { return FindRow(wantedGroup, wantedTrack); }

    int EndEdit() override;
    void OnDrawItem(DRAWITEMSTRUCT* item) override;
    void OnNcPaint(HRGN region) override;

protected:
    void Populate(const Refill& refill) override;
    void OnRefilled() override;
    bool IsEditable(GroupId wantedGroup, TrackNo track) const override;

private:
    void MoveOn(GroupId editedGroup);
    int NextRowWithTitle(GroupId editedGroup) const;
    HRGN CreateShape() const;

    RECT linkRect;            // the selected group row; its top is the same height on the screen in both lists
    GroupId group = -1;       // that the list follows
    bool clearsLine = false;  // the end of the refill under way is the end of what the line tells
};
