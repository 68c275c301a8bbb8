#include "MainUnit.h"

#include <array>
#include <cassert>
#include <map>
#include <utility>

#include "UnitFrames.h"

namespace mainunit {

namespace {

// The command that brings the unit out of a state, if it needs one.
std::optional<std::uint8_t> CommandFor(std::uint8_t status) {
    if (status == 0xFD) {
        return kCommandBd;
    }
    if (status >= 0x04 && status <= 0x08) {
        return kCommandBe;
    }
    return std::nullopt;
}

// A bitmap of the items that are listed by their numbers, from 1 on: the first is the highest bit of the first byte.
template <class Item>
std::string BitmapDigits(const std::map<int, Item>& items) {
    std::array<unsigned, kBitmapBytes> bytes{};
    for (const auto& [number, item] : items) {
        const auto bit = static_cast<std::size_t>(number - 1);
        bytes[bit / 8] |= 0x80U >> (bit % 8);
    }
    std::string digits;
    for (const unsigned byte : bytes) {
        digits += Hex(byte, 2);
    }
    return digits;
}

}  // namespace

MainUnit::MainUnit(UnitLibrary library, UnitSettings settings, Log log)
    : library(std::move(library)), settings(std::move(settings)), log(std::move(log)) {}

void MainUnit::Configure(UnitSettings newSettings) {
    settings = std::move(newSettings);
    statusIndex = 0;
    told.reset();
}

bool MainUnit::TakeChanged() {
    return std::exchange(changed, false);
}

std::vector<Reply> MainUnit::Receive(std::string_view bytes) {
    std::vector<Reply> replies;
    for (const std::string& piece : cutter.Feed(bytes)) {
        UnitRequest request;
        std::string problem;
        if (!ReadRequest(piece, request, problem)) {
            ++malformed;
        } else if (const std::optional<std::string> answer = Answer(request, problem)) {
            assert(settings.latencyMs >= 0);
            replies.push_back({*answer, settings.latencyMs});
        }
        if (log) {
            log(piece, problem);
        }
    }
    return replies;
}

std::optional<std::string> MainUnit::Answer(const UnitRequest& request, std::string& problem) {
    assert(library::IsEntry(request.entry) && statusIndex <= settings.status.size());
    if (request.kind == UnitRequest::Kind::kTitleData) {
        if (!TakeTitle(request.text)) {
            ++malformed;
            problem = "TitleData without an accepted TitleWrite before it";
        }
        return std::nullopt;
    }
    // Only the very next frame can carry the title; a client that asks for something else has given the write up.
    const std::optional<Entry> abandoned = std::exchange(awaited, std::nullopt);
    if (abandoned && !(request.kind == UnitRequest::Kind::kTitleWrite && request.entry == *abandoned)) {
        problem = "the accepted TitleWrite of " + NameOf(*abandoned) + " got no TitleData";
    }
    switch (request.kind) {
        case UnitRequest::Kind::kModelQuery: return ModelReply(settings.model);
        case UnitRequest::Kind::kStatusQuery: return AnswerStatus(request);
        case UnitRequest::Kind::kUnitCommand: return AnswerCommand(request);
        case UnitRequest::Kind::kMapQuery: return AnswerMap(request);
        case UnitRequest::Kind::kTitleRead: return AnswerRead(request);
        case UnitRequest::Kind::kTitleWrite: return AnswerWrite(request);
        case UnitRequest::Kind::kTitleData: break;
    }
    return std::nullopt;
}

std::uint8_t MainUnit::CurrentStatus() const {
    return statusIndex < settings.status.size() ? settings.status[statusIndex] : kReady;
}

void MainUnit::NextStatus() {
    if (statusIndex + 1 < settings.status.size()) {
        ++statusIndex;
    }
}

std::string MainUnit::AnswerStatus(const UnitRequest& request) {
    if (request.code == kParameterMenu) {
        return ShortReply(kStatusReply, settings.menu);
    }
    const std::uint8_t status = CurrentStatus();
    told = status;
    if (!CommandFor(status)) {
        NextStatus();
    }
    return ShortReply(kStatusReply, status);
}

std::string MainUnit::AnswerCommand(const UnitRequest& request) {
    if (CommandFor(CurrentStatus()) == request.code) {
        NextStatus();
    }
    return ShortReply(kCommandReply, 0);
}

std::string MainUnit::AnswerMap(const UnitRequest& request) const {
    if (request.probe) {
        return BlockReply(SubType::kMap, settings.probeAccepted ? kAccepted : kNoSuchEntry);
    }
    const bool tracks = request.map == MapKind::kTracks;
    if (settings.refuseMaps || (tracks && !library.Exists(request.entry))) {
        return BlockReply(SubType::kMap, kNoSuchEntry);
    }
    if (tracks) {
        const UnitLibrary::Groups& groups = library.GroupsOf(request.entry.kind);
        return BlockReply(SubType::kMap, kAccepted, BitmapDigits(groups.at(request.entry.group).tracks));
    }
    const GroupKind kind = request.map == MapKind::kDiscs ? GroupKind::kDisc : GroupKind::kAlbum;
    return BlockReply(SubType::kMap, kAccepted, BitmapDigits(library.GroupsOf(kind)));
}

std::string MainUnit::AnswerRead(const UnitRequest& request) const {
    const std::string* title = library.Title(request.entry);
    if (!title) {
        return BlockReply(SubType::kTitleRead, library.Exists(request.entry) ? kNoTitle : kNoSuchEntry);
    }
    std::string field = *title;
    field.resize(kTitleBytes, ' ');
    return BlockReply(SubType::kTitleRead, kAccepted, field);
}

std::string MainUnit::AnswerWrite(const UnitRequest& request) {
    // The tracks of an album belong to discs and are named there.
    const bool albumTrack = request.entry.kind == GroupKind::kAlbum && request.entry.track > 0;
    if (settings.refuseWrites || albumTrack || !library.Exists(request.entry) ||
        (settings.writeNeedsReady && told != kReady)) {
        return BlockReply(SubType::kTitleWrite, kNoSuchEntry);
    }
    awaited = request.entry;
    return BlockReply(SubType::kTitleWrite, kAccepted);
}

// The unit's display knows ASCII alone; it keeps a blank for any other byte.
bool MainUnit::TakeTitle(const std::string& text) {
    const std::optional<Entry> entry = std::exchange(awaited, std::nullopt);
    if (!entry) {
        return false;
    }
    std::string title = text;
    for (char& byte : title) {
        if (!IsPrintable(byte)) {
            byte = ' ';
        }
    }
    assert(library.Exists(*entry) && title.size() == kTitleBytes);
    library.SetTitle(*entry, title);
    changed = true;
    return true;
}

}  // namespace mainunit
