// The help: what stands behind the library "hhctrl.ocx".
#pragma once

#include <windows.h>

#include <QString>

namespace desktop {

// From now on the library is there, with HtmlHelpA as its ordinal 14. It shows the pages of the user's guide in a window of
// its own, which lives by the program's message loop and ends with the desktop. That window is none of the program's: the
// handle that stands for it only tells that it is open.
void OfferHelp();

// The first page of the guide: "<language>/index.html", `language` first, else the other one, in the folder
// "share/tesselia/help" beside the folder of the program, or in the source tree that it was built in. Empty if there is
// none.
QString FindHelpPage(const QString& programFolder, bool japanese);

}  // namespace desktop
