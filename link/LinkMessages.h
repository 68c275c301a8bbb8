// What the link posts to the pane's window: the numbers, and how they are packed.
#pragma once

#include <windows.h>

#include "TitleNumbers.h"

// LM_RESULT tells an end or a failure. wParam: the operation (bits 0 to 15), the reply code (16 to 23, 0 at the end of an
// operation) and the status (24 to 31). lParam: the data of the reply.
inline constexpr UINT LM_RESULT = 1025;
// LM_PROGRESS tells the start of a step (lParam 0) or one title that is through (lParam: GroupId in the high, TrackNo in the
// low 16 bits). wParam: the operation (bits 0 to 15) and the step (16 to 31).
inline constexpr UINT LM_PROGRESS = 1026;

inline constexpr WORD OP_CONNECT = 4097;
inline constexpr WORD OP_GET_ALL = 8193;
inline constexpr WORD OP_GET_GROUP = 8194;
inline constexpr WORD OP_GET_TRACKS = 8195;
inline constexpr WORD OP_SEND_ALL = 12289;
inline constexpr WORD OP_SEND_GROUP = 12290;  // also the end code of both send operations

inline constexpr BYTE RC_MODEL = 17;
inline constexpr BYTE RC_STATUS = 18;
inline constexpr BYTE RC_COMMAND = 19;
inline constexpr BYTE RC_MAP = 20;
inline constexpr BYTE RC_TITLE_READ = 21;
inline constexpr BYTE RC_TITLE_WRITE = 22;

inline constexpr BYTE ST_OK = 0;
inline constexpr BYTE ST_BAD_REPLY = 4;     // wrong length, or a refused write
inline constexpr BYTE ST_BAD_CHECKSUM = 5;  // ModelReply with a wrong check field
inline constexpr BYTE ST_NO_TITLE = 7;      // the store has no title for the TitleData
inline constexpr BYTE ST_TIMEOUT = 17;      // no accepted reply to a request and its repeat
inline constexpr BYTE ST_BUSY = 18;         // too many busy values in a row
inline constexpr BYTE ST_NO_DATA = 33;      // the HDD holds no data
inline constexpr BYTE ST_TRAY_OPEN = 34;    // the disc tray is open
inline constexpr BYTE ST_NOT_STOPPED = 35;  // HDD not selected, or not stopped
inline constexpr BYTE ST_MENU_MODE = 36;    // the unit is in MENU mode
inline constexpr BYTE ST_FOREIGN = 225;     // the reply does not answer the request on the line; never posted
inline constexpr BYTE ST_LAST = 255;        // success, and the last reply of the queue; never posted

// What an operation is doing. The number 3 is not used. LM_PROGRESS reports kProbing as kReadingGroup.
enum class LinkStep : BYTE {
    kNone = 0,
    kFindingModel = 1,
    kCheckingStatus = 2,
    kMappingDiscs = 4,
    kReadingDiscs = 5,
    kMappingAlbums = 6,
    kReadingAlbums = 7,
    kProbing = 8,
    kReadingGroup = 9,
    kWriting = 10,
};

constexpr WPARAM PackResult(WORD operation, BYTE code = 0, BYTE status = ST_OK) {
    return operation | WPARAM{code} << 16 | WPARAM{status} << 24;
}
constexpr WPARAM PackProgress(WORD operation, LinkStep step) {
    return operation | static_cast<WPARAM>(step) << 16;
}
constexpr WORD OperationOf(WPARAM wParam) {
    return static_cast<WORD>(wParam);
}
constexpr BYTE CodeOf(WPARAM result) {
    return static_cast<BYTE>(result >> 16);
}
constexpr BYTE StatusOf(WPARAM result) {
    return static_cast<BYTE>(result >> 24);
}
constexpr LinkStep StepOf(WPARAM progress) {
    return static_cast<LinkStep>(progress >> 16);
}

// A title, in the data of a reply.
constexpr DWORD PackTitle(GroupId group, TrackNo track) {
    return static_cast<DWORD>(group) << 16 | static_cast<DWORD>(track);
}
constexpr GroupId GroupOfTitle(LPARAM title) {
    return static_cast<WORD>(title >> 16);
}
constexpr TrackNo TrackOfTitle(LPARAM title) {
    return static_cast<WORD>(title);
}
