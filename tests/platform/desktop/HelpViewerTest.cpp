// The help viewer, by the calls that the program makes.
#include "HelpViewer.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QToolBar>

#include "DesktopTests.h"
#include "Resources.h"

namespace {

constexpr UINT kDisplayToc = 1;
constexpr UINT kGetWinHandle = 6;
constexpr UINT kCloseAll = 18;
constexpr UINT kInitialize = 28;
constexpr UINT kUninitialize = 29;

using HtmlHelp = HWND(WINAPI*)(HWND, LPCSTR, UINT, DWORD_PTR);

void WritePage(const QString& folder, const char* language, const char* title) {
    QDir().mkpath(folder + '/' + language);
    QFile page(folder + '/' + language + "/index.html");
    ASSERT_TRUE(page.open(QIODevice::WriteOnly));
    page.write(QByteArray("<html><head><title>") + title + "</title></head><body><a href=\"a.html\">A</a></body></html>");
}

// The pages are beside this very program, so that only one case may have them at a time.
class HelpViewer : public testing::Test {
protected:
    HelpViewer() {
        EXPECT_TRUE(lock.lock());
        desktop::OfferHelp();
        HMODULE library = LoadLibraryA("hhctrl.ocx");
        help = reinterpret_cast<HtmlHelp>(reinterpret_cast<void (*)()>(GetProcAddress(library, MAKEINTRESOURCEA(14))));
        kernel::SetResourceLanguage(kernel::kEnglish);
        QDir(Folder()).removeRecursively();
    }
    ~HelpViewer() override { QDir(Folder()).removeRecursively(); }
    HelpViewer(const HelpViewer&) = delete;
    HelpViewer& operator=(const HelpViewer&) = delete;

    static QString Folder() { return QCoreApplication::applicationDirPath() + "/../share/tesselia/help"; }

    HWND Call(UINT command, DWORD_PTR data = 0) { return help(GetDesktopWindow(), "Tesselia.chm", command, data); }

    static QWidget* Shown() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible() && widget->findChild<QTextBrowser*>() != nullptr) {
                return widget;
            }
        }
        return nullptr;
    }

    QLockFile lock{QCoreApplication::applicationDirPath() + "/help-tests.lock"};
    HtmlHelp help = nullptr;
};

TEST_F(HelpViewer, WithoutPagesNothingIsShown) {
    ASSERT_NE(help, nullptr);
    DWORD cookie = 0;
    Call(kInitialize, reinterpret_cast<DWORD_PTR>(&cookie));
    EXPECT_NE(cookie, 0u);
    EXPECT_EQ(Call(kDisplayToc), nullptr);
    EXPECT_EQ(Shown(), nullptr);
    EXPECT_EQ(Call(kGetWinHandle), nullptr);
    EXPECT_EQ(Call(kCloseAll), nullptr);
    EXPECT_EQ(Call(kUninitialize, cookie), nullptr);
}

TEST_F(HelpViewer, IsOpenUntilTheUserOrTheProgramClosesIt) {
    WritePage(Folder(), "en", "The guide");
    HWND window = Call(kDisplayToc);
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(Call(kGetWinHandle), window);
    ASSERT_NE(Shown(), nullptr);
    EXPECT_EQ(Shown()->windowTitle(), "The guide");
    EXPECT_TRUE(qobject_cast<QTextBrowser*>(Shown()->focusWidget())) << "keys scroll";
    for (const QAction* action : Shown()->findChild<QToolBar*>()->actions()) {
        EXPECT_FALSE(action->shortcut().isEmpty());
    }
    Shown()->close();
    EXPECT_EQ(Call(kGetWinHandle), nullptr);
    EXPECT_EQ(Call(kDisplayToc), window);
    // A second time it is the same viewer.
    EXPECT_EQ(Call(kDisplayToc), window);
    Call(kCloseAll);
    EXPECT_EQ(Call(kGetWinHandle), nullptr);
    EXPECT_EQ(Shown(), nullptr);
}

TEST_F(HelpViewer, TheProgramsWindowIsInactiveBehindItAndActiveAgainAfterIt) {
    WritePage(Folder(), "en", "The guide");
    HWND window = MakeTopLevel("Below the help");
    EXPECT_TRUE(ServeUntil([&] { return GetActiveWindow() == window; }));
    Call(kDisplayToc);
    EXPECT_TRUE(ServeUntil([] { return GetActiveWindow() == nullptr && GetFocus() == nullptr; }));
    Call(kCloseAll);
    EXPECT_TRUE(SetForegroundWindow(window));
    EXPECT_EQ(GetActiveWindow(), window);
    DestroyWindow(window);
}

TEST_F(HelpViewer, TheOtherLanguageStandsInForAMissingOne) {
    const QTemporaryDir root;
    const QString program = root.path() + "/bin";
    QDir().mkpath(program);
    EXPECT_TRUE(desktop::FindHelpPage(program, true).isEmpty());
    const QString folder = root.path() + "/share/tesselia/help";
    WritePage(folder, "en", "English");
    EXPECT_TRUE(desktop::FindHelpPage(program, true).endsWith("/help/en/index.html"));
    WritePage(folder, "ja", "Japanese");
    EXPECT_TRUE(desktop::FindHelpPage(program, true).endsWith("/help/ja/index.html"));
    EXPECT_TRUE(desktop::FindHelpPage(program, false).endsWith("/help/en/index.html"));
}

}  // namespace
