// The main window's menu: its commands, their help lines and what is greyed.
#include "AboutBox.h"
#include "AppWindow.h"
#include "HtmlHelpCall.h"
#include "resource.h"

namespace {

struct HelpLine {
    UINT command;
    int stringId;
};

constexpr HelpLine kHelpLines[] = {
    {IDM_IMPORT, IDS_HELP_IMPORT},
    {IDM_EXPORT, IDS_HELP_EXPORT},
    {IDM_CLOSE, IDS_HELP_CLOSE},
    {IDM_UNDO, IDS_HELP_UNDO},
    {IDM_CLEAR, IDS_HELP_CLEAR},
    {IDM_GET_GROUP, IDS_HELP_GET_GROUP},
    {IDM_GET_ALL, IDS_HELP_GET_ALL},
    {IDM_SEND_GROUP, IDS_HELP_SEND_GROUP},
    {IDM_SEND_ALL, IDS_HELP_SEND_ALL},
    {IDM_STOP, IDS_HELP_STOP},
    {IDM_FONT, IDS_HELP_FONT},
    {IDM_OPTION, IDS_HELP_OPTION},
    {IDM_CONNECTION, IDS_HELP_CONNECTION},
    {IDM_STATUS_BAR, IDS_HELP_STATUS_BAR},
    {IDM_HELP_TOPICS, IDS_HELP_HELP_TOPICS},
    {IDM_VERSION_INFO, IDS_HELP_VERSION_INFO},
};

// The string that helps with a command; StatusBar::kNoString for anything else.
int HelpLineOf(UINT command) {
    for (const HelpLine& line : kHelpLines) {
        if (line.command == command) {
            return line.stringId;
        }
    }
    return StatusBar::kNoString;
}

void Enable(HMENU menu, UINT command, bool enable) {
    EnableMenuItem(menu, command, MF_BYCOMMAND | (enable ? MF_ENABLED : MF_GRAYED));
}

}  // namespace

void AppWindow::OnCommand(WORD command) {
    switch (command) {
        case IDM_CLOSE: OnClose(); break;
        case IDM_STATUS_BAR: ToggleStatusBar(); break;
        case IDM_HELP_TOPICS: HtmlHelpCall(GetDesktopWindow(), kHelpFile, HH_DISPLAY_TOC, 0); break;
        case IDM_VERSION_INFO: ShowAbout(); break;
        default:
            if (editorPane) {
                OnPaneCommand(command);
            }
            break;
    }
}

void AppWindow::OnPaneCommand(WORD command) {
    switch (command) {
        case IDM_IMPORT:
        case IDM_EXPORT: editorPane->OnFileCommand(command); break;
        case IDM_UNDO:
        case IDM_CLEAR:
        case IDM_ENTER: editorPane->OnEditCommand(command); break;
        case IDM_SEND_GROUP:
        case IDM_GET_ALL:
        case IDM_SEND_ALL:
        case IDM_GET_GROUP:
        case IDM_STOP: editorPane->OnTransferCommand(command); break;
        case IDM_OPTION:
        case IDM_CONNECTION: editorPane->OnToolCommand(command); break;
        case IDM_FONT: editorPane->ChooseDisplayFont(); break;
        default: break;
    }
}

void AppWindow::ToggleStatusBar() {
    MENUITEMINFOA item = {};
    item.cbSize = sizeof item;
    item.fMask = MIIM_STATE;
    if (!statusBar || !GetMenuItemInfoA(GetMenu(hWnd), IDM_STATUS_BAR, FALSE, &item)) {
        return;
    }
    item.fState ^= MFS_CHECKED;
    statusBar->Show((item.fState & MFS_CHECKED) != 0);
    SetMenuItemInfoA(GetMenu(hWnd), IDM_STATUS_BAR, FALSE, &item);
    RECT client = {};
    GetClientRect(hWnd, &client);
    OnSize(SIZE_RESTORED, client.right - client.left, client.bottom - client.top);
}

void AppWindow::ShowAbout() {
    AboutBox about;
    about.Run(hWnd);
}

void AppWindow::OnMenuSelect(UINT item, UINT flags, HMENU menu) {
    if (!statusBar) {
        return;
    }
    // A popup is told by its position, which is no command.
    const int stringId = HelpLineOf((flags & MF_POPUP) != 0 ? 0 : item);
    if (stringId == StatusBar::kNoString) {
        UpdateMenu(menu);
    }
    // While no menu is open nothing is greyed: the key of a greyed command would do nothing, whatever can be undone since.
    if (menu == nullptr) {
        Enable(GetMenu(hWnd), IDM_UNDO, true);
    }
    statusBar->SetText(0, stringId);
}

void AppWindow::UpdateMenu(HMENU menu) {
    if (!editorPane) {
        return;
    }
    const bool isLinkIdle = editorPane->IsLinkIdle() != 0;
    Enable(menu, IDM_IMPORT, isLinkIdle);
    Enable(menu, IDM_EXPORT, isLinkIdle);
    Enable(menu, IDM_UNDO, editorPane->CanUndoEdit() != 0);
    Enable(menu, IDM_CLEAR, editorPane->CanClearTitle() != 0);
    Enable(menu, IDM_OPTION, true);
}
