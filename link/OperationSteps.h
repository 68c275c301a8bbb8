// The six operations as tables: what each does, step by step.
#pragma once

#include <windows.h>

#include <cstdint>

#include "LinkMessages.h"
#include "TitleNumbers.h"

// When a row of a step holds. The first row of the step that holds is taken.
enum class Condition {
    kAlways,
    kDiscsOff,   // the Disc range is both 0
    kAlbumsOff,  // the Album range is both 0
    kTracksOff,  // the Track range is both 0
    kNoneMapped  // the last MapReply has left nothing to read
};

// What a row puts into the queue.
enum class Action {
    kNothing,
    kAskModel,
    kAskStatus,
    kMapDiscs,
    kMapAlbums,
    kProbe,
    kReadMapped,
    kReadGroupTitle,
    kReadGroupTracks,
    kWriteTitles,
    kEnd,
};

struct StepRow {
    LinkStep step;
    Condition condition;
    WPARAM message;  // of the LM_PROGRESS or, at the end, of the LM_RESULT; 0 for none
    LinkStep newStep;
    Action action;
};

// What an operation does when `step` is through. Null for a step that is not the operation's, and for no operation.
const StepRow* FindStepRow(std::uint32_t operation, LinkStep step, const DisplayRanges& ranges, bool anyMapped);
