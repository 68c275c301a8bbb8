#include "TitleText.h"

#include <windows.h>

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

constexpr char kFirstPrintable = 0x20;
constexpr char kLastPrintable = 0x7E;
constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

bool IsPrintable(char byte) {
    return byte >= kFirstPrintable && byte <= kLastPrintable;
}

}  // namespace

bool IsLeadByte(char byte) {
    return IsDBCSLeadByte(static_cast<BYTE>(byte)) != FALSE;
}

std::size_t FindChar(std::string_view text, std::size_t start, char byte) {
    while (start < text.size()) {
        const std::size_t hit = text.find(byte, start);
        if (hit == std::string_view::npos || hit == start || !IsLeadByte(text[hit - 1])) {
            return hit;
        }
        start = hit + 1;
    }
    return std::string_view::npos;
}

// One walk for both: two searches would each go to the end of the file again and again where the file has one of the bytes
// only.
std::size_t FindEither(std::string_view text, std::size_t start, char first, char second) {
    std::size_t firstStart = start;
    std::size_t secondStart = start;
    for (std::size_t at = start; at < text.size(); ++at) {
        const char byte = text[at];
        if (byte != first && byte != second) {
            continue;
        }
        std::size_t& begin = byte == first ? firstStart : secondStart;
        if (at == begin || !IsLeadByte(text[at - 1])) {
            return at;
        }
        begin = at + 1;
    }
    return std::string_view::npos;
}

void CleanTitle(std::string_view raw, char (&title)[kTitleSize]) {
    char looked[kTitleLength];
    const std::size_t length = std::min(raw.size(), kTitleLength);
    std::copy_n(raw.begin(), length, looked);
    if (raw.size() > kTitleLength && IsLeadByte(looked[kTitleLength - 1])) {
        looked[kTitleLength - 1] = ' ';
    }
    std::size_t out = 0;
    for (std::size_t at = 0; at < length; ++at) {
        const bool isDouble = IsLeadByte(looked[at]);
        title[out++] = !isDouble && IsPrintable(looked[at]) ? looked[at] : ' ';
        at += isDouble ? 1 : 0;
    }
    title[out] = '\0';
}

bool NumberReader::Take(char byte) {
    if (!hasBegun && kWhiteSpace.find(byte) != std::string_view::npos) {
        return true;
    }
    if (!hasBegun && (byte == '-' || byte == '+')) {
        isNegative = byte == '-';
        hasBegun = true;
        return true;
    }
    hasBegun = true;
    if (byte < '0' || byte > '9') {
        return false;
    }
    number = std::min<long long>(number * 10 + (byte - '0'), INT_MAX);
    return true;
}

int NumberReader::Number() const {
    return static_cast<int>(isNegative ? -number : number);
}

int ReadNumber(std::string_view text) {
    NumberReader reader;
    for (const char byte : text) {
        if (!reader.Take(byte)) {
            break;
        }
    }
    return reader.Number();
}
