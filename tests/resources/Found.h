// The bytes of one resource of this program in one language.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include "Templates.h"
#include "resource.h"

inline constexpr WORD kEnglish = 0x409;
inline constexpr WORD kJapanese = 0x411;
inline constexpr WORD kBoth[] = {kEnglish, kJapanese};

// Empty if the resource is not there in that language.
inline kernel::Bytes Found(LPCSTR type, int id, WORD language) {
    HRSRC resource = FindResourceExA(nullptr, type, MAKEINTRESOURCEA(id), language);
    if (!resource) {
        return {};
    }
    return kernel::Bytes(static_cast<const std::byte*>(LockResource(LoadResource(nullptr, resource))),
                         SizeofResource(nullptr, resource));
}
