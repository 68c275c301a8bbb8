// The registry: handles of open keys, and what the calls say about them. The keys themselves are in RegistryFile.
#include <windows.h>

#include <QStringList>
#include <cstring>
#include <map>
#include <optional>

#include "LastError.h"
#include "RegistryFile.h"
#include "Text.h"

namespace desktop {

namespace {

constexpr REGSAM kQueryValue = 0x0001;
constexpr REGSAM kSetValue = 0x0002;

struct OpenKey {
    QString path;
    REGSAM access = 0;
    bool deleted = false;
};

// A relative folder in the variable is invalid and to be ignored.
QString PathOfFile() {
    const QString configured = qEnvironmentVariable("XDG_CONFIG_HOME");
    const QString folder = configured.startsWith('/') ? configured : qEnvironmentVariable("HOME") + "/.config";
    return folder + "/tesselia/registry.ini";
}

RegistryFile& File() {
    static RegistryFile& file = *new RegistryFile(PathOfFile());
    return file;
}

std::map<HKEY, OpenKey>& OpenKeys() {
    static auto& keys = *new std::map<HKEY, OpenKey>;
    return keys;
}

std::optional<OpenKey> RootKey(HKEY key) {
    const char* name = key == HKEY_CLASSES_ROOT    ? "HKEY_CLASSES_ROOT"
                       : key == HKEY_CURRENT_USER  ? "HKEY_CURRENT_USER"
                       : key == HKEY_LOCAL_MACHINE ? "HKEY_LOCAL_MACHINE"
                                                   : nullptr;
    return name != nullptr ? std::optional(OpenKey{name, KEY_ALL_ACCESS}) : std::nullopt;
}

// ERROR_SUCCESS, or why the handle is none of a key.
LSTATUS FindKey(HKEY handle, OpenKey& key) {
    if (const auto root = RootKey(handle)) {
        key = *root;
        return ERROR_SUCCESS;
    }
    const auto found = OpenKeys().find(handle);
    if (found == OpenKeys().end()) {
        return ERROR_INVALID_HANDLE;
    }
    key = found->second;
    return key.deleted ? ERROR_KEY_DELETED : ERROR_SUCCESS;
}

// Each handle is a number of its own, so that one that is closed is recognised for good.
HKEY AddOpenKey(const QString& path, REGSAM access) {
    static ULONG_PTR last = 0;
    last += 4;
    const auto handle = reinterpret_cast<HKEY>(last);
    OpenKeys()[handle] = {path, access};
    return handle;
}

// The path of a key below another; several backslashes are one, and one at the end does not count. None if the name begins
// with one.
std::optional<QString> PathBelow(const QString& parent, LPCSTR name) {
    const QString given = ToQString(name != nullptr ? name : "");
    if (given.startsWith('\\')) {
        return std::nullopt;
    }
    QString path = parent;
    for (const QString& part : given.split('\\', Qt::SkipEmptyParts)) {
        path += '\\' + part;
    }
    return path;
}

bool Exists(const QString& path) {
    return !path.contains('\\') || File().Content().HasKey(path);
}

// A change that has to reach the disk now or is not made.
bool ChangeAndSave(std::function<void(RegistryContent&)> change) {
    File().Change(std::move(change));
    if (File().Save()) {
        return true;
    }
    File().Undo();
    return false;
}

LSTATUS FindPath(HKEY key, LPCSTR name, QString& path) {
    OpenKey parent;
    if (const LSTATUS error = FindKey(key, parent)) {
        return error;
    }
    const auto below = PathBelow(parent.path, name);
    if (!below) {
        return ERROR_BAD_PATHNAME;
    }
    path = *below;
    return ERROR_SUCCESS;
}

LSTATUS CopyValue(const RegistryValue& value, LPBYTE data, LPDWORD size) {
    const auto needed = static_cast<DWORD>(value.bytes.size());
    const DWORD room = data != nullptr ? *size : 0;
    if (size != nullptr) {
        *size = needed;
    }
    if (data == nullptr) {
        return ERROR_SUCCESS;
    }
    if (room < needed) {
        return ERROR_MORE_DATA;
    }
    std::memcpy(data, value.bytes.data(), needed);
    // A text that was stored without its end gets one where there is room.
    if (value.type == REG_SZ && needed > 0 && needed < room && value.bytes.back() != '\0') {
        data[needed] = 0;
    }
    return ERROR_SUCCESS;
}

void MarkDeleted(const QString& path, bool itself) {
    const QString folded = path.toCaseFolded();
    for (auto& [handle, key] : OpenKeys()) {
        const QString other = key.path.toCaseFolded();
        key.deleted = key.deleted || (itself && other == folded) || other.startsWith(folded + '\\');
    }
}

}  // namespace

}  // namespace desktop

