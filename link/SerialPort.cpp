#include "SerialPort.h"

namespace {

constexpr DWORD kReaderPauseMs = 1;
constexpr DWORD kReaderEndLimitMs = 60000;
constexpr DWORD kReadIntervalMs = 1000;
constexpr BYTE kByteSize = 8;

}  // namespace

SerialPort::~SerialPort() {
    Close();
}

bool SerialPort::Open(LPCSTR name) {
    Close();
    portHandle = CreateFileA(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    return IsOpen();
}

bool SerialPort::Configure(DWORD baud, BYTE newParity, BYTE newStopBits) {
    if (!IsOpen()) {
        return false;
    }
    baudRate = baud;
    parity = newParity;
    stopBits = newStopBits;

    COMMTIMEOUTS timeouts = {};
    timeouts.ReadIntervalTimeout = kReadIntervalMs;
    SetCommTimeouts(portHandle, &timeouts);

    DCB state = {};
    state.DCBlength = sizeof state;
    GetCommState(portHandle, &state);
    state.BaudRate = baudRate;
    state.Parity = parity;
    state.StopBits = stopBits;
    state.ByteSize = kByteSize;
    state.fBinary = 1;
    state.fOutxCtsFlow = 0;
    state.fOutX = 0;
    state.fInX = 0;
    state.fErrorChar = 0;
    state.fNull = 0;
    state.fRtsControl = 0;
    SetCommState(portHandle, &state);
    return true;
}

bool SerialPort::StartReader() {
    if (!IsOpen()) {
        return false;
    }
    StopReader();
    Configure(baudRate, parity, stopBits);
    // Set before the thread runs, so that a StopReader right behind this call is not lost.
    readerRunning = 1;
    const HANDLE thread = CreateThread(nullptr, 0, ReaderProc, this, 0, nullptr);
    if (thread == nullptr) {
        readerRunning = 0;
        return false;
    }
    readerThread = thread;
    return true;
}

void SerialPort::StopReader() {
    if (readerThread == INVALID_HANDLE_VALUE) {
        return;
    }
    readerRunning = 0;
    WaitForSingleObject(readerThread, kReaderEndLimitMs);
    CloseHandle(readerThread);
    readerThread = INVALID_HANDLE_VALUE;
}

void SerialPort::Close() {
    StopReader();
    if (IsOpen()) {
        CloseHandle(portHandle);
        portHandle = INVALID_HANDLE_VALUE;
    }
}

BOOL SerialPort::Write(LPCVOID bytes, DWORD count, DWORD& written) {
    written = 0;
    LockGuard lock(portLock);
    return WriteFile(portHandle, bytes, count, &written, nullptr);
}

DWORD WINAPI SerialPort::ReaderProc(LPVOID object) {
    auto* port = static_cast<SerialPort*>(object);
    do {
        Sleep(kReaderPauseMs);
        port->ReadOnce();
    } while (port->readerRunning);
    return 0;
}

void SerialPort::ReadOnce() {
    DWORD errors = 0;
    COMSTAT status = {};
    if (!ClearCommError(portHandle, &errors, &status) || status.cbInQue == 0) {
        return;
    }
    auto* chunk = static_cast<char*>(LocalAlloc(LMEM_FIXED, status.cbInQue + SIZE_T{1}));
    if (chunk == nullptr) {
        return;  // the bytes wait in the port's queue for the next pass
    }
    DWORD count = 0;
    {
        LockGuard lock(portLock);
        if (!ReadFile(portHandle, chunk, status.cbInQue, &count, nullptr)) {
            count = 0;
        }
    }
    chunk[count] = '\0';
    OnReceive(chunk, count);
    if (chunk != nullptr) {
        LocalFree(chunk);
    }
}
