// The program mainunit: a simulated main unit on a pseudo terminal or a serial device, or a listener in front of a real one.

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "LibraryFile.h"
#include "LineSpy.h"
#include "Options.h"
#include "PortLink.h"
#include "UnitPort.h"
#include "UnitServer.h"

namespace {

namespace fs = std::filesystem;
using namespace mainunit;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

volatile std::sig_atomic_t stopAsked = 0;

void AskStop(int) {
    stopAsked = 1;
}

int Fail(int code, const std::string& error) {
    std::fprintf(stderr, "mainunit: %s\n", error.c_str());
    return code;
}

// Beside the program in a build folder, in the shared data when installed.
std::string SamplePath() {
    std::error_code problem;
    const fs::path folder = fs::read_symlink("/proc/self/exe", problem).parent_path();
    const fs::path beside = folder / "sample-library.json";
    if (fs::exists(beside, problem)) {
        return beside.string();
    }
    return (folder / "../share/tesselia/sample-library.json").lexically_normal().string();
}

bool PrepareLibrary(const Options& options, UnitLibrary& library, std::string& error) {
    std::error_code problem;
    const bool missing = !options.library.empty() && !fs::exists(options.library, problem) && !problem;
    if (options.library.empty() || (missing && options.sample)) {
        if (options.sample && !LoadLibrary(SamplePath(), library, error)) {
            return false;
        }
        return !missing || SaveLibrary(options.library, library, error);
    }
    return LoadLibrary(options.library, library, error);
}

// Stop signals arrive only while the server waits, so none can slip in between its look at the flag and its wait.
sigset_t PrepareSignals() {
    struct sigaction action{};
    action.sa_handler = AskStop;
    sigset_t stops;
    sigset_t waitMask;
    sigemptyset(&stops);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&stops, number);
        sigaction(number, &action, nullptr);
    }
    pthread_sigmask(SIG_BLOCK, &stops, &waitMask);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigdelset(&waitMask, number);
    }
    // A reader of the log that goes away is no reason to leave the link behind.
    action.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &action, nullptr);
    return waitMask;
}

std::FILE* OpenLog(const Options& options) {
    if (options.quiet) {
        return nullptr;
    }
    if (options.log.empty()) {
        return stderr;
    }
    return options.log == "-" ? stdout : std::fopen(options.log.c_str(), "we");
}

bool CloseLog(std::FILE* log) {
    const bool isComplete = !log || (std::fflush(log) == 0 && !std::ferror(log));
    if (!isComplete) {
        Fail(kFailed, "the log is not complete");
    }
    return isComplete;
}

bool MakeLink(const Options& options, const UnitPort& port, PortLink& link, std::string& error) {
    if (options.link.empty()) {
        return true;
    }
    const std::string folder = options.ports.empty() ? DefaultPortsFolder() : options.ports;
    if (folder.empty()) {
        error = "there is no configuration folder for the link; name one with --ports";
        return false;
    }
    return link.Create(folder, options.link, port.Path(), error);
}

int Spy(const Options& options) {
    std::string error;
    UnitPort client;
    UnitPort unit;
    PortLink link;
    std::FILE* const log = OpenLog(options);
    if (!log) {
        return Fail(kFailed, options.log + ": cannot be written");
    }
    const sigset_t waitMask = PrepareSignals();
    if (!unit.OpenDevice(options.spy, error) || !client.OpenTerminal(error) || !MakeLink(options, client, link, error)) {
        return Fail(kFailed, error);
    }
    std::printf("ready: %s\n", client.Path().c_str());
    std::fflush(stdout);
    const bool passed = LineSpy(client, unit, log).Run(stopAsked, waitMask);
    return CloseLog(log) && passed ? 0 : kFailed;
}

int Serve(const Options& options) {
    std::string error;
    UnitLibrary library;
    UnitPort port;
    PortLink link;
    if (!PrepareLibrary(options, library, error)) {
        return Fail(kFailed, error);
    }
    std::FILE* const log = OpenLog(options);
    if (!log && !options.quiet) {
        return Fail(kFailed, options.log + ": cannot be written");
    }
    const sigset_t waitMask = PrepareSignals();
    if (!(options.device.empty() ? port.OpenTerminal(error) : port.OpenDevice(options.device, error)) ||
        !MakeLink(options, port, link, error)) {
        return Fail(kFailed, error);
    }
    UnitServer server(options, std::move(library), port, log);
    std::printf("ready: %s\n", port.Path().c_str());
    std::fflush(stdout);
    const bool served = server.Run(stopAsked, waitMask);
    return CloseLog(log) && served ? 0 : kFailed;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    std::string error;
    if (!ParseOptions(std::vector<std::string>(argv + 1, argv + argc), options, error)) {
        return Fail(kWrongUsage, error + "; see mainunit --help");
    }
    if (options.help) {
        std::fputs(Usage(), stdout);
        return 0;
    }
    return options.spy.empty() ? Serve(options) : Spy(options);
}
