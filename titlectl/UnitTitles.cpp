#include "UnitTitles.h"

#include <cstdio>
#include <set>

#include "Ending.h"

using library::Entry;
using UnitKind = library::GroupKind;
using library::UnitLibrary;

std::string GroupName(GroupId group) {
    return (IsAlbum(group) ? 'A' : 'D') + std::to_string(IsAlbum(group) ? AlbumNumber(group) : group);
}

void PrintTitle(const TitleStore& store, GroupId group, TrackNo track) {
    char text[kTitleSize];
    if (store.GetTitle(group, track, text)) {
        const char* mark = store.IsEdited(group, track) ? "*" : "";
        std::printf("%-4s %2d  %s%s\n", GroupName(group).c_str(), track, text, mark);
    }
}

std::string WithoutEndBlanks(const std::string& text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

bool IsWritable(const TitleStore& store, GroupId group, TrackNo track) {
    return store.GetState(group, track) > TS_NONE && (track == 0 || !IsAlbum(group));
}

std::string HeldText(const TitleStore& store, GroupId group, TrackNo track) {
    char text[kTitleSize] = {};
    store.GetTitle(group, track, text);
    return text;
}

int WriteTitles(UnitSession& session, const std::vector<TitleChange>& changes) {
    TitleStore& store = session.Store();
    std::set<GroupId> groups;
    for (const TitleChange& change : changes) {
        if (store.EditTitle(change.group, change.track, change.text.c_str()) == 0) {
            return Fail(kExitNotWritable, "the title could not be changed");
        }
        groups.insert(change.group);
    }
    Outcome outcome = groups.size() == 1 ? session.SendGroup(*groups.begin()) : session.SendAll();
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    store.ResetAll();
    for (auto group = groups.begin(); group != groups.end() && outcome == Outcome::kDone; ++group) {
        outcome = session.ReadGroup(*group);
    }
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    bool same = true;
    for (const TitleChange& change : changes) {
        PrintTitle(store, change.group, change.track);
        same = same && store.GetState(change.group, change.track) > TS_NONE &&
               HeldText(store, change.group, change.track) == change.text;
    }
    return same ? kExitDone : Fail(kExitDiffers, "the main unit holds another title than was sent");
}

UnitLibrary CollectTitles(const TitleStore& store) {
    UnitLibrary library;
    for (GroupId group = 1; group <= kGroups; ++group) {
        for (TrackNo track = 0; track <= kTracks; ++track) {
            if (store.IsKnown(group, track) == 0) {
                continue;
            }
            const Entry entry =
                IsAlbum(group) ? Entry{UnitKind::kAlbum, AlbumNumber(group), track} : Entry{UnitKind::kDisc, group, track};
            library.Add(entry);
            if (store.GetState(group, track) > TS_NONE) {
                library.SetTitle(entry, HeldText(store, group, track));
            }
        }
    }
    return library;
}

std::vector<TitleChange> TitlesOf(const UnitLibrary& library) {
    std::vector<TitleChange> titles;
    for (const UnitKind kind : {UnitKind::kDisc, UnitKind::kAlbum}) {
        for (const auto& [number, group] : library.GroupsOf(kind)) {
            const GroupId id = kind == UnitKind::kAlbum ? AlbumGroup(number) : number;
            if (group.title) {
                titles.push_back({id, 0, *group.title});
            }
            for (const auto& [track, title] : group.tracks) {
                if (title) {
                    titles.push_back({id, track, *title});
                }
            }
        }
    }
    return titles;
}
