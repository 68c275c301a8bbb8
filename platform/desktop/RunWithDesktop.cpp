#include "RunWithDesktop.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QTranslator>
#include <cstdio>

#include "Controls.h"
#include "Desktop.h"
#include "Dialogs.h"
#include "HelpViewer.h"
#include "ListAccess.h"
#include "MenuBar.h"
#include "Resources.h"
#include "UserFolders.h"

namespace {

bool HasDisplay() {
    const auto isSet = [](const char* name) { return !qEnvironmentVariableIsEmpty(name); };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
}

}  // namespace

int RunWithDesktop(int argc, char** argv, int (*body)(int argc, char** argv)) {
    if (!HasDisplay()) {
        std::fprintf(stderr, "%s needs a display: neither DISPLAY nor WAYLAND_DISPLAY names one\n", argv[0]);
        return 1;
    }
    // For what Qt keeps of its own below it.
    qputenv("HOME", QByteArray::fromStdString(kernel::HomeFolder()));
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setApplicationName("tesselia");
    // What Qt's own choosers say; without its translations they speak English.
    QTranslator translator;
    if (kernel::ResourceLanguage() == kernel::kJapanese &&
        translator.load("qtbase_ja", QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QApplication::installTranslator(&translator);
    }
    desktop::Desktop desktop({desktop::MakeControlWidget, desktop::AttachMenu, desktop::OpenMenu});
    desktop::RegisterControlClasses();
    desktop::RegisterDialogClass();
    desktop::OfferHelp();
    desktop::OfferListAccess();
    return body(argc, argv);
}
