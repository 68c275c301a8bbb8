// wsprintfA.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "LastError.h"
#include "win/resources.h"

namespace {

constexpr std::size_t kBufferSize = 1024;

struct Field {
    bool left = false;
    char fill = ' ';
    std::size_t width = 0;
    char type = '\0';
};

// Reads what stands behind a percent sign; the text begins behind the field then.
Field ReadField(std::string_view& format) {
    Field field;
    const auto take = [&format] {
        const char c = format.empty() ? '\0' : format.front();
        format.remove_prefix(format.empty() ? 0 : 1);
        return c;
    };
    char c = take();
    if (c == '-') {
        field.left = true;
        c = take();
    }
    if (c == '0') {
        field.fill = '0';
        c = take();
    }
    for (; c >= '0' && c <= '9'; c = take()) {
        field.width = std::min(field.width * 10 + static_cast<std::size_t>(c - '0'), kBufferSize);
    }
    field.type = c;
    return field;
}

// Zeros fill numbers alone, and in front alone; everywhere else they count as blanks.
std::string Padded(std::string text, const Field& field) {
    const std::size_t missing = field.width > text.size() ? field.width - text.size() : 0;
    const bool number = field.type != 's' && field.type != 'c';
    if (field.left) {
        return text.append(missing, ' ');
    }
    if (number && field.fill == '0') {
        return text.insert(text.starts_with('-') ? 1 : 0, missing, '0');
    }
    return text.insert(0, missing, ' ');
}

std::string Number(const char* format, unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

}  // namespace

int wsprintfA(LPSTR buffer, LPCSTR format, ...) {
    std::string result;
    std::string_view rest = format;
    std::va_list arguments;
    va_start(arguments, format);
    while (!rest.empty()) {
        const char c = rest.front();
        rest.remove_prefix(1);
        if (c != '%') {
            result += c;
            continue;
        }
        const Field field = ReadField(rest);
        // The checker does not see va_start where it looks at more than one file in a run.
        // NOLINTBEGIN(clang-analyzer-valist.Uninitialized)
        switch (field.type) {
            case 'd': result += Padded(std::to_string(va_arg(arguments, int)), field); break;
            case 'u': result += Padded(std::to_string(va_arg(arguments, unsigned)), field); break;
            case 'x': result += Padded(Number("%x", va_arg(arguments, unsigned)), field); break;
            case 'X': result += Padded(Number("%X", va_arg(arguments, unsigned)), field); break;
            case 'c': result += Padded(std::string(1, static_cast<char>(va_arg(arguments, int))), field); break;
            case 's': {
                const char* text = va_arg(arguments, const char*);
                result += Padded(text ? text : "(null)", field);
                break;
            }
            case '%': result += '%'; break;
            default: kernel::Unsupported("a format of wsprintfA"); break;
        }
        // NOLINTEND(clang-analyzer-valist.Uninitialized)
    }
    va_end(arguments);

    const std::size_t length = std::min(result.size(), kBufferSize - 1);
    std::memcpy(buffer, result.data(), length);
    buffer[length] = '\0';
    // Windows counts the terminator as well where the result is cut.
    return static_cast<int>(length == result.size() ? length : kBufferSize);
}
