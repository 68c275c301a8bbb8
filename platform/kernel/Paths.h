// Paths of Linux, and the same in the form of Windows: in the code page, with backslashes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kernel {

// What a path of the program means, aliases included. Any thread.
std::string LinuxPath(std::string_view name);

// None if the code page lacks a character, or if a backslash in the name would turn into a separator on its way back.
std::optional<std::string> WindowsPath(std::string path);

// A name for an absolute path that has less than `limit` bytes: the path itself if it can be said and fits, else an alias, a
// short path with the same extension that means that file, as long as this process lives, to all calls that take paths. None
// if even that is too long. Any thread.
std::optional<std::string> WindowsPathOrAlias(const std::string& path, std::size_t limit);

}  // namespace kernel
