// TitleStore: addressing, the states of an entry and the undo ring.
#include "TitleStore.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <new>
#include <type_traits>

namespace {

// The two low bits are the TitleState; they are never both set, and never without TF_KNOWN.
constexpr std::uint8_t TF_RECEIVED = 0x01;
constexpr std::uint8_t TF_EDITED = 0x02;
constexpr std::uint8_t TF_SENT = 0x04;  // the text has gone out, and the entry waits to be forgotten
constexpr std::uint8_t TF_KNOWN = 0x40;
constexpr std::uint8_t TF_DISC = 0x80;
constexpr std::uint8_t kStateBits = TF_RECEIVED | TF_EDITED;
static_assert(TF_RECEIVED == TS_RECEIVED && TF_EDITED == TS_EDITED);

constexpr std::uint8_t kMostEdits = 255;

bool IsGroup(GroupId group) {
    return group >= 1 && group <= kGroups;
}

// The flags of an entry whose text is another one now.
std::uint8_t WithState(std::uint8_t flags, std::uint8_t state) {
    return static_cast<std::uint8_t>((flags & ~(kStateBits | TF_SENT)) | state);
}

// Fills the rest with zeros, so that an entry never ends in bytes of an older text. A source without a terminator within its
// 33 bytes is cut there.
void SetText(char (&target)[kTitleSize], const char* text) {
    const std::size_t length = strnlen(text, kTitleLength);
    assert(std::all_of(text, text + length, [](char byte) { return byte >= ' ' && byte <= '~'; }));
    std::memcpy(target, text, length);
    std::memset(target + length, 0, kTitleSize - length);
}

// The text of an entry or a record always has its terminator.
void CopyOut(const char (&source)[kTitleSize], char* target) {
    assert(source[kTitleLength] == '\0');
    std::memcpy(target, source, std::strlen(source) + 1);
}

bool SameText(const char (&stored)[kTitleSize], const char* text) {
    return std::strncmp(stored, text, kTitleLength) == 0;
}

}  // namespace

TitleStore::TitleStore() {
    EmptyAllRecords();
}

void TitleStore::ResetAll() {
    LockGuard guard(lock);
    for (TitleSlot& slot : slots) {
        slot = TitleSlot();
    }
    // A record that outlived its entry would later put a user's text into an entry that the main unit has filled anew, and
    // the text would pass for the main unit's.
    EmptyAllRecords();
}

int TitleStore::GetTrackCount(GroupId group) const {
    LockGuard guard(lock);
    if (!IsGroupKnown(group)) {
        return -1;
    }
    const TitleSlot& slot = slots[group - 1];
    return slot.tracks != nullptr ? slot.trackCount : -1;
}

int TitleStore::IsKnown(GroupId group, TrackNo track) const {
    LockGuard guard(lock);
    const TitleEntry* entry = FindEntry(group, track);
    return entry != nullptr && (entry->flags & TF_KNOWN) != 0 ? 1 : 0;
}

int TitleStore::IsEdited(GroupId group, TrackNo track) const {
    LockGuard guard(lock);
    const TitleEntry* entry = FindEntry(group, track);
    return entry != nullptr && (entry->flags & TF_EDITED) != 0 ? 1 : 0;
}

int TitleStore::IsDisc(GroupId group, TrackNo track) const {
    LockGuard guard(lock);
    const TitleEntry* entry = FindReachable(group, track);
    if (entry == nullptr) {
        return -1;
    }
    return (entry->flags & TF_DISC) != 0 ? 1 : 0;
}

int TitleStore::GetState(GroupId group, TrackNo track) const {
    LockGuard guard(lock);
    const TitleEntry* entry = FindEntry(group, track);
    return entry != nullptr ? entry->flags & kStateBits : -1;
}

int TitleStore::GetTitle(GroupId group, TrackNo track, char* text) const {
    LockGuard guard(lock);
    const TitleEntry* entry = FindReachable(group, track);
    if (entry == nullptr || (entry->flags & kStateBits) == 0) {
        return 0;
    }
    CopyOut(entry->text, text);
    return 1;
}

int TitleStore::EditTitle(GroupId group, TrackNo track, const char* text) {
    LockGuard guard(lock);
    TitleEntry* entry = FindReachable(group, track);
    if (entry == nullptr) {
        return 0;
    }
    if (SameText(entry->text, text)) {
        return 1;
    }
    AddUndoRecord(group, track, *entry);
    MarkEdited(*entry);
    SetText(entry->text, text);
    return 1;
}

