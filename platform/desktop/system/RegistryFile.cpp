// The file that the registry is kept in.
#include "RegistryFile.h"

#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>
#include <cstring>
#include <optional>
#include <string_view>

namespace desktop {

namespace {

// Far more than all settings take: a longer file is not ours.
constexpr qint64 kLargestFile = 4 << 20;
constexpr int kLockLimitMs = 1000;

// Before the bytes of a number that has not the size of one.
constexpr char kOddNumber[] = "dword:";

constexpr char kHexDigits[] = "0123456789ABCDEF";

bool IsPlainByte(unsigned char byte, const char* special) {
    return byte >= 0x20 && byte != 0x7F && std::string_view(special).find(static_cast<char>(byte)) == std::string_view::npos;
}

void AppendHex(QByteArray& text, unsigned char byte) {
    text += kHexDigits[byte >> 4];
    text += kHexDigits[byte & 15];
}

// -1 for what is no digit.
int HexDigit(char digit) {
    const char* found = digit != '\0' ? std::strchr(kHexDigits, digit) : nullptr;
    return found != nullptr ? static_cast<int>(found - kHexDigits) : -1;
}

// The byte behind an escape mark, if there are two digits.
std::optional<char> HexByte(const QByteArray& text, qsizetype place) {
    const int high = place + 1 < text.size() ? HexDigit(text[place]) : -1;
    const int low = high >= 0 ? HexDigit(text[place + 1]) : -1;
    return low >= 0 ? std::optional(static_cast<char>(high * 16 + low)) : std::nullopt;
}

// A name, or the path of a key, whose backslashes stay. Spaces at the ends would not survive the reading.
QByteArray EncodeName(const QString& name) {
    const QByteArray bytes = name.toUtf8();
    QByteArray text;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool edge = byte == ' ' && (i == 0 || i + 1 == bytes.size());
        if (!edge && IsPlainByte(byte, "%[]=\"@;#")) {
            text += bytes[i];
        } else {
            text += '%';
            AppendHex(text, byte);
        }
    }
    return text;
}

std::optional<QString> DecodeName(const QByteArray& text) {
    QByteArray bytes;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            bytes += text[i];
            continue;
        }
        const auto byte = HexByte(text, i + 1);
        if (!byte) {
            return std::nullopt;
        }
        bytes += *byte;
        i += 2;
    }
    return QString::fromUtf8(bytes);
}

QByteArray EncodeValue(const RegistryValue& value) {
    std::int32_t number = 0;
    if (value.type == REG_DWORD && value.bytes.size() == sizeof number) {
        std::memcpy(&number, value.bytes.data(), sizeof number);
        return QByteArray::number(number);
    }
    QByteArray text = value.type == REG_DWORD ? kOddNumber : "";
    text += '"';
    for (const char c : value.bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 && IsPlainByte(byte, "\"\\")) {
            text += c;
        } else {
            text += "\\x";
            AppendHex(text, byte);
        }
    }
    return text + '"';
}

std::optional<RegistryValue> DecodeNumber(const QByteArray& text) {
    bool isNumber = false;
    const qlonglong number = text.toLongLong(&isNumber);
    if (!isNumber || number < INT32_MIN || number > UINT32_MAX) {
        return std::nullopt;
    }
    const auto bits = static_cast<DWORD>(number);
    return RegistryValue{REG_DWORD, std::string(reinterpret_cast<const char*>(&bits), sizeof bits)};
}

std::optional<std::string> DecodeBytes(const QByteArray& text) {
    std::string bytes;
    for (qsizetype i = 1; i < text.size(); ++i) {
        if (text[i] == '"') {
            return i + 1 == text.size() ? std::optional(std::move(bytes)) : std::nullopt;
        }
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        const auto byte = i + 1 < text.size() && text[i + 1] == 'x' ? HexByte(text, i + 2) : std::nullopt;
        if (!byte) {
            return std::nullopt;
        }
        bytes += *byte;
        i += 3;
    }
    return std::nullopt;
}

std::optional<RegistryValue> DecodeValue(const QByteArray& text) {
    const bool odd = text.startsWith(kOddNumber);
    const QByteArray quoted = odd ? text.mid(static_cast<qsizetype>(std::strlen(kOddNumber))) : text;
    if (!quoted.startsWith('"')) {
        return odd ? std::nullopt : DecodeNumber(text);
    }
    auto bytes = DecodeBytes(quoted);
    return bytes ? std::optional(RegistryValue{odd ? REG_DWORD : REG_SZ, std::move(*bytes)}) : std::nullopt;
}

bool IsPath(const QString& path) {
    return !path.isEmpty() && !path.split('\\').contains(QString());
}

}  // namespace

// --- The content

void RegistryContent::AddKey(const QString& path) {
    for (qsizetype end = path.indexOf('\\'); end >= 0; end = path.indexOf('\\', end + 1)) {
        const QString above = path.left(end);
        keys.try_emplace(above.toCaseFolded(), Key{above, {}});
    }
    keys.try_emplace(path.toCaseFolded(), Key{path, {}});
}

