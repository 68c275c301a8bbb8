#include "PacedLine.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace mainunit {

namespace {

constexpr std::int64_t kBitsPerByte = 10;
constexpr std::int64_t kSecondNs = 1'000'000'000;
constexpr std::size_t kBunchBytes = 8;
constexpr std::size_t kMostQueued = 65536;

}  // namespace

PacedLine::PacedLine(int bitsPerSecond) : byteNs(bitsPerSecond > 0 ? kBitsPerByte * kSecondNs / bitsPerSecond : 0) {}

std::int64_t PacedLine::ArrivalNs(std::size_t count, std::int64_t nowNs) {
    inFreeNs = std::max(inFreeNs, nowNs) + static_cast<std::int64_t>(count) * byteNs;
    return inFreeNs;
}

bool PacedLine::Add(std::string bytes, std::int64_t dueNs) {
    if (bytes.empty()) {
        return true;
    }
    if (queuedBytes + bytes.size() > kMostQueued) {
        return false;
    }
    queuedBytes += bytes.size();
    // A chunk that is already on the line cannot be overtaken.
    const auto first = queue.begin() + (!queue.empty() && queue.front().sent > 0 ? 1 : 0);
    const auto place = std::upper_bound(first, queue.end(), dueNs,
                                        [](std::int64_t due, const Waiting& waiting) { return due < waiting.dueNs; });
    queue.insert(place, {std::move(bytes), dueNs, 0});
    return true;
}

PacedLine::Taken PacedLine::Take(std::int64_t nowNs) {
    Taken taken;
    while (!queue.empty()) {
        Waiting& front = queue.front();
        assert(front.sent < front.bytes.size() && queuedBytes >= front.bytes.size() - front.sent);
        const std::int64_t endNs = std::max(outFreeNs, front.dueNs) + byteNs;
        if (endNs > nowNs) {
            break;
        }
        outFreeNs = endNs;
        taken.bytes += front.bytes[front.sent++];
        --queuedBytes;
        if (front.sent == front.bytes.size()) {
            taken.finished.push_back(std::move(front.bytes));
            queue.pop_front();
        }
    }
    assert(!queue.empty() || queuedBytes == 0);
    return taken;
}

std::optional<std::int64_t> PacedLine::NextNs() const {
    if (queue.empty()) {
        return std::nullopt;
    }
    const Waiting& front = queue.front();
    const std::size_t bunch = std::min(kBunchBytes, front.bytes.size() - front.sent);
    return std::max(outFreeNs, front.dueNs) + static_cast<std::int64_t>(bunch) * byteNs;
}

}  // namespace mainunit
