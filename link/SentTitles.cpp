#include "SentTitles.h"

#include <windows.h>

#include <cassert>
#include <cstring>

namespace {

constexpr int kTitlesOfDisc = 1 + kTracks;
constexpr int kEntries = kDiscs * kTitlesOfDisc + kAlbums;

}  // namespace

SentTitles::SentTitles() : entries(static_cast<Entry*>(LocalAlloc(LPTR, sizeof(Entry) * kEntries))) {}

SentTitles::~SentTitles() {
    LocalFree(entries);
}

void SentTitles::Record(std::uint32_t operationNumber, GroupId group, TrackNo track, const char* text) {
    assert(IsReady() && operationNumber != 0);
    const int index = IndexOf(group, track);
    if (index < 0) {
        return;
    }
    Entry& entry = entries[index];
    entry.operationNumber = operationNumber;
    std::memcpy(entry.text, text, strnlen(text, kTitleLength));
    entry.text[strnlen(text, kTitleLength)] = '\0';
}

const char* SentTitles::Find(std::uint32_t operationNumber, GroupId group, TrackNo track) const {
    assert(IsReady() && operationNumber != 0);
    const int index = IndexOf(group, track);
    return index >= 0 && entries[index].operationNumber == operationNumber ? entries[index].text : nullptr;
}

int SentTitles::IndexOf(GroupId group, TrackNo track) {
    if (group < 1 || group > kGroups || track < 0 || track > kTracks) {
        return -1;
    }
    if (!IsAlbum(group)) {
        return (group - 1) * kTitlesOfDisc + track;
    }
    return track == 0 ? kDiscs * kTitlesOfDisc + AlbumNumber(group) - 1 : -1;
}
