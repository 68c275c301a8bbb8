// The names of serial ports.
#include "PortNames.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <memory>
#include <utility>

#include "UserFolders.h"

namespace kernel {
namespace {

constexpr int kBuiltInPorts = 4;

// The numbers behind a prefix of the names in a folder, in order: ttyUSB10 is not before ttyUSB2.
std::vector<unsigned> NumbersBehind(const std::string& folder, std::string_view prefix) {
    std::vector<unsigned> numbers;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
    if (!entries) {
        return numbers;
    }
    while (const dirent* entry = readdir(entries.get())) {
        const std::string_view name = entry->d_name;
        if (!name.starts_with(prefix)) {
            continue;
        }
        unsigned number;
        const char* end = name.data() + name.size();
        const auto [rest, error] = std::from_chars(name.data() + prefix.size(), end, number);
        if (error == std::errc() && rest == end) {
            numbers.push_back(number);
        }
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

}  // namespace

int PortNumber(std::string_view name) {
    constexpr std::string_view kPrefix = "COM";
    if (name.size() != kPrefix.size() + 1) {
        return 0;
    }
    const bool prefixed = std::equal(kPrefix.begin(), kPrefix.end(), name.begin(),
                                     [](char a, char b) { return a == std::toupper(static_cast<unsigned char>(b)); });
    return prefixed && name[3] >= '1' && name[3] <= '8' ? name[3] - '0' : 0;
}

std::string PortDevice(int number) {
    const std::string folder = ConfigurationFolder();
    if (!folder.empty()) {
        std::string link = folder + "/tesselia/ports/com" + std::to_string(number);
        struct stat status;
        if (lstat(link.c_str(), &status) == 0) {
            return link;
        }
    }
    if (number <= kBuiltInPorts) {
        return "/dev/ttyS" + std::to_string(number - 1);
    }
    const std::vector<std::string> ports = UsbPorts("/dev");
    const auto index = static_cast<std::size_t>(number - kBuiltInPorts - 1);
    return index < ports.size() ? ports[index] : std::string();
}

std::vector<std::string> UsbPorts(const std::string& folder) {
    std::vector<std::string> ports;
    for (const char* prefix : {"ttyUSB", "ttyACM"}) {
        for (const unsigned number : NumbersBehind(folder, prefix)) {
            ports.push_back(folder + "/" + prefix + std::to_string(number));
        }
    }
    return ports;
}

}  // namespace kernel