int TitleStore::StoreReceived(GroupId group, TrackNo track, const char* text) {
    LockGuard guard(lock);
    if (!IsGroup(group) || track > kTracks) {
        return 0;
    }
    TitleSlot& slot = slots[group - 1];
    if (track > 0) {
        if (slot.tracks == nullptr) {
            slot.tracks.reset(new (std::nothrow) TitleEntry[kTracks]());
            if (slot.tracks == nullptr) {
                return 0;
            }
            slot.trackCount = 0;
        }
        if (text != nullptr) {
            slot.trackCount = std::max(slot.trackCount, static_cast<std::uint8_t>(track));
        }
    }
    TitleEntry& entry = *FindEntry(group, track);
    SetText(entry.text, text != nullptr ? text : "");
    const int state = text != nullptr ? TF_RECEIVED : 0;
    entry.flags = static_cast<std::uint8_t>(state | TF_KNOWN | (IsAlbum(group) ? 0 : TF_DISC));
    entry.editCount = 0;
    return 1;
}

int TitleStore::DeleteTitle(GroupId group, TrackNo track) {
    LockGuard guard(lock);
    TitleEntry* entry = FindReachable(group, track);
    return entry != nullptr ? Forget(*entry, group, track) : 0;
}

int TitleStore::NoteSent(GroupId group, TrackNo track, const char* text, bool counts) {
    LockGuard guard(lock);
    TitleEntry* entry = FindReachable(group, track);
    if (entry == nullptr || (entry->flags & kStateBits) == 0) {
        return 0;
    }
    MarkEdited(*entry);
    if (counts && SameText(entry->text, text)) {
        entry->flags |= TF_SENT;
    }
    return 1;
}

int TitleStore::IsSent(GroupId group, TrackNo track) const {
    LockGuard guard(lock);
    const TitleEntry* entry = FindReachable(group, track);
    return entry != nullptr && (entry->flags & TF_SENT) != 0 ? 1 : 0;
}

int TitleStore::ForgetSent(GroupId group, TrackNo track) {
    LockGuard guard(lock);
    TitleEntry* entry = FindReachable(group, track);
    return entry != nullptr && (entry->flags & TF_SENT) != 0 ? Forget(*entry, group, track) : 0;
}

void TitleStore::ClearSent() {
    LockGuard guard(lock);
    for (TitleSlot& slot : slots) {
        slot.title.flags &= static_cast<std::uint8_t>(~TF_SENT);
        for (int track = 0; track < slot.trackCount; ++track) {
            slot.tracks[static_cast<std::size_t>(track)].flags &= static_cast<std::uint8_t>(~TF_SENT);
        }
    }
}

int TitleStore::ClearGroup(GroupId group) {
    LockGuard guard(lock);
    if (!IsGroupKnown(group)) {
        return 0;
    }
    EmptyRecords(group - 1, -1, kTracks - 1);
    slots[group - 1] = TitleSlot();
    return 1;
}

int TitleStore::DropAlbumTracks(GroupId group) {
    LockGuard guard(lock);
    if (!IsGroup(group) || !IsAlbum(group)) {
        return 0;
    }
    // Nobody edits an Album's tracks. Should it ever happen, a record without its entry would bar the way to all older ones.
    EmptyRecords(group - 1, 0, kTracks - 1);
    slots[group - 1].tracks.reset();
    slots[group - 1].trackCount = 0;
    return 1;
}

int TitleStore::UndoEdit(GroupId* group, TrackNo* track, char* text) {
    LockGuard guard(lock);
    const int position = FindLatestRecord();
    if (position < 0) {
        return 0;
    }
    UndoRecord& record = undoRing[position];
    const GroupId editedGroup = record.group + 1;
    const TrackNo editedTrack = record.track + 1;
    TitleEntry* entry = editedTrack == 0 ? FindReachable(editedGroup, 0) : FindEntry(editedGroup, editedTrack);
    assert(entry != nullptr);
    if (entry == nullptr) {
        return 0;
    }
    SetText(entry->text, record.text);
    if (entry->editCount > 0) {
        --entry->editCount;
    }
    entry->flags = WithState(entry->flags, entry->editCount > 0 ? TF_EDITED : TF_RECEIVED);
    if (group != nullptr) {
        *group = editedGroup;
    }
    if (track != nullptr) {
        *track = editedTrack;
    }
    if (text != nullptr) {
        CopyOut(record.text, text);
    }
    std::memset(&record, 0xFF, sizeof record);
    undoHead = position;
    return 1;
}

