#include "Options.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "UnitFrames.h"

namespace mainunit {

namespace {

constexpr int kLongestLatencyMs = 60000;
constexpr int kFastestPace = 4'000'000;

template <class Number>
bool ReadNumber(std::string_view text, Number& number, Number most, int base = 10) {
    Number read = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), read, base);
    if (problem != std::errc() || end != text.data() + text.size() || read < 0 || read > most) {
        return false;
    }
    number = read;
    return true;
}

bool SetText(std::string& option, const std::string& value, std::string& error) {
    option = value;
    error = "must not be empty";
    return !value.empty();
}

bool SetLink(Options& options, const std::string& value, std::string& error) {
    options.link = value;
    error = "must be COM1 to COM8";
    return value.size() == 4 && value.starts_with("COM") && value[3] >= '1' && value[3] <= '8';
}

bool SetModel(Options& options, const std::string& value, std::string& error) {
    options.unit.model = value;
    error = "must be 5 printable ASCII characters";
    return value.size() == kModelBytes && std::all_of(value.begin(), value.end(), IsPrintable);
}

bool SetStatus(Options& options, std::string_view value, std::string& error) {
    options.unit.status.clear();
    error = "must be two-digit hexadecimal numbers with commas between them";
    for (bool more = true; more;) {
        const std::size_t comma = value.find(',');
        const std::string_view part = value.substr(0, comma);
        unsigned status = 0;
        if (part.size() != 2 || !ReadNumber(part, status, 0xFFU, 16)) {
            return false;
        }
        options.unit.status.push_back(static_cast<std::uint8_t>(status));
        more = comma != std::string_view::npos;
        value.remove_prefix(more ? comma + 1 : value.size());
    }
    return true;
}

bool SetProbe(Options& options, const std::string& value, std::string& error) {
    options.unit.probeAccepted = value == "accept";
    error = "must be refuse or accept";
    return value == "refuse" || value == "accept";
}

bool SetPace(Options& options, const std::string& value, std::string& error) {
    error = "must be a number from 0 to 4000000";
    return ReadNumber(value, options.pace.emplace(), kFastestPace);
}

struct Flag {
    const char* name;
    void (*set)(Options&);
};
constexpr Flag kFlags[] = {
    {"--sample", [](Options& options) { options.sample = true; }},
    {"--menu", [](Options& options) { options.unit.menu = 0; }},
    {"--refuse-maps", [](Options& options) { options.unit.refuseMaps = true; }},
    {"--refuse-writes", [](Options& options) { options.unit.refuseWrites = true; }},
    {"--write-needs-ready", [](Options& options) { options.unit.writeNeedsReady = true; }},
    {"--quiet", [](Options& options) { options.quiet = true; }},
    {"--help", [](Options& options) { options.help = true; }},
};

struct Valued {
    const char* name;
    bool (*set)(Options&, const std::string& value, std::string& error);
};
constexpr Valued kValued[] = {
    {"--device",
     [](Options& options, const std::string& value, std::string& error) { return SetText(options.device, value, error); }},
    {"--spy",
     [](Options& options, const std::string& value, std::string& error) { return SetText(options.spy, value, error); }},
    {"--link", SetLink},
    {"--ports",
     [](Options& options, const std::string& value, std::string& error) { return SetText(options.ports, value, error); }},
    {"--library",
     [](Options& options, const std::string& value, std::string& error) { return SetText(options.library, value, error); }},
    {"--model", SetModel},
    {"--status",
     [](Options& options, const std::string& value, std::string& error) { return SetStatus(options, value, error); }},
    {"--probe", SetProbe},
    {"--latency",
     [](Options& options, const std::string& value, std::string& error) {
         error = "must be a number from 0 to 60000";
         return ReadNumber(value, options.unit.latencyMs, kLongestLatencyMs);
     }},
    {"--faults", [](Options& options, const std::string& value,
                    std::string& error) { return ParseFaultRates(value, options.faults, error); }},
    {"--seed",
     [](Options& options, const std::string& value, std::string& error) {
         error = "must be a number";
         return ReadNumber(value, options.seed, UINT64_MAX);
     }},
    {"--pace", SetPace},
    {"--log",
     [](Options& options, const std::string& value, std::string& error) { return SetText(options.log, value, error); }},
};

