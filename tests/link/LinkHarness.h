// The link in virtual time, with a unit at the other end that answers as a test tells it to.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "DeviceLink.h"
#include "Simulation.h"
#include "TitleStore.h"

inline std::string Framed(char start, const std::string& text) {
    return start + text + kEtx;
}
// A block frame as the unit sends it, with the right check field.
std::string UnitBlock(const std::string& payload);
// A MapReply with the bits of the items set.
std::string UnitMap(const std::vector<int>& items);
// A TitleReadReply; the text is padded to 32 bytes.
std::string UnitTitle(std::string text);

std::string UnitStatus(const std::string& value);

inline const std::string kModelQuery = Framed(kDc1, "000");
inline const std::string kMenuQuery = Framed(kStx, "52060");
inline const std::string kReadyQuery = Framed(kStx, "52000");
std::string MapQuery(std::uint8_t kind, std::uint16_t code);
std::string TitleRead(std::uint8_t kind, std::uint32_t number, std::uint32_t track);
std::string TitleWrite(std::uint32_t disc, std::uint32_t track);

inline const std::string kModelReply = Framed(kDc2, "C00530009B");
// A reply to a command that nobody has given.
inline const std::string kStray = Framed(kStx, "@05800");
inline const std::string kWriteAccepted = UnitBlock("0600");
inline const std::string kRefusedMap = UnitBlock("0301");

struct Sent {
    std::string frame;
    std::uint64_t timeUs;
};

struct Posted {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    bool operator==(const Posted&) const = default;
};
// For the messages of failed expectations.
void PrintTo(const Posted& posted, std::ostream* out);

// The unit of these tests. Without instructions it is ready, holds Discs 1 and 2, Album 1, Tracks 1 to 3 of each, refuses
// the probe and answers each read with a title made of the request.
class ScriptedUnit : public SerialPeer {
public:
    void OnBytes(std::string_view bytes, std::uint64_t firstByteUs, std::uint64_t lastByteUs) override;

    // What one exact frame is answered with, one answer after the other; the last one stays. An empty answer is silence.
    void Answer(const std::string& frame, std::vector<std::string> inTurn) { answers[frame] = std::move(inTurn); }
    void SetDelay(std::uint64_t newDelayUs) { delayUs = newDelayUs; }
    void SetLine(SerialLine* newLine) { line = newLine; }
    SerialLine& Line() { return *line; }

    const std::vector<Sent>& Frames() const { return frames; }
    // The frames in short: their characters without start byte, check field and ETX.
    std::vector<std::string> FrameTexts(std::size_t from = 0) const;
    std::size_t Count(const std::string& frame) const;

private:
    std::string DefaultAnswer(const std::string& frame) const;

    SerialLine* line = nullptr;
    std::uint64_t delayUs = 1000;
    std::map<std::string, std::vector<std::string>> answers;
    std::vector<Sent> frames;
};

// The link with its pane's window and its store. Lives on the first thread of a simulation.
class LinkHarness {
public:
    explicit LinkHarness(ScriptedUnit& scripted);
    ~LinkHarness();

    // Serves messages until the condition holds; false when the limit of virtual time is over.
    bool WaitUntil(const std::function<bool()>& condition, DWORD limitMs);
    void Pass(DWORD ms);
    bool WaitForResult(WPARAM wParam, DWORD limitMs = 60000);
    // Waits for the result of an operation that the link has just been told to start.
    bool Ends(bool started, WPARAM wParam, DWORD limitMs = 60000) { return started && WaitForResult(wParam, limitMs); }
    // Gives a title that the unit knows by another text.
    void Edit(GroupId group, TrackNo track, const std::string& text);
    // Empty when the title is not known.
    std::string Title(GroupId group, TrackNo track);
    // Connects and forgets what was sent and posted for it.
    bool ConnectQuietly();
    bool HasResult(WPARAM wParam) const;
    std::size_t Results() const;
    std::vector<Posted> Progress() const;
    std::uint64_t Now() const { return Simulation::Current()->Now(); }
    std::vector<std::string> FramesSinceConnect() const { return unit.FrameTexts(framesBefore); }
    // Empty while nothing was sent since.
    std::string LastFrame() const;

    ScriptedUnit& unit;
    TitleStore store;
    DeviceLink link;
    std::vector<Posted> posted;

private:
    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND window = nullptr;
    std::size_t framesBefore = 0;
};

// Runs the body as the first thread of a simulation with the unit on COM1, connected to it or not.
void RunLink(const std::function<void(LinkHarness&)>& body);
void RunConnected(const std::function<void(LinkHarness&)>& body);
