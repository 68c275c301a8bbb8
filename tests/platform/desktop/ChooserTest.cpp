// The choosers, as a user operates them: a timer looks for what is open and answers it, while the call waits.
#include <commdlg.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFontDatabase>
#include <QFontDialog>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTimer>
#include <cstring>
#include <deque>
#include <functional>
#include <string>
#include <utility>

#include "CodePage.h"
#include "Desktop.h"
#include "DesktopTests.h"

namespace {

template <class Dialog>
Dialog* FindOpen() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->isEnabled() && qobject_cast<Dialog*>(widget) != nullptr) {
            return qobject_cast<Dialog*>(widget);
        }
    }
    return nullptr;
}

// Things to do one after the other; each is tried until it says that it is done.
class User {
public:
    User() {
        QObject::connect(&timer, &QTimer::timeout, [this] {
            if (!acts.empty() && acts.front()()) {
                acts.pop_front();
            }
        });
        timer.start(5);
    }
    ~User() { EXPECT_TRUE(acts.empty()) << acts.size() << " things were never done"; }
    User(const User&) = delete;
    User& operator=(const User&) = delete;

    void Do(std::function<bool()> act) { acts.push_back(std::move(act)); }

    template <class Dialog>
    void In(std::function<void(Dialog&)> act) {
        Do([act] {
            Dialog* dialog = FindOpen<Dialog>();
            if (dialog != nullptr) {
                act(*dialog);
            }
            return dialog != nullptr;
        });
    }

    void Type(const QString& name) {
        In<QFileDialog>([name](QFileDialog& dialog) {
            auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
            ASSERT_NE(edit, nullptr);
            edit->setText(name);
            QMetaObject::invokeMethod(&dialog, "accept");
        });
    }

    void Cancel() {
        In<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
    }

    // Presses a button of the message box with that caption.
    void Answer(const char* caption, int button) {
        Do([caption, button] {
            HWND box = FindWindowA("#32770", caption);
            return box != nullptr && IsWindowVisible(box) && PostMessageA(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
        });
    }

private:
    QTimer timer;
    std::deque<std::function<bool()>> acts;
};

// Of those that no face of Windows is shown in.
QString FamilyWithBold() {
    for (const QString& family : QFontDatabase::families()) {
        if (QFontDatabase::styles(family).contains("Bold") && family.startsWith("DejaVu")) {
            return family;
        }
    }
    return {};
}

class Chooser : public testing::Test {
protected:
    Chooser() : owner(MakeTopLevel("Owner of choosers")) {
        chooser.lStructSize = sizeof chooser;
        chooser.hwndOwner = owner;
        chooser.lpstrFilter = "Comma separated (*.csv)\0*.csv\0Text (*.txt;*.tab)\0*.txt;*.tab\0All Files (*.*)\0*.*\0";
        chooser.nFilterIndex = 1;
        chooser.lpstrFile = file;
        chooser.nMaxFile = sizeof file;
        chooser.lpstrTitle = "Choose one";
        chooser.lpstrDefExt = "csv";
        initial = Windows(".");
        chooser.lpstrInitialDir = initial.c_str();
    }
    ~Chooser() override {
        kernel::SetCodePage(kernel::kWesternPage);
        DestroyWindow(owner);
    }
    Chooser(const Chooser&) = delete;
    Chooser& operator=(const Chooser&) = delete;

    void MakeFile(const QString& name) const {
        QFile made(folder.filePath(name));
        ASSERT_TRUE(made.open(QIODevice::WriteOnly));
        made.write("content");
    }

    std::string Windows(const QString& name) const {
        QString path = folder.filePath(name);
        return path.replace('/', '\\').toStdString();
    }

