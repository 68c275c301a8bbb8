// The chooser for files: Qt's own.
#include <commdlg.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QRegularExpression>
#include <QWidget>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "Choosers.h"
#include "Paths.h"
#include "Resources.h"
#include "Text.h"

namespace desktop {

namespace {

struct Filter {
    QString name;  // as QFileDialog takes it
    QString extension;
};

// Pairs of texts, each a description and the patterns that belong to it; an empty description ends them.
std::vector<Filter> FiltersOf(const char* pairs) {
    std::vector<Filter> filters;
    while (pairs != nullptr && *pairs != '\0') {
        const std::string description = pairs;
        pairs += description.size() + 1;
        const std::string patterns = pairs;
        pairs += patterns.size() + 1;
        QStringList names = ToQString(patterns).split(';', Qt::SkipEmptyParts);
        const QString first = names.isEmpty() ? QString() : names.front().section('.', -1);
        // Here a name without a dot is a name like any other.
        names.replaceInStrings("*.*", "*");
        filters.push_back({ToQString(description) + " (" + names.join(' ') + ')', first.contains('*') ? QString() : first});
    }
    return filters;
}

// A file that was chosen is looked at before the dialog closes, and not while one of its events is handled: questions about
// it need the pump.
class FileDialog : public QFileDialog {
public:
    FileDialog() : QFileDialog(nullptr, Qt::Dialog) {}

    QString candidate;

    void Approve() { QFileDialog::done(QDialog::Accepted); }

protected:
    void done(int result) override {
        if (result == QDialog::Accepted) {
            candidate = selectedFiles().value(0);
            WakeLoop();
        } else {
            QFileDialog::done(result);
        }
    }
};

struct Wording {
    const char* english;
    const char* japanese;
};

constexpr Wording kReplaceTitle{"Confirm Save As", "名前を付けて保存の確認"};
constexpr Wording kReplace{"%1 already exists.\nDo you want to replace it?", "%1 は既に存在します。\n上書きしますか?"};
constexpr Wording kNoFile{"%1\nFile not found.\nCheck the file name and try again.",
                          "%1\nファイルが見つかりません。\nファイル名を確認して、もう一度実行してください。"};
constexpr Wording kNoPath{"%1\nPath does not exist.\nCheck the path and try again.",
                          "%1\nパスが存在しません。\nパスを確認して、もう一度実行してください。"};

std::string Worded(const Wording& wording, const QString& name = {}) {
    const bool japanese = kernel::ResourceLanguage() == kernel::kJapanese;
    const QString text = QString::fromUtf8(japanese ? wording.japanese : wording.english);
    return FromQString(name.isEmpty() ? text : text.arg(name));
}

// A file that was typed with its whole name although it lacks the extension that was put behind it.
QString WithoutSuffixIfThere(const QString& path, const QString& suffix) {
    if (suffix.isEmpty() || !path.endsWith('.' + suffix) || QFileInfo::exists(path)) {
        return path;
    }
    const QString bare = path.chopped(suffix.size() + 1);
    return QFileInfo(bare).isFile() ? bare : path;
}

// "Best of Vol. 1" has a dot and no extension all the same: opened again it would pass for another type of file.
bool HasExtension(const QString& name) {
    static const QRegularExpression extension("\\.(?=[A-Za-z0-9]*[A-Za-z])[A-Za-z0-9]{1,4}$");
    return name.contains(extension);
}

class FileChooser {
public:
    FileChooser(OPENFILENAMEA& chooser, bool save) : chooser(chooser), save(save), filters(FiltersOf(chooser.lpstrFilter)) {}

    bool Choose() {
        SetUp();
        return ShowAndWait(dialog, chooser.hwndOwner, [this] { Look(); }) && Give();
    }

private:
    void SetUp() {
        dialog.setOption(QFileDialog::DontUseNativeDialog);
        // Its own questions would wait in a loop of Qt's, which serves no messages.
        dialog.setOption(QFileDialog::DontConfirmOverwrite);
        dialog.setOption(QFileDialog::HideNameFilterDetails);
        // Nor may a menu or a drag: without them it has none.
        for (QAbstractItemView* view : dialog.findChildren<QAbstractItemView*>()) {
            view->setContextMenuPolicy(Qt::NoContextMenu);
            view->setDragEnabled(false);
        }
        // Completions come up once a folder has been read, which may be when Enter is pressed or behind it. They would take
        // the Enter, or stay behind and take the next key or click.
        if (auto* name = dialog.findChild<QLineEdit*>("fileNameEdit")) {
            name->setCompleter(nullptr);
        }
        dialog.setFileMode(QFileDialog::AnyFile);
        dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
        if (chooser.lpstrTitle != nullptr && *chooser.lpstrTitle != '\0') {
            dialog.setWindowTitle(ToQString(chooser.lpstrTitle));
        }
        SetUpFilters();
        // A name with a folder says where to begin, else the initial folder does. Both parts may belong to one alias.
        const std::string folder = chooser.lpstrInitialDir != nullptr ? chooser.lpstrInitialDir : "";
        const std::string name = chooser.lpstrFile;
        const bool whole = QFileInfo(QString::fromStdString(kernel::LinuxPath(name))).isAbsolute() || folder.empty();
        const std::string path = kernel::LinuxPath(whole || name.empty() ? name : folder + '\\' + name);
        const QFileInfo file(QString::fromStdString(path));
        const QString initial = name.empty() ? QString::fromStdString(kernel::LinuxPath(folder)) : file.path();
        if (QFileInfo(initial).isDir()) {
            dialog.setDirectory(initial);
        }
        if (!name.empty()) {
            dialog.selectFile(file.fileName());
        }
    }

