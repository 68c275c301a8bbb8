// Ctrl+C: ends what runs on the line in good order the first time, and the program the second time.
#pragma once

#include "UnitSession.h"

// From now on it is this session that Ctrl+C stops, until it is called with null, or the program that Ctrl+C ends.
void StopOnCtrlC(UnitSession* session);
