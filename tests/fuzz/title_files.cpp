// Any bytes as a title file: CSV, tab text and play lists, with single and double bytes.
//
// The first byte of the input chooses format and code page. Aborts where a title is none, and where CSV gives anything else
// than a plain reader that searches for each separator on its own, however long that takes.
#include <cstdint>
#include <string>
#include <string_view>

#include "Check.h"
#include "CodePage.h"
#include "TitleFile.h"
#include "TitleText.h"

namespace {

constexpr std::size_t kNone = std::string_view::npos;

std::string Titles(const TitleFile& file) {
    std::string all;
    int count = 0;
    for (int number = 0; number < TitleFile::kTitles; ++number) {
        char text[kTitleSize];
        if (file.GetImportTitle(number, text) == 0) {
            continue;
        }
        const std::string_view title = text;
        CHECK(title.size() <= kTitleLength);
        for (const char letter : title) {
            CHECK(letter >= 0x20 && letter <= 0x7E);
        }
        all += std::to_string(number) + '=' + text + '\n';
        ++count;
    }
    CHECK(count == file.CountTitles());
    return all;
}

std::size_t Nearer(std::size_t one, std::size_t other) {
    return one < other ? one : other;
}

std::string Unquoted(std::string_view field) {
    std::string value;
    std::size_t at = 0;
    if (!field.empty() && field[0] == '"') {
        at = 1;
        while (true) {
            const std::size_t quote = FindChar(field, at, '"');
            if (quote == kNone) {
                break;
            }
            value += field.substr(at, quote - at);
            at = quote + 1;
            if (at >= field.size() || field[at] != '"') {
                break;
            }
            value += '"';
            ++at;
        }
    }
    std::string_view rest = field.substr(at);
    if (!rest.empty() && IsLeadByte(rest.back())) {
        rest.remove_suffix(1);
    }
    return value + std::string(rest);
}

void ReadPlainly(std::string_view text, TitleFile& file) {
    int column = 0;
    int number = -1;
    while (true) {
        std::size_t from = 0;
        bool isClosed = true;
        if (FindChar(text, 0, '"') == 0) {
            std::size_t quote = FindChar(text, 1, '"');
            while (quote != kNone && text.substr(quote + 1, 1) == "\"") {
                quote = FindChar(text, quote + 2, '"');
            }
            isClosed = quote != kNone;
            from = isClosed ? quote + 1 : 0;
        }
        const std::size_t end = isClosed ? Nearer(FindChar(text, from, ','), FindChar(text, from, '\n')) : kNone;
        std::string_view field = text.substr(0, end);
        while (end != kNone && !field.empty() && field.back() == '\r') {
            field.remove_suffix(1);
        }
        if (column == 0) {
            number = ReadNumber(Unquoted(field));
        } else if (column == 1) {
            file.AddTitle(number, Unquoted(field));
        }
        if (end == kNone) {
            return;
        }
        column = text[end] == '\n' ? 0 : column + 1;
        text.remove_prefix(end + 1);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    text = text.substr(0, text.find('\0'));
    kernel::SetCodePage((data[0] & 0x80) != 0 ? 932 : 1252);
    TitleFile file;
    switch (data[0] % 3) {
        case 0: {
            file.ReadCsv(text);
            TitleFile plain;
            ReadPlainly(text, plain);
            CHECK(Titles(file) == Titles(plain));
            break;
        }
        case 1:
            file.ReadTabText(text);
            Titles(file);
            break;
        default:
            file.ReadAsx(text);
            Titles(file);
            break;
    }
    return 0;
}
