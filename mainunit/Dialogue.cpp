#include "Dialogue.h"

#include <bit>
#include <cstdio>
#include <optional>

#include "UnitFrames.h"
#include "UnitRequest.h"

namespace mainunit {

namespace {

constexpr std::size_t kMeaningWidth = 48;

std::string Quoted(std::string_view title) {
    std::string text = "\"";
    for (const char byte : title.substr(0, title.find_last_not_of(' ') + 1)) {
        text += IsPrintable(byte) ? byte : '.';
    }
    return text + "\"";
}

std::string HexDump(std::string_view bytes) {
    std::string dump;
    for (const char byte : bytes) {
        if (!dump.empty()) {
            dump += ' ';
        }
        dump += Hex(static_cast<unsigned char>(byte), 2);
    }
    return dump;
}

std::string Line(std::int64_t timeMs, char direction, std::string meaning, std::string_view bytes) {
    char time[40];
    std::snprintf(time, sizeof time, "%5lld.%03lld", static_cast<long long>(timeMs / 1000),
                  static_cast<long long>(timeMs % 1000));
    if (meaning.size() < kMeaningWidth) {
        meaning.resize(kMeaningWidth, ' ');
    }
    return std::string(time) + ' ' + direction + ' ' + meaning + "  " + HexDump(bytes);
}

std::string DescribeMapQuery(const UnitRequest& request) {
    if (request.map == MapKind::kDiscs) {
        return "MapQuery Discs";
    }
    if (request.map == MapKind::kAlbums) {
        return "MapQuery Albums";
    }
    return request.probe ? "MapQuery probe" : "MapQuery Tracks of " + NameOf(request.entry);
}

std::optional<std::string> DescribeShortReply(std::string_view bytes) {
    if (bytes.size() != 8 || bytes[1] != '@') {
        return std::nullopt;
    }
    const std::optional<int> type = ReadHex(bytes.substr(3, 2));
    if (!type) {
        return std::nullopt;
    }
    const std::string value(bytes.substr(5, 2));
    if (*type == kStatusReply) {
        return "StatusReply 0x" + value;
    }
    if (*type >= kCommandReply && *type <= 0x5F) {
        return "CommandReply 0x" + value;
    }
    return std::nullopt;
}

// True if the check field before the ETX fits the bytes from offset 1 up to it.
bool SumFits(std::string_view bytes) {
    return ReadHex(bytes.substr(bytes.size() - 3, 2)) == SumOf(bytes.substr(1, bytes.size() - 4));
}

std::optional<std::string> DescribeModelReply(std::string_view bytes) {
    if (bytes.size() < 12 || !SumFits(bytes)) {
        return std::nullopt;
    }
    return "ModelReply " + Quoted(bytes.substr(1, 5));
}

std::string DescribeBitmap(std::string_view digits) {
    int items = 0;
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
        items += std::popcount(static_cast<unsigned>(ReadHex(digits.substr(at, 2)).value_or(0)));
    }
    return std::to_string(items) + (items == 1 ? " item" : " items");
}

std::optional<std::string> DescribeBlockReply(std::string_view bytes) {
    if (bytes.size() < 12 || !SumFits(bytes) ||
        ReadHex(bytes.substr(3, 2)) != std::optional<int>(static_cast<int>(bytes.size()) - 8)) {
        return std::nullopt;
    }
    const std::optional<int> subType = ReadHex(bytes.substr(5, 2));
    const std::optional<int> result = ReadHex(bytes.substr(7, 2));
    const std::string_view data = bytes.substr(9, bytes.size() - 12);
    std::string name;
    if (subType == static_cast<int>(SubType::kMap)) {
        name = "MapReply ";
    } else if (subType == static_cast<int>(SubType::kTitleRead)) {
        name = "TitleReadReply ";
    } else if (subType == static_cast<int>(SubType::kTitleWrite)) {
        name = "TitleWriteReply ";
    }
    if (name.empty() || !result) {
        return std::nullopt;
    }
    if (*result == kNoSuchEntry || *result == kNoTitle) {
        return name + "refused, result " + std::to_string(*result);
    }
    if (data.empty()) {
        return name + "accepted";
    }
    return name + (subType == static_cast<int>(SubType::kMap) ? DescribeBitmap(data) : Quoted(data));
}

std::string CountBytes(std::string_view bytes) {
    return std::to_string(bytes.size()) + (bytes.size() == 1 ? " byte" : " bytes");
}

}  // namespace

std::string Dialogue::DescribeRequest(std::string_view bytes) {
    UnitRequest request;
    std::string problem;
    if (!ReadRequest(bytes, request, problem)) {
        return CountBytes(bytes);
    }
    switch (request.kind) {
        case UnitRequest::Kind::kModelQuery: return "ModelQuery";
        case UnitRequest::Kind::kStatusQuery: return "StatusQuery 0x" + Hex(request.code, 2);
        case UnitRequest::Kind::kUnitCommand: return "UnitCommand 0x" + Hex(request.code, 2);
        case UnitRequest::Kind::kMapQuery: return DescribeMapQuery(request);
        case UnitRequest::Kind::kTitleRead: return "TitleRead " + NameOf(request.entry);
        case UnitRequest::Kind::kTitleWrite: return "TitleWrite " + NameOf(request.entry);
        case UnitRequest::Kind::kTitleData: return "TitleData " + Quoted(request.text);
    }
    return CountBytes(bytes);
}

std::string Dialogue::DescribeReply(std::string_view bytes) {
    std::optional<std::string> meaning;
    if (!bytes.empty() && bytes.back() == kEtx) {
        switch (bytes.front()) {
            case kStx: meaning = DescribeShortReply(bytes); break;
            case kDc2: meaning = DescribeModelReply(bytes); break;
            case kDc4: meaning = DescribeBlockReply(bytes); break;
            default: break;
        }
    }
    return meaning ? *meaning : CountBytes(bytes) + ", no sound frame";
}

std::string Dialogue::RequestLine(std::int64_t timeMs, std::string_view bytes, std::string_view problem) {
    std::string meaning = DescribeRequest(bytes);
    if (!problem.empty()) {
        meaning += " (" + std::string(problem) + ")";
    }
    return Line(timeMs, '>', meaning, bytes);
}

std::string Dialogue::ReplyLine(std::int64_t timeMs, std::string_view bytes) {
    return Line(timeMs, '<', DescribeReply(bytes), bytes);
}

}  // namespace mainunit
