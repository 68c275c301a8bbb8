#include "TextFiles.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

namespace {

constexpr std::size_t kLargestFile = std::size_t{1} << 30;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

bool Fail(const std::string& path, const std::string& what, std::string& why) {
    why = path + ": " + what;
    return false;
}

}  // namespace

bool LoadText(const std::string& path, std::string& text, std::string& why) {
    const File file(std::fopen(path.c_str(), "rb"));
    if (!file) {
        return Fail(path, std::strerror(errno), why);
    }
    text.clear();
    char part[65536];
    while (const std::size_t count = std::fread(part, 1, sizeof part, file.get())) {
        if (text.size() + count > kLargestFile) {
            return Fail(path, "is too large", why);
        }
        text.append(part, count);
    }
    return std::ferror(file.get()) == 0 || Fail(path, "cannot be read", why);
}

bool CanSaveText(const std::string& path, std::string& why) {
    std::error_code unknown;
    if (std::filesystem::exists(path, unknown)) {
        return Fail(path, "is there already", why);
    }
    if (!File(std::fopen(path.c_str(), "wb"))) {
        return Fail(path, std::strerror(errno), why);
    }
    std::remove(path.c_str());
    return true;
}

bool SaveText(const std::string& path, const std::string& text, std::string& why) {
    if (!CanSaveText(path, why)) {
        return false;
    }
    std::FILE* file = std::fopen(path.c_str(), "wb");
    const bool written = file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size();
    const bool closed = file != nullptr && std::fclose(file) == 0;
    std::string saved;
    if (written && closed && LoadText(path, saved, why) && saved == text) {
        return true;
    }
    std::remove(path.c_str());
    return Fail(path, "cannot be written", why);
}
