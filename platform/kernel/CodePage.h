// Text in the code page of the process, and UTF-8, which is what Linux has outside.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kernel {

inline constexpr unsigned kWesternPage = 1252;
inline constexpr unsigned kJapanesePage = 932;

// 932 if the locale that the environment names (LC_ALL, else LC_CTYPE, else LANG) is Japanese, else 1252.
unsigned CodePageOfLocale();
// The code page of the process: the locale's, looked up once, unless it was chosen. Any thread.
unsigned CodePage();
// Chooses kWesternPage or kJapanesePage from now on, whatever the locale says, so that tests run under any.
void SetCodePage(unsigned page);

// Every byte string has a text: what the page does not define becomes U+FFFD, in page 1252 the control character of the same
// number. Any thread.
std::string ToUtf8(std::string_view bytes);

// None if the text would not come back the same by ToUtf8. A similar character is no substitute: it would name another file.
// Any thread.
std::optional<std::string> FromUtf8(std::string_view text);

}  // namespace kernel
