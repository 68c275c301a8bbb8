// One serial line: opening, the reader thread, and writes under a lock.
#pragma once

#include <windows.h>

#include "Lock.h"
#include "Shared.h"

// Open, Configure, StartReader, StopReader and Close belong to one thread, which is never the reader. Write may come from
// any thread, the reader included. Failures of the line are not told: whoever waits for a reply runs into his own time-out.
class SerialPort {
public:
    SerialPort() = default;
    virtual ~SerialPort();
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    // Closes what was open, then opens the named port, such as "COM1". False if there is no such port or if it is in use.
    bool Open(LPCSTR name);

    // Sets the line up; what the port rejects is not reported. False if the port is closed.
    bool Configure(DWORD baud, BYTE newParity, BYTE newStopBits);

    // Configures the line and starts the reader anew. False if the port is closed or if no thread came up.
    bool StartReader();

    // Waits at most a minute for the reader's end.
    void StopReader();

    void Close();
    bool IsOpen() const { return portHandle != INVALID_HANDLE_VALUE; }

    // One write of `count` bytes; `written` gets how many went out.
    BOOL Write(LPCVOID bytes, DWORD count, DWORD& written);

    // A batch of received bytes with a NUL behind them, on the reader thread. Setting the reference to null takes the buffer
    // over (it is freed with LocalFree).
    virtual void OnReceive(char*& chunk, DWORD length) = 0;

private:
    static DWORD WINAPI ReaderProc(LPVOID port);
    void ReadOnce();

    HANDLE portHandle = INVALID_HANDLE_VALUE;
    HANDLE readerThread = INVALID_HANDLE_VALUE;
    CriticalSection portLock;  // around each ReadFile and each WriteFile
    DWORD baudRate = 9600;
    BYTE parity = NOPARITY;
    BYTE stopBits = ONESTOPBIT;
    Shared<LONG> readerRunning = 0;  // written by the owner, read by the reader
};
