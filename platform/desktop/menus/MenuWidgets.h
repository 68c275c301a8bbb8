// The widgets of menus. They only show: MenuLoop decides what is highlighted and open, and gets all that the user does.
#pragma once

#include <windows.h>

#include <QMenu>
#include <QMenuBar>
#include <vector>

namespace desktop {

class PopupWidget;

// A bar whose items wrap to as many rows as the width asks for, those from the one with MF_HELP on at the far right of their
// row. One for the menu handle that it is made for; popups are made with it.
class MenuBarWidget : public QMenuBar {
public:
    MenuBarWidget(HWND handle, HMENU menu, QWidget* parent);
    ~MenuBarWidget() override;

    int heightForWidth(int width) const override;
    void Place();

    // -1 for no item. The rest takes positions in the menu.
    int ItemAt(QPoint place) const;
    QRect ItemRect(int item) const;
    // Null for an item without a popup.
    PopupWidget* PopupOf(int item) const { return popups.at(static_cast<std::size_t>(item)); }
    void Highlight(int item);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QSize SizeOfItem(const QAction& action) const;
    // The items' places at a width, and the height that they take.
    int LayOut(int width, std::vector<QRect>& places) const;

    const HWND handle;
    const HMENU menu;
    std::vector<PopupWidget*> popups;  // as many as items, null for an item without
    int firstAtRight;                  // the first item with MF_HELP, or the number of items
    int highlighted = -1;
};

class PopupWidget : public QMenu {
public:
    PopupWidget(HMENU menu, MenuBarWidget* bar);

    // -1 beside all items, and for no highlight.
    int ItemAt(QPoint place) const;
    void Highlight(int item);

protected:
    bool event(QEvent* event) override;

private:
    QWidget& topLevel;
};

}  // namespace desktop
