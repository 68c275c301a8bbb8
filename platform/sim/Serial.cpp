// The calls of the program for its serial ports.
#include <algorithm>
#include <cctype>
#include <iterator>
#include <string>

#include "PortObject.h"
#include "Scheduler.h"

namespace sim {

namespace {

constexpr BYTE kByteSize = 8;
constexpr DWORD kBaudRates[] = {110, 300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};

}  // namespace

PortObject::~PortObject() {
    if (line != nullptr) {
        line->Closed(*this);
    }
}

bool PortObject::Open(SerialLine& newLine) {
    if (!newLine.Opened(*this)) {
        return false;
    }
    line = &newLine;
    state.DCBlength = sizeof state;
    state.BaudRate = 9600;
    state.fBinary = 1;
    state.ByteSize = kByteSize;
    state.Parity = NOPARITY;
    state.StopBits = ONESTOPBIT;
    return true;
}

bool PortObject::IsAlive(DWORD error) const {
    if (line == nullptr) {
        SetLastError(error);
    }
    return line != nullptr;
}

bool PortObject::SetState(const DCB& newState) {
    const bool known = std::ranges::find(kBaudRates, newState.BaudRate) != std::end(kBaudRates);
    const bool flowControl =
        newState.fOutxCtsFlow != 0 || newState.fOutxDsrFlow != 0 || newState.fOutX != 0 || newState.fInX != 0;
    const bool filtered = newState.fErrorChar != 0 || newState.fNull != 0 || newState.fParity != 0;
    if (!known || flowControl || filtered || newState.ByteSize != kByteSize || newState.Parity != NOPARITY ||
        newState.StopBits != ONESTOPBIT) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    state = newState;
    line->SetBaudRate(state.BaudRate);
    return true;
}

bool PortObject::Write(std::string_view bytes) {
    Scheduler& scheduler = *Scheduler::Current();
    const bool accepted = !line->rejectWrites;
    std::string text = line->name + (accepted ? " sends" : " rejects");
    for (const char byte : bytes) {
        constexpr char kDigits[] = "0123456789ABCDEF";
        text += {' ', kDigits[static_cast<unsigned char>(byte) >> 4], kDigits[byte & 0xF]};
    }
    scheduler.Note(text);
    if (line->observer) {
        line->observer(bytes, scheduler.now, accepted);
    }
    // The observer may have pulled the plug.
    if (!accepted || line == nullptr) {
        SetLastError(ERROR_WRITE_FAULT);
        return false;
    }
    if (!bytes.empty()) {
        line->Transmit(bytes);
    }
    return true;
}

std::size_t PortObject::Read(char* buffer, std::size_t size) {
    std::string& received = line->Received();
    const std::size_t count = received.copy(buffer, size);
    received.erase(0, count);
    return count;
}

std::size_t PortIndex(std::string_view name) {
    const bool named = name.size() == 4 && std::toupper(static_cast<unsigned char>(name[0])) == 'C' &&
                       std::toupper(static_cast<unsigned char>(name[1])) == 'O' &&
                       std::toupper(static_cast<unsigned char>(name[2])) == 'M' && name[3] >= '1' && name[3] <= '8';
    return named ? static_cast<std::size_t>(name[3] - '1') : kNoPort;
}

}  // namespace sim

using sim::KernelObject;
using sim::PortObject;

namespace {

std::shared_ptr<PortObject> Port(HANDLE handle) {
    return sim::FindObject<PortObject>(handle, KernelObject::Kind::kPort);
}

}  // namespace

HANDLE CreateFileA(LPCSTR name, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) {
    sim::SchedulingPoint();
    sim::Scheduler* scheduler = sim::Scheduler::Current();
    const std::size_t index = name == nullptr ? sim::kNoPort : sim::PortIndex(name);
    if (scheduler == nullptr || index >= scheduler->lines.size() || scheduler->lines[index] == nullptr) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    auto port = std::make_shared<PortObject>();
    if (!port->Open(*scheduler->lines[index])) {
        return INVALID_HANDLE_VALUE;
    }
    HANDLE handle = sim::HandleTable::Get().Add(std::move(port));
    return handle == nullptr ? INVALID_HANDLE_VALUE : handle;
}

BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD count, LPDWORD read, LPOVERLAPPED overlapped) {
    sim::SchedulingPoint();
    const auto port = Port(file);
    if (read != nullptr) {
        *read = 0;
    }
    if (port == nullptr || !port->IsAlive(ERROR_GEN_FAILURE)) {
        return FALSE;
    }
    if (overlapped != nullptr || read == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *read = static_cast<DWORD>(port->Read(static_cast<char*>(buffer), count));
    return TRUE;
}

BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD count, LPDWORD written, LPOVERLAPPED overlapped) {
    sim::SchedulingPoint();
    const auto port = Port(file);
    if (written != nullptr) {
        *written = 0;
    }
    if (port == nullptr || !port->IsAlive(ERROR_GEN_FAILURE)) {
        return FALSE;
    }
    if (overlapped != nullptr || written == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (!port->Write({static_cast<const char*>(buffer), count})) {
        return FALSE;
    }
    *written = count;
    return TRUE;
}

BOOL GetCommState(HANDLE handle, DCB* state) {
    const auto port = Port(handle);
    if (port == nullptr || !port->IsAlive(ERROR_GEN_FAILURE)) {
        return FALSE;
    }
    *state = port->state;
    return TRUE;
}

BOOL SetCommState(HANDLE handle, DCB* state) {
    const auto port = Port(handle);
    return port != nullptr && port->IsAlive(ERROR_GEN_FAILURE) && port->SetState(*state);
}

BOOL SetCommTimeouts(HANDLE handle, COMMTIMEOUTS*) {
    const auto port = Port(handle);
    return port != nullptr && port->IsAlive(ERROR_GEN_FAILURE);
}

BOOL ClearCommError(HANDLE handle, LPDWORD errors, COMSTAT* status) {
    sim::SchedulingPoint();
    if (errors != nullptr) {
        *errors = 0;
    }
    if (status != nullptr) {
        *status = {};
    }
    const auto port = Port(handle);
    if (port == nullptr || !port->IsAlive(ERROR_GEN_FAILURE)) {
        return FALSE;
    }
    if (status != nullptr) {
        status->cbInQue = static_cast<DWORD>(port->Waiting());
    }
    return TRUE;
}