using namespace desktop;  // NOLINT(google-build-using-namespace): all calls below are of this file

LSTATUS RegCreateKeyExA(HKEY key, LPCSTR name, DWORD, LPSTR, DWORD, REGSAM access, LPSECURITY_ATTRIBUTES, HKEY* opened,
                        LPDWORD disposition) {
    QString path;
    if (const LSTATUS error = FindPath(key, name, path)) {
        return error;
    }
    const bool existed = Exists(path);
    if (!existed && !ChangeAndSave([path](RegistryContent& content) { content.AddKey(path); })) {
        return ERROR_ACCESS_DENIED;
    }
    if (disposition != nullptr) {
        *disposition = existed ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    }
    *opened = AddOpenKey(path, access);
    return ERROR_SUCCESS;
}

LSTATUS RegOpenKeyExA(HKEY key, LPCSTR name, DWORD, REGSAM access, HKEY* opened) {
    QString path;
    if (const LSTATUS error = FindPath(key, name, path)) {
        return error;
    }
    if (!Exists(path)) {
        return ERROR_FILE_NOT_FOUND;
    }
    *opened = AddOpenKey(path, access);
    return ERROR_SUCCESS;
}

LSTATUS RegQueryValueExA(HKEY handle, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
    if (reserved != nullptr || (data != nullptr && size == nullptr)) {
        return ERROR_INVALID_PARAMETER;
    }
    OpenKey key;
    if (const LSTATUS error = FindKey(handle, key)) {
        return error;
    }
    if ((key.access & kQueryValue) == 0) {
        return ERROR_ACCESS_DENIED;
    }
    const RegistryValue* value = File().Content().FindValue(key.path, ToQString(name != nullptr ? name : ""));
    if (type != nullptr) {
        *type = value != nullptr ? value->type : 0;
    }
    return value != nullptr ? CopyValue(*value, data, size) : ERROR_FILE_NOT_FOUND;
}

LSTATUS RegSetValueExA(HKEY handle, LPCSTR name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    if ((type != REG_DWORD && type != REG_SZ) || (data == nullptr && size != 0)) {
        kernel::Unsupported("a registry value that is neither a number nor text");
        return ERROR_INVALID_PARAMETER;
    }
    OpenKey key;
    if (const LSTATUS error = FindKey(handle, key)) {
        return error;
    }
    if ((key.access & kSetValue) == 0 || !File().MayBeWritten()) {
        return ERROR_ACCESS_DENIED;
    }
    RegistryValue value{type, size != 0 ? std::string(reinterpret_cast<const char*>(data), size) : std::string()};
    File().Change([path = key.path, valueName = ToQString(name != nullptr ? name : ""), value](RegistryContent& content) {
        // Another process may have removed the key.
        content.AddKey(path);
        content.SetValue(path, valueName, value);
    });
    return ERROR_SUCCESS;
}

LSTATUS RegCloseKey(HKEY key) {
    if (!RootKey(key) && OpenKeys().erase(key) == 0) {
        return ERROR_INVALID_HANDLE;
    }
    // One attempt: should it fail, the changes are seen by this process and go with the next that succeeds.
    if (File().HasChanges()) {
        File().Save();
    }
    return ERROR_SUCCESS;
}

LSTATUS RegDeleteTreeA(HKEY key, LPCSTR name) {
    QString path;
    if (const LSTATUS error = FindPath(key, name, path)) {
        return error;
    }
    const bool itself = name != nullptr && *name != '\0';
    if (!Exists(path)) {
        return ERROR_FILE_NOT_FOUND;
    }
    const bool done = ChangeAndSave([path, itself](RegistryContent& content) {
        if (itself) {
            content.RemoveKey(path);
        } else {
            content.RemoveBelow(path);
        }
    });
    if (!done) {
        return ERROR_ACCESS_DENIED;
    }
    MarkDeleted(path, itself);
    return ERROR_SUCCESS;
}
