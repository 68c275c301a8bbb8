#include "LinkHarness.h"

#include <gtest/gtest.h>

#include "Fields.h"
#include "MessageWindow.h"
#include "PumpUntil.h"

namespace {

constexpr std::uint64_t kLimitUs = 24ULL * 3600 * 1000 * 1000;

}  // namespace

std::string UnitBlock(const std::string& payload) {
    char digits[8];
    PutHex(static_cast<std::uint32_t>(payload.size()), 2, digits);
    const std::string body = std::string("50") + digits + payload;
    PutHex(ByteSum(body), 2, digits);
    return Framed(kDc4, body + digits);
}

std::string UnitMap(const std::vector<int>& items) {
    std::string digits;
    for (int byte = 0; byte < 125; ++byte) {
        unsigned bits = 0;
        for (const int item : items) {
            bits |= (item - 1) / 8 == byte ? 0x80U >> ((item - 1) % 8) : 0U;
        }
        char pair[8];
        PutHex(bits, 2, pair);
        digits += pair;
    }
    return UnitBlock("0300" + digits);
}

std::string UnitTitle(std::string text) {
    text.resize(32, ' ');
    return UnitBlock("0500" + text);
}

std::string UnitStatus(const std::string& value) {
    return Framed(kStx, "@052" + value);
}

std::string MapQuery(std::uint8_t kind, std::uint16_t code) {
    char frame[kFrameSize];
    EncodeMapQuery(kind, code, frame);
    return frame;
}

std::string TitleRead(std::uint8_t kind, std::uint32_t number, std::uint32_t track) {
    char frame[kFrameSize];
    EncodeTitleRead(kind, number, track, frame);
    return frame;
}

std::string TitleWrite(std::uint32_t disc, std::uint32_t track) {
    char frame[kFrameSize];
    EncodeTitleWrite(kKindDisc, disc, track, frame);
    return frame;
}

void PrintTo(const Posted& posted, std::ostream* out) {
    *out << posted.message << ' ' << std::hex << posted.wParam << ' ' << posted.lParam << std::dec;
}

void ScriptedUnit::OnBytes(std::string_view bytes, std::uint64_t, std::uint64_t lastByteUs) {
    const std::string frame(bytes);
    frames.push_back({frame, lastByteUs});
    std::string answer;
    const auto scripted = answers.find(frame);
    if (scripted == answers.end()) {
        answer = DefaultAnswer(frame);
    } else {
        answer = scripted->second.front();
        if (scripted->second.size() > 1) {
            scripted->second.erase(scripted->second.begin());
        }
    }
    if (!answer.empty()) {
        line->Send(answer, delayUs);
    }
}

std::string ScriptedUnit::DefaultAnswer(const std::string& frame) const {
    if (frame[0] == kDc1) {
        return kModelReply;
    }
    if (frame == kMenuQuery) {
        return UnitStatus("FF");
    }
    if (frame == kReadyQuery) {
        return UnitStatus("40");
    }
    if (frame.substr(1, 3) == "07C") {
        return Framed(kStx, "@05800");
    }
    const std::string kind = frame.substr(3, 4);
    if (kind == "1003") {
        if (frame.substr(9, 4) == "FFFF") {
            return kRefusedMap;
        }
        const std::map<std::string, std::vector<int>> maps = {{"00", {1, 2}}, {"01", {1}}, {"02", {1, 2, 3}}};
        return UnitMap(maps.at(frame.substr(7, 2)));
    }
    if (kind == "1005") {
        return UnitTitle("Title " + frame.substr(7, 6));
    }
    return kind == "1006" ? kWriteAccepted : std::string();
}

std::vector<std::string> ScriptedUnit::FrameTexts(std::size_t from) const {
    std::vector<std::string> texts;
    for (std::size_t i = from; i < frames.size(); ++i) {
        const std::string& frame = frames[i].frame;
        const std::size_t tail = frame[0] == kDc4 ? 3 : 1;
        texts.push_back(frame.substr(1, frame.size() - 1 - tail));
    }
    return texts;
}

std::size_t ScriptedUnit::Count(const std::string& frame) const {
    std::size_t count = 0;
    for (const Sent& sent : frames) {
        count += sent.frame == frame ? 1 : 0;
    }
    return count;
}

LinkHarness::LinkHarness(ScriptedUnit& scripted) : unit(scripted) {
    window = MakeMessageWindow("LinkHarness", WindowProc);
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    link.SetPaneWindow(window);
    link.SetTitleStore(&store);
}

LinkHarness::~LinkHarness() {
    link.Disconnect();
    link.SetPaneWindow(nullptr);
    DestroyWindow(window);
}

LRESULT CALLBACK LinkHarness::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == LM_RESULT || message == LM_PROGRESS) {
        reinterpret_cast<LinkHarness*>(GetWindowLongPtrA(window, GWLP_USERDATA))
            ->posted.push_back({message, wParam, lParam});
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

bool LinkHarness::WaitUntil(const std::function<bool()>& condition, DWORD limitMs) {
    return PumpUntil(condition, limitMs);
}

void LinkHarness::Pass(DWORD ms) {
    WaitUntil([] { return false; }, ms);
}

bool LinkHarness::HasResult(WPARAM wParam) const {
    for (const Posted& each : posted) {
        if (each.message == LM_RESULT && each.wParam == wParam) {
            return true;
        }
    }
    return false;
}

bool LinkHarness::WaitForResult(WPARAM wParam, DWORD limitMs) {
    return WaitUntil([&] { return HasResult(wParam); }, limitMs);
}

void LinkHarness::Edit(GroupId group, TrackNo track, const std::string& text) {
    store.StoreReceived(group, track, "old");
    EXPECT_EQ(store.EditTitle(group, track, text.c_str()), 1) << text;
}

std::string LinkHarness::Title(GroupId group, TrackNo track) {
    char text[kTitleSize];
    return store.GetTitle(group, track, text) ? text : "";
}

bool LinkHarness::ConnectQuietly() {
    const bool connected = link.Connect("COM1") && WaitForResult(OP_CONNECT);
    posted.clear();
    framesBefore = unit.Frames().size();
    return connected;
}

std::string LinkHarness::LastFrame() const {
    const std::vector<std::string> texts = FramesSinceConnect();
    return texts.empty() ? std::string() : texts.back();
}

std::size_t LinkHarness::Results() const {
    return posted.size() - Progress().size();
}

std::vector<Posted> LinkHarness::Progress() const {
    std::vector<Posted> progress;
    for (const Posted& each : posted) {
        if (each.message == LM_PROGRESS) {
            progress.push_back(each);
        }
    }
    return progress;
}

void RunLink(const std::function<void(LinkHarness&)>& body) {
    Simulation simulation(Simulation::Options{});
    ScriptedUnit unit;
    unit.SetLine(&simulation.AttachPort("COM1", &unit));
    const bool done = simulation.Run(
        [&] {
            LinkHarness harness(unit);
            body(harness);
        },
        kLimitUs);
    EXPECT_TRUE(done) << simulation.Report();
    EXPECT_EQ(simulation.PeriodsHeld(), 0) << "timer period still held";
}

void RunConnected(const std::function<void(LinkHarness&)>& body) {
    RunLink([&](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        body(run);
    });
}
