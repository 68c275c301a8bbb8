// Cuts the received byte stream into frames.
#pragma once

#include <cstddef>
#include <string_view>

#include "Frames.h"

// Frames may arrive in any number of chunks and are put together here. Each piece of a chunk, between separators CR and LF,
// gives one frame at most; what follows an ETX within the piece is lost. Used by one thread at a time.
class FrameCutter {
public:
    // Called for each complete frame, start byte and ETX included, or with an empty frame where an ACK, NAK or CAN came: a
    // void frame. The bytes are valid during the call.
    using FrameProc = void (*)(void* owner, std::string_view frame);

    FrameCutter(FrameProc proc, void* owner) : proc(proc), owner(owner) {}

    // Only the bytes before the first NUL count.
    void Feed(std::string_view chunk);

    // Forgets a partial frame, for a line that is opened anew.
    void Reset() { length = 0; }

private:
    void FeedPiece(std::string_view piece);
    void Append(char c);
    void HandOver(std::size_t length);

    FrameProc proc;
    void* owner;
    char rxFrame[kFrameSize] = {};  // the frame in progress, from its start byte
    std::size_t length = 0;         // bytes held; 0 while no frame is in progress
};
