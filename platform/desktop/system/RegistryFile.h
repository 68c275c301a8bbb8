// The registry in a text file: sections are keys, lines are values.
//
//   [HKEY_LOCAL_MACHINE\SOFTWARE\ORVANE\HDD/CD%20recorder]
//   SizeX=600                      REG_DWORD, a decimal number, written with its sign
//   FaceName="MS UI Gothic\x00"    REG_SZ, bytes; a REG_DWORD that has not four bytes becomes a REG_SZ
//   @="text"                       the value without a name
//
// A section without lines is a key without values. QSettings would turn what looks like a serialised object into one.
#pragma once

#include <windows.h>

#include <QString>
#include <map>
#include <string>

namespace desktop {

struct RegistryValue {
    DWORD type = REG_DWORD;  // or REG_SZ
    std::string bytes;
};

// The path of a key is the names from the root key on, with a backslash between two. Case does not matter in names.
class RegistryKeys {
public:
    // Skips lines that it does not understand.
    static RegistryKeys Parse(const QByteArray& text);
    QByteArray Text() const;

    bool HasKey(const QString& path) const { return keys.contains(path); }
    // Adds the keys above it too. Returns false if the path is not valid or too long, or if there are too many keys.
    bool AddKey(const QString& path);
    // Null where there is none.
    const RegistryValue* FindValue(const QString& path, const QString& name) const;
    // The key must exist.
    void SetValue(const QString& path, const QString& name, RegistryValue value) {
        keys[path].insert_or_assign(name, std::move(value));
    }

private:
    struct CaselessOrder {
        bool operator()(const QString& a, const QString& b) const { return a.compare(b, Qt::CaseInsensitive) < 0; }
    };
    std::map<QString, std::map<QString, RegistryValue, CaselessOrder>, CaselessOrder> keys;
};

// Read once: one copy of the program runs at a time, and nothing else writes the file.
class RegistryFile {
public:
    explicit RegistryFile(QString path);

    RegistryKeys keys;
    // Writes what has changed. Afterwards the old file is there, or the new one. Returns false if the old one stays. A file
    // that cannot be read is never replaced.
    bool Save();

private:
    QString path;
    QByteArray saved;  // the text of the keys that the file holds
    bool isReadable = true;
};

// The file in the user's configuration folder. A test may assign another one.
RegistryFile& UserRegistry();

}  // namespace desktop
