#include "FrameCutter.h"

#include <cassert>

namespace {

constexpr std::string_view kSeparators("\r\n", 2);

}  // namespace

void FrameCutter::Feed(std::string_view chunk) {
    chunk = chunk.substr(0, chunk.find('\0'));
    while (!chunk.empty()) {
        const std::size_t end = chunk.find_first_of(kSeparators);
        const std::string_view piece = chunk.substr(0, end);
        if (!piece.empty()) {
            FeedPiece(piece);
        }
        chunk.remove_prefix(end == std::string_view::npos ? chunk.size() : end + 1);
    }
}

void FrameCutter::FeedPiece(std::string_view piece) {
    for (const char c : piece) {
        switch (c) {
            case kStx:
            case kDc1:
            case kDc2:
            case kDc3:
            case kDc4:
                // A start byte inside a frame drops the old one: this is how the line finds its feet again.
                length = 0;
                rxFrame[length++] = c;
                break;
            case kEtx:
                if (length > 0) {
                    Append(c);
                    HandOver(length);
                    return;
                }
                break;
            case kAck:
            case kNak:
            case kCan: HandOver(0); return;
            default:
                // Bytes outside a frame count for nothing.
                if (length > 0) {
                    Append(c);
                }
                break;
        }
    }
}

void FrameCutter::Append(char c) {
    assert(length > 0 && length < kFrameSize);
    if (length < kFrameSize) {
        rxFrame[length++] = c;
    }
    // No frame is that long: what is held can only be the ruins of one, so the next start byte begins anew.
    if (length == kFrameSize && c != kEtx) {
        length = 0;
    }
}

void FrameCutter::HandOver(std::size_t frameLength) {
    assert(frameLength == 0 || rxFrame[frameLength - 1] == kEtx);
    proc(owner, std::string_view(rxFrame, frameLength));
    length = 0;
}
