#include <cstdio>
#include <iostream>
#include <set>

#include "Commands.h"
#include "Ending.h"
#include "LibraryText.h"
#include "Stopper.h"
#include "TextFiles.h"
#include "TitleFile.h"
#include "UnitTitles.h"

using UnitKind = library::GroupKind;
using library::UnitLibrary;

namespace {

// --- What a file and the unit differ in
struct Differences {
    std::vector<TitleChange> writable;
    std::vector<TitleChange> others;
};

const char* WhyNotWritable(const TitleStore& store, GroupId group, TrackNo track) {
    return store.GetState(group, track) > TS_NONE ? "of an Album only its own title can be written"
                                                  : "the main unit has no such title";
}

Differences Compare(const std::vector<TitleChange>& titles, const TitleStore& store) {
    Differences differences;
    for (const TitleChange& title : titles) {
        if (!IsWritable(store, title.group, title.track)) {
            const bool there = store.GetState(title.group, title.track) > TS_NONE;
            if (!there || HeldText(store, title.group, title.track) != title.text) {
                differences.others.push_back(title);
            }
        } else if (HeldText(store, title.group, title.track) != title.text) {
            differences.writable.push_back(title);
        }
    }
    return differences;
}

void PrintDifferences(const Differences& differences, const TitleStore& store) {
    for (const TitleChange& title : differences.writable) {
        std::printf("%-4s %2d  \"%s\" becomes \"%s\"\n", GroupName(title.group).c_str(), title.track,
                    HeldText(store, title.group, title.track).c_str(), title.text.c_str());
    }
    for (const TitleChange& title : differences.others) {
        std::printf("%-4s %2d  \"%s\" cannot be written: %s\n", GroupName(title.group).c_str(), title.track,
                    title.text.c_str(), WhyNotWritable(store, title.group, title.track));
    }
    std::fflush(stdout);
}

bool Confirm(UnitSession& session, std::size_t count) {
    // Nothing runs on the line that could be stopped.
    StopOnCtrlC(nullptr);
    std::fprintf(stderr, "Write %zu titles to the main unit? (y/N) ", count);
    std::string answer;
    std::getline(std::cin, answer);
    StopOnCtrlC(&session);
    return answer == "y" || answer == "Y" || answer == "yes";
}

// Tells the differences and writes what can be written, if that is what is wanted. There is no undo for it.
int WriteDifferences(UnitSession& session, const Command& command, const std::vector<TitleChange>& titles) {
    const Differences differences = Compare(titles, session.Store());
    PrintDifferences(differences, session.Store());
    if (!differences.writable.empty() && !command.dryRun) {
        if (!Confirm(session, differences.writable.size())) {
            return Fail(kExitStopped, "nothing was written");
        }
        const int code = WriteTitles(session, differences.writable);
        if (code != kExitDone) {
            return Fail(code, "not everything was written; what is missing can be seen by --dry-run");
        }
    }
    return differences.others.empty() ? kExitDone : Fail(kExitNotWritable, "some titles cannot be written");
}

// --- One group

Outcome ReadOneGroup(UnitSession& session, const Command& command) {
    const Outcome outcome = session.Connect(command.port);
    if (outcome != Outcome::kDone) {
        return outcome;
    }
    session.Limit(command.group, -1);
    return session.ReadGroup(command.group);
}

// The titles that a file has for a group.
std::vector<TitleChange> TitlesOf(const TitleFile& file, GroupId group) {
    std::vector<TitleChange> titles;
    for (TrackNo number = 0; number <= kTracks; ++number) {
        char text[kTitleSize];
        if (file.GetImportTitle(number, text) != 0) {
            titles.push_back({group, number, WithoutEndBlanks(text)});
        }
    }
    return titles;
}

// --- The whole unit

// The titles of all groups, and the tracks of those that are wanted; null wants all.
Outcome ReadUnit(UnitSession& session, const Command& command, const std::set<GroupId>* wanted) {
    Outcome outcome = session.Connect(command.port);
    if (outcome != Outcome::kDone) {
        return outcome;
    }
    session.Limit(0, -1);
    outcome = session.ReadGroupTitles();
    for (GroupId group = 1; group <= kGroups && outcome == Outcome::kDone; ++group) {
        if (session.Store().IsKnown(group, 0) != 0 && (wanted == nullptr || wanted->contains(group))) {
            outcome = session.ReadTracks(group);
        }
    }
    return outcome;
}

bool LoadBackup(const std::string& path, UnitLibrary& library, std::string& why) {
    std::string text;
    if (!LoadText(path, text, why)) {
        return false;
    }
    if (!library::ParseLibrary(text, library, why)) {
        why.insert(0, path + " is no backup: ");
        return false;
    }
    return true;
}

}  // namespace

int Import(UnitSession& session, const Command& command) {
    std::string text;
    std::string why;
    if (!LoadText(command.file, text, why)) {
        return Fail(kExitFile, why);
    }
    TitleFile file;
    if (file.TakeTitles(command.file, text) != TitleFile::kDone) {
        return Fail(kExitFile, command.file + ": is no play list that can be read");
    }
    if (file.CountTitles() == 0) {
        return Fail(kExitFile, command.file + ": there are no titles in it");
    }
    const Outcome outcome = ReadOneGroup(session, command);
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    return WriteDifferences(session, command, TitlesOf(file, command.group));
}

int Export(UnitSession& session, const Command& command) {
    std::string why;
    if (!CanSaveText(command.file, why)) {
        return Fail(kExitFile, why);
    }
    const Outcome outcome = ReadOneGroup(session, command);
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    std::string rows;
    int count = 0;
    for (TrackNo track = 0; track <= kTracks; ++track) {
        if (session.Store().GetState(command.group, track) > TS_NONE) {
            rows += TitleFile::Row(track, HeldText(session.Store(), command.group, track).c_str()) + "\r\n";
            ++count;
        }
    }
    if (count == 0) {
        return Fail(kExitNotWritable, "the main unit has no such title");
    }
    if (!SaveText(command.file, rows, why)) {
        return Fail(kExitFile, why);
    }
    std::printf("%d titles in %s\n", count, command.file.c_str());
    return kExitDone;
}

int Backup(UnitSession& session, const Command& command) {
    std::string why;
    if (!CanSaveText(command.file, why)) {
        return Fail(kExitFile, why);
    }
    const Outcome outcome = ReadUnit(session, command, nullptr);
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    const UnitLibrary held = CollectTitles(session.Store());
    UnitLibrary saved;
    if (!SaveText(command.file, library::FormatLibrary(held), why) || !LoadBackup(command.file, saved, why)) {
        return Fail(kExitFile, why);
    }
    if (!(saved == held)) {
        return Fail(kExitFile, command.file + ": does not hold what the main unit holds");
    }
    std::printf("%zu titles of %zu Discs and %zu Albums in %s\n", TitlesOf(saved).size(),
                saved.GroupsOf(UnitKind::kDisc).size(), saved.GroupsOf(UnitKind::kAlbum).size(), command.file.c_str());
    return kExitDone;
}

int Restore(UnitSession& session, const Command& command) {
    UnitLibrary wanted;
    std::string why;
    if (!LoadBackup(command.file, wanted, why)) {
        return Fail(kExitFile, why);
    }
    const std::vector<TitleChange> titles = TitlesOf(wanted);
    std::set<GroupId> groups;
    for (const TitleChange& title : titles) {
        groups.insert(title.group);
    }
    const Outcome outcome = ReadUnit(session, command, &groups);
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    return WriteDifferences(session, command, titles);
}
