#include "RegistryFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <cstring>
#include <optional>

#include "UserFolders.h"

namespace desktop {

namespace {

// Far more than the settings need. They bound the time and the memory that a hostile file can cost.
constexpr qint64 kLargestFile = 64 << 10;
constexpr qsizetype kLongestPath = 255;
constexpr std::size_t kMostKeys = 1000;

// What stays as it is, besides letters, digits, "-", ".", "_" and "~". Blanks in a name do not: at its ends they would be
// lost with the blanks around it.
constexpr char kPlainInName[] = "\\/{}()+,:&'!";
constexpr char kPlainInValue[] = " !#$&'()*+,/:;<=>?@[]^`{|}";

QByteArray EncodeName(const QString& name) {
    return name.isEmpty() ? "@" : name.toUtf8().toPercentEncoding(kPlainInName);
}

QString DecodeName(const QByteArray& text) {
    return text == "@" ? QString() : QString::fromUtf8(QByteArray::fromPercentEncoding(text));
}

QByteArray EncodeValue(const RegistryValue& value) {
    std::int32_t number = 0;
    if (value.type == REG_DWORD && value.bytes.size() == sizeof number) {
        std::memcpy(&number, value.bytes.data(), sizeof number);
        return QByteArray::number(number);
    }
    // A percent sign is not plain, so that each one in the result begins an escape.
    return '"' + QByteArray::fromStdString(value.bytes).toPercentEncoding(kPlainInValue).replace('%', "\\x") + '"';
}

std::optional<RegistryValue> DecodeValue(const QByteArray& text) {
    bool isNumber = false;
    const qlonglong number = text.toLongLong(&isNumber);
    if (isNumber && number >= INT32_MIN && number <= UINT32_MAX) {
        return RegistryValue{REG_DWORD, std::string(reinterpret_cast<const char*>(&number), sizeof(DWORD))};
    }
    if (text.size() < 2 || !text.startsWith('"') || text.indexOf('"', 1) != text.size() - 1) {
        return std::nullopt;
    }
    const QByteArray escaped = text.sliced(1, text.size() - 2).replace('%', "%25").replace("\\x", "%");
    return RegistryValue{REG_SZ, QByteArray::fromPercentEncoding(escaped).toStdString()};
}

}  // namespace

bool RegistryKeys::AddKey(const QString& path) {
    if (HasKey(path)) {
        return true;
    }
    const qsizetype end = path.lastIndexOf('\\');
    const bool isValid = end + 1 < path.size() && path.size() <= kLongestPath;
    if (!isValid || (end >= 0 && !AddKey(path.first(end))) || keys.size() >= kMostKeys) {
        return false;
    }
    keys.try_emplace(path);
    return true;
}

const RegistryValue* RegistryKeys::FindValue(const QString& path, const QString& name) const {
    const auto key = keys.find(path);
    return key != keys.end() && key->second.contains(name) ? &key->second.at(name) : nullptr;
}

RegistryKeys RegistryKeys::Parse(const QByteArray& text) {
    RegistryKeys read;
    QString section;  // empty while it is not understood
    for (const QByteArray& untrimmed : text.split('\n')) {
        const QByteArray line = untrimmed.trimmed();
        if (line.startsWith('[')) {
            section = line.endsWith(']') ? DecodeName(line.sliced(1, line.size() - 2)) : QString();
            if (!read.AddKey(section)) {
                section.clear();
            }
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (auto value = DecodeValue(line.sliced(equals + 1).trimmed()); value && equals > 0 && !section.isEmpty()) {
            read.SetValue(section, DecodeName(line.first(equals).trimmed()), std::move(*value));
        }
    }
    return read;
}

QByteArray RegistryKeys::Text() const {
    QByteArray text;
    for (const auto& [path, values] : keys) {
        text += (text.isEmpty() ? "[" : "\n[") + EncodeName(path) + "]\n";
        for (const auto& [name, value] : values) {
            text += EncodeName(name) + '=' + EncodeValue(value) + '\n';
        }
    }
    return text;
}

RegistryFile::RegistryFile(QString path) : path(std::move(path)) {
    QFile file(this->path);
    if (file.exists()) {
        // Anything but a plain file could block the reader.
        isReadable = QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly);
        const QByteArray text = isReadable ? file.read(kLargestFile + 1) : QByteArray();
        isReadable = isReadable && file.error() == QFile::NoError && text.size() <= kLargestFile;
        keys = isReadable ? RegistryKeys::Parse(text) : RegistryKeys();
    }
    saved = keys.Text();
}

bool RegistryFile::Save() {
    const QByteArray text = keys.Text();
    if (text == saved) {
        return true;
    }
    if (!isReadable || text.size() > kLargestFile) {
        return false;
    }
    const QString folder = QFileInfo(path).path();
    QDir().mkpath(QFileInfo(folder).path());
    QDir().mkdir(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QSaveFile file(path);
    const bool isOpen = file.open(QIODevice::WriteOnly) && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    if (isOpen && file.write(text) == text.size() && file.commit()) {
        saved = text;
    }
    return saved == text;
}

RegistryFile& UserRegistry() {
    const QString folder = QString::fromStdString(kernel::ConfigurationFolder());
    static RegistryFile& file = *new RegistryFile(folder.isEmpty() ? folder : folder + "/tesselia/registry.ini");
    return file;
}

}  // namespace desktop
