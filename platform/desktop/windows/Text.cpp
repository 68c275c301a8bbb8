#include "Text.h"

#include <windows.h>

#include <QList>
#include <cctype>

#include "CodePage.h"

namespace desktop {

QString ToQString(std::string_view bytes) {
    return QString::fromStdString(kernel::ToUtf8(bytes));
}

std::string FromQString(const QString& text, char lacking) {
    if (const auto whole = kernel::FromUtf8(text.toStdString())) {
        return *whole;
    }
    std::string bytes;
    for (const char32_t point : text.toUcs4()) {
        const auto each = kernel::FromUtf8(QString::fromUcs4(&point, 1).toStdString());
        bytes += each ? *each : std::string(1, lacking);
    }
    return bytes;
}

namespace {

// Forward through the bytes, since the second one of a pair can look like a mark.
template <class Plain, class Marked>
void Scan(std::string_view text, Plain plain, Marked marked) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool lead = IsDBCSLeadByte(static_cast<BYTE>(text[i])) != 0 && i + 1 < text.size();
        if (lead) {
            plain(text.substr(i++, 2));
        } else if (text[i] != '&') {
            plain(text.substr(i, 1));
        } else if (i + 1 < text.size() && text[i + 1] == '&') {
            plain(text.substr(i++, 1));
        } else if (i + 1 < text.size()) {
            marked(text[i + 1]);
        }
    }
}

}  // namespace

std::string WithoutMarks(std::string_view text) {
    std::string result;
    Scan(text, [&](std::string_view bytes) { result += bytes; }, [](char) {});
    return result;
}

char MarkOf(std::string_view text) {
    char mark = 0;
    Scan(
        text, [](std::string_view) {},
        [&](char letter) { mark = static_cast<char>(std::tolower(static_cast<unsigned char>(letter))); });
    return mark;
}

}  // namespace desktop
