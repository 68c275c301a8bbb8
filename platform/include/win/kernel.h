// Threads, time, locks, events, files, the serial line, memory and code pages.
#pragma once

#include "win/types.h"

// What GetLastError returns after a failed call for a handle, a file, a port or a mutex. Calls for windows, messages,
// menus and resources need not set one.
inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_WRITE_FAULT = 29;
inline constexpr DWORD ERROR_READ_FAULT = 30;
inline constexpr DWORD ERROR_GEN_FAILURE = 31;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_BAD_PATHNAME = 161;
inline constexpr DWORD ERROR_ALREADY_EXISTS = 183;
inline constexpr DWORD ERROR_MORE_DATA = 234;
inline constexpr DWORD ERROR_INVALID_WINDOW_HANDLE = 1400;
inline constexpr DWORD ERROR_RESOURCE_NAME_NOT_FOUND = 1814;

DWORD GetLastError();
void SetLastError(DWORD error);

// Closes any handle that the functions below return. A thread goes on when its handle is closed.
BOOL CloseHandle(HANDLE handle);

// --- Threads -------------------------------------------------------------------------------------------------------------

using LPTHREAD_START_ROUTINE = DWORD(WINAPI*)(LPVOID);

// No security attributes, no flags; the stack size is a hint that is not followed. Gives 0 on failure.
HANDLE CreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T stackSize, LPTHREAD_START_ROUTINE start, LPVOID parameter,
                    DWORD flags, LPDWORD threadId);
DWORD GetCurrentThreadId();

// The one slot of thread-local storage, which the message queues use. Its callback runs with the slot's value, if that
// is not null, when a thread ends that CreateThread has started; up to four times, as long as it fills the slot again.
using PFLS_CALLBACK_FUNCTION = void(WINAPI*)(LPVOID);
DWORD FlsAlloc(PFLS_CALLBACK_FUNCTION callback);
LPVOID FlsGetValue(DWORD index);
BOOL FlsSetValue(DWORD index, LPVOID value);

// --- Time ----------------------------------------------------------------------------------------------------------------

// Sleeps at least as long as asked. While nobody in the process holds timeBeginPeriod(1), wake-ups fall on a common beat of
// 15.625 ms, so that the many polling threads of an idle program wake the processor together.
void Sleep(DWORD milliseconds);
// Milliseconds since some moment before the start of the process; wraps around after 49.7 days.
DWORD GetTickCount();

using MMRESULT = UINT;
inline constexpr MMRESULT TIMERR_NOERROR = 0;
inline constexpr MMRESULT TIMERR_NOCANDO = 97;
// Only a period of 1 ms is known to the layer. Calls nest; each wants its timeEndPeriod.
MMRESULT timeBeginPeriod(UINT periodMs);
MMRESULT timeEndPeriod(UINT periodMs);

// --- Locks, events and waiting -------------------------------------------------------------------------------------------

// Recursive, as on Windows. The storage belongs to the implementation.
struct CRITICAL_SECTION {
    alignas(void*) unsigned char storage[64];
};
using LPCRITICAL_SECTION = CRITICAL_SECTION*;
void InitializeCriticalSection(LPCRITICAL_SECTION section);
void EnterCriticalSection(LPCRITICAL_SECTION section);
void LeaveCriticalSection(LPCRITICAL_SECTION section);
void DeleteCriticalSection(LPCRITICAL_SECTION section);

// Events without a name. Gives 0 on failure.
HANDLE CreateEventA(LPSECURITY_ATTRIBUTES security, BOOL manualReset, BOOL initialState, LPCSTR name);
BOOL SetEvent(HANDLE event);

inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;
inline constexpr DWORD MAXIMUM_WAIT_OBJECTS = 64;
// A path with its terminator.
inline constexpr int MAX_PATH = 260;
// Threads and events can be waited for.
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
// Waits for any one of the handles; waiting for all of them is not supported.
DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds);

// --- Memory --------------------------------------------------------------------------------------------------------------

inline constexpr UINT LMEM_FIXED = 0x0000;
inline constexpr UINT LMEM_ZEROINIT = 0x0040;
inline constexpr UINT LPTR = LMEM_FIXED | LMEM_ZEROINIT;
HLOCAL LocalAlloc(UINT flags, SIZE_T bytes);
// Gives 0 when the block is gone.
HLOCAL LocalFree(HLOCAL block);

// --- Files ---------------------------------------------------------------------------------------------------------------

inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD CREATE_ALWAYS = 2;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x00000080;
inline constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFF;

// Opens a file, or a serial port by the names "COM1" to "COM8". Paths are in the code page, with backslashes or slashes.
// Synchronous only; sharing is not enforced between files, a port is always exclusive.
HANDLE CreateFileA(LPCSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                   DWORD attributes, HANDLE templateFile);
BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD count, LPDWORD read, LPOVERLAPPED overlapped);
// A write to a serial port fails after two seconds without progress, and the port is dead from then on.
BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD count, LPDWORD written, LPOVERLAPPED overlapped);
// A file of 4 GiB or more without a place for the high part gives INVALID_FILE_SIZE.
DWORD GetFileSize(HANDLE file, LPDWORD high);
BOOL DeleteFileA(LPCSTR name);
// Gives the length without the terminator, or the size needed with it if the buffer is too small, or 0. A folder that the
// code page cannot name has the alias "\proc\self\cwd".
DWORD GetCurrentDirectoryA(DWORD size, LPSTR buffer);

// --- Serial line ---------------------------------------------------------------------------------------------------------

inline constexpr BYTE NOPARITY = 0;
inline constexpr BYTE ONESTOPBIT = 0;

struct DCB {
    DWORD DCBlength;
    DWORD BaudRate;
    DWORD fBinary : 1;
    DWORD fParity : 1;
    DWORD fOutxCtsFlow : 1;
    DWORD fOutxDsrFlow : 1;
    DWORD fDtrControl : 2;
    DWORD fDsrSensitivity : 1;
    DWORD fTXContinueOnXoff : 1;
    DWORD fOutX : 1;
    DWORD fInX : 1;
    DWORD fErrorChar : 1;
    DWORD fNull : 1;
    DWORD fRtsControl : 2;
    DWORD fAbortOnError : 1;
    DWORD fDummy2 : 17;
    WORD wReserved;
    WORD XonLim;
    WORD XoffLim;
    BYTE ByteSize;
    BYTE Parity;
    BYTE StopBits;
    char XonChar;
    char XoffChar;
    char ErrorChar;
    char EofChar;
    char EvtChar;
    WORD wReserved1;
};
static_assert(sizeof(DCB) == 28);

struct COMMTIMEOUTS {
    DWORD ReadIntervalTimeout;
    DWORD ReadTotalTimeoutMultiplier;
    DWORD ReadTotalTimeoutConstant;
    DWORD WriteTotalTimeoutMultiplier;
    DWORD WriteTotalTimeoutConstant;
};
static_assert(sizeof(COMMTIMEOUTS) == 20);

struct COMSTAT {
    DWORD fCtsHold : 1;
    DWORD fDsrHold : 1;
    DWORD fRlsdHold : 1;
    DWORD fXoffHold : 1;
    DWORD fXoffSent : 1;
    DWORD fEof : 1;
    DWORD fTxim : 1;
    DWORD fReserved : 25;
    DWORD cbInQue;
    DWORD cbOutQue;
};
static_assert(sizeof(COMSTAT) == 12);

BOOL GetCommState(HANDLE port, DCB* state);
// Standard baud rates up to 115200, 8 data bits, no parity, one stop bit, no flow control; anything else fails.
BOOL SetCommState(HANDLE port, DCB* state);
// Stored and not acted on: the program reads only what is there already, and writes have their own deadline.
BOOL SetCommTimeouts(HANDLE port, COMMTIMEOUTS* timeouts);
// Never blocks. The error word is always 0; fails, with cbInQue 0, once the port is dead. Of the status only cbInQue is set.
BOOL ClearCommError(HANDLE port, LPDWORD errors, COMSTAT* status);

// --- Text ----------------------------------------------------------------------------------------------------------------

// By the code page of the process: 932 under a Japanese locale, else 1252, which has no lead bytes.
BOOL IsDBCSLeadByte(BYTE byte);

// --- Console -------------------------------------------------------------------------------------------------------------

using PHANDLER_ROUTINE = BOOL(WINAPI*)(DWORD);
inline constexpr DWORD CTRL_C_EVENT = 0;
inline constexpr DWORD CTRL_BREAK_EVENT = 1;
// One handler at a time, the last one added; it runs on a thread of its own for an interrupt (Ctrl+C) or a request to
// terminate (CTRL_BREAK_EVENT). A handler that gives FALSE lets the process end. Only adding is supported.
BOOL SetConsoleCtrlHandler(PHANDLER_ROUTINE handler, BOOL add);
