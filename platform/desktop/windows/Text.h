// Between the bytes of the code page and Qt's text, in one place.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace desktop {

QString ToQString(std::string_view bytes);
// What the code page cannot express becomes a question mark, or another sign.
std::string FromQString(const QString& text, char lacking = '?');
// A control's text without its "&" marks: the mark goes, "&&" becomes one "&".
std::string WithoutMarks(std::string_view text);
// The letter behind the mark, in lower case, or 0.
char MarkOf(std::string_view text);

}  // namespace desktop
