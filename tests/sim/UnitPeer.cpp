// The unit and its line, and the checks of what the link puts on it.
#include <algorithm>

#include "Dialogue.h"
#include "LinkWorld.h"
#include "UnitFrames.h"
#include "UnitRequest.h"

using mainunit::UnitRequest;

namespace {

constexpr std::uint64_t kLeastPauseUs = 120'000;
constexpr std::uint64_t kRepeatAfterUs = 1'900'000;
constexpr std::uint64_t kPollUs = 5'000;
constexpr std::uint64_t kHoldsUs = 30'000;     // some of 3 ms in a row
constexpr std::uint64_t kStopUs = 100'000;     // less than the pause before a frame
constexpr std::uint64_t kStallUs = 3'000'000;  // two in a row
constexpr std::uint64_t kTimeOutAfterUs = 3'900'000;

mainunit::UnitSettings SettingsOf(const WorldOptions& options) {
    mainunit::UnitSettings settings;
    settings.probeAccepted = options.probeAccepted;
    settings.latencyMs = options.latencyMs;
    return settings;
}

}  // namespace

UnitPeer::UnitPeer(Simulation& newSimulation, const WorldOptions& newOptions, library::UnitLibrary library)
    : simulation(newSimulation),
      options(newOptions),
      unit(std::move(library), SettingsOf(newOptions)),
      faults(newOptions.seed, newOptions.rates) {
    Remember();
}

void UnitPeer::Attach(SerialLine& newLine) {
    line = &newLine;
    line->OnWrite([this](std::string_view bytes, std::uint64_t timeUs, bool) { CheckWrite(bytes, timeUs); });
}

void UnitPeer::Calm() {
    calm = true;
    faults.SetRates({});
    mainunit::UnitSettings settings = unit.Settings();
    settings.status = {mainunit::kReady};
    settings.menu = mainunit::kNotInMenu;
    settings.refuseWrites = false;
    unit.Configure(settings);
}

void UnitPeer::OnBytes(std::string_view bytes, std::uint64_t, std::uint64_t lastByteUs) {
    std::string received(bytes);
    if (!calm && simulation.Chance(options.requestsLost)) {
        return;
    }
    if (!calm && simulation.Chance(options.requestsCorrupted)) {
        received[simulation.Random(received.size())] = static_cast<char>(simulation.Random(256));
    }
    DrawSettings();
    const std::vector<mainunit::Reply> replies = unit.Receive(received);
    NoteAnswer(received, replies);
    const std::vector<mainunit::Chunk> chunks = faults.Apply(replies);
    if (unit.TakeChanged()) {
        Remember();
    }
    for (const mainunit::Chunk& chunk : chunks) {
        Deliver(chunk.bytes, lastByteUs + static_cast<std::uint64_t>(chunk.delayMs) * 1000);
    }
}

void UnitPeer::DrawSettings() {
    mainunit::UnitSettings settings = unit.Settings();
    if (calm) {
        return;
    }
    if (options.oddStatus && simulation.Chance(0.1)) {
        constexpr std::uint8_t kOdd[] = {0x00, 0x01, 0x02, 0x04, 0x08, 0x46, 0xFD, 0xFE, 0xFF, 0x03};
        settings.status = {kOdd[simulation.Random(std::size(kOdd))], kOdd[simulation.Random(std::size(kOdd))],
                           mainunit::kReady};
        settings.menu = simulation.Chance(0.05) ? mainunit::kReady : mainunit::kNotInMenu;
        unit.Configure(settings);
    }
    if (options.answersData) {
        settings.refuseWrites = simulation.Chance(0.1);
        unit.Configure(settings);
    }
}

void UnitPeer::Deliver(const std::string& bytes, std::uint64_t atUs) {
    lastDelivery = std::max(lastDelivery, atUs);
    // The cutter takes one frame from what arrives in one piece.
    simulation.At(lastDelivery, [this, bytes] {
        Note(mainunit::Dialogue::ReplyLine(static_cast<std::int64_t>(simulation.Now() / 1000), bytes));
        line->Send(options.answersData ? bytes + "\r" : bytes);
        lastArrival = line->QuietAt();
    });
}

