// The viewer of the user's guide.
#include "HelpViewer.h"

#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QMainWindow>
#include <QStyle>
#include <QTextBrowser>
#include <QToolBar>
#include <QUrl>
#include <memory>

#include "Desktop.h"
#include "Modules.h"
#include "Resources.h"

namespace desktop {

namespace {

constexpr WORD kHtmlHelpOrdinal = 14;
constexpr char kLibrary[] = "hhctrl.ocx";

constexpr UINT kDisplayToc = 1;     // HH_DISPLAY_TOC
constexpr UINT kGetWinHandle = 6;   // HH_GET_WIN_HANDLE
constexpr UINT kCloseAll = 18;      // HH_CLOSE_ALL
constexpr UINT kInitialize = 28;    // HH_INITIALIZE
constexpr UINT kUninitialize = 29;  // HH_UNINITIALIZE

constexpr DWORD kCookie = 1;
// Never the handle of a window, whose low word is not 0.
constexpr ULONG_PTR kViewerHandle = 0x7FFE0000;

constexpr QSize kFirstSize(760, 620);

bool IsJapanese() {
    return kernel::ResourceLanguage() == kernel::kJapanese;
}

class Viewer : public QMainWindow {
public:
    Viewer() : pages(new QTextBrowser(this)) {
        setCentralWidget(pages);
        pages->setOpenExternalLinks(true);
        // The menu of the tool bar would wait in a loop of Qt's, which serves no messages.
        setContextMenuPolicy(Qt::NoContextMenu);
        const bool japanese = IsJapanese();
        QToolBar& bar = *addToolBar(japanese ? QString::fromUtf8("移動") : "Navigation");
        bar.setMovable(false);
        bar.setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        QAction* home = AddAction(bar, QStyle::SP_DirHomeIcon, japanese ? "目次" : "Contents", Qt::ALT | Qt::Key_Home);
        QAction* back = AddAction(bar, QStyle::SP_ArrowBack, japanese ? "戻る" : "Back", Qt::ALT | Qt::Key_Left);
        QAction* forward = AddAction(bar, QStyle::SP_ArrowForward, japanese ? "進む" : "Forward", Qt::ALT | Qt::Key_Right);
        back->setEnabled(false);
        forward->setEnabled(false);
        connect(home, &QAction::triggered, pages, &QTextBrowser::home);
        connect(back, &QAction::triggered, pages, &QTextBrowser::backward);
        connect(forward, &QAction::triggered, pages, &QTextBrowser::forward);
        connect(pages, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
        connect(pages, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
        connect(pages, &QTextBrowser::sourceChanged, this, [this] { setWindowTitle(pages->documentTitle()); });
        setWindowIcon(style()->standardIcon(QStyle::SP_MessageBoxQuestion));
        resize(kFirstSize);
    }

    void Show(const QString& page) {
        pages->setSource(QUrl::fromLocalFile(page));
        isMinimized() ? showNormal() : show();
        raise();
        activateWindow();
        pages->setFocus();
    }

private:
    QAction* AddAction(QToolBar& bar, QStyle::StandardPixmap icon, const char* text, const QKeySequence& keys) {
        QAction* action = bar.addAction(style()->standardIcon(icon), QString::fromUtf8(text));
        action->setShortcut(keys);
        action->setToolTip(QString("%1 (%2)").arg(action->text(), keys.toString(QKeySequence::NativeText)));
        return action;
    }

    QTextBrowser* const pages;
};

// Ends with the desktop at the latest, since a widget must not outlive the application object.
std::unique_ptr<Viewer> theViewer;

HWND HandleIfOpen() {
    return theViewer != nullptr && theViewer->isVisible() ? reinterpret_cast<HWND>(kViewerHandle) : nullptr;
}

HWND DisplayContents() {
    const QString page = FindHelpPage(QCoreApplication::applicationDirPath(), IsJapanese());
    if (page.isEmpty()) {
        return nullptr;
    }
    if (theViewer == nullptr) {
        theViewer = std::make_unique<Viewer>();
        QObject::connect(&Desktop::Get(), &QObject::destroyed, theViewer.get(), [] { theViewer.reset(); });
    }
    theViewer->Show(page);
    return HandleIfOpen();
}

HWND WINAPI HtmlHelp(HWND, LPCSTR, UINT command, DWORD_PTR data) {
    switch (command) {
        case kInitialize:
            if (data != 0) {
                *reinterpret_cast<DWORD*>(data) = kCookie;
            }
            return nullptr;
        case kDisplayToc: return DisplayContents();
        case kGetWinHandle: return HandleIfOpen();
        case kCloseAll:
        case kUninitialize:
            // Closed, not destroyed: one of its own events may have led here.
            if (theViewer != nullptr) {
                theViewer->close();
            }
            return nullptr;
        default: return nullptr;
    }
}

}  // namespace

QString FindHelpPage(const QString& programFolder, bool japanese) {
    const QStringList languages = japanese ? QStringList{"ja", "en"} : QStringList{"en", "ja"};
    for (const QString& language : languages) {
        for (const char* folder : {"/../share/tesselia/help/", "/../../../help/"}) {
            const QFileInfo page(programFolder + folder + language + "/index.html");
            if (page.isFile()) {
                return page.canonicalFilePath();
            }
        }
    }
    return {};
}

void OfferHelp() {
    kernel::RegisterLibrary(kLibrary, kHtmlHelpOrdinal, reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(&HtmlHelp)));
}

}  // namespace desktop