    void SetUpFilters() {
        QStringList names;
        for (const Filter& filter : filters) {
            names += filter.name;
        }
        if (!names.isEmpty()) {
            dialog.setNameFilters(names);
            const std::size_t index = chooser.nFilterIndex;
            dialog.selectNameFilter(names[index >= 1 && index <= filters.size() ? static_cast<qsizetype>(index - 1) : 0]);
        }
        if (chooser.lpstrDefExt != nullptr) {
            dialog.setDefaultSuffix(ToQString(chooser.lpstrDefExt));
            // Another row of the list means another extension.
            QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog,
                             [this] { dialog.setDefaultSuffix(filters.at(SelectedFilter()).extension); });
        }
    }

    // The dialog itself only tells the text of the row.
    std::size_t SelectedFilter() const {
        const auto* rows = dialog.findChild<QComboBox*>("fileTypeCombo");
        return rows != nullptr && rows->currentIndex() > 0 ? static_cast<std::size_t>(rows->currentIndex()) : 0;
    }

    bool Ask(const std::string& caption, const std::string& text, UINT style) {
        dialog.setEnabled(false);
        const int answer = MessageBoxA(chooser.hwndOwner, text.c_str(), caption.c_str(), style);
        dialog.setEnabled(true);
        dialog.activateWindow();
        return answer == IDYES;
    }

    void Refuse(const Wording& wording, const QString& path) {
        Ask(FromQString(dialog.windowTitle()), Worded(wording, QFileInfo(path).fileName()), MB_OK | MB_ICONINFORMATION);
    }

    // Asks what is to be asked about the file that was chosen, and closes the dialog if it may be.
    void Look() {
        if (dialog.candidate.isEmpty()) {
            return;
        }
        QString path = std::exchange(dialog.candidate, QString());
        if (!save) {
            path = WithoutSuffixIfThere(path, dialog.defaultSuffix());
        } else if (!dialog.defaultSuffix().isEmpty() && !HasExtension(path)) {
            path += '.' + dialog.defaultSuffix();
        }
        const QFileInfo file(path);
        const bool pathMustExist = (chooser.Flags & (OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST)) != 0;
        if (pathMustExist && !QFileInfo(file.path()).isDir()) {
            Refuse(kNoPath, path);
        } else if ((chooser.Flags & OFN_FILEMUSTEXIST) != 0 && !file.exists()) {
            Refuse(kNoFile, path);
        } else if (!save || (chooser.Flags & OFN_OVERWRITEPROMPT) == 0 || !file.exists() ||
                   Ask(Worded(kReplaceTitle), Worded(kReplace, file.fileName()), MB_YESNO | MB_ICONQUESTION)) {
            chosen = file.absoluteFilePath();
            dialog.Approve();
        }
    }

    bool Give() {
        const auto path = kernel::WindowsPathOrAlias(chosen.toStdString(), chooser.nMaxFile);
        if (!path) {
            return false;
        }
        std::memcpy(chooser.lpstrFile, path->c_str(), path->size() + 1);
        return true;
    }

    OPENFILENAMEA& chooser;
    const bool save;
    const std::vector<Filter> filters;
    FileDialog dialog;
    QString chosen;
};

BOOL ChooseFile(OPENFILENAMEA* chooser, bool save) {
    // The structure may end where it did before its last three fields came.
    const bool whole = chooser != nullptr && chooser->lStructSize >= offsetof(OPENFILENAMEA, pvReserved);
    if (!whole || chooser->lpstrFile == nullptr || chooser->nMaxFile == 0) {
        return FALSE;
    }
    return FileChooser(*chooser, save).Choose();
}

}  // namespace

}  // namespace desktop

BOOL GetOpenFileNameA(OPENFILENAMEA* chooser) {
    return desktop::ChooseFile(chooser, false);
}

BOOL GetSaveFileNameA(OPENFILENAMEA* chooser) {
    return desktop::ChooseFile(chooser, true);
}
