// The registry: keys and values in one file of the user's configuration folder, whatever the root key.
#pragma once

#include "win/types.h"

using REGSAM = DWORD;
using LSTATUS = LONG;

#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000000))))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000002))))

inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;
inline constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_DWORD = 4;

// Each returns ERROR_SUCCESS or an error. Values are REG_SZ and REG_DWORD. With a buffer that is too small, ERROR_MORE_DATA
// and the size that is needed. New keys and values reach the file when a key is closed; a failure to write it is not
// reported. A file that cannot be read, or has more than 64 KiB, is never replaced. The path of a key has at most 255
// characters. For one thread alone.
LSTATUS RegCreateKeyExA(HKEY key, LPCSTR name, DWORD reserved, LPSTR keyClass, DWORD options, REGSAM access,
                        LPSECURITY_ATTRIBUTES security, HKEY* opened, LPDWORD disposition);
LSTATUS RegOpenKeyExA(HKEY key, LPCSTR name, DWORD options, REGSAM access, HKEY* opened);
LSTATUS RegQueryValueExA(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size);
LSTATUS RegSetValueExA(HKEY key, LPCSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size);
LSTATUS RegCloseKey(HKEY key);
