// Stands in for the link below the pane: no line, no threads. It writes down what it is asked, and says what the test wants
// it to say. Whatever is linked with it has this one in place of the link.
#pragma once

#include <windows.h>

#include <string>

#include "DeviceLink.h"

namespace scripted {

// Nothing was asked, COM1 opens, and every operation is accepted and ends at once. Before each test.
void Reset();

// What was asked since the last call, one line each, as in "Connect COM1" and "GetGroupTracks 5", in the order of the calls.
// What sets the link up or takes it down is not told.
std::string Take();

// The ports that open, by number.
void OpenPorts(std::initializer_list<int> ports);
// Whether operations are accepted from now on.
void Accept(bool accepts);
// Whether an operation goes on from its start until it is stopped.
void StayActive(bool stays);

// The store and the ranges that the link was given last.
TitleStore* Store();
DisplayRanges Ranges();

// What the link posts.
void PostResult(HWND pane, WORD operation, BYTE code = 0, BYTE status = ST_OK, LPARAM data = 0);
void PostProgress(HWND pane, WORD operation, LinkStep step, GroupId group = 0, TrackNo track = 0);

}  // namespace scripted
