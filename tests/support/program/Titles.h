// Titles for the lists of the tests, and what the lists show of them.
#pragma once

#include <windows.h>

#include <string>

#include "TitleStore.h"

// With "Disc 2" and "Disc 2, Track 1" and so on as titles, as if the main unit had told them.
void AddDisc(TitleStore& store, int disc, int tracks);
void AddAlbum(TitleStore& store, int album, int tracks);
// A title's text, "(none)" if there is none.
std::string TitleOf(const TitleStore& store, GroupId group, TrackNo track);

// The texts of all rows, fields separated by "|", with "&" as it is on the row.
std::string RowsOf(HWND list);
int SelectedRowOf(HWND list);
