#include "Choosers.h"

#include <QWidget>
#include <QWindow>

#include "Desktop.h"
#include "Dialogs.h"

namespace desktop {

namespace {

// In front of the owner, but not its child: the owner may be destroyed while the dialog stands.
void PutAbove(QDialog& dialog, HWND owner) {
    const ScreenWindow* root = Desktop::Get().Root(Desktop::Get().Find(owner));
    if (root != nullptr && root->widget->windowHandle() != nullptr) {
        dialog.winId();
        dialog.windowHandle()->setTransientParent(root->widget->windowHandle());
        dialog.setWindowIcon(root->widget->windowIcon());
    }
}

}  // namespace

void WakeLoop() {
    PostMessageA(Desktop::Get().DesktopWindow(), WM_NULL, 0, 0);
}

bool ShowAndWait(QDialog& dialog, HWND owner, const std::function<void()>& look) {
    OwnerDisabled ownerDisabled(owner);
    const HWND root =
        Desktop::Get().Find(owner) != nullptr ? Desktop::Get().Root(Desktop::Get().Find(owner))->handle : nullptr;
    QObject::connect(&dialog, &QDialog::finished, WakeLoop);
    PutAbove(dialog, owner);
    const Desktop::Chooser before = Desktop::Get().SetChooser({&dialog, root});
    dialog.show();
    dialog.activateWindow();
    MSG message;
    while (dialog.isVisible() && (root == nullptr || IsWindow(root))) {
        if (GetMessageA(&message, nullptr, 0, 0) <= 0) {
            PostQuitMessage(static_cast<int>(message.wParam));
            break;
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
        if (look) {
            look();
        }
    }
    const bool accepted = !dialog.isVisible() && dialog.result() == QDialog::Accepted;
    Desktop::Get().SetChooser(before);
    ownerDisabled.Restore();
    dialog.hide();
    if (root != nullptr && IsWindow(root)) {
        SetForegroundWindow(root);
    }
    return accepted;
}

}  // namespace desktop