// All others are about a unit that is simulated.
bool GoesWithSpy(const std::string& name) {
    static constexpr std::string_view kNames[] = {"--spy", "--link", "--ports", "--log", "--help"};
    return std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

bool CheckTogether(const Options& options, const std::vector<std::string>& given, std::string& error) {
    const auto odd = std::find_if_not(given.begin(), given.end(), GoesWithSpy);
    if (!options.spy.empty() && odd != given.end()) {
        error = *odd + " does not go with --spy, which passes on what a real unit says";
    } else if (!options.device.empty() && !options.link.empty()) {
        error = "--link needs the pseudo terminal; a client of --device opens the other end of the cable";
    } else if (!options.ports.empty() && options.link.empty()) {
        error = "--ports needs --link";
    } else {
        return true;
    }
    return false;
}

}  // namespace

bool ParseOptions(const std::vector<std::string>& arguments, Options& options, std::string& error) {
    std::vector<std::string> given;
    for (std::size_t at = 0; at < arguments.size(); ++at) {
        const std::string& name = arguments[at];
        given.push_back(name);
        const auto named = [&](const auto& known) { return name == known.name; };
        if (const auto* flag = std::find_if(std::begin(kFlags), std::end(kFlags), named); flag != std::end(kFlags)) {
            flag->set(options);
            continue;
        }
        const auto* valued = std::find_if(std::begin(kValued), std::end(kValued), named);
        if (valued == std::end(kValued)) {
            error = "unknown option " + name;
            return false;
        }
        if (at + 1 == arguments.size()) {
            error = name + " needs a value";
            return false;
        }
        std::string problem;
        if (!valued->set(options, arguments[++at], problem)) {
            error = name;
            error += ": " + problem;
            return false;
        }
    }
    return CheckTogether(options, given, error);
}

const char* Usage() {
    return R"(Usage: mainunit [OPTION]...

A simulated main unit at the end of a serial line. It prints "ready: PATH" when it listens there, and ends on
SIGINT or SIGTERM.

The line:
  --device PATH       use this serial device, 9600 bits a second, instead of a new pseudo terminal
  --link COM1         let this port name (COM1 to COM8) stand for the pseudo terminal while the unit runs
  --ports DIR         folder for that link; without it tesselia/ports in the user's configuration folder
  --pace BAUD         speed of the line, both ways; 0 for no delay (default: 9600, with --device 0)

Listening:
  --spy DEVICE        simulate nothing: stand between a client and the real unit on DEVICE, pass every byte on, and
                      write down what is said; the client opens the pseudo terminal, by --link as a port

The unit:
  --library FILE      titles to serve; each change is saved there at once
  --sample            begin with the sample library where FILE is missing, or where no FILE is given
  --model ID          model id of 5 characters (default: C0053)
  --status 40,FE,40   answers to the state query one after the other, the last one stays (default: 40)
  --menu              be in MENU mode
  --probe accept      accept the probe for track maps (default: refuse)
  --refuse-maps       refuse to tell which discs, albums and tracks exist
  --refuse-writes     refuse every new title
  --write-needs-ready refuse titles unless the state was asked and was ready
  --latency MS        time from a request to its reply (default: 0)

Faults:
  --faults LIST       such as lost=0.1,late=0.05: rates from 0 to 1 for lost, corrupted, split, doubled, late, stray,
                      junk, refused, silence, foreign; limits split-gap-ms, doubled-delay-ms, foreign-lead-ms,
                      late-min-ms, late-max-ms, junk-bytes, silence-replies
  --seed N            the same seed gives the same faults (default: 1)

Output:
  --log FILE          write the dialogue to FILE, - for the standard output (default: the standard error)
  --quiet             write no dialogue
  --help              show this text
)";
}

}  // namespace mainunit
