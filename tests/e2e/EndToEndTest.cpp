#include "EndToEndTest.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "LibraryFile.h"

namespace fs = std::filesystem;
using library::GroupKind;

UnitProcess::UnitProcess(const std::vector<std::string>& arguments, const std::string& outputs)
    : Process(TESSELIA_BIN "/mainunit", arguments, outputs) {
    EXPECT_TRUE(WaitUntil([this] { return Output().find("ready: ") != std::string::npos; })) << Errors();
}

int UnitProcess::CountRequests(const std::string& kind) const {
    const std::string dialogue = Dialogue();
    const std::string wanted = " > " + kind + ' ';
    int count = 0;
    for (std::size_t at = dialogue.find(wanted); at != std::string::npos; at = dialogue.find(wanted, at + 1)) {
        ++count;
    }
    return count;
}

std::string UnitProcess::Complaints() const {
    std::istringstream lines(Dialogue());
    std::string complaints;
    for (std::string line; std::getline(lines, line);) {
        if (line.find(" > ") != std::string::npos && line.find(" (") != std::string::npos) {
            complaints += line + '\n';
        }
    }
    return complaints;
}

Terminal::Terminal() {
    char name[128] = {};
    file = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_TRUE(file >= 0 && grantpt(file) == 0 && unlockpt(file) == 0 && ptsname_r(file, name, sizeof name) == 0);
    path = name;
    termios settings{};
    EXPECT_EQ(tcgetattr(file, &settings), 0);
    cfmakeraw(&settings);
    EXPECT_EQ(tcsetattr(file, TCSANOW, &settings), 0);
}

void Terminal::Send(const std::string& bytes) const {
    EXPECT_EQ(write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

std::string Terminal::Receive(std::size_t length) const {
    std::string bytes;
    WaitUntil([&] {
        char part[256];
        const ssize_t count = read(file, part, sizeof part);
        bytes.append(part, count > 0 ? static_cast<std::size_t>(count) : 0);
        return bytes.size() >= length;
    });
    return bytes;
}

void Terminal::Unplug() {
    if (file >= 0) {
        close(file);
        file = -1;
    }
}

bool OnWindows() {
    return std::getenv("TESSELIA_WINDOWS_BUILD") != nullptr;
}

std::string EndToEndTest::CommandOf(const std::string& program) {
    const char* windows = std::getenv("TESSELIA_WINDOWS_BUILD");
    return windows == nullptr
               ? "'" TESSELIA_BIN "/" + program + "'"
               : "'" TESSELIA_SCRIPTS "/windows-program.sh' '" + std::string(windows) + "/" + program + ".exe'";
}

std::unique_ptr<Process> EndToEndTest::StartTested(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {"-c", "exec " + CommandOf(program) + " \"$@\"", program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return std::make_unique<Process>("/bin/sh", words, NextOutputs(program));
}

EndToEndTest::EndToEndTest() {
    EXPECT_EQ(setenv("XDG_CONFIG_HOME", folder.c_str(), 1), 0);
    // Without a link a name would stand for a port of the machine, and nobody knows what is connected there. A folder is no
    // port on either system; a name that leads nowhere opens under wine all the same.
    for (int i = 1; i <= 8; ++i) {
        LinkPort("COM" + std::to_string(i), "/dev/pts/.");
    }
    library::UnitLibrary library;
    library.SetTitle({GroupKind::kDisc, 1, 0}, "Harbour in March");
    library.SetTitle({GroupKind::kDisc, 1, 1}, "Low Water");
    library.SetTitle({GroupKind::kDisc, 1, 2}, "High Water");
    library.Add({GroupKind::kDisc, 1, 3});
    library.SetTitle({GroupKind::kDisc, 2, 0}, "Paper Lanterns");
    library.SetTitle({GroupKind::kDisc, 2, 1}, "The Ferry & the Notebook");
    library.Add({GroupKind::kDisc, 12, 0});
    library.SetTitle({GroupKind::kAlbum, 7, 0}, "Evening Walks");
    library.SetTitle({GroupKind::kAlbum, 7, 1}, "Low Water");
    library.SetTitle({GroupKind::kAlbum, 999, 0}, "The Last of Them All, 32 Letters");
    std::string error;
    EXPECT_TRUE(library::SaveLibrary(libraryFile, library, error)) << error;
}

EndToEndTest::~EndToEndTest() {
    if (OnWindows()) {
        // It would write to the folder that is taken away.
        Process(TESSELIA_SCRIPTS "/windows-program.sh", {"--end"}, folder / "wine-end").End();
    }
    if (const char* records = std::getenv("TESSELIA_RECORDS")) {
        const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
        const fs::path record = fs::path(records) / (std::string(test.test_suite_name()) + '.' + test.name());
        std::error_code ignored;
        fs::create_directories(record, ignored);
        fs::copy(folder, record, ignored);
        std::ofstream(record / "result") << (HasFailure() ? "failed" : IsSkipped() ? "skipped" : "passed");
    }
}

void EndToEndTest::LinkPort(const std::string& port, const std::string& device) const {
    const fs::path ports = folder / "tesselia" / "ports";
    fs::create_directories(ports);
    const fs::path link = ports / ("com" + port.substr(3));
    fs::remove(link);
    fs::create_symlink(device, link);
}

void EndToEndTest::AddDiscs(int first, int last) const {
    library::UnitLibrary library = Saved();
    for (int disc = first; disc <= last; ++disc) {
        library.SetTitle({GroupKind::kDisc, disc, 0}, "Disc " + std::to_string(disc));
    }
    std::string error;
    EXPECT_TRUE(library::SaveLibrary(libraryFile, library, error)) << error;
}

UnitProcess EndToEndTest::StartUnit(const std::vector<std::string>& options, const std::string& port) {
    std::vector<std::string> arguments = {"--link", port, "--library", libraryFile, "--pace", "0"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return UnitProcess(arguments, NextOutputs("mainunit"));
}

library::UnitLibrary EndToEndTest::Saved() const {
    library::UnitLibrary library;
    std::string error;
    EXPECT_TRUE(library::LoadLibrary(libraryFile, library, error)) << error;
    return library;
}

std::string EndToEndTest::NextOutputs(const std::string& program) {
    return folder / (program + '-' + std::to_string(++runs));
}
