// The play list format: a strict reader of its own for a fixed set of tags, and not of XML at large.
//
// Each step answers whether the document is still in order; the first that is not ends it. Nothing is read past the text,
// and each step goes on in it, so that any text comes to an end.
#include <algorithm>
#include <array>

#include "TitleFile.h"
#include "TitleText.h"

namespace {

enum class TagId {
    kNone,
    kComment,
    kAbstract,
    kAsx,
    kAuthor,
    kBanner,
    kBase,
    kCopyright,
    kDuration,
    kEndMarker,
    kEntry,
    kEntryRef,
    kEvent,
    kLogo,
    kMoreInfo,
    kParam,
    kPreviewDuration,
    kRef,
    kRepeat,
    kSkin,
    kStartMarker,
    kStartTime,
    kTitle
};

enum class Form { kNone, kText, kContainer, kContainerOrEmpty, kEmpty };

constexpr unsigned Bit(TagId tag) {
    return 1U << static_cast<unsigned>(tag);
}

template <class... Tags>
constexpr unsigned In(Tags... tags) {
    return (0U | ... | Bit(tags));
}

struct TagRow {
    TagId tag;
    std::string_view name;
    Form form;
    unsigned parents;  // of Bit; the top of the document is kNone
};

// A comment and a skin may stand nowhere.
constexpr std::array<TagRow, 22> kTags = {{
    {TagId::kComment, "!--", Form::kNone, 0},
    {TagId::kAbstract, "ABSTRACT", Form::kText, In(TagId::kAsx, TagId::kBanner, TagId::kEntry)},
    {TagId::kAsx, "ASX", Form::kContainer, In(TagId::kNone)},
    {TagId::kAuthor, "AUTHOR", Form::kText, In(TagId::kAsx, TagId::kEntry)},
    {TagId::kBanner, "BANNER", Form::kContainerOrEmpty, In(TagId::kAsx, TagId::kEntry)},
    {TagId::kBase, "BASE", Form::kEmpty, In(TagId::kAsx, TagId::kEntry)},
    {TagId::kCopyright, "COPYRIGHT", Form::kText, In(TagId::kAsx, TagId::kEntry)},
    {TagId::kDuration, "DURATION", Form::kEmpty, In(TagId::kEntry, TagId::kRef)},
    {TagId::kEndMarker, "ENDMARKER", Form::kEmpty, In(TagId::kEntry, TagId::kRef)},
    {TagId::kEntry, "ENTRY", Form::kContainer, In(TagId::kAsx, TagId::kEvent, TagId::kRepeat)},
    {TagId::kEntryRef, "ENTRYREF", Form::kEmpty, In(TagId::kAsx, TagId::kEvent, TagId::kRepeat)},
    {TagId::kEvent, "EVENT", Form::kContainer, In(TagId::kAsx)},
    {TagId::kLogo, "LOGO", Form::kEmpty, In(TagId::kAsx, TagId::kEntry)},
    {TagId::kMoreInfo, "MOREINFO", Form::kEmpty, In(TagId::kAsx, TagId::kBanner, TagId::kEntry)},
    {TagId::kParam, "PARAM", Form::kEmpty, In(TagId::kAsx, TagId::kEntry)},
    {TagId::kPreviewDuration, "PREVIEWDURATION", Form::kEmpty, In(TagId::kAsx, TagId::kEntry, TagId::kRef)},
    {TagId::kRef, "REF", Form::kContainerOrEmpty, In(TagId::kEntry)},
    {TagId::kRepeat, "REPEAT", Form::kContainer, In(TagId::kAsx)},
    {TagId::kSkin, "SKIN", Form::kEmpty, 0},
    {TagId::kStartMarker, "STARTMARKER", Form::kEmpty, In(TagId::kEntry, TagId::kRef)},
    {TagId::kStartTime, "STARTTIME", Form::kEmpty, In(TagId::kEntry, TagId::kRef)},
    {TagId::kTitle, "TITLE", Form::kText, In(TagId::kAsx, TagId::kEntry)},
}};

constexpr int kNowhere = -1;
constexpr std::size_t kLongestName = 100;
constexpr std::size_t kBufferSize = 99;

constexpr bool IsWhite(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
}

// At most so many bytes of what was read; more than that changes nothing.
class Buffer {
public:
    bool IsFull() const { return length == bytes.size(); }
    void Add(char byte) {
        if (!IsFull()) {
            bytes[length++] = byte;
        }
    }
    void Clear() { length = 0; }
    std::string_view View() const { return {bytes.data(), length}; }

private:
    std::array<char, kBufferSize> bytes{};
    std::size_t length = 0;
};

char Capital(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

bool IsCapitalsOf(std::string_view text, std::string_view name) {
    return std::equal(text.begin(), text.end(), name.begin(), name.end(),
                      [](char letter, char capital) { return Capital(letter) == capital; });
}

const TagRow* FindOpening(std::string_view name) {
    const auto* found =
        std::find_if(kTags.begin(), kTags.end(), [name](const TagRow& row) { return IsCapitalsOf(name, row.name); });
    return found != kTags.end() ? found : nullptr;
}

bool HasClosing(Form form) {
    return form == Form::kText || form == Form::kContainer || form == Form::kContainerOrEmpty;
}

// The closing name of the row, as in "/TITLE"; of a comment "--".
bool IsClosingOf(std::string_view name, const TagRow& row) {
    if (row.tag == TagId::kComment) {
        return name == "--";
    }
    return HasClosing(row.form) && !name.empty() && name[0] == '/' && IsCapitalsOf(name.substr(1), row.name);
}

class AsxReader {
public:
    AsxReader(std::string_view text, TitleFile& titles) : text(text), titles(titles) {}

    bool ReadElement(int track, TagId parent);

private:
    bool IsAt(char byte) const { return at < text.size() && text[at] == byte; }
    bool IsAtEmptyEnd() const { return text.substr(at, 2) == "/>"; }
    void SkipWhite();
    bool GoBehindNext(char byte);
    bool ReadName(std::string_view& name);
    bool ReadAttributes(TagId tag, Buffer& value);
    bool ReadAttribute(bool& isLast);
    bool ReadValue();
    bool ReadContent(const TagRow& row, int track, TagId parent);
    bool ReadText(TagId tag, int track);

    std::string_view text;
    TitleFile& titles;
    std::size_t at = 0;
    // The attribute in hand.
    Buffer attributeName;
    Buffer attributeValue;
};

void AsxReader::SkipWhite() {
    while (at < text.size() && IsWhite(text[at])) {
        ++at;
    }
}

bool AsxReader::GoBehindNext(char byte) {
    const std::size_t found = text.find(byte, at);
    if (found == std::string_view::npos) {
        return false;
    }
    at = found + 1;
    return true;
}

// Up to white space or the end of the tag. A slash is part of the name.
bool AsxReader::ReadName(std::string_view& name) {
    const std::size_t begin = at;
    while (at < text.size() && !IsWhite(text[at]) && text[at] != '>') {
        if (++at - begin > kLongestName) {
            return false;
        }
    }
    name = text.substr(begin, at - begin);
    return at < text.size();
}

bool AsxReader::ReadElement(int track, TagId parent) {
    SkipWhite();
    if (!IsAt('<')) {
        return false;
    }
    ++at;
    std::string_view name;
    if (!ReadName(name)) {
        return false;
    }
    const TagRow* row = FindOpening(name);
    if (row == nullptr || (row->parents & Bit(parent)) == 0) {
        return false;
    }
    Buffer value;
    if (!ReadAttributes(row->tag, value)) {
        return false;
    }
    if (track >= 0 && !value.View().empty()) {
        titles.AddTitle(track, value.View());
    }
    const bool mayBeEmpty = row->form == Form::kEmpty || row->form == Form::kContainerOrEmpty;
    if (mayBeEmpty && IsAtEmptyEnd()) {
        at += 2;
        return true;
    }
    if (!HasClosing(row->form) || !IsAt('>')) {
        return false;
    }
    ++at;
    return ReadContent(*row, track, parent);
}

// Only the one that names its element gives a value: NAME="NAME" and, behind it, VALUE with the title.
bool AsxReader::ReadAttributes(TagId tag, Buffer& value) {
    enum { kWantsName, kWantsValue, kHasValue } stage = kWantsName;
    bool isLast = false;
    while (!isLast) {
        if (!ReadAttribute(isLast)) {
            return false;
        }
        if (tag != TagId::kParam) {
            continue;
        }
        if (stage == kWantsName && IsCapitalsOf(attributeName.View(), "NAME") &&
            IsCapitalsOf(attributeValue.View(), "NAME")) {
            stage = kWantsValue;
        } else if (stage == kWantsValue && IsCapitalsOf(attributeName.View(), "VALUE")) {
            value = attributeValue;
            stage = kHasValue;
        }
    }
    return true;
}

// White space inside a name is dropped.
bool AsxReader::ReadAttribute(bool& isLast) {
    attributeName.Clear();
    attributeValue.Clear();
    while (true) {
        SkipWhite();
        if (at >= text.size()) {
            return false;
        }
        const char byte = text[at];
        if (byte == '>' || IsAtEmptyEnd()) {
            isLast = true;
            return true;
        }
        ++at;
        if (byte == '=') {
            return ReadValue();
        }
        if (attributeName.IsFull()) {
            return false;
        }
        attributeName.Add(byte);
        if (byte == '"' && !GoBehindNext('"')) {
            return false;
        }
    }
}

// A value without quotes is none; its first byte is passed over.
bool AsxReader::ReadValue() {
    SkipWhite();
    if (at >= text.size()) {
        return false;
    }
    if (text[at++] != '"') {
        return true;
    }
    const std::size_t begin = at;
    if (!GoBehindNext('"')) {
        return false;
    }
    for (const char byte : text.substr(begin, std::min(at - 1 - begin, kBufferSize))) {
        attributeValue.Add(byte);
    }
    return true;
}

// A play list counts its own entries. What stands elsewhere has a title for nobody.
bool AsxReader::ReadContent(const TagRow& row, int track, TagId parent) {
    int entries = 0;
    while (true) {
        SkipWhite();
        const TagRow* opening = nullptr;
        if (IsAt('<')) {
            const std::size_t begin = at;
            ++at;
            SkipWhite();
            std::string_view name;
            if (!ReadName(name)) {
                return false;
            }
            if (IsClosingOf(name, row)) {
                return GoBehindNext('>');
            }
            opening = FindOpening(name);
            at = begin;
        }
        bool isRead = false;
        if (row.form == Form::kText) {
            // No tag stands in a text.
            isRead = !IsAt('<') && ReadText(row.tag, track);
        } else if (row.tag == TagId::kAsx) {
            const bool isEntry = opening != nullptr && opening->tag == TagId::kEntry;
            entries += isEntry ? 1 : 0;
            isRead = ReadElement(isEntry ? entries : track, row.tag);
        } else {
            const bool isOwnEntry = row.tag == TagId::kEntry && parent == TagId::kAsx;
            isRead = ReadElement(isOwnEntry ? track : kNowhere, row.tag);
        }
        if (!isRead) {
            return false;
        }
    }
}

bool AsxReader::ReadText(TagId tag, int track) {
    const std::size_t end = text.find('<', at);
    if (end == std::string_view::npos) {
        return false;
    }
    if (tag == TagId::kTitle && track >= 0) {
        titles.AddTitle(track, text.substr(at, std::min(end - at, kBufferSize)));
    }
    at = end;
    return true;
}

}  // namespace

int TitleFile::ReadAsx(std::string_view text) {
    return AsxReader(text, *this).ReadElement(0, TagId::kNone) ? 1 : 0;
}
