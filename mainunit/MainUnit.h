// MainUnit: a simulated main unit. Bytes of the line go in, replies come out.
//
// It has no thread, no clock and no line of its own: the caller carries the bytes, keeps the delays and adds what goes
// wrong on the way. It reads far more strictly than it would have to, so that a client's mistake is seen at once.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "UnitRequest.h"

namespace mainunit {

inline constexpr std::size_t kModelBytes = 5;
inline constexpr std::uint8_t kReady = 0x40;
inline constexpr std::uint8_t kNotInMenu = 0xFF;

struct UnitSettings {
    std::string model = "C0053";  // exactly 5 printable characters
    // The answers to the StatusQuery 0x00, one after the other; the last one stays. A value that asks for a command (0xFD,
    // 0x04 to 0x08) stays until that command came. Empty stands for ready.
    std::vector<std::uint8_t> status = {kReady};
    std::uint8_t menu = kNotInMenu;  // the answer to the StatusQuery 0x60
    bool probeAccepted = false;      // the MapQuery that asks for no group at all
    bool refuseMaps = false;         // every other MapQuery is refused
    bool refuseWrites = false;       // every TitleWrite is refused
    bool writeNeedsReady = false;    // TitleWrite is refused unless the last StatusReply said ready
    int latencyMs = 0;               // from the end of a request to the start of its reply, not negative
};

struct Reply {
    std::string bytes;  // one whole frame
    int delayMs = 0;    // after the end of the request
};

// Not safe for use by several threads at once.
class MainUnit {
public:
    // Told of everything received: each frame, and each run of bytes that is none. `problem` is empty when all is
    // well; else it says why the bytes were refused or, for a frame that was answered all the same, what was odd.
    using Log = std::function<void(std::string_view bytes, std::string_view problem)>;

    explicit MainUnit(UnitLibrary library, UnitSettings settings = {}, Log log = {});

    // Takes bytes in any portions. Malformed frames are not answered, nor is a TitleData.
    std::vector<Reply> Receive(std::string_view bytes);

    // True once after each change of the library by the client.
    bool TakeChanged();

    // Frames and runs of bytes that broke the rules of the line so far.
    int Malformed() const { return malformed; }

    const UnitLibrary& Library() const { return library; }
    const UnitSettings& Settings() const { return settings; }

    // The status values start again from the first.
    void Configure(UnitSettings newSettings);

private:
    std::optional<std::string> Answer(const UnitRequest& request, std::string& problem);
    std::string AnswerStatus(const UnitRequest& request);
    std::string AnswerCommand(const UnitRequest& request);
    std::string AnswerMap(const UnitRequest& request) const;
    std::string AnswerRead(const UnitRequest& request) const;
    std::string AnswerWrite(const UnitRequest& request);
    bool TakeTitle(const std::string& text);
    std::uint8_t CurrentStatus() const;
    void NextStatus();

    UnitLibrary library;
    UnitSettings settings;
    Log log;
    PieceCutter cutter = PieceCutter::ForRequests();
    std::optional<Entry> awaited;      // the entry of an accepted TitleWrite that its TitleData did not follow yet
    std::size_t statusIndex = 0;       // the next value to be told
    std::optional<std::uint8_t> told;  // the value of the last StatusReply to parameter 0x00
    bool changed = false;
    int malformed = 0;
};

}  // namespace mainunit
