// Code pages by the converters of the C library.
#include "CodePage.h"

#include <iconv.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <mutex>

#include "win/kernel.h"

namespace kernel {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

std::atomic<unsigned> currentPage{0};  // 0 until it is looked up or chosen.

// "ja", "ja_JP.UTF-8", "ja@..." and "japanese", but not another language that begins alike.
bool IsJapanese(std::string_view locale) {
    if (locale.starts_with("japanese")) {
        return true;
    }
    return locale.starts_with("ja") &&
           (locale.size() == 2 || std::string_view("_.@").find(locale[2]) != std::string_view::npos);
}

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool IsLeadByte(unsigned page, unsigned char byte) {
    return page == kJapanesePage && ((byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC));
}

// One direction of one page. A converter of the C library belongs to one thread at a time.
class Converter {
public:
    Converter(const char* to, const char* from) : converter(iconv_open(to, from)) {}

    // Converts from the front of the input as far as it can, adds to the output, and takes what it has converted away.
    void Convert(std::string_view& input, std::string& output) {
        if (converter == reinterpret_cast<iconv_t>(-1)) {
            return;
        }
        const std::lock_guard guard(lock);
        iconv(converter, nullptr, nullptr, nullptr, nullptr);
        bool more = true;
        while (more && !input.empty()) {
            char buffer[256];
            char* to = buffer;
            std::size_t room = sizeof buffer;
            char* from = const_cast<char*>(input.data());  // The call wants it so and writes nothing there.
            std::size_t left = input.size();
            more = iconv(converter, &from, &left, &to, &room) != static_cast<std::size_t>(-1) || errno == E2BIG;
            output.append(buffer, to);
            input.remove_prefix(input.size() - left);
        }
    }

private:
    std::mutex lock;
    const iconv_t converter;
};

// Made at the first need and never destroyed: threads may convert while the process ends.
Converter& ToText(unsigned page) {
    static Converter& western = *new Converter("UTF-8", "CP1252");
    static Converter& japanese = *new Converter("UTF-8", "CP932");
    return page == kJapanesePage ? japanese : western;
}

Converter& ToPage(unsigned page) {
    static Converter& western = *new Converter("CP1252", "UTF-8");
    static Converter& japanese = *new Converter("CP932", "UTF-8");
    return page == kJapanesePage ? japanese : western;
}

// Takes the bytes at the front, which the converter refused, away and adds what stands for them.
void ReplaceUndefined(unsigned page, std::string_view& bytes, std::string& text) {
    const auto byte = static_cast<unsigned char>(bytes[0]);
    if (page == kWesternPage) {
        text += '\xC2';
        text += static_cast<char>(byte);
        bytes.remove_prefix(1);
        return;
    }
    text += kReplacement;
    const auto trail = bytes.size() > 1 ? static_cast<unsigned char>(bytes[1]) : 0;
    const bool pair = IsLeadByte(page, byte) && trail >= 0x40 && trail <= 0xFC && trail != 0x7F;
    bytes.remove_prefix(pair ? 2 : 1);
}

}  // namespace

unsigned CodePageOfLocale() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(name);
        if (value && *value) {
            return IsJapanese(value) ? kJapanesePage : kWesternPage;
        }
    }
    return kWesternPage;
}

unsigned CodePage() {
    unsigned page = currentPage.load(std::memory_order_relaxed);
    if (page == 0) {
        page = CodePageOfLocale();
        currentPage.store(page, std::memory_order_relaxed);
    }
    return page;
}

void SetCodePage(unsigned page) {
    currentPage.store(page, std::memory_order_relaxed);
}

std::string ToUtf8(std::string_view bytes) {
    if (IsAscii(bytes)) {
        return std::string(bytes);
    }
    const unsigned page = CodePage();
    std::string text;
    while (!bytes.empty()) {
        ToText(page).Convert(bytes, text);
        if (!bytes.empty()) {
            ReplaceUndefined(page, bytes, text);
        }
    }
    return text;
}

std::optional<std::string> FromUtf8(std::string_view text) {
    if (IsAscii(text)) {
        return std::string(text);
    }
    const unsigned page = CodePage();
    std::string bytes;
    std::string_view rest = text;
    while (!rest.empty()) {
        ToPage(page).Convert(rest, bytes);
        if (rest.empty()) {
            break;
        }
        // The control characters that stand for the undefined bytes of page 1252 go back to them.
        if (page != kWesternPage || rest.size() < 2 || rest[0] != '\xC2') {
            return std::nullopt;
        }
        bytes += rest[1];
        rest.remove_prefix(2);
    }
    if (ToUtf8(bytes) != text) {
        return std::nullopt;
    }
    return bytes;
}

}  // namespace kernel

BOOL IsDBCSLeadByte(BYTE byte) {
    return kernel::IsLeadByte(kernel::CodePage(), byte) ? TRUE : FALSE;
}
