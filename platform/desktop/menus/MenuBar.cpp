// The bar of a top-level window and its popups on the screen.
#include "MenuBar.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionMenuItem>
#include <algorithm>

#include "Desktop.h"
#include "LastError.h"
#include "MenuLoop.h"
#include "MenuWidgets.h"
#include "Menus.h"
#include "Placement.h"

namespace desktop {

namespace {

// WM_SYSCOMMAND for a press on the bar, with its place on the screen in lParam. The lowest bits name the part of the window.
constexpr WPARAM kMouseMenuCommand = 0xF090;

// As on Windows the highlight also goes to greyed items, and Alt is the program's before it is the menu's.
class MenuStyle : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override {
        switch (hint) {
            case SH_Menu_AllowActiveAndDisabled: return 1;
            case SH_MenuBar_AltKeyNavigation: return 0;
            default: return QProxyStyle::styleHint(hint, option, widget, result);
        }
    }
    // Styles leave the highlight of a greyed item out.
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (element == CE_MenuItem && item != nullptr && item->state.testFlag(State_Selected) &&
            !item->state.testFlag(State_Enabled)) {
            QStyleOptionMenuItem highlight = *item;
            highlight.state |= State_Enabled;
            highlight.palette.setCurrentColorGroup(QPalette::Active);
            highlight.text.clear();
            QProxyStyle::drawControl(element, &highlight, painter, widget);
        }
        QProxyStyle::drawControl(element, option, painter, widget);
    }
};

QStyle* StyleOfMenus() {
    static MenuStyle* style = nullptr;
    if (style == nullptr) {
        style = new MenuStyle;
        style->setParent(QCoreApplication::instance());
    }
    return style;
}

// What a mouse event of a menu's widget is to the loop, if anything.
bool GiveMouseToLoop(const QEvent& event) {
    MenuLoop* loop = MenuLoop::Running();
    if (loop == nullptr) {
        return false;
    }
    const auto& mouse = static_cast<const QMouseEvent&>(event);
    const QPoint place = mouse.globalPosition().toPoint();
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick: return loop->MousePressed(place);
        case QEvent::MouseButtonRelease: loop->MouseReleased(place); return true;
        case QEvent::MouseMove: loop->MouseMoved(place); return true;
        default: return false;
    }
}

bool IsMouse(const QEvent& event) {
    return event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonRelease ||
           event.type() == QEvent::MouseButtonDblClick || event.type() == QEvent::MouseMove;
}

}  // namespace

// --- The bar

MenuBarWidget::MenuBarWidget(HWND handle, HMENU menu, QWidget* parent) : QMenuBar(parent), handle(handle), menu(menu) {
    setNativeMenuBar(false);
    setStyle(StyleOfMenus());
    setMouseTracking(true);
    setFocusPolicy(Qt::NoFocus);
    // Items that do not fit wrap, so there is nothing for Qt's own button to offer.
    for (QAbstractButton* button : findChildren<QAbstractButton*>()) {
        button->setMaximumSize(0, 0);
    }
    std::vector<MenuEntry>& entries = FindMenu(menu)->entries;
    const auto help =
        std::find_if(entries.begin(), entries.end(), [](const MenuEntry& entry) { return (entry.type & MF_HELP) != 0; });
    firstAtRight = static_cast<int>(help - entries.begin());
    for (MenuEntry& entry : entries) {
        PopupWidget* popup = entry.popup != nullptr ? new PopupWidget(entry.popup, this) : nullptr;
        popups.push_back(popup);
        entry.action = popup != nullptr ? popup->menuAction() : new QAction(this);
        entry.action->setText(entry.text);
        ShowEntryState(entry);
        addAction(entry.action);
    }
    parent->installEventFilter(this);
}

MenuBarWidget::~MenuBarWidget() {
    DestroyMenu(menu);
}

QSize MenuBarWidget::SizeOfItem(const QAction& action) const {
    QStyleOptionMenuItem option;
    initStyleOption(&option, &action);
    const QSize text = fontMetrics().size(Qt::TextShowMnemonic, action.text());
    return style()->sizeFromContents(QStyle::CT_MenuBarItem, &option, text, this);
}

int MenuBarWidget::LayOut(int width, std::vector<QRect>& places) const {
    const int frame = style()->pixelMetric(QStyle::PM_MenuBarPanelWidth, nullptr, this);
    const int left = frame + style()->pixelMetric(QStyle::PM_MenuBarHMargin, nullptr, this);
    const int top = frame + style()->pixelMetric(QStyle::PM_MenuBarVMargin, nullptr, this);
    const int spacing = style()->pixelMetric(QStyle::PM_MenuBarItemSpacing, nullptr, this);
    int rowHeight = 0;
    for (const QAction* action : actions()) {
        rowHeight = std::max(rowHeight, SizeOfItem(*action).height());
    }
    int x = left;
    int y = top;
    for (const QAction* action : actions()) {
        const int itemWidth = SizeOfItem(*action).width();
        if (x > left && x + itemWidth > width - left) {
            x = left;
            y += rowHeight;
        }
        places.emplace_back(x, y, itemWidth, rowHeight);
        x += itemWidth + spacing;
    }
    // Of the items at the right those in the last row move, which is all of them unless the bar is very narrow.
    const int gap = places.empty() ? 0 : width - left - places.back().right() - 1;
    for (std::size_t i = static_cast<std::size_t>(firstAtRight); i < places.size(); ++i) {
        if (places[i].y() == y) {
            places[i].translate(std::max(gap, 0), 0);
        }
    }
    return y + rowHeight + top;
}

