// The file behind the registry: what it takes from a file that others have written, and what it leaves behind.
#include "RegistryFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QTemporaryDir>

namespace {

using desktop::RegistryContent;
using desktop::RegistryFile;
using desktop::RegistryValue;

RegistryValue Number(DWORD number) {
    return {REG_DWORD, std::string(reinterpret_cast<const char*>(&number), sizeof number)};
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

    static void Set(RegistryFile& file, const char* key, const char* name, DWORD number) {
        file.Change([=](RegistryContent& content) {
            content.AddKey(key);
            content.SetValue(key, name, Number(number));
        });
    }

    static std::string Bytes(RegistryFile& file, const char* key, const char* name) {
        const RegistryValue* value = file.Content().FindValue(key, name);
        return value != nullptr ? value->bytes : "missing";
    }

    const QTemporaryDir folder;
};

TEST_F(RegistryFileTest, OnlyTheUserMayReadWhatIsSaved) {
    RegistryFile file(Path());
    Set(file, "HKEY_LOCAL_MACHINE\\Software\\HDD/CD", "SizeX", 600);
    Set(file, "HKEY_LOCAL_MACHINE\\Software\\HDD/CD", "PosX", static_cast<DWORD>(-600));
    EXPECT_TRUE(file.HasChanges());
    ASSERT_TRUE(file.Save());
    EXPECT_FALSE(file.HasChanges());
    struct stat status{};
    ASSERT_EQ(stat(Path().toLocal8Bit().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_EQ(Content(),
              "[HKEY_LOCAL_MACHINE]\n\n[HKEY_LOCAL_MACHINE\\Software]\n\n"
              "[HKEY_LOCAL_MACHINE\\Software\\HDD/CD]\nPosX=-600\nSizeX=600\n");
    // Neither the lock nor a half-written file stays.
    EXPECT_EQ(QDir(folder.path() + "/config/tesselia").entryList(QDir::Files | QDir::Hidden), QStringList{"registry.ini"});
}

TEST_F(RegistryFileTest, WhatCannotBeUnderstoodIsLeftOut) {
    SetContent(
        "Stray=1\n[K\\A]\r\n  Good = 7 \r\nBig=4294967295\nTooBig=4294967296\nTooSmall=-2147483649\nHex=0x10\nEmpty=\n=5\n"
        "Open=\"abc\nBehind=\"abc\"x\nEscape=\"\\xZZ\"\nCut=\"\\x4\"\nText=\"a\\x00\\xFF\"\n@=\"unnamed\"\nBad%4=1\n"
        "Object=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x0eQString\\0)\nOdd=dword:\"12345\"\nOddEmpty=dword:\n"
        "[K\\\\B]\nLost=1\n[Unclosed\nLost=1\n[]\nLost=1\n[K\\C%]\nLost=1\n[k\\a]\nMore=8\n");
    RegistryFile file(Path());
    const RegistryContent& content = file.Content();
    EXPECT_TRUE(content.HasKey("k\\A"));
    EXPECT_FALSE(content.HasKey("K\\B"));
    EXPECT_EQ(Bytes(file, "K\\A", "good"), Number(7).bytes);
    EXPECT_EQ(Bytes(file, "K\\A", "More"), Number(8).bytes);
    EXPECT_EQ(Bytes(file, "K\\A", "Big"), Number(0xFFFFFFFF).bytes);
    EXPECT_EQ(Bytes(file, "K\\A", "Text"), std::string("a\0\xFF", 3));
    EXPECT_EQ(Bytes(file, "K\\A", ""), "unnamed");
    EXPECT_EQ(Bytes(file, "K\\A", "Odd"), "12345");
    for (const char* name : {"TooBig", "TooSmall", "Hex", "Empty", "Open", "Behind", "Escape", "Cut", "Object", "OddEmpty",
                             "Lost", "Stray", "Bad%4"}) {
        EXPECT_EQ(Bytes(file, "K\\A", name), "missing") << name;
    }
}

TEST_F(RegistryFileTest, NoBytesAreTooManyOrTooStrange) {
    QByteArray noise = "[K]\n";
    for (int i = 0; i < 200000; ++i) {
        noise += static_cast<char>((i * 7919 + i / 251) & 0xFF);
    }
    SetContent(noise + "\n[K]\nSizeX=1\n");
    RegistryFile file(Path());
    EXPECT_EQ(Bytes(file, "K", "SizeX"), Number(1).bytes);
    const RegistryContent again = RegistryContent::Parse(file.Content().Text());
    EXPECT_EQ(again.Text(), file.Content().Text());
    // One that cannot be ours is neither read nor replaced.
    SetContent(QByteArray(5 << 20, '\n') + "[K]\nSizeX=1\n");
    RegistryFile huge(Path());
    EXPECT_FALSE(huge.Content().HasKey("K"));
    Set(huge, "K", "SizeX", 2);
    EXPECT_FALSE(huge.Save());
    EXPECT_GT(Content().size(), 5 << 20);
}

TEST_F(RegistryFileTest, TwoProcessesDoNotUndoEachOther) {
    RegistryFile one(Path());
    RegistryFile other(Path());
    Set(one, "K\\One", "x", 1);
    Set(other, "K\\Other", "x", 2);
    ASSERT_TRUE(one.Save());
    EXPECT_TRUE(other.Content().HasKey("K\\One"));
    Set(other, "K\\One", "x", 3);
    ASSERT_TRUE(other.Save());
    EXPECT_EQ(Bytes(one, "K\\One", "x"), Number(3).bytes);
    EXPECT_EQ(Bytes(one, "K\\Other", "x"), Number(2).bytes);
}

TEST_F(RegistryFileTest, ACrashInTheMiddleOfSavingBlocksNobody) {
    SetContent("[K]\nx=1\n");
    const pid_t other = fork();
    if (other == 0) {
        QLockFile lock(Path() + ".lock");
        const bool locked = lock.tryLock(0);
        _exit(locked ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(other, &status, 0), other);
    ASSERT_EQ(status, 0);
    ASSERT_TRUE(QFile::exists(Path() + ".lock"));
    RegistryFile file(Path());
    Set(file, "K", "x", 2);
    EXPECT_TRUE(file.Save());
    EXPECT_EQ(Content(), "[K]\nx=2\n");
}

TEST_F(RegistryFileTest, WhereNothingCanBeWrittenTheOldFileStays) {
    SetContent("[K]\nx=1\n");
    // A folder in the place of the lock keeps even the superuser from writing.
    QDir().mkpath(Path() + ".lock/in/the/way");
    RegistryFile file(Path());
    Set(file, "K", "x", 2);
    EXPECT_FALSE(file.Save());
    EXPECT_EQ(Content(), "[K]\nx=1\n");
    EXPECT_EQ(Bytes(file, "K", "x"), Number(2).bytes);
    file.Undo();
    EXPECT_EQ(Bytes(file, "K", "x"), Number(1).bytes);

    SetContent("");
    RegistryFile below(Path() + "/tesselia/registry.ini");
    EXPECT_FALSE(below.MayBeWritten());
    EXPECT_TRUE(file.MayBeWritten());
    Set(below, "K", "x", 2);
    EXPECT_FALSE(below.Save());
}

}  // namespace
