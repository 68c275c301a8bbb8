#include "TraceLog.h"

#include <algorithm>
#include <bit>
#include <cstdio>

namespace sim {

void TraceLog::Run(std::uint64_t time, std::uint32_t thread) {
    Fold(time);
    Fold(thread);
    if (Event* event = NextEvent()) {
        event->time = time;
        event->thread = thread;
        event->text.clear();
    }
}

void TraceLog::Note(std::uint64_t time, std::uint32_t thread, std::string_view text) {
    Fold(time);
    Fold(thread);
    Fold(text.size());
    for (const char letter : text) {
        Fold(static_cast<unsigned char>(letter));
    }
    if (Event* event = NextEvent()) {
        event->time = time;
        event->thread = thread;
        event->text.assign(text);
    }
}

std::string TraceLog::Text() const {
    std::string text;
    for (std::uint64_t i = count - std::min<std::uint64_t>(count, events.size()); i < count; ++i) {
        const Event& event = events[i % events.size()];
        text += TimeText(event.time) + "  ";
        text += event.thread == 0 ? "outside" : "thread " + std::to_string(event.thread);
        text += event.text.empty() ? " runs\n" : ": " + event.text + "\n";
    }
    return text;
}

void TraceLog::Fold(std::uint64_t value) {
    hash = std::rotl((hash ^ value) * 0x9E3779B97F4A7C15, 29);
}

TraceLog::Event* TraceLog::NextEvent() {
    if (events.empty()) {
        return nullptr;
    }
    return &events[count++ % events.size()];
}

std::string TimeText(std::uint64_t us) {
    char text[40];
    std::snprintf(text, sizeof text, "%llu.%03llu ms", static_cast<unsigned long long>(us / 1000),
                  static_cast<unsigned long long>(us % 1000));
    return text;
}

}  // namespace sim
