// The file behind the registry: what is read from a file that others have written, and what is left behind.
#include "RegistryFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <windows.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

using desktop::RegistryFile;
using desktop::RegistryKeys;

std::string Number(DWORD number) {
    return std::string(reinterpret_cast<const char*>(&number), sizeof number);
}

std::string Bytes(const RegistryKeys& keys, const char* key, const char* name) {
    const desktop::RegistryValue* value = keys.FindValue(key, name);
    return value != nullptr ? value->bytes : "missing";
}

class RegistryFileTest : public testing::Test {
protected:
    QString Path() const { return folder.path() + "/config/tesselia/registry.ini"; }

    void SetContent(const QByteArray& text) {
        QDir().mkpath(folder.path() + "/config/tesselia");
        QFile file(Path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    QByteArray Content() const {
        QFile file(Path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    const QTemporaryDir folder;
};

TEST_F(RegistryFileTest, IsWrittenWhenAKeyIsClosed) {
    desktop::UserRegistry() = RegistryFile(Path());
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, "Software\\HDD/CD", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              0);
    const DWORD number = static_cast<DWORD>(-600);
    RegSetValueExA(key, "PosX", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
    RegSetValueExA(key, "Face", 0, REG_SZ, reinterpret_cast<const BYTE*>("a%\"\\\x82"), 6);
    RegCloseKey(key);
    const QByteArray written =
        "[HKEY_LOCAL_MACHINE]\n\n[HKEY_LOCAL_MACHINE\\Software]\n\n"
        "[HKEY_LOCAL_MACHINE\\Software\\HDD/CD]\nFace=\"a\\x25\\x22\\x5C\\x82\\x00\"\nPosX=-600\n";
    EXPECT_EQ(Content(), written);
    struct stat status{};
    ASSERT_EQ(stat(Path().toLocal8Bit().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    // No half-written file stays, and without a change nothing is written.
    EXPECT_EQ(QDir(folder.path() + "/config/tesselia").entryList(QDir::Files | QDir::Hidden), QStringList{"registry.ini"});
    SetContent("");
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Software", 0, KEY_READ, &key);
    RegCloseKey(key);
    EXPECT_EQ(Content(), "");
    desktop::UserRegistry() = RegistryFile({});
}

TEST_F(RegistryFileTest, WhatCannotBeUnderstoodIsLeftOut) {
    const RegistryKeys keys = RegistryKeys::Parse(
        "Stray=1\n[K\\A b/c]\r\n  Good = 7 \r\nLow=-2147483648\nTooBig=4294967296\nHex=0x10\nEmpty=\n=5\nOpen=\"abc\n"
        "Behind=\"abc\"x\nText=\"a%41 \\x00\\xFF\\x22\"\n@=\"unnamed\"\n%40%25=2\nQuote=\"\n"
        "Object=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x0eQString\\0)\n"
        "[K\\\\B]\nLost=1\n[\nLost=1\n[Unclosed\nLost=1\n[]\nLost=1\n[K\\]\nLost=1\n[k\\a%20B/C]\nMore=8\n");
    EXPECT_FALSE(keys.HasKey("K\\B"));
    EXPECT_EQ(Bytes(keys, "k\\a B/C", "good"), Number(7));
    EXPECT_EQ(Bytes(keys, "K\\A b/c", "Low"), Number(0x80000000));
    EXPECT_EQ(Bytes(keys, "K\\A b/c", "More"), Number(8));
    EXPECT_EQ(Bytes(keys, "K\\A b/c", "Text"), std::string("a%41 \0\xFF\"", 8));
    EXPECT_EQ(Bytes(keys, "K\\A b/c", ""), "unnamed");
    EXPECT_EQ(Bytes(keys, "K\\A b/c", "@%"), Number(2));
    for (const char* name : {"TooBig", "Hex", "Empty", "Open", "Behind", "Quote", "Object", "Lost", "Stray"}) {
        EXPECT_EQ(Bytes(keys, "K\\A b/c", name), "missing") << name;
    }
    EXPECT_EQ(RegistryKeys::Parse(keys.Text()).Text(), keys.Text());
}

// Their number and the length of their paths bound what keys can cost.
TEST_F(RegistryFileTest, KeysAreNeitherTooDeepNorTooMany) {
    QByteArray text =
        "[" + QByteArray("a\\").repeated(30000) + "a]\nLost=1\n[" + QByteArray("b\\").repeated(127) + "b]\nx=1\n";
    for (int i = 0; i < 2000; ++i) {
        text += "[c" + QByteArray::number(i) + "]\n";
    }
    const RegistryKeys keys = RegistryKeys::Parse(text);
    EXPECT_FALSE(keys.HasKey("a"));
    EXPECT_EQ(Bytes(keys, QByteArray("b\\").repeated(127) + "b", "x"), Number(1));
    EXPECT_TRUE(keys.HasKey("c0"));
    EXPECT_FALSE(keys.HasKey("c1999"));
    EXPECT_EQ(keys.Text().count('['), 1000);
    EXPECT_EQ(RegistryKeys::Parse(keys.Text()).Text(), keys.Text());
}

TEST_F(RegistryFileTest, WhatCannotBeReadOrWrittenStays) {
    const QByteArray huge = "[K]\nx=1\n" + QByteArray(64 << 10, '\n');
    SetContent(huge);
    RegistryFile file(Path());
    EXPECT_FALSE(file.keys.HasKey("K"));
    ASSERT_TRUE(file.keys.AddKey("K"));
    EXPECT_FALSE(file.Save());
    EXPECT_EQ(Content(), huge);
    // A folder in place of the file cannot be read even by the superuser, nor can one be made below a file.
    for (const QString& path : {QFileInfo(Path()).path(), Path() + "/tesselia/registry.ini"}) {
        RegistryFile other(path);
        ASSERT_TRUE(other.keys.AddKey("K"));
        EXPECT_FALSE(other.Save());
    }
    // What the next start could not read is not written.
    SetContent("[K]\nx=1\n");
    RegistryFile full(Path());
    full.keys.SetValue("K", "y", {REG_SZ, std::string(64 << 10, 'y')});
    EXPECT_FALSE(full.Save());
    EXPECT_EQ(Content(), "[K]\nx=1\n");
    full.keys.SetValue("K", "y", {REG_DWORD, Number(2)});
    EXPECT_TRUE(full.Save());
    EXPECT_EQ(Content(), "[K]\nx=1\ny=2\n");
}

}  // namespace
