// The play list format: a strict reader of its own for a fixed set of tags, and not of XML at large.
//
// Each step answers whether the document is still in order; the first that is not ends it. Nothing is read past the text,
// and each step goes on in it, so that any text comes to an end.
#include <algorithm>
#include <array>

#include "TitleFile.h"
#include "TitleText.h"

namespace {

enum class Tag {
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

constexpr unsigned Bit(Tag tag) {
    return 1U << static_cast<unsigned>(tag);
}

template <class... Tags>
constexpr unsigned In(Tags... tags) {
    return (0U | ... | Bit(tags));
}

struct TagRow {
    Tag tag;
    std::string_view name;
    Form form;
    unsigned parents;  // of Bit; the top of the document is kNone
};

// A comment and a skin may stand nowhere.
constexpr std::array<TagRow, 22> kTags = {{
    {Tag::kComment, "!--", Form::kNone, 0},
    {Tag::kAbstract, "ABSTRACT", Form::kText, In(Tag::kAsx, Tag::kBanner, Tag::kEntry)},
    {Tag::kAsx, "ASX", Form::kContainer, In(Tag::kNone)},
    {Tag::kAuthor, "AUTHOR", Form::kText, In(Tag::kAsx, Tag::kEntry)},
    {Tag::kBanner, "BANNER", Form::kContainerOrEmpty, In(Tag::kAsx, Tag::kEntry)},
    {Tag::kBase, "BASE", Form::kEmpty, In(Tag::kAsx, Tag::kEntry)},
    {Tag::kCopyright, "COPYRIGHT", Form::kText, In(Tag::kAsx, Tag::kEntry)},
    {Tag::kDuration, "DURATION", Form::kEmpty, In(Tag::kEntry, Tag::kRef)},
    {Tag::kEndMarker, "ENDMARKER", Form::kEmpty, In(Tag::kEntry, Tag::kRef)},
    {Tag::kEntry, "ENTRY", Form::kContainer, In(Tag::kAsx, Tag::kEvent, Tag::kRepeat)},
    {Tag::kEntryRef, "ENTRYREF", Form::kEmpty, In(Tag::kAsx, Tag::kEvent, Tag::kRepeat)},
    {Tag::kEvent, "EVENT", Form::kContainer, In(Tag::kAsx)},
    {Tag::kLogo, "LOGO", Form::kEmpty, In(Tag::kAsx, Tag::kEntry)},
    {Tag::kMoreInfo, "MOREINFO", Form::kEmpty, In(Tag::kAsx, Tag::kBanner, Tag::kEntry)},
    {Tag::kParam, "PARAM", Form::kEmpty, In(Tag::kAsx, Tag::kEntry)},
    {Tag::kPreviewDuration, "PREVIEWDURATION", Form::kEmpty, In(Tag::kAsx, Tag::kEntry, Tag::kRef)},
    {Tag::kRef, "REF", Form::kContainerOrEmpty, In(Tag::kEntry)},
    {Tag::kRepeat, "REPEAT", Form::kContainer, In(Tag::kAsx)},
    {Tag::kSkin, "SKIN", Form::kEmpty, 0},
    {Tag::kStartMarker, "STARTMARKER", Form::kEmpty, In(Tag::kEntry, Tag::kRef)},
    {Tag::kStartTime, "STARTTIME", Form::kEmpty, In(Tag::kEntry, Tag::kRef)},
    {Tag::kTitle, "TITLE", Form::kText, In(Tag::kAsx, Tag::kEntry)},
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
    bool IsFull() const { return length_ == bytes_.size(); }
    void Add(char byte) {
        if (!IsFull()) {
            bytes_[length_++] = byte;
        }
    }
    void Clear() { length_ = 0; }
    std::string_view View() const { return {bytes_.data(), length_}; }

private:
    std::array<char, kBufferSize> bytes_{};
    std::size_t length_ = 0;
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
    if (row.tag == Tag::kComment) {
        return name == "--";
    }
    return HasClosing(row.form) && !name.empty() && name[0] == '/' && IsCapitalsOf(name.substr(1), row.name);
}

class AsxReader {
public:
    AsxReader(std::string_view text, TitleFile& titles) : text_(text), titles_(titles) {}

    bool ReadElement(int track, Tag parent);

private:
    bool IsAt(char byte) const { return at_ < text_.size() && text_[at_] == byte; }
    bool IsAtEmptyEnd() const { return text_.substr(at_, 2) == "/>"; }
    void SkipWhite();
    bool GoBehindNext(char byte);
    bool ReadName(std::string_view& name);
    bool ReadAttributes(Tag tag, Buffer& value);
    bool ReadAttribute(bool& isLast);
    bool ReadValue();
    bool ReadContent(const TagRow& row, int track, Tag parent);
    bool ReadText(Tag tag, int track);

    std::string_view text_;
    TitleFile& titles_;
    std::size_t at_ = 0;
    // The attribute in hand.
    Buffer attributeName_;
    Buffer attributeValue_;
};

void AsxReader::SkipWhite() {
    while (at_ < text_.size() && IsWhite(text_[at_])) {
        ++at_;
    }
}

bool AsxReader::GoBehindNext(char byte) {
    const std::size_t found = text_.find(byte, at_);
    if (found == std::string_view::npos) {
        return false;
    }
    at_ = found + 1;
    return true;
}

// Up to white space or the end of the tag. A slash is part of the name.
bool AsxReader::ReadName(std::string_view& name) {
    const std::size_t begin = at_;
    while (at_ < text_.size() && !IsWhite(text_[at_]) && text_[at_] != '>') {
        if (++at_ - begin > kLongestName) {
            return false;
        }
    }
    name = text_.substr(begin, at_ - begin);
    return at_ < text_.size();
}

bool AsxReader::ReadElement(int track, Tag parent) {
    SkipWhite();
    if (!IsAt('<')) {
        return false;
    }
    ++at_;
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
        titles_.AddTitle(track, value.View());
    }
    const bool mayBeEmpty = row->form == Form::kEmpty || row->form == Form::kContainerOrEmpty;
    if (mayBeEmpty && IsAtEmptyEnd()) {
        at_ += 2;
        return true;
    }
    if (!HasClosing(row->form) || !IsAt('>')) {
        return false;
    }
    ++at_;
    return ReadContent(*row, track, parent);
}

// Only the one that names its element gives a value: NAME="NAME" and, behind it, VALUE with the title.
bool AsxReader::ReadAttributes(Tag tag, Buffer& value) {
    enum { kWantsName, kWantsValue, kHasValue } stage = kWantsName;
    bool isLast = false;
    while (!isLast) {
        if (!ReadAttribute(isLast)) {
            return false;
        }
        if (tag != Tag::kParam) {
            continue;
        }
        if (stage == kWantsName && IsCapitalsOf(attributeName_.View(), "NAME") &&
            IsCapitalsOf(attributeValue_.View(), "NAME")) {
            stage = kWantsValue;
        } else if (stage == kWantsValue && IsCapitalsOf(attributeName_.View(), "VALUE")) {
            value = attributeValue_;
            stage = kHasValue;
        }
    }
    return true;
}

// White space inside a name is dropped.
bool AsxReader::ReadAttribute(bool& isLast) {
    attributeName_.Clear();
    attributeValue_.Clear();
    while (true) {
        SkipWhite();
        if (at_ >= text_.size()) {
            return false;
        }
        const char byte = text_[at_];
        if (byte == '>' || IsAtEmptyEnd()) {
            isLast = true;
            return true;
        }
        ++at_;
        if (byte == '=') {
            return ReadValue();
        }
        if (attributeName_.IsFull()) {
            return false;
        }
        attributeName_.Add(byte);
        if (byte == '"' && !GoBehindNext('"')) {
            return false;
        }
    }
}

// A value without quotes is none; its first byte is passed over.
bool AsxReader::ReadValue() {
    SkipWhite();
    if (at_ >= text_.size()) {
        return false;
    }
    if (text_[at_++] != '"') {
        return true;
    }
    const std::size_t begin = at_;
    if (!GoBehindNext('"')) {
        return false;
    }
    for (const char byte : text_.substr(begin, std::min(at_ - 1 - begin, kBufferSize))) {
        attributeValue_.Add(byte);
    }
    return true;
}

// A play list counts its own entries. What stands elsewhere has a title for nobody.
bool AsxReader::ReadContent(const TagRow& row, int track, Tag parent) {
    int entries = 0;
    while (true) {
        SkipWhite();
        const TagRow* opening = nullptr;
        if (IsAt('<')) {
            const std::size_t begin = at_;
            ++at_;
            SkipWhite();
            std::string_view name;
            if (!ReadName(name)) {
                return false;
            }
            if (IsClosingOf(name, row)) {
                return GoBehindNext('>');
            }
            opening = FindOpening(name);
            at_ = begin;
        }
        bool isRead = false;
        if (row.form == Form::kText) {
            // No tag stands in a text.
            isRead = !IsAt('<') && ReadText(row.tag, track);
        } else if (row.tag == Tag::kAsx) {
            const bool isEntry = opening != nullptr && opening->tag == Tag::kEntry;
            entries += isEntry ? 1 : 0;
            isRead = ReadElement(isEntry ? entries : track, row.tag);
        } else {
            const bool isOwnEntry = row.tag == Tag::kEntry && parent == Tag::kAsx;
            isRead = ReadElement(isOwnEntry ? track : kNowhere, row.tag);
        }
        if (!isRead) {
            return false;
        }
    }
}

bool AsxReader::ReadText(Tag tag, int track) {
    const std::size_t end = text_.find('<', at_);
    if (end == std::string_view::npos) {
        return false;
    }
    if (tag == Tag::kTitle && track >= 0) {
        titles_.AddTitle(track, text_.substr(at_, std::min(end - at_, kBufferSize)));
    }
    at_ = end;
    return true;
}

}  // namespace

int TitleFile::ReadAsx(std::string_view text) {
    return AsxReader(text, *this).ReadElement(0, Tag::kNone) ? 1 : 0;
}
