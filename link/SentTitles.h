// What one operation has put on the line: the text of each title as it went out.
#pragma once

#include <cstdint>

#include "TitleNumbers.h"

// A title counts as sent only with the very text that went out, so that an edit made meanwhile is seen as not sent. Entries
// carry the number of their operation, so a new operation begins with nothing sent and nothing has to be cleared. Not
// locked: the caller's lock guards it.
class SentTitles {
public:
    SentTitles();
    ~SentTitles();
    SentTitles(const SentTitles&) = delete;
    SentTitles& operator=(const SentTitles&) = delete;

    // False if there was no memory for the table. Nothing else may be called then.
    bool IsReady() const { return entries != nullptr; }

    // Only titles that can be written have a place: groups, and the tracks of Discs. Others are not recorded.
    void Record(std::uint32_t operationNumber, GroupId group, TrackNo track, const char* text);

    // The text that went out in this operation, or null.
    const char* Find(std::uint32_t operationNumber, GroupId group, TrackNo track) const;

private:
    struct Entry {
        std::uint32_t operationNumber;  // 0 for none
        char text[kTitleSize];
    };

    static int IndexOf(GroupId group, TrackNo track);

    // One block, zeroed by the system page by page as it is touched: a send of a few titles costs a few pages.
    Entry* entries;
};
