#include "UnitRequest.h"

#include <utility>

#include "UnitFrames.h"

namespace mainunit {

namespace {

constexpr std::size_t kModelQueryBytes = 5;
constexpr std::size_t kShortBytes = 7;
constexpr std::size_t kRequestPayload = 0x10;
constexpr std::size_t kBlockOverhead = 8;
// A TitleData is the longest frame that a client sends.
constexpr std::size_t kLongestRequest = kTitleBytes + kBlockOverhead;
constexpr std::size_t kLongestReply = 255 + kBlockOverhead;
constexpr std::string_view kRequestStarts = "\x02\x11\x14";
constexpr std::string_view kReplyStarts = "\x02\x12\x14";

constexpr std::string_view kPadding = "00000000";

bool Refuse(std::string& problem, const char* why) {
    problem = why;
    return false;
}

bool ReadModelQuery(std::string_view frame, UnitRequest& request, std::string& problem) {
    if (frame.size() != kModelQueryBytes || frame.substr(1, 3) != "000") {
        return Refuse(problem, "a frame from DC1 that is no ModelQuery");
    }
    request.kind = UnitRequest::Kind::kModelQuery;
    return true;
}

// Each half of the parameter travels as the half plus 0x30, so ":" stands for ten.
bool ReadStatusQuery(std::string_view digits, UnitRequest& request, std::string& problem) {
    const int high = digits[0] - 0x30;
    const int low = digits[1] - 0x30;
    if (high < 0 || high > 15 || low < 0 || low > 15) {
        return Refuse(problem, "StatusQuery: parameter digit out of range");
    }
    request.kind = UnitRequest::Kind::kStatusQuery;
    request.code = static_cast<std::uint8_t>(high * 16 + low);
    if (request.code != kParameterStatus && request.code != kParameterMenu) {
        return Refuse(problem, "StatusQuery: parameter not known");
    }
    return true;
}

bool ReadUnitCommand(std::string_view digits, UnitRequest& request, std::string& problem) {
    const std::optional<int> command = ReadHex(digits);
    if (!command || (*command != kCommandBd && *command != kCommandBe)) {
        return Refuse(problem, "UnitCommand: command not known");
    }
    request.kind = UnitRequest::Kind::kUnitCommand;
    request.code = static_cast<std::uint8_t>(*command);
    return true;
}

bool ReadShort(std::string_view frame, UnitRequest& request, std::string& problem) {
    if (frame.size() != kShortBytes) {
        return Refuse(problem, "short frame of a wrong length");
    }
    if (frame.substr(1, 3) == "520") {
        return ReadStatusQuery(frame.substr(4, 2), request, problem);
    }
    if (frame.substr(1, 3) == "07C") {
        return ReadUnitCommand(frame.substr(4, 2), request, problem);
    }
    return Refuse(problem, "short frame of no known kind");
}

bool ReadGroupCode(std::string_view code, UnitRequest& request, std::string& problem) {
    if (code == "FFFF") {
        request.probe = true;
        return true;
    }
    const std::optional<int> number = ReadDec(code.substr(1));
    if ((code[0] != '0' && code[0] != '2') || !number || *number == 0) {
        return Refuse(problem, "MapQuery: group code out of range");
    }
    request.entry = {code[0] == '0' ? GroupKind::kDisc : GroupKind::kAlbum, *number, 0};
    return true;
}

bool ReadMapQuery(std::string_view payload, UnitRequest& request, std::string& problem) {
    const std::optional<int> map = ReadHex(payload.substr(2, 2));
    if (!map || *map > static_cast<int>(MapKind::kTracks)) {
        return Refuse(problem, "MapQuery: kind out of range");
    }
    request.kind = UnitRequest::Kind::kMapQuery;
    request.map = static_cast<MapKind>(*map);
    const std::string_view code = payload.substr(4, 4);
    if (request.map == MapKind::kTracks) {
        return ReadGroupCode(code, request, problem);
    }
    return code == "0000" || Refuse(problem, "MapQuery: group code without tracks");
}

bool ReadTitleRequest(std::string_view payload, UnitRequest& request, std::string& problem) {
    const char kind = payload[2];
    const std::optional<int> group = ReadDec(payload.substr(3, 3));
    const std::optional<int> track = ReadDec(payload.substr(6, 2));
    if ((kind != '0' && kind != '2') || !group || *group == 0 || !track) {
        return Refuse(problem, "title frame: group or track out of range");
    }
    request.kind = payload[1] == '5' ? UnitRequest::Kind::kTitleRead : UnitRequest::Kind::kTitleWrite;
    request.entry = {kind == '0' ? GroupKind::kDisc : GroupKind::kAlbum, *group, *track};
    return true;
}

bool ReadBlock(std::string_view frame, UnitRequest& request, std::string& problem) {
    if (frame.size() < kBlockOverhead || frame.substr(1, 2) != "50") {
        return Refuse(problem, "block frame with a wrong head");
    }
    const std::optional<int> length = ReadHex(frame.substr(3, 2));
    if (!length || frame.size() != static_cast<std::size_t>(*length) + kBlockOverhead) {
        return Refuse(problem, "block frame of a wrong length");
    }
    const std::string_view payload = frame.substr(5, static_cast<std::size_t>(*length));
    if (ReadHex(frame.substr(frame.size() - 3, 2)) != SumOf(frame.substr(1, frame.size() - 4))) {
        return Refuse(problem, "block frame with a wrong check sum");
    }
    if (payload.size() == kTitleBytes) {
        request.kind = UnitRequest::Kind::kTitleData;
        request.text = payload;
        return true;
    }
    if (payload.size() != kRequestPayload) {
        return Refuse(problem, "block frame of no known length");
    }
    if (payload.substr(8) != kPadding) {
        return Refuse(problem, "block frame without its eight zeros");
    }
    if (payload.starts_with("03")) {
        return ReadMapQuery(payload, request, problem);
    }
    if (payload.starts_with("05") || payload.starts_with("06")) {
        return ReadTitleRequest(payload, request, problem);
    }
    return Refuse(problem, "block frame of no known kind");
}

}  // namespace

bool ReadRequest(std::string_view piece, UnitRequest& request, std::string& problem) {
    request = {};
    if (piece.empty() || kRequestStarts.find(piece.front()) == std::string_view::npos) {
        return Refuse(problem, "bytes outside a frame");
    }
    if (piece.back() != kEtx) {
        return Refuse(problem, "frame without its end");
    }
    if (piece.find('\0') != std::string_view::npos) {
        return Refuse(problem, "frame with a zero byte");
    }
    switch (piece.front()) {
        case kDc1: return ReadModelQuery(piece, request, problem);
        case kStx: return ReadShort(piece, request, problem);
        default: return ReadBlock(piece, request, problem);
    }
}

PieceCutter PieceCutter::ForRequests() {
    return {kRequestStarts, kLongestRequest};
}

PieceCutter PieceCutter::ForReplies() {
    return {kReplyStarts, kLongestReply};
}

std::vector<std::string> PieceCutter::Feed(std::string_view bytes) {
    std::vector<std::string> pieces;
    const auto flush = [&] {
        if (!held.empty()) {
            pieces.push_back(std::exchange(held, {}));
        }
        inFrame = false;
    };
    for (const char byte : bytes) {
        if (starts.find(byte) != std::string_view::npos) {
            flush();
            inFrame = true;
        }
        held += byte;
        if ((inFrame && byte == kEtx) || held.size() > longest) {
            flush();
        }
    }
    // What belongs to no frame has nothing to wait for.
    if (!inFrame) {
        flush();
    }
    return pieces;
}

}  // namespace mainunit
