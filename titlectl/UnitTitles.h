// Titles of a main unit on their way between a session's store, the screen and a backup.
#pragma once

#include <string>
#include <vector>

#include "TitleNumbers.h"
#include "UnitLibrary.h"
#include "UnitSession.h"

struct TitleChange {
    GroupId group;
    TrackNo track;
    std::string text;
};

// "D12".
std::string GroupName(GroupId group);

// A line with the title, if the store has it.
void PrintTitle(const TitleStore& store, GroupId group, TrackNo track);

// Blanks at the end of a title do not survive the wire: they cannot be told from the padding.
std::string WithoutEndBlanks(const std::string& text);

// Whether the unit has a title there, which is all that can be written, and the track is not one of an Album.
bool IsWritable(const TitleStore& store, GroupId group, TrackNo track);

// The store's text, empty if there is none.
std::string HeldText(const TitleStore& store, GroupId group, TrackNo track);

// Writes titles that the session has read before, reads them back and prints what came. Only that counts, since the unit
// does not say what it has made of a title. Gives the exit code.
int WriteTitles(UnitSession& session, const std::vector<TitleChange>& changes);

// What the store holds, and what it knows to be without a title.
library::UnitLibrary CollectTitles(const TitleStore& store);

// The titles of a library in the order of the store.
std::vector<TitleChange> TitlesOf(const library::UnitLibrary& library);
