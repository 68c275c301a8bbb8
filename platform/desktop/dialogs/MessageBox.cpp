// The message box: a dialog like any other, made to the measure of its text.
#include <QApplication>
#include <QFontMetrics>
#include <QStyle>

#include "Desktop.h"
#include "Dialogs.h"
#include "Icons.h"
#include "Placement.h"
#include "Resources.h"
#include "Text.h"

namespace desktop {

namespace {

constexpr int kMargin = 12;
constexpr int kButtonWidth = 82;
constexpr int kButtonHeight = 28;
constexpr int kWidestText = 420;
constexpr UINT kButtonsMask = 0x000F;
constexpr UINT kIconMask = 0x00F0;

struct BoxButton {
    int id;
    const char* english;
    const char* japanese;  // UTF-8
};

std::vector<BoxButton> ButtonsOf(UINT style) {
    if ((style & kButtonsMask) == MB_YESNO) {
        return {{IDYES, "&Yes", "はい(&Y)"}, {IDNO, "&No", "いいえ(&N)"}};
    }
    return {{IDOK, "OK", "OK"}};
}

// One that is closed in another way than by its buttons answers with the only button that it has.
INT_PTR CALLBACK BoxProc(HWND box, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_INITDIALOG) {
        return TRUE;
    }
    if (message != WM_COMMAND) {
        return FALSE;
    }
    const int id = LOWORD(wParam);
    if (GetDlgItem(box, id) != nullptr) {
        EndDialog(box, id);
    } else if (id == IDCANCEL && GetDlgItem(box, IDOK) != nullptr) {
        EndDialog(box, IDOK);
    }
    return TRUE;
}

HICON IconOfStyle(UINT style) {
    switch (style & kIconMask) {
        case MB_ICONHAND: return StandardIcon(QStyle::SP_MessageBoxCritical);
        case MB_ICONQUESTION: return StandardIcon(QStyle::SP_MessageBoxQuestion);
        case MB_ICONINFORMATION: return StandardIcon(QStyle::SP_MessageBoxInformation);
        default: return nullptr;
    }
}

struct BoxLayout {
    QSize client;
    RECT icon;
    RECT text;
    int buttonTop;
    int firstButton;
};

BoxLayout Arrange(const QString& text, bool hasIcon, int buttons) {
    const QFontMetrics metrics(QApplication::font());
    // A little more than measured: a label must not break the line once more.
    const QSize words = metrics.boundingRect(QRect(0, 0, kWidestText, 10000), Qt::TextWordWrap, text).size() + QSize(4, 2);
    const int iconSpace = hasIcon ? kLargeIcon.width() + kMargin : 0;
    const int bodyHeight = std::max(words.height(), hasIcon ? kLargeIcon.height() : 0);
    const int buttonSpace = buttons * kButtonWidth + (buttons - 1) * kMargin / 2;
    const int width = std::max(iconSpace + words.width(), buttonSpace) + 2 * kMargin;
    BoxLayout layout{};
    layout.client = QSize(width, bodyHeight + kButtonHeight + 3 * kMargin);
    layout.icon = {kMargin, kMargin, kMargin + kLargeIcon.width(), kMargin + kLargeIcon.height()};
    const int textTop = kMargin + (bodyHeight - words.height()) / 2;
    layout.text = {kMargin + iconSpace, textTop, kMargin + iconSpace + words.width(), textTop + words.height()};
    layout.buttonTop = bodyHeight + 2 * kMargin;
    layout.firstButton = (width - buttonSpace) / 2;
    return layout;
}

void AddButtons(HWND box, const std::vector<BoxButton>& buttons, const BoxLayout& layout) {
    const bool japanese = kernel::ResourceLanguage() == kernel::kJapanese;
    int left = layout.firstButton;
    for (const BoxButton& button : buttons) {
        const std::string text = FromQString(QString::fromUtf8(japanese ? button.japanese : button.english));
        const DWORD kind = &button == &buttons.front() ? BS_DEFPUSHBUTTON | WS_GROUP : BS_PUSHBUTTON;
        AddControl(box, "BUTTON", text.c_str(), button.id, WS_VISIBLE | WS_TABSTOP | kind,
                   {left, layout.buttonTop, left + kButtonWidth, layout.buttonTop + kButtonHeight});
        left += kButtonWidth + kMargin / 2;
    }
    SendMessageA(box, DM_SETDEFID, static_cast<WPARAM>(buttons.front().id), 0);
}

}  // namespace

}  // namespace desktop

int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT style) {
    using namespace desktop;  // NOLINT(google-build-using-namespace): only this function is outside
    const std::vector<BoxButton> buttons = ButtonsOf(style);
    HICON icon = IconOfStyle(style);
    const BoxLayout layout = Arrange(ToQString(text), icon != nullptr, static_cast<int>(buttons.size()));
    const RECT screen = WorkAreaAround(owner);
    const POINT place{(screen.left + screen.right - layout.client.width()) / 2,
                      (screen.top + screen.bottom - layout.client.height()) / 2};
    auto disabled = std::make_unique<OwnerDisabled>(owner);
    // A box with a choice has no close box: none of its answers is the one that changes nothing.
    const DWORD closing = buttons.size() == 1 ? WS_SYSMENU : 0;
    HWND box = MakeEmptyDialog(WS_POPUP | WS_CAPTION | DS_MODALFRAME | closing, caption, place, layout.client, owner,
                               nullptr, BoxProc);
    if (box == nullptr) {
        return 0;
    }
    if (icon != nullptr) {
        HWND picture = AddControl(box, "STATIC", "", -1, WS_VISIBLE | SS_ICON, layout.icon);
        SendMessageA(picture, STM_SETICON, reinterpret_cast<WPARAM>(icon), 0);
    }
    AddControl(box, "STATIC", text, 0xFFFF, WS_VISIBLE | SS_LEFT | SS_NOPREFIX, layout.text);
    AddButtons(box, buttons, layout);
    FinishDialog(box, 0, 0);
    return static_cast<int>(RunModal(box, std::move(disabled), nullptr));
}
