#include "PacedLine.h"

#include <algorithm>
#include <utility>

namespace mainunit {

namespace {

constexpr std::int64_t kBitsPerByte = 10;
constexpr std::int64_t kSecondNs = 1'000'000'000;
constexpr std::size_t kBunchBytes = 8;
constexpr std::size_t kMostQueued = 65536;

}  // namespace

PacedLine::PacedLine(int bitsPerSecond) : byteNs_(bitsPerSecond > 0 ? kBitsPerByte * kSecondNs / bitsPerSecond : 0) {}

std::int64_t PacedLine::ArrivalNs(std::size_t count, std::int64_t nowNs) {
    inFreeNs_ = std::max(inFreeNs_, nowNs) + static_cast<std::int64_t>(count) * byteNs_;
    return inFreeNs_;
}

bool PacedLine::Add(std::string bytes, std::int64_t dueNs) {
    if (bytes.empty()) {
        return true;
    }
    if (queuedBytes_ + bytes.size() > kMostQueued) {
        return false;
    }
    queuedBytes_ += bytes.size();
    // A chunk that is already on the line cannot be overtaken.
    const auto first = queue_.begin() + (!queue_.empty() && queue_.front().sent > 0 ? 1 : 0);
    const auto place = std::upper_bound(first, queue_.end(), dueNs,
                                        [](std::int64_t due, const Waiting& waiting) { return due < waiting.dueNs; });
    queue_.insert(place, {std::move(bytes), dueNs, 0});
    return true;
}

PacedLine::Taken PacedLine::Take(std::int64_t nowNs) {
    Taken taken;
    while (!queue_.empty()) {
        Waiting& front = queue_.front();
        const std::int64_t endNs = std::max(outFreeNs_, front.dueNs) + byteNs_;
        if (endNs > nowNs) {
            break;
        }
        outFreeNs_ = endNs;
        taken.bytes += front.bytes[front.sent++];
        --queuedBytes_;
        if (front.sent == front.bytes.size()) {
            taken.finished.push_back(std::move(front.bytes));
            queue_.pop_front();
        }
    }
    return taken;
}

std::optional<std::int64_t> PacedLine::NextNs() const {
    if (queue_.empty()) {
        return std::nullopt;
    }
    const Waiting& front = queue_.front();
    const std::size_t bunch = std::min(kBunchBytes, front.bytes.size() - front.sent);
    return std::max(outFreeNs_, front.dueNs) + static_cast<std::int64_t>(bunch) * byteNs_;
}

}  // namespace mainunit
