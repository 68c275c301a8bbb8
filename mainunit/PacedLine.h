// PacedLine: the replies on their way out, at the speed of a serial line. It has no clock; the caller tells the time.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace mainunit {

// All times are nanoseconds from whatever start. Not safe for use by several threads at once.
class PacedLine {
public:
    struct Taken {
        std::string bytes;                  // to be written now
        std::vector<std::string> finished;  // the chunks whose last byte is among them
    };

    // Bits in a second, with 10 bits for each byte; 0 for a line that takes no time.
    explicit PacedLine(int bitsPerSecond);

    // The moment when the last of `count` bytes that come in from `nowNs` on, behind earlier ones, has arrived.
    std::int64_t ArrivalNs(std::size_t count, std::int64_t nowNs);

    // Queues bytes that start at `dueNs`, or when the line is free. False if more than 64 KiB wait: nobody reads them.
    bool Add(std::string bytes, std::int64_t dueNs);

    // Everything whose last bit has left by `nowNs`.
    Taken Take(std::int64_t nowNs);

    // When Take is worth calling again; nothing while no byte waits. Bytes are handed over in bunches, as the buffer of a
    // serial chip does, so that a long reply does not wake the program for each byte.
    std::optional<std::int64_t> NextNs() const;

private:
    struct Waiting {
        std::string bytes;
        std::int64_t dueNs;
        std::size_t sent;
    };

    std::int64_t byteNs;         // time of one byte
    std::int64_t inFreeNs = 0;   // when the line towards the unit is free
    std::int64_t outFreeNs = 0;  // when the line towards the client is free
    std::deque<Waiting> queue;   // by due time
    std::size_t queuedBytes = 0;
};

}  // namespace mainunit
