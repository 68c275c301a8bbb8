// The calls of the registry, and the handles of open keys.
#include <windows.h>

#include <QStringList>
#include <cstring>
#include <map>

#include "LastError.h"
#include "RegistryFile.h"
#include "Text.h"

namespace {

constexpr REGSAM kSetValue = 0x0002;

struct OpenKey {
    QString path;
    REGSAM access = 0;
};

std::map<HKEY, OpenKey>& OpenKeys() {
    static auto& keys = *new std::map<HKEY, OpenKey>{{HKEY_CLASSES_ROOT, {"HKEY_CLASSES_ROOT", KEY_ALL_ACCESS}},
                                                     {HKEY_LOCAL_MACHINE, {"HKEY_LOCAL_MACHINE", KEY_ALL_ACCESS}}};
    return keys;
}

// Null if the handle is not one of an open key.
const OpenKey* FindKey(HKEY handle) {
    const auto found = OpenKeys().find(handle);
    return found != OpenKeys().end() ? &found->second : nullptr;
}

// Several backslashes are one, and one at the end does not count.
LSTATUS PathBelow(HKEY parent, LPCSTR name, QString& path) {
    const OpenKey* key = FindKey(parent);
    if (key == nullptr) {
        return ERROR_INVALID_HANDLE;
    }
    const QString given = desktop::ToQString(name != nullptr ? name : "");
    path = (QStringList(key->path) + given.split('\\', Qt::SkipEmptyParts)).join('\\');
    return given.startsWith('\\') ? ERROR_BAD_PATHNAME : ERROR_SUCCESS;
}

}  // namespace

LSTATUS RegCreateKeyExA(HKEY key, LPCSTR name, DWORD, LPSTR, DWORD, REGSAM access, LPSECURITY_ATTRIBUTES, HKEY* opened,
                        LPDWORD disposition) {
    QString path;
    if (const LSTATUS error = PathBelow(key, name, path)) {
        return error;
    }
    desktop::RegistryKeys& keys = desktop::UserRegistry().keys;
    const bool existed = keys.HasKey(path);
    if (!keys.AddKey(path)) {
        return ERROR_INVALID_PARAMETER;
    }
    if (disposition != nullptr) {
        *disposition = existed ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    }
    return RegOpenKeyExA(key, name, 0, access, opened);
}

LSTATUS RegOpenKeyExA(HKEY key, LPCSTR name, DWORD, REGSAM access, HKEY* opened) {
    QString path;
    if (const LSTATUS error = PathBelow(key, name, path)) {
        return error;
    }
    if (!desktop::UserRegistry().keys.HasKey(path)) {
        return ERROR_FILE_NOT_FOUND;
    }
    // Each handle is a new number, so that a closed one is recognised.
    static ULONG_PTR last = 0;
    last += 4;
    *opened = reinterpret_cast<HKEY>(last);
    OpenKeys()[*opened] = {path, access};
    return ERROR_SUCCESS;
}

LSTATUS RegQueryValueExA(HKEY handle, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
    if (reserved != nullptr || (data != nullptr && size == nullptr)) {
        return ERROR_INVALID_PARAMETER;
    }
    const OpenKey* key = FindKey(handle);
    if (key == nullptr) {
        return ERROR_INVALID_HANDLE;
    }
    const auto* value = desktop::UserRegistry().keys.FindValue(key->path, desktop::ToQString(name != nullptr ? name : ""));
    if (value == nullptr) {
        return ERROR_FILE_NOT_FOUND;
    }
    if (type != nullptr) {
        *type = value->type;
    }
    const auto needed = static_cast<DWORD>(value->bytes.size());
    const DWORD room = data != nullptr ? *size : needed;
    if (size != nullptr) {
        *size = needed;
    }
    if (room < needed) {
        return ERROR_MORE_DATA;
    }
    if (data != nullptr) {
        std::memcpy(data, value->bytes.data(), needed);
        // Text that was stored without a terminator gets one where there is room.
        if (value->type == REG_SZ && needed < room && !value->bytes.ends_with('\0')) {
            data[needed] = 0;
        }
    }
    return ERROR_SUCCESS;
}

LSTATUS RegSetValueExA(HKEY handle, LPCSTR name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    if ((type != REG_DWORD && type != REG_SZ) || (data == nullptr && size != 0)) {
        kernel::Unsupported("a registry value that is neither a number nor text");
        return ERROR_INVALID_PARAMETER;
    }
    const OpenKey* key = FindKey(handle);
    if (key == nullptr) {
        return ERROR_INVALID_HANDLE;
    }
    if ((key->access & kSetValue) == 0) {
        return ERROR_ACCESS_DENIED;
    }
    desktop::UserRegistry().keys.SetValue(key->path, desktop::ToQString(name != nullptr ? name : ""),
                                          {type, std::string(reinterpret_cast<const char*>(data), size)});
    return ERROR_SUCCESS;
}

LSTATUS RegCloseKey(HKEY handle) {
    if (FindKey(handle) == nullptr) {
        return ERROR_INVALID_HANDLE;
    }
    if (handle != HKEY_CLASSES_ROOT && handle != HKEY_LOCAL_MACHINE) {
        OpenKeys().erase(handle);
    }
    // If it fails, the changes are kept for this process, and the next close tries again.
    desktop::UserRegistry().Save();
    return ERROR_SUCCESS;
}
