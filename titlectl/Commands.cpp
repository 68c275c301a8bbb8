#include "Commands.h"

#include "Ending.h"
#include "UnitTitles.h"

namespace {

bool IsTitleText(const std::string& text) {
    return text.size() <= static_cast<std::size_t>(kTitleLength) &&
           text.find_first_not_of(
               " !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~") ==
               std::string::npos;
}

// Connects, and reads the group as far as the command names it.
Outcome ReadNamed(UnitSession& session, const Command& command) {
    const Outcome outcome = session.Connect(command.port);
    if (outcome != Outcome::kDone) {
        return outcome;
    }
    session.Limit(command.group, command.track);
    return session.ReadGroup(command.group);
}

}  // namespace

int List(UnitSession& session, const Command& command) {
    Outcome outcome = session.Connect(command.port);
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    session.Limit(0, -1);
    outcome = session.ReadGroupTitles();
    for (GroupId group = 1; group <= kGroups; ++group) {
        PrintTitle(session.Store(), group, 0);
    }
    return Report(outcome);
}

int Get(UnitSession& session, const Command& command) {
    const Outcome outcome = ReadNamed(session, command);
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    const TrackNo first = command.track < 0 ? 0 : command.track;
    const TrackNo last = command.track < 0 ? kTracks : command.track;
    int found = 0;
    for (TrackNo track = first; track <= last; ++track) {
        found += session.Store().GetState(command.group, track) > TS_NONE ? 1 : 0;
        PrintTitle(session.Store(), command.group, track);
    }
    return found > 0 ? kExitDone : Fail(kExitNotWritable, "the main unit has no such title");
}

int Set(UnitSession& session, const Command& command) {
    if (IsAlbum(command.group) && command.track != 0) {
        return Fail(kExitNotWritable, "an Album's tracks cannot be written; only its own title can");
    }
    if (!IsTitleText(command.text)) {
        return Fail(kExitNotWritable, "a title has at most 32 printable ASCII characters");
    }
    const Outcome outcome = ReadNamed(session, command);
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    if (!IsWritable(session.Store(), command.group, command.track)) {
        return Fail(kExitNotWritable, "the main unit has no such title; only titles that are there can be changed");
    }
    return WriteTitles(session, {{command.group, command.track, WithoutEndBlanks(command.text)}});
}
