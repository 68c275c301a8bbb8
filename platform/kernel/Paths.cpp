#include "Paths.h"

#include <algorithm>
#include <map>
#include <mutex>

#include "CodePage.h"

namespace kernel {
namespace {

// No folder has this name by accident. Behind it come a number and the extension.
constexpr std::string_view kAliasFolder = "/~files~/";
constexpr std::size_t kLongestExtension = 8;

// Never destroyed: a worker may open a file while the process ends.
struct Aliases {
    std::mutex lock;
    std::map<std::string, std::string> paths;    // by alias
    std::map<std::string, std::string> aliases;  // by path
};
Aliases& TheAliases() {
    static Aliases& aliases = *new Aliases;
    return aliases;
}

bool IsPlain(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// With its dot; empty if there is none, or none that would fit into a short name.
std::string Extension(const std::string& path) {
    const std::size_t dot = path.find_last_of("./");
    if (dot == std::string::npos || path[dot] == '/') {
        return {};
    }
    const std::string extension = path.substr(dot + 1);
    const bool plain = std::all_of(extension.begin(), extension.end(), IsPlain);
    return plain && extension.size() <= kLongestExtension ? "." + extension : std::string();
}

std::string AliasOf(const std::string& path) {
    Aliases& all = TheAliases();
    const std::lock_guard guard(all.lock);
    std::string& alias = all.aliases[path];
    if (alias.empty()) {
        alias = std::string(kAliasFolder) + std::to_string(all.aliases.size()) + Extension(path);
        all.paths[alias] = path;
    }
    return alias;
}

std::string WithBackslashes(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

}  // namespace

// The text is converted first: in the code page the second byte of a character can look like a backslash.
std::string LinuxPath(std::string_view name) {
    std::string path = ToUtf8(name);
    std::replace(path.begin(), path.end(), '\\', '/');
    if (!path.starts_with(kAliasFolder)) {
        return path;
    }
    Aliases& all = TheAliases();
    const std::lock_guard guard(all.lock);
    const auto found = all.paths.find(path);
    return found != all.paths.end() ? found->second : path;
}

std::optional<std::string> WindowsPath(std::string path) {
    if (path.find('\\') != std::string::npos) {
        return std::nullopt;
    }
    return FromUtf8(WithBackslashes(std::move(path)));
}

std::optional<std::string> WindowsPathOrAlias(const std::string& path, std::size_t limit) {
    if (auto whole = WindowsPath(path); whole && whole->size() < limit) {
        return whole;
    }
    std::string alias = WithBackslashes(AliasOf(path));
    return alias.size() < limit ? std::optional(std::move(alias)) : std::nullopt;
}

}  // namespace kernel
