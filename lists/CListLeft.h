// The group list: one row for each Disc and Album that is shown.
#pragma once

#include "CTitleList.h"

class CListRight;

// Its selected row decides what the track list shows, and opens into it like a tab.
class CListLeft : public CTitleList {
public:
    CListLeft();
    ~CListLeft() override;

    // Not owned. Follows the selection from then on.
    void SetTrackList(CListRight* list) { trackList = list; }

    // Selects the group's row when the rows stand, or the first row if the group has none.
    void RequestRefill(GroupId group) override;
    // The group of the selected row, or the one that the refill under way will select. -1 if there is none.
    GroupId SelectedGroup() const;
    // The row of a group, -1 if it has none.
    int FindGroupRow(GroupId group) const { return FindRow(group, 0); }

    int EndEdit() override;
    void OnDrawItem(DRAWITEMSTRUCT* item) override;
    void OnNcPaint(HRGN region) override;
    void OnSelChange() override;

protected:
    void EndTurn() override;
    void Populate(const Refill& refill) override;
    void OnRefilled() override;

private:
    void NotifySelectedRow(int prevRow);
    RECT SelectedRowInWindow() const;
    void PaintTab(HDC dc) const;

    GroupId curGroup = -1;  // of the selection, or the group to select after a refill
    RECT selRowRect = {};   // the selected row, in window coordinates
    CListRight* trackList = nullptr;
};