int TitleStore::CanUndo() const {
    LockGuard guard(lock);
    return FindLatestRecord() >= 0 ? 1 : 0;
}

// --- Addressing ----------------------------------------------------------------------------------------------------------

// The entry, whether answered for or not. Null for numbers that name nothing and for a track without a table.
TitleStore::TitleEntry* TitleStore::FindEntry(GroupId group, TrackNo track) {
    assert(lock.IsHeldByThisThread());
    if (!IsGroup(group) || track > kTracks) {
        return nullptr;
    }
    TitleSlot& slot = slots[group - 1];
    assert(slot.title.IsSound() && slot.trackCount <= (slot.tracks != nullptr ? kTracks : 0));
    if (track <= 0) {
        return &slot.title;
    }
    assert(slot.tracks == nullptr || slot.tracks[static_cast<std::size_t>(track - 1)].IsSound());
    return slot.tracks != nullptr ? &slot.tracks[static_cast<std::size_t>(track - 1)] : nullptr;
}

const TitleStore::TitleEntry* TitleStore::FindEntry(GroupId group, TrackNo track) const {
    return const_cast<TitleStore*>(this)->FindEntry(group, track);
}

// The entry that users work on: answered for, in a group that is, and within its track count.
TitleStore::TitleEntry* TitleStore::FindReachable(GroupId group, TrackNo track) {
    if (!IsGroupKnown(group) || track > slots[group - 1].trackCount) {
        return nullptr;
    }
    TitleEntry* entry = FindEntry(group, track);
    return entry != nullptr && (entry->flags & TF_KNOWN) != 0 ? entry : nullptr;
}

const TitleStore::TitleEntry* TitleStore::FindReachable(GroupId group, TrackNo track) const {
    return const_cast<TitleStore*>(this)->FindReachable(group, track);
}

bool TitleStore::IsGroupKnown(GroupId group) const {
    return IsGroup(group) && (slots[group - 1].title.flags & TF_KNOWN) != 0;
}

// --- Entries -------------------------------------------------------------------------------------------------------------

#ifndef NDEBUG
bool TitleStore::TitleEntry::IsSound() const {
    const int state = flags & kStateBits;
    return state != kStateBits && (state == TS_NONE || (flags & TF_KNOWN) != 0) && (state != TS_NONE || text[0] == '\0') &&
           text[kTitleLength] == '\0' && (editCount > 0) == (state == TS_EDITED) &&
           ((flags & TF_SENT) == 0 || state == TS_EDITED);
}
#endif

// A text of the user's, or one that the main unit does not have any more.
void TitleStore::MarkEdited(TitleEntry& entry) {
    entry.flags = WithState(entry.flags, TF_EDITED);
    if (entry.editCount < kMostEdits) {
        ++entry.editCount;
    }
}

int TitleStore::Forget(TitleEntry& entry, GroupId group, TrackNo track) {
    entry = TitleEntry();
    const std::int32_t index = std::max(track, 0) - 1;
    EmptyRecords(group - 1, index, index);
    return 1;
}

// --- Undo ring -----------------------------------------------------------------------------------------------------------

// A full ring gives up its oldest record. The entry of that record stays as edited as it was.
void TitleStore::AddUndoRecord(GroupId group, TrackNo track, const TitleEntry& entry) {
    assert(undoHead >= 0 && undoHead < kUndoRecords);
    UndoRecord& record = undoRing[undoHead];
    record.group = group - 1;
    record.track = std::max(track, 0) - 1;
    std::memcpy(record.text, entry.text, sizeof record.text);
    undoHead = (undoHead + 1) % kUndoRecords;
}

// The place of the latest record, or -1. Records that were emptied in between are passed over.
int TitleStore::FindLatestRecord() const {
    int position = undoHead;
    do {
        position = (position + kUndoRecords - 1) % kUndoRecords;
        if (undoRing[position].group >= 0) {
            return position;
        }
    } while (position != undoHead);
    return -1;
}

// Group and tracks as indices.
void TitleStore::EmptyRecords(std::int32_t group, std::int32_t firstTrack, std::int32_t lastTrack) {
    for (UndoRecord& record : undoRing) {
        if (record.group == group && record.track >= firstTrack && record.track <= lastTrack) {
            std::memset(&record, 0xFF, sizeof record);
        }
    }
}

void TitleStore::EmptyAllRecords() {
    static_assert(std::is_trivially_copyable_v<UndoRecord>);
    std::memset(undoRing, 0xFF, sizeof undoRing);
}