void UnitPeer::NoteAnswer(const std::string& received, const std::vector<mainunit::Reply>& replies) {
    UnitRequest request;
    std::string problem;
    const std::string acceptance = mainunit::BlockReply(mainunit::SubType::kTitleWrite, mainunit::kAccepted);
    if (!mainunit::ReadRequest(received, request, problem)) {
        return;
    }
    if (request.kind == UnitRequest::Kind::kTitleWrite) {
        const bool accepts =
            std::any_of(replies.begin(), replies.end(), [&](const auto& reply) { return reply.bytes == acceptance; });
        if (accepts) {
            accepted.insert(library::NameOf(request.entry));
        } else {
            accepted.erase(library::NameOf(request.entry));
            NoteRefusal();
        }
    } else if (request.kind == UnitRequest::Kind::kTitleData && options.answersData) {
        Deliver(acceptance, simulation.Now() + 100'000 + simulation.Random(150'000));
    }
}

void UnitPeer::CheckWrite(std::string_view bytes, std::uint64_t timeUs) {
    UnitRequest request;
    std::string problem;
    if (!mainunit::ReadRequest(bytes, request, problem)) {
        simulation.Fail("the link wrote a malformed frame: " + problem);
        return;
    }
    Note(mainunit::Dialogue::RequestLine(static_cast<std::int64_t>(timeUs / 1000), bytes));
    // The sender can be held between its pause and the writing.
    const std::uint64_t least = options.holds ? kLeastPauseUs - kHoldsUs : kLeastPauseUs;
    if (lastWrite && timeUs - *lastWrite < least) {
        simulation.Fail("two frames are less than 120 ms apart");
        return;
    }
    lastWrite = timeUs;
    if (request.kind == UnitRequest::Kind::kTitleData) {
        const std::string text = request.text.substr(0, request.text.find_last_not_of(' ') + 1);
        const bool taken = accepted.erase(library::NameOf(writing)) > 0;
        if (taken || !options.answersData) {
            sent[{library::NameOf(writing), text}] = timeUs;
        }
        if (!taken && options.repliesInTime && !options.answersData) {
            simulation.Fail("a title goes out for a write that the unit has not accepted");
        }
        return;
    }
    if (request.kind == UnitRequest::Kind::kTitleWrite) {
        writing = request.entry;
    }
    if (stoppedAt && !options.stalls && timeUs > *stoppedAt + kStopUs) {
        simulation.Fail("a request goes out although a stop has begun");
    }
    CheckOrder(std::string(bytes), timeUs);
}

// A request goes out when the one before was answered, has timed out or was stopped, or as its repeat.
void UnitPeer::CheckOrder(const std::string& bytes, std::uint64_t timeUs) {
    const std::uint64_t since = timeUs - lastRequestTime;
    const bool repeat = bytes == lastRequest && since >= kRepeatAfterUs;
    // The reader may take up a reply just behind the writing of a request that it came in front of.
    const bool replied = lastArrival + (options.stalls ? kStallUs : options.holds ? kHoldsUs : kPollUs) > lastRequestTime;
    if (calls == 0 && !released && !replied && !repeat && since < kTimeOutAfterUs) {
        simulation.Fail("a request went out while the one before was still waiting for its reply");
        return;
    }
    lastRequest = bytes;
    lastRequestTime = timeUs;
    released = false;
}

void UnitPeer::Remember() {
    for (const library::GroupKind kind : {library::GroupKind::kDisc, library::GroupKind::kAlbum}) {
        for (const auto& [number, group] : unit.Library().GroupsOf(kind)) {
            if (group.title) {
                held.insert({library::NameOf({kind, number, 0}), *group.title});
            }
            for (const auto& [track, title] : group.tracks) {
                if (title) {
                    held.insert({library::NameOf({kind, number, track}), *title});
                }
            }
        }
    }
}

void UnitPeer::Note(std::string line) {
    constexpr std::size_t kLines = 80;
    dialogue.push_back(std::move(line));
    if (dialogue.size() > kLines) {
        dialogue.pop_front();
    }
}

std::string UnitPeer::Dialogue() const {
    std::string text;
    for (const std::string& each : dialogue) {
        text += each + "\n";
    }
    return text;
}

bool UnitPeer::EverHeld(const library::Entry& entry, const std::string& text) const {
    return held.contains({library::NameOf(entry), text});
}

std::uint64_t UnitPeer::SentAt(const library::Entry& entry, const std::string& text) const {
    const auto found = sent.find({library::NameOf(entry), text});
    return found != sent.end() ? found->second : 0;
}
