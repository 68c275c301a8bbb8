// The entry of programs with windows.
#include "RunWithDesktop.h"

#include <QApplication>

#include "Desktop.h"
#include "HelpViewer.h"
#include "SingleInstance.h"

int RunWithDesktop(int argc, char** argv, int (*body)(int argc, char** argv)) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setApplicationName("tesselia");
    desktop::Desktop desktop;
    desktop::AnswerOtherCopies();
    desktop::OfferHelp();
    return body(argc, argv);
}
