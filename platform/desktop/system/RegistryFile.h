// The file that the registry is kept in: sections are keys, lines are values.
//
//   [HKEY_LOCAL_MACHINE\SOFTWARE\ORVANE\HDD/CD recorder]
//   SizeX=600                      REG_DWORD, a signed decimal number
//   FaceName="MS UI Gothic\x00"    REG_SZ, bytes
//   @="text"                       the value without a name
//
// A section without lines is a key without values. Not QSettings: the reader of its INI files turns what looks like a
// serialised object into one, and an error stays with it.
#pragma once

#include <windows.h>

#include <QString>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace desktop {

struct RegistryValue {
    DWORD type = REG_DWORD;  // or REG_SZ
    std::string bytes;
};

// Keys by their paths, the names from the root key on with a backslash between two. Names are the same in capital and small
// letters.
class RegistryContent {
public:
    bool HasKey(const QString& path) const { return keys.contains(path.toCaseFolded()); }
    // With all keys above it.
    void AddKey(const QString& path);
    // With all keys below it.
    void RemoveKey(const QString& path);
    void RemoveBelow(const QString& path);
    // Null where there is none.
    const RegistryValue* FindValue(const QString& path, const QString& name) const;
    // In a key that is there, else nothing is done.
    void SetValue(const QString& path, const QString& name, RegistryValue value);

    // What cannot be understood is left out.
    static RegistryContent Parse(const QByteArray& text);
    QByteArray Text() const;

private:
    struct Value {
        QString name;
        RegistryValue value;
    };
    struct Key {
        QString path;
        std::map<QString, Value> values;
    };
    std::map<QString, Key> keys;
};

// Changes are seen at once and reach the disk by Save. Belongs to one thread.
class RegistryFile {
public:
    explicit RegistryFile(QString path) : path(std::move(path)) {}

    // What the file says, should somebody else have written it meanwhile, and what has been changed since.
    const RegistryContent& Content();
    void Change(std::function<void(RegistryContent&)> change);
    // Gives the last change up.
    void Undo();
    bool HasChanges() const { return !changes.empty(); }
    // Whether there is any sense in changes.
    bool MayBeWritten() const;
    // After it the old file stands there or the new one, never a part. False if the old one stays; the changes are kept.
    bool Save();

private:
    // What tells one state of the file from another.
    struct Stamp {
        unsigned long long inode = 0;
        long long seconds = 0;
        long nanoseconds = 0;
        long long size = -1;
        bool operator==(const Stamp&) const = default;
    };
    Stamp StampOfFile() const;
    bool Read(RegistryContent& read) const;
    bool Write(const QByteArray& text) const;
    bool MakeFolder() const;
    void Reread();

    const QString path;
    RegistryContent content;
    Stamp stamp;
    bool known = false;
    std::vector<std::function<void(RegistryContent&)>> changes;  // that the file lacks
};

}  // namespace desktop
