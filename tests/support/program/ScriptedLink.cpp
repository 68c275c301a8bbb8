#include "ScriptedLink.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

// Asked by the thread of the windows and by the group watcher.
struct Script {
    CriticalSection lock;
    std::string calls;
    std::vector<int> ports{1};
    bool accepts = true;
    bool staysActive = false;
    bool isOpen = false;
    TitleStore* store = nullptr;
    DisplayRanges ranges;
};

Script& TheScript() {
    static Script script;
    return script;
}

bool Asked(const std::string& call) {
    Script& script = TheScript();
    const LockGuard guard(script.lock);
    script.calls += call + "\n";
    return script.accepts && script.isOpen;
}

}  // namespace

namespace scripted {

void Reset() {
    Script& script = TheScript();
    const LockGuard guard(script.lock);
    script.calls.clear();
    script.ports = {1};
    script.accepts = true;
    script.staysActive = false;
    script.isOpen = false;
}

std::string Take() {
    Script& script = TheScript();
    const LockGuard guard(script.lock);
    std::string calls;
    calls.swap(script.calls);
    return calls;
}

void OpenPorts(std::initializer_list<int> ports) {
    TheScript().ports = ports;
}

void Accept(bool accepts) {
    Script& script = TheScript();
    const LockGuard guard(script.lock);
    script.accepts = accepts;
}

void StayActive(bool stays) {
    TheScript().staysActive = stays;
}

TitleStore* Store() {
    return TheScript().store;
}

DisplayRanges Ranges() {
    return TheScript().ranges;
}

void PostResult(HWND pane, WORD operation, BYTE code, BYTE status, LPARAM data) {
    PostMessageA(pane, LM_RESULT, PackResult(operation, code, status), data);
}

void PostProgress(HWND pane, WORD operation, LinkStep step, GroupId group, TrackNo track) {
    PostMessageA(pane, LM_PROGRESS, PackProgress(operation, step), static_cast<LPARAM>(PackTitle(group, track)));
}

}  // namespace scripted

// --- The link

DeviceLink::DeviceLink() : cutter(FrameArrived, this) {}

DeviceLink::~DeviceLink() = default;

void DeviceLink::FrameArrived(void*, std::string_view) {}

void DeviceLink::OnReceive(char*&, DWORD) {}

void DeviceLink::SetTitleStore(TitleStore* store) {
    TheScript().store = store;
}

void DeviceLink::SetDisplayRanges(const DisplayRanges& newRanges) {
    TheScript().ranges = newRanges;
}

bool DeviceLink::Connect(LPCSTR portName) {
    Script& script = TheScript();
    Asked(std::string("Connect ") + portName);
    script.isOpen = std::count(script.ports.begin(), script.ports.end(), std::atoi(portName + 3)) > 0;
    operationActive = script.isOpen && script.staysActive ? 1 : 0;
    return script.isOpen;
}

void DeviceLink::Disconnect() {
    TheScript().isOpen = false;
}

bool DeviceLink::GetAllTitles() {
    const bool isAccepted = Asked("GetAllTitles");
    operationActive = isAccepted && TheScript().staysActive ? 1 : 0;
    return isAccepted;
}

bool DeviceLink::GetOneGroup(GroupId group) {
    return Asked("GetOneGroup " + std::to_string(group));
}

bool DeviceLink::GetGroupTracks(GroupId group) {
    return Asked("GetGroupTracks " + std::to_string(group));
}

bool DeviceLink::SendAllTitles() {
    return Asked("SendAllTitles");
}

bool DeviceLink::SendGroup(GroupId group) {
    return Asked("SendGroup " + std::to_string(group));
}

void DeviceLink::StopOperation() {
    Asked("StopOperation");
    operationActive = 0;
}
