// The CSV and the tab text format. Neither refuses anything: what cannot be used is passed over.
#include <algorithm>

#include "TitleFile.h"
#include "TitleText.h"

namespace {

constexpr std::size_t kNone = std::string_view::npos;

std::string_view WithoutCarriageReturns(std::string_view field) {
    while (!field.empty() && field.back() == '\r') {
        field.remove_suffix(1);
    }
    return field;
}

// Where the comma or line feed stands that ends the field at the beginning of the text. A field that begins with a quote
// goes on to the quote that closes it, which is one without another one behind it.
std::size_t EndOfField(std::string_view text) {
    std::size_t behindQuotes = 0;
    if (!text.empty() && text[0] == '"') {
        std::size_t quote = FindChar(text, 1, '"');
        while (quote != kNone && quote + 1 < text.size() && text[quote + 1] == '"') {
            quote = FindChar(text, quote + 2, '"');
        }
        if (quote == kNone) {
            return kNone;
        }
        behindQuotes = quote + 1;
    }
    return FindEither(text, behindQuotes, ',', '\n');
}

// Gives the value of a CSV field byte by byte: without the quotes around its quoted part, doubled ones once.
class FieldReader {
public:
    explicit FieldReader(std::string_view field) : field(field) {
        if (!field.empty() && field[0] == '"') {
            isQuoted = true;
            at = 1;
            searchStart = 1;
        }
    }

    bool Next(char& byte) {
        if (isQuoted && at < field.size() && field[at] == '"') {
            if (at > searchStart && IsLeadByte(field[at - 1])) {
                // The second byte of a character, and no quote.
                searchStart = at + 1;
            } else if (at + 1 < field.size() && field[at + 1] == '"') {
                byte = '"';
                at += 2;
                searchStart = at;
                return true;
            } else {
                isQuoted = false;
                ++at;
            }
        }
        // Half a character at the end has no second byte.
        if (at >= field.size() || (at + 1 == field.size() && IsLeadByte(field[at]))) {
            return false;
        }
        byte = field[at++];
        return true;
    }

private:
    std::string_view field;
    std::size_t at = 0;
    std::size_t searchStart = 0;
    bool isQuoted = false;
};

int NumberOf(std::string_view field) {
    FieldReader reader(field);
    NumberReader number;
    char byte = 0;
    while (reader.Next(byte) && number.Take(byte)) {}
    return number.Number();
}

// As much of the value as makes a title.
std::string_view RawTitleOf(std::string_view field, char (&buffer)[kRawTitleLength]) {
    FieldReader reader(field);
    std::size_t length = 0;
    while (length < sizeof buffer && reader.Next(buffer[length])) {
        ++length;
    }
    return {buffer, length};
}

}  // namespace

void TitleFile::ReadCsv(std::string_view text) {
    int column = 0;
    int number = -1;
    while (true) {
        const std::size_t end = EndOfField(text);
        const bool isLast = end == kNone;
        const std::string_view field = isLast ? text : WithoutCarriageReturns(text.substr(0, end));
        if (column == 0) {
            number = NumberOf(field);
        } else if (column == 1) {
            char buffer[kRawTitleLength];
            AddTitle(number, RawTitleOf(field, buffer));
        }
        if (isLast) {
            return;
        }
        column = text[end] == '\n' ? 0 : column + 1;
        text.remove_prefix(end + 1);
    }
}

void TitleFile::ReadTabText(std::string_view text) {
    while (true) {
        // Empty lines go in whole runs: one by one, a file of nothing else would be the slowest of all.
        text.remove_prefix(std::min(text.find_first_not_of('\n'), text.size()));
        const std::size_t end = FindChar(text, 0, '\n');
        const bool isLast = end == kNone;
        const std::string_view line = isLast ? text : WithoutCarriageReturns(text.substr(0, end));
        if (!line.empty()) {
            const std::size_t tab = FindChar(line, 0, '\t');
            const std::string_view rest = tab == kNone ? std::string_view() : line.substr(tab + 1);
            AddTitle(ReadNumber(line.substr(0, tab)), rest.substr(0, FindChar(rest, 0, '\t')));
        }
        if (isLast) {
            return;
        }
        text.remove_prefix(end + 1);
    }
}
