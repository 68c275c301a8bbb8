// Import and export of the selected group's titles.
#include <cstring>

#include "EditorPane.h"
#include "MessageService.h"
#include "TitleFile.h"
#include "TitleFileDialog.h"
#include "resource.h"

namespace {

struct FileType {
    const char* extension;
    const char* description;
};

constexpr FileType kReadable[] = {{"csv", "Csv Files"}, {"txt", "Text Files (tab)"}, {"asx", "Play List Files"}};
constexpr FileType kWritable[] = {{"csv", "Csv Files"}};

// Asks for a file where the last one was. The choice is the last one from then on.
template <std::size_t count>
bool AskForFile(HWND owner, int mode, const FileType (&types)[count], char (&path)[MAX_PATH]) {
    TitleFileDialog dialog;
    dialog.SetPath(path);
    for (const FileType& type : types) {
        dialog.AddFilter(type.extension, type.description);
    }
    dialog.SetAllFilesEntry(false);
    if (dialog.ShowDialog(owner, mode) == 0) {
        return false;
    }
    dialog.GetPath(path);
    return true;
}

}  // namespace

int EditorPane::OnFileCommand(WORD command) {
    if (!titleStore || !groupList || !trackList) {
        return 0;
    }
    // Only a group with a title of its own can be read from or written to a file.
    const GroupId group = GetSelectedGroup();
    if (titleStore->IsKnown(group, 0) == 0 || titleStore->GetState(group, 0) < TS_RECEIVED) {
        return 0;
    }
    switch (command) {
        case IDM_IMPORT: return ImportTitles(group);
        case IDM_EXPORT: return ExportTitles(group);
        default: return 0;
    }
}

int EditorPane::ImportTitles(GroupId group) {
    if (!AskForFile(hDlg, TitleFileDialog::kOpen, kReadable, importPath)) {
        return 0;
    }
    TitleFile file;
    if (file.ReadTitles(importPath) != TitleFile::kDone) {
        if (messageService != nullptr) {
            messageService->ShowError(IDS_ERROR_IMPORT);
        }
        return 0;
    }
    if (file.CountTitles() == 0) {
        return 0;
    }
    OverwriteTitles(group, file);
    watchArmed = 0;
    currentGroup = GetSelectedGroup();
    RefreshGroups(currentGroup);
    RefreshTracks(currentGroup);
    watchArmed = 1;
    return 1;
}

// As if the user had typed them: where there is a title already, and on an Album its own alone.
void EditorPane::OverwriteTitles(GroupId group, const TitleFile& file) const {
    const TrackNo last = IsAlbum(group) ? 0 : kTracks;
    for (TrackNo number = 0; number <= last; ++number) {
        char text[kTitleSize];
        if (file.GetImportTitle(number, text) != 0 && titleStore->IsKnown(group, number) != 0 &&
            titleStore->GetState(group, number) >= TS_RECEIVED) {
            titleStore->EditTitle(group, number, text);
        }
    }
}

int EditorPane::ExportTitles(GroupId group) {
    if (!AskForFile(hDlg, TitleFileDialog::kSave, kWritable, exportPath)) {
        return 0;
    }
    TitleFile file;
    if (file.BeginExport(exportPath) != TitleFile::kDone) {
        return 0;
    }
    for (TrackNo number = 0; number <= kTracks; ++number) {
        char text[kTitleSize];
        if (titleStore->IsKnown(group, number) != 0 && titleStore->GetState(group, number) >= TS_RECEIVED &&
            titleStore->GetTitle(group, number, text) != 0) {
            file.WriteTitle(number, text);
        }
    }
    file.EndExport();
    return 1;
}
