#include "MainUnit.h"

#include <array>
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
    : library_(std::move(library)), settings_(std::move(settings)), log_(std::move(log)) {}

void MainUnit::Configure(UnitSettings settings) {
    settings_ = std::move(settings);
    statusIndex_ = 0;
    told_.reset();
}

bool MainUnit::TakeChanged() {
    return std::exchange(changed_, false);
}

std::vector<Reply> MainUnit::Receive(std::string_view bytes) {
    std::vector<Reply> replies;
    for (const std::string& piece : cutter_.Feed(bytes)) {
        UnitRequest request;
        std::string problem;
        if (!ReadRequest(piece, request, problem)) {
            ++malformed_;
        } else if (const std::optional<std::string> answer = Answer(request, problem)) {
            replies.push_back({*answer, settings_.latencyMs});
        }
        if (log_) {
            log_(piece, problem);
        }
    }
    return replies;
}

std::optional<std::string> MainUnit::Answer(const UnitRequest& request, std::string& problem) {
    if (request.kind == UnitRequest::Kind::TitleData) {
        if (!TakeTitle(request.text)) {
            ++malformed_;
            problem = "TitleData without an accepted TitleWrite before it";
        }
        return std::nullopt;
    }
    // Only the very next frame can carry the title; a client that asks for something else has given the write up.
    const std::optional<Entry> abandoned = std::exchange(awaited_, std::nullopt);
    if (abandoned && !(request.kind == UnitRequest::Kind::TitleWrite && request.entry == *abandoned)) {
        problem = "the accepted TitleWrite of " + NameOf(*abandoned) + " got no TitleData";
    }
    switch (request.kind) {
        case UnitRequest::Kind::ModelQuery: return ModelReply(settings_.model);
        case UnitRequest::Kind::StatusQuery: return AnswerStatus(request);
        case UnitRequest::Kind::UnitCommand: return AnswerCommand(request);
        case UnitRequest::Kind::MapQuery: return AnswerMap(request);
        case UnitRequest::Kind::TitleRead: return AnswerRead(request);
        case UnitRequest::Kind::TitleWrite: return AnswerWrite(request);
        case UnitRequest::Kind::TitleData: break;
    }
    return std::nullopt;
}

std::uint8_t MainUnit::CurrentStatus() const {
    return statusIndex_ < settings_.status.size() ? settings_.status[statusIndex_] : kReady;
}

void MainUnit::NextStatus() {
    if (statusIndex_ + 1 < settings_.status.size()) {
        ++statusIndex_;
    }
}

std::string MainUnit::AnswerStatus(const UnitRequest& request) {
    if (request.code == kParameterMenu) {
        return ShortReply(kStatusReply, settings_.menu);
    }
    const std::uint8_t status = CurrentStatus();
    told_ = status;
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
        return BlockReply(SubType::Map, settings_.probeAccepted ? kAccepted : kNoSuchEntry);
    }
    const bool tracks = request.map == MapKind::Tracks;
    if (settings_.refuseMaps || (tracks && !library_.Exists(request.entry))) {
        return BlockReply(SubType::Map, kNoSuchEntry);
    }
    if (tracks) {
        const UnitLibrary::Groups& groups = library_.GroupsOf(request.entry.kind);
        return BlockReply(SubType::Map, kAccepted, BitmapDigits(groups.at(request.entry.group).tracks));
    }
    const GroupKind kind = request.map == MapKind::Discs ? GroupKind::Disc : GroupKind::Album;
    return BlockReply(SubType::Map, kAccepted, BitmapDigits(library_.GroupsOf(kind)));
}

std::string MainUnit::AnswerRead(const UnitRequest& request) const {
    const std::string* title = library_.Title(request.entry);
    if (!title) {
        return BlockReply(SubType::TitleRead, library_.Exists(request.entry) ? kNoTitle : kNoSuchEntry);
    }
    std::string field = *title;
    field.resize(kTitleBytes, ' ');
    return BlockReply(SubType::TitleRead, kAccepted, field);
}

std::string MainUnit::AnswerWrite(const UnitRequest& request) {
    // The tracks of an album belong to discs and are named there.
    const bool albumTrack = request.entry.kind == GroupKind::Album && request.entry.track > 0;
    if (albumTrack || !library_.Exists(request.entry) || (settings_.writeNeedsReady && told_ != kReady)) {
        return BlockReply(SubType::TitleWrite, kNoSuchEntry);
    }
    awaited_ = request.entry;
    return BlockReply(SubType::TitleWrite, kAccepted);
}

// The unit's display knows ASCII alone; it keeps a blank for any other byte.
bool MainUnit::TakeTitle(const std::string& text) {
    const std::optional<Entry> entry = std::exchange(awaited_, std::nullopt);
    if (!entry) {
        return false;
    }
    std::string title = text;
    for (char& byte : title) {
        if (!IsPrintable(byte)) {
            byte = ' ';
        }
    }
    library_.SetTitle(*entry, title);
    changed_ = true;
    return true;
}

}  // namespace mainunit