int MenuBarWidget::heightForWidth(int width) const {
    std::vector<QRect> places;
    return LayOut(width, places);
}

void MenuBarWidget::Place() {
    const int across = parentWidget()->width();
    setGeometry(0, 0, across, heightForWidth(across));
}

QRect MenuBarWidget::ItemRect(int item) const {
    std::vector<QRect> places;
    LayOut(width(), places);
    return places.at(static_cast<std::size_t>(item));
}

int MenuBarWidget::ItemAt(QPoint place) const {
    std::vector<QRect> places;
    LayOut(width(), places);
    const auto found = std::find_if(places.begin(), places.end(), [place](const QRect& r) { return r.contains(place); });
    return found != places.end() ? static_cast<int>(found - places.begin()) : -1;
}

void MenuBarWidget::Highlight(int item) {
    if (highlighted != item) {
        highlighted = item;
        update();
    }
}

void MenuBarWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    std::vector<QRect> places;
    LayOut(width(), places);
    QStyleOptionMenuItem option;
    option.initFrom(this);
    option.menuItemType = QStyleOptionMenuItem::EmptyArea;
    option.checkType = QStyleOptionMenuItem::NotCheckable;
    option.rect = rect();
    option.menuRect = rect();
    style()->drawControl(QStyle::CE_MenuBarEmptyArea, &option, &painter, this);
    if (const int frame = style()->pixelMetric(QStyle::PM_MenuBarPanelWidth, nullptr, this)) {
        QStyleOptionFrame edge;
        edge.initFrom(this);
        edge.lineWidth = frame;
        style()->drawPrimitive(QStyle::PE_PanelMenuBar, &edge, &painter, this);
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        QStyleOptionMenuItem item;
        initStyleOption(&item, actions().at(static_cast<int>(i)));
        item.rect = places[i];
        if (static_cast<int>(i) == highlighted) {
            item.state |= QStyle::State_Selected | QStyle::State_Sunken | QStyle::State_HasFocus;
        }
        painter.setClipRect(item.rect);
        style()->drawControl(QStyle::CE_MenuBarItem, &item, &painter, this);
    }
}

bool MenuBarWidget::event(QEvent* event) {
    if (!IsMouse(*event)) {
        return QMenuBar::event(event);
    }
    const auto& mouse = static_cast<const QMouseEvent&>(*event);
    const bool press = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    if (!GiveMouseToLoop(*event) && press && mouse.button() == Qt::LeftButton && !HasStyle(handle, WS_DISABLED)) {
        constexpr WPARAM kOnMenu = 5;
        const QPoint place = mouse.globalPosition().toPoint();
        PostMessageA(handle, WM_SYSCOMMAND, kMouseMenuCommand | kOnMenu,
                     MAKELPARAM(static_cast<WORD>(place.x()), static_cast<WORD>(place.y())));
    }
    event->accept();
    return true;
}

bool MenuBarWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        Place();
    }
    // Not QMenuBar's filter, which waits for Alt.
    return false;
}

// --- A popup

PopupWidget::PopupWidget(HMENU menu, MenuBarWidget* bar) : QMenu(bar), topLevel(*bar->window()) {
    setStyle(StyleOfMenus());
    for (MenuEntry& entry : FindMenu(menu)->entries) {
        if (entry.popup != nullptr) {
            kernel::Unsupported("a popup in a popup of a menu");
        }
        entry.action = addAction(entry.text);
        entry.action->setSeparator(entry.IsSeparator());
        ShowEntryState(entry);
    }
}

int PopupWidget::ItemAt(QPoint place) const {
    return rect().contains(place) ? static_cast<int>(actions().indexOf(actionAt(place))) : -1;
}

void PopupWidget::Highlight(int item) {
    QAction* action = item >= 0 ? actions().at(item) : nullptr;
    setActiveAction(action != nullptr && !action->isSeparator() ? action : nullptr);
}

bool PopupWidget::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::ShortcutOverride: event->accept(); return true;
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::InputMethod:
            // The window's keys, in one order with those that came before the popup: they become messages, which the loop
            // takes from the queue.
            return QCoreApplication::sendEvent(&topLevel, event);
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
            GiveMouseToLoop(*event);
            event->accept();
            return true;
        case QEvent::Enter:
        case QEvent::Leave:
        case QEvent::ContextMenu: return true;
        case QEvent::Hide:
            if (MenuLoop* loop = MenuLoop::Running()) {
                loop->PopupHidden(*this);
            }
            return QMenu::event(event);
        default: return QMenu::event(event);
    }
}

// --- The window's side

void AttachMenu(ScreenWindow& window, HMENU menu, LPCSTR nameInClass) {
    window.menu = menu == nullptr && nameInClass != nullptr ? LoadMenuA(nullptr, nameInClass) : menu;
    if (FindMenu(window.menu) != nullptr) {
        auto* bar = new MenuBarWidget(window.handle, window.menu, window.widget);
        bar->Place();
        window.menuBar = bar;
    }
}

void OpenMenu(const ScreenWindow& window, WPARAM command, LPARAM lParam) {
    if (window.menuBar == nullptr || MenuLoop::Running() != nullptr) {
        return;
    }
    if (command == SC_KEYMENU) {
        MenuLoop(window.handle).RunByKey(static_cast<char>(lParam));
    } else if (command == kMouseMenuCommand) {
        const auto place = static_cast<DWORD_PTR>(lParam);
        MenuLoop(window.handle).RunByMouse(QPoint(static_cast<SHORT>(LOWORD(place)), static_cast<SHORT>(HIWORD(place))));
    }
}

}  // namespace desktop