void RegistryContent::RemoveKey(const QString& path) {
    RemoveBelow(path);
    keys.erase(path.toCaseFolded());
}

void RegistryContent::RemoveBelow(const QString& path) {
    const QString below = path.toCaseFolded() + '\\';
    std::erase_if(keys, [&](const auto& each) { return each.first.startsWith(below); });
    if (const auto key = keys.find(path.toCaseFolded()); key != keys.end()) {
        key->second.values.clear();
    }
}

const RegistryValue* RegistryContent::FindValue(const QString& path, const QString& name) const {
    const auto key = keys.find(path.toCaseFolded());
    if (key == keys.end()) {
        return nullptr;
    }
    const auto value = key->second.values.find(name.toCaseFolded());
    return value != key->second.values.end() ? &value->second.value : nullptr;
}

void RegistryContent::SetValue(const QString& path, const QString& name, RegistryValue value) {
    const auto key = keys.find(path.toCaseFolded());
    if (key != keys.end()) {
        key->second.values.insert_or_assign(name.toCaseFolded(), Value{name, std::move(value)});
    }
}

RegistryContent RegistryContent::Parse(const QByteArray& text) {
    RegistryContent content;
    std::optional<QString> section;
    for (const QByteArray& line : text.split('\n')) {
        const QByteArray trimmed = line.trimmed();
        if (trimmed.startsWith('[')) {
            section = trimmed.endsWith(']') ? DecodeName(trimmed.mid(1, trimmed.size() - 2)) : std::nullopt;
            if (section && IsPath(*section)) {
                content.AddKey(*section);
            } else {
                section.reset();
            }
            continue;
        }
        const qsizetype equals = trimmed.indexOf('=');
        const QByteArray left = trimmed.left(std::max<qsizetype>(equals, 0)).trimmed();
        const auto name = left == "@" ? QString() : DecodeName(left);
        auto value = DecodeValue(trimmed.mid(equals + 1).trimmed());
        if (section && !left.isEmpty() && name && value) {
            content.SetValue(*section, *name, std::move(*value));
        }
    }
    return content;
}

QByteArray RegistryContent::Text() const {
    QByteArray text;
    for (const auto& [folded, key] : keys) {
        text += (text.isEmpty() ? "[" : "\n[") + EncodeName(key.path) + "]\n";
        for (const auto& [foldedName, value] : key.values) {
            text +=
                (value.name.isEmpty() ? QByteArray("@") : EncodeName(value.name)) + '=' + EncodeValue(value.value) + '\n';
        }
    }
    return text;
}

// --- The file

RegistryFile::Stamp RegistryFile::StampOfFile() const {
    struct stat status;
    if (stat(QFile::encodeName(path).constData(), &status) != 0) {
        return {};
    }
    return {status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec, status.st_size};
}

// A file that is missing has no content; one that cannot be read is not to be replaced.
bool RegistryFile::Read(RegistryContent& read) const {
    QFile file(path);
    if (!file.exists()) {
        read = {};
        return true;
    }
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly) || file.size() > kLargestFile) {
        return false;
    }
    read = RegistryContent::Parse(file.read(kLargestFile));
    return true;
}

void RegistryFile::Reread() {
    const Stamp now = StampOfFile();
    RegistryContent read;
    if (!Read(read)) {
        read = {};
    }
    for (const auto& change : changes) {
        change(read);
    }
    content = std::move(read);
    stamp = now;
    known = true;
}

const RegistryContent& RegistryFile::Content() {
    if (!known || stamp != StampOfFile()) {
        Reread();
    }
    return content;
}

void RegistryFile::Change(std::function<void(RegistryContent&)> change) {
    Content();
    change(content);
    changes.push_back(std::move(change));
}

void RegistryFile::Undo() {
    changes.pop_back();
    Reread();
}

bool RegistryFile::MayBeWritten() const {
    const QString folder = QFileInfo(path).path();
    QString existing = folder;
    while (!QFileInfo::exists(existing) && QFileInfo(existing).path() != existing) {
        existing = QFileInfo(existing).path();
    }
    const QFileInfo info(existing);
    return info.isDir() && info.isWritable();
}

bool RegistryFile::MakeFolder() const {
    const QString folder = QFileInfo(path).path();
    if (QFileInfo(folder).isDir()) {
        return true;
    }
    const QDir above(QFileInfo(folder).path());
    return above.mkpath(".") && above.mkdir(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

bool RegistryFile::Write(const QByteArray& text) const {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    file.write(text);
    return file.commit();
}

bool RegistryFile::Save() {
    if (changes.empty()) {
        return true;
    }
    if (!MakeFolder()) {
        return false;
    }
    // What another process has written since stays, but for what was changed here.
    QLockFile lock(path + ".lock");
    RegistryContent written;
    if (!lock.tryLock(kLockLimitMs) || !Read(written)) {
        return false;
    }
    for (const auto& change : changes) {
        change(written);
    }
    if (!Write(written.Text())) {
        return false;
    }
    changes.clear();
    content = std::move(written);
    stamp = StampOfFile();
    known = true;
    return true;
}

}  // namespace desktop
