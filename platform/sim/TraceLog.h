// What a run has done: a hash over all of it, and the last events in words.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

class TraceLog {
public:
    // Keeps that many events for Text; 0 keeps none.
    explicit TraceLog(std::size_t kept) : events(kept) {}

    // A thread begins to run at a virtual time in microseconds. Cheap: no text is made.
    void Run(std::uint64_t time, std::uint32_t thread);
    // Something that a thread has done; 0 is the world outside of the program.
    void Note(std::uint64_t time, std::uint32_t thread, std::string_view text);

    std::uint64_t Hash() const { return hash; }
    // The last events, oldest first, a line each.
    std::string Text() const;

private:
    struct Event {
        std::uint64_t time = 0;
        std::uint32_t thread = 0;
        std::string text;  // empty: the thread begins to run
    };

    void Fold(std::uint64_t value);
    Event* NextEvent();

    std::uint64_t hash = 0xCBF29CE484222325;
    std::vector<Event> events;  // a ring
    std::uint64_t count = 0;    // of events so far; the next one goes to this place of the ring
};

// Virtual time as milliseconds with three places, as in "12.345 ms".
std::string TimeText(std::uint64_t us);

}  // namespace sim