    const QTemporaryDir folder;
    std::string initial;
    HWND owner;
    OPENFILENAMEA chooser{};
    char file[260] = "";
    User user;
};

TEST_F(Chooser, OpensAFileThatIsThere) {
    MakeFile("titles.csv");
    chooser.Flags = OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY;
    bool ownerWasEnabled = true;
    bool served = false;
    user.In<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Choose one");
        EXPECT_EQ(QDir(dialog.directory()).canonicalPath(), QDir(folder.path()).canonicalPath());
        ownerWasEnabled = IsWindowEnabled(owner);
        PostMessageA(owner, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("Served"));
    });
    user.Do([&] {
        char text[20] = "";
        GetWindowTextA(owner, text, sizeof text);
        served = std::string(text) == "Served";
        return served;
    });
    // The name lacks its extension; first one that is not there.
    user.Type("nothing");
    user.Answer("Choose one", IDOK);
    user.Type("titles");
    EXPECT_TRUE(GetOpenFileNameA(&chooser));
    EXPECT_FALSE(ownerWasEnabled);
    EXPECT_TRUE(served);
    EXPECT_TRUE(IsWindowEnabled(owner));
    EXPECT_EQ(GetActiveWindow(), owner);
    EXPECT_EQ(file, Windows("titles.csv"));
}

TEST_F(Chooser, AsksBeforeItReplacesAFile) {
    MakeFile("old.csv");
    chooser.Flags = OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST;
    user.Type("old.csv");
    user.Answer("Confirm Save As", IDNO);
    user.Type("old");
    user.Answer("Confirm Save As", IDYES);
    EXPECT_TRUE(GetSaveFileNameA(&chooser));
    EXPECT_EQ(file, Windows("old.csv"));
    // A new one goes without a question, with the extension of the filter that is chosen.
    user.In<QFileDialog>([](QFileDialog& dialog) {
        dialog.selectNameFilter(dialog.nameFilters().at(1));
        emit dialog.filterSelected(dialog.selectedNameFilter());
    });
    user.Type("new");
    EXPECT_TRUE(GetSaveFileNameA(&chooser));
    EXPECT_EQ(file, Windows("new.txt"));
    // A dot alone makes no extension.
    for (const auto& [typed, saved] : {std::pair{"Best of Vol. 1", "Best of Vol. 1.csv"},
                                       {"No.5", "No.5.csv"},
                                       {"other.TXT", "other.TXT"},
                                       {"a.b.mp3", "a.b.mp3"}}) {
        user.Type(typed);
        EXPECT_TRUE(GetSaveFileNameA(&chooser));
        EXPECT_EQ(file, Windows(saved));
    }
    // The folder has to be there.
    user.Type(folder.path() + "/missing/new.csv");
    user.Answer("Choose one", IDOK);
    user.Cancel();
    EXPECT_FALSE(GetSaveFileNameA(&chooser));
}

TEST_F(Chooser, ACancelledChoiceChangesNothing) {
    std::strcpy(file, "before.csv");
    const OPENFILENAMEA before = chooser;
    user.In<QFileDialog>([](QFileDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>("fileNameEdit")->text(), "before.csv");
        dialog.selectNameFilter(dialog.nameFilters().at(2));
        dialog.reject();
    });
    EXPECT_FALSE(GetSaveFileNameA(&chooser));
    EXPECT_EQ(std::memcmp(&before, &chooser, sizeof before), 0);
    EXPECT_STREQ(file, "before.csv");
    chooser.lStructSize = 60;
    EXPECT_FALSE(GetSaveFileNameA(&chooser));
}

TEST_F(Chooser, TheEndOfTheProgramOrOfTheOwnerCancels) {
    user.In<QFileDialog>([](QFileDialog&) { PostQuitMessage(5); });
    EXPECT_FALSE(GetOpenFileNameA(&chooser));
    EXPECT_EQ(FindOpen<QFileDialog>(), nullptr);
    MSG message{};
    EXPECT_FALSE(GetMessageA(&message, nullptr, 0, 0));
    EXPECT_EQ(message.wParam, 5u);
    user.In<QFileDialog>([this](QFileDialog&) { PostMessageA(owner, WM_CLOSE, 0, 0); });
    EXPECT_FALSE(GetOpenFileNameA(&chooser));
    EXPECT_FALSE(IsWindow(owner));
    EXPECT_EQ(FindOpen<QFileDialog>(), nullptr);
}

