// TitleStore: every title in memory, where each one comes from, and the undo of edits.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

#include "Lock.h"
#include "TitleNumbers.h"

// What the store holds for an entry. No text and an empty text are different things.
enum TitleState : int {
    TS_NONE = 0,      // no text: the main unit has not answered yet, or has answered that there is none
    TS_RECEIVED = 1,  // the main unit's text
    TS_EDITED = 2,    // a text that waits to be sent: the main unit has another one, or may have
};

// Filled from the main unit by the link, changed by the user and by imports, read by everyone, on any thread. Every
// operation is atomic: it takes the store's lock, and calls nobody while it holds it.
//
// A group is a GroupId of 1 to 1998. A track is 1 to 99, and 0 or any negative number means the group's own title. Other
// numbers name nothing, in every operation: the result is then 0, or -1 where that is told, and nothing changes. Tracks
// exist from the first StoreReceived for one of them.
//
// "Answered for" means that the main unit has told the title of the entry, or that it has none, and that the store has not
// forgotten it since. Many operations want a reachable entry: the group's own title is answered for, and for a track so is
// the track, which lies no higher than GetTrackCount.
//
// Texts are zero-terminated and at most 32 bytes long; a longer one is cut. Buffers for texts hold 33 bytes.
class TitleStore {
public:
    TitleStore();
    virtual ~TitleStore() = default;
    TitleStore(const TitleStore&) = delete;
    TitleStore& operator=(const TitleStore&) = delete;

    // Forgets all titles and all edits.
    void ResetAll();

    // The highest track, 0 to 99, that ever had a text since the group got its tracks. -1 if the group's own title is not
    // answered for or if it has no tracks.
    int GetTrackCount(GroupId group) const;

    // 1 if the entry is answered for, else 0. A track does not need its group's own title for this.
    int IsKnown(GroupId group, TrackNo track) const;

    // 1 if the entry holds a user's text that waits to be sent, else 0.
    int IsEdited(GroupId group, TrackNo track) const;

    // 1 for a Disc and its tracks, 0 for an Album and its tracks, -1 if the entry is not reachable.
    int IsDisc(GroupId group, TrackNo track) const;

    // A TitleState, or -1 for a number that names nothing and for a track of a group that has none.
    int GetState(GroupId group, TrackNo track) const;

    // Copies the text into `text` and gives 1. Gives 0 and leaves the buffer alone if the entry is not reachable or is
    // TS_NONE.
    int GetTitle(GroupId group, TrackNo track, char* text) const;

    // A user's change of a reachable entry, which becomes TS_EDITED and can be undone. Gives 1, also for the text that
    // stands there already, which changes nothing. The empty text clears a title, and is sent like any other. Callers leave
    // alone what is TS_NONE, and the tracks of Albums, which are read-only.
    int EditTitle(GroupId group, TrackNo track, const char* text);

    // The main unit's word on an entry, which overrides what stands there, an edit too: TS_RECEIVED with `text`, or TS_NONE
    // where the main unit has no title (`text` null). Gives 0 without memory for the group's tracks.
    int StoreReceived(GroupId group, TrackNo track, const char* text);

    // Makes a reachable entry as if it had never been answered for, so that it is fetched anew, and takes its edits out of
    // the undo. A group's tracks can only be deleted before its own title. The track count stays.
    int DeleteTitle(GroupId group, TrackNo track);

    // `text` has gone out to the main unit for a reachable entry, so the main unit no longer has what an undo would bring
    // back: the entry is TS_EDITED until the next StoreReceived, also after an undo. IsSent becomes 1 only if
    // `counts`, which is false if the send that the text belongs to is over.
    int NoteSent(GroupId group, TrackNo track, const char* text, bool counts = true);
    // 1 if the entry's present text was the last to go out since ClearSent.
    int IsSent(GroupId group, TrackNo track) const;
    // As DeleteTitle, but only for an entry for which IsSent is 1.
    int ForgetSent(GroupId group, TrackNo track);
    // No entry counts as sent any more.
    void ClearSent();

    // Forgets a group whose own title is answered for, with its tracks and its edits.
    int ClearGroup(GroupId group);

    // Forgets the tracks of an Album; its own title stays. Gives 1 also if there were none, and 0 for a Disc.
    int DropAlbumTracks(GroupId group);

    // Takes back the latest edit, of the latest 100. Each of `group`, `track` and `text` may be null; else they get the
    // entry and the text that is back. The entry is TS_RECEIVED again once none of its edits is left. Gives 0 if there is
    // nothing to undo.
    int UndoEdit(GroupId* group, TrackNo* track, char* text);

    // 1 if an edit is there to be undone, else 0.
    int CanUndo() const;

private:
    static constexpr int kUndoRecords = 100;

    // Zero in every byte when never answered for.
    struct TitleEntry {
        char text[kTitleSize];
        std::uint8_t flags;  // TF_ bits
        // Edits that have not been undone, and one for each text sent, which no undo takes back; at most 255. Above 0
        // exactly while TF_EDITED is set.
        std::uint8_t editCount;

        bool IsSound() const;  // for asserts
    };
    static_assert(sizeof(TitleEntry) == 35);

    struct TitleSlot {
        TitleEntry title = {};
        std::unique_ptr<TitleEntry[]> tracks;  // 99 entries, or null
        std::uint8_t trackCount = 0;           // highest track that ever had a text since the table was made
    };

    // 0xFF in every byte when empty.
    struct UndoRecord {
        std::int32_t group;     // group index, negative when empty
        std::int32_t track;     // track index, -1 for the group's own title
        char text[kTitleSize];  // before the edit
    };

    TitleEntry* FindEntry(GroupId group, TrackNo track);
    const TitleEntry* FindEntry(GroupId group, TrackNo track) const;
    TitleEntry* FindReachable(GroupId group, TrackNo track);
    const TitleEntry* FindReachable(GroupId group, TrackNo track) const;
    bool IsGroupKnown(GroupId group) const;
    int Forget(TitleEntry& entry, GroupId group, TrackNo track);
    static void MarkEdited(TitleEntry& entry);
    void AddUndoRecord(GroupId group, TrackNo track, const TitleEntry& entry);
    int FindLatestRecord() const;
    void EmptyRecords(std::int32_t group, std::int32_t firstTrack, std::int32_t lastTrack);
    void EmptyAllRecords();

    // Around each operation, so that no table is freed under a reader and no title is seen half written. The last lock that
    // anyone takes.
    mutable CriticalSection lock;
    TitleSlot slots[kGroups];  // by group index, which is GroupId minus 1
    UndoRecord undoRing[kUndoRecords];
    std::int32_t undoHead = 0;  // 0 to 99, the record that the next edit writes
};
