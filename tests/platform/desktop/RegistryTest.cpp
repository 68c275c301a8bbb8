// The registry: keys and values, and what the calls answer where something is missing.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>

#include "Harness.h"

namespace {

// A key of its own for each test, gone before and afterwards.
class Registry : public testing::Test {
protected:
    static constexpr char kKey[] = "Software\\Tesselia Tests\\Registry";

    Registry() {
        ClearRegistry(kKey);
        key = Create(HKEY_LOCAL_MACHINE, kKey);
    }
    ~Registry() override {
        RegCloseKey(key);
        ClearRegistry("Software\\Tesselia Tests");
    }
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    HKEY Create(HKEY above, const char* name, REGSAM access = KEY_ALL_ACCESS) {
        HKEY opened = nullptr;
        disposition = 0;
        EXPECT_EQ(RegCreateKeyExA(above, name, 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr, &opened, &disposition),
                  0);
        return opened;
    }

    LONG TryOpen(HKEY above, const char* name) {
        HKEY opened = nullptr;
        const LONG error = RegOpenKeyExA(above, name, 0, KEY_READ, &opened);
        if (error == 0) {
            RegCloseKey(opened);
        }
        return error;
    }

    LONG SetText(const char* name, const std::string& bytes) {
        return RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(bytes.data()),
                              static_cast<DWORD>(bytes.size()));
    }

    LONG SetNumber(const char* name, DWORD number) {
        return RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
    }

    LONG Query(const char* name, DWORD room) {
        type = 99;
        size = room;
        std::memset(buffer, '#', sizeof buffer);
        return RegQueryValueExA(key, name, nullptr, &type, buffer, &size);
    }

    std::string Bytes() const { return std::string(reinterpret_cast<const char*>(buffer), size); }

    HKEY key = nullptr;
    DWORD disposition = 0;
    DWORD type = 0;
    DWORD size = 0;
    BYTE buffer[300] = {};
};

TEST_F(Registry, ANewKeyIsToldFromOneThatIsThere) {
    EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
    // It stays without a value in it; neither capital letters nor a backslash at the end make another key of it.
    RegCloseKey(Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\tesselia tests\\REGISTRY\\"));
    EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
    RegCloseKey(Create(key, "One\\Two\\Three\\"));
    EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
    RegCloseKey(Create(key, "One\\Two"));
    EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
    EXPECT_EQ(TryOpen(key, "one\\two\\three"), 0);
    EXPECT_EQ(TryOpen(key, "Two"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(TryOpen(key, "\\One"), ERROR_BAD_PATHNAME);
    EXPECT_EQ(TryOpen(key, ""), 0);
    EXPECT_EQ(TryOpen(HKEY_CLASSES_ROOT, "CLSID\\{00000000-0000-0000-0000-0000000000FF}"), ERROR_FILE_NOT_FOUND);
}

TEST_F(Registry, NamesMayHoldWhatAFileWouldTakeForItsOwn) {
    HKEY slash = Create(key, "HDD/CD recorder");
    EXPECT_EQ(TryOpen(key, "HDD"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(TryOpen(key, "HDD/CD recorder"), 0);
    RegCloseKey(slash);
    for (const char* name : {"[a]", "a=b", "%41", " a ", "\"", ";c", "@", "\xE9t\xE9"}) {
        RegCloseKey(Create(key, name));
        EXPECT_EQ(disposition, REG_CREATED_NEW_KEY) << name;
        EXPECT_EQ(TryOpen(key, name), 0) << name;
        EXPECT_EQ(SetText(name, name), 0);
        EXPECT_EQ(Query(name, sizeof buffer), 0);
        EXPECT_STREQ(reinterpret_cast<const char*>(buffer), name);
    }
    EXPECT_EQ(TryOpen(key, "A"), ERROR_FILE_NOT_FOUND);
}

TEST_F(Registry, ValuesComeBackAsTheyWere) {
    EXPECT_EQ(Query("Number", 4), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(size, 4u);
    for (const DWORD number : {0u, 600u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFDA8u}) {
        EXPECT_EQ(SetNumber("Number", number), 0);
        EXPECT_EQ(Query("NUMBER", 4), 0);
        EXPECT_EQ(type, REG_DWORD);
        EXPECT_EQ(Bytes(), std::string(reinterpret_cast<const char*>(&number), 4));
    }
    // A face name goes in with all of its bytes, whatever stands behind its end.
    std::string face("MS UI Gothic\0\"x\\\n=];%", 22);
    face.resize(32, '\0');
    EXPECT_EQ(SetText("Face", face), 0);
    EXPECT_EQ(Query("Face", 32), 0);
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(Bytes(), face);
    std::string all;
    for (int byte = 255; byte >= 0; --byte) {
        all += static_cast<char>(byte);
    }
    EXPECT_EQ(SetText("All", all), 0);
    EXPECT_EQ(Query("All", sizeof buffer), 0);
    EXPECT_EQ(Bytes(), all);
    EXPECT_EQ(SetText("Empty", ""), 0);
    EXPECT_EQ(Query("Empty", 4), 0);
    EXPECT_EQ(size, 0u);
    // The value without a name is reached by either of two names.
    EXPECT_EQ(RegQueryValueExA(key, nullptr, nullptr, nullptr, nullptr, nullptr), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(SetText(nullptr, std::string("path", 5)), 0);
    EXPECT_EQ(Query("", 5), 0);
    EXPECT_EQ(Bytes(), std::string("path", 5));
}

TEST_F(Registry, AValueThatDoesNotFitTellsItsSize) {
    SetText("Long", std::string("twelve bytes", 13));
    EXPECT_EQ(Query("Long", 12), ERROR_MORE_DATA);
    EXPECT_EQ(size, 13u);
    EXPECT_EQ(buffer[0], '#');
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(key, "Long", nullptr, nullptr, nullptr, &size), 0);
    EXPECT_EQ(size, 13u);
    EXPECT_EQ(RegQueryValueExA(key, "Long", nullptr, nullptr, buffer, nullptr), ERROR_INVALID_PARAMETER);
    const BYTE eight[8] = {1};
    EXPECT_EQ(RegSetValueExA(key, "Wide", 0, REG_DWORD, eight, sizeof eight), 0);
    EXPECT_EQ(Query("Wide", 4), ERROR_MORE_DATA);
}

}  // namespace