TEST_F(Chooser, NamesThatTheCodePageLacksOrThatAreTooLongHaveAnAlias) {
    const QString japanese = QString::fromUtf8("\u8868.csv");
    MakeFile(japanese);
    user.Type(japanese);
    ASSERT_TRUE(GetOpenFileNameA(&chooser));
    EXPECT_TRUE(std::string(file).ends_with(".csv"));
    HANDLE opened = CreateFileA(file, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    EXPECT_EQ(GetFileSize(opened, nullptr), 7u);
    CloseHandle(opened);
    // The next chooser begins at the same file, when it is given back in two parts.
    const std::string alias = file;
    const std::size_t name = alias.find_last_of('\\') + 1;
    initial = alias.substr(0, name - 1);
    chooser.lpstrInitialDir = initial.c_str();
    std::strcpy(file, alias.c_str() + name);
    user.In<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>("fileNameEdit")->text(), japanese);
        dialog.reject();
    });
    EXPECT_FALSE(GetOpenFileNameA(&chooser));

    const QString longName = QString(240, 'n') + ".txt";
    MakeFile(longName);
    file[0] = '\0';
    user.Type(folder.filePath(longName));
    ASSERT_TRUE(GetOpenFileNameA(&chooser));
    EXPECT_LT(std::strlen(file), 260u);
    EXPECT_TRUE(std::string(file).ends_with(".txt"));
    EXPECT_TRUE(DeleteFileA(file));
    EXPECT_FALSE(QFile::exists(folder.filePath(longName)));

    // Where the page has the name it is the name, whose second byte here is a backslash.
    kernel::SetCodePage(kernel::kJapanesePage);
    user.Type(folder.filePath(japanese));
    ASSERT_TRUE(GetOpenFileNameA(&chooser));
    EXPECT_TRUE(std::string(file).ends_with("\\\x95\x5C.csv"));
}

TEST_F(Chooser, AFontGoesInAndComesOut) {
    LOGFONTA font{};
    font.lfHeight = -16;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = SHIFTJIS_CHARSET;
    std::strcpy(font.lfFaceName, "MS UI Gothic");
    const LOGFONTA before = font;
    CHOOSEFONTA chooser{};
    chooser.lStructSize = sizeof chooser;
    chooser.hwndOwner = owner;
    chooser.lpLogFont = &font;
    chooser.Flags = CF_SCREENFONTS | CF_INITTOLOGFONTSTRUCT;
    user.In<QFontDialog>([this](QFontDialog& dialog) {
        EXPECT_EQ(dialog.currentFont().pointSize(), 12);
        EXPECT_FALSE(IsWindowEnabled(owner));
        dialog.reject();
    });
    EXPECT_FALSE(ChooseFontA(&chooser));
    EXPECT_EQ(std::memcmp(&font, &before, sizeof font), 0);

    // Another size alone changes nothing else. The face stays although another stands in for it here, unless there is none.
    const QString family = FamilyWithBold();
    ASSERT_TRUE(QFontDatabase::styles(family).contains("Book")) << "the upright style has a name of its own";
    for (const std::string& face : {std::string("MS UI Gothic"), family.toStdString(), std::string()}) {
        font = before;
        std::strcpy(font.lfFaceName, face.c_str());
        // The stand-in has no bold style.
        font.lfWeight = face == "MS UI Gothic" ? FW_BOLD : FW_NORMAL;
        const LONG weight = font.lfWeight;
        user.In<QFontDialog>([](QFontDialog& dialog) {
            dialog.findChildren<QLineEdit*>().at(2)->setText("18");
            dialog.accept();
        });
        EXPECT_TRUE(ChooseFontA(&chooser));
        EXPECT_EQ(font.lfHeight, -24);
        EXPECT_EQ(font.lfItalic, 0) << face;
        EXPECT_EQ(font.lfWeight, weight) << face;
        EXPECT_EQ(font.lfFaceName, face.empty() ? std::string(font.lfFaceName) : face);
        EXPECT_STRNE(font.lfFaceName, "");
    }

    user.In<QFontDialog>([family](QFontDialog& dialog) {
        QFont chosen(family, 18, QFont::Bold, true);
        dialog.setCurrentFont(chosen);
        dialog.accept();
    });
    EXPECT_TRUE(ChooseFontA(&chooser));
    EXPECT_EQ(font.lfFaceName, family.toStdString());
    EXPECT_TRUE(font.lfWeight == FW_BOLD && font.lfItalic == 1);
    chooser.lStructSize = 60;
    EXPECT_FALSE(ChooseFontA(&chooser));
}

}  // namespace
