#include "ListAccess.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWidget>
#include <vector>

#include "Controls.h"
#include "Desktop.h"
#include "ListBox.h"
#include "Text.h"
#include "Widgets.h"

namespace desktop {

namespace {

// The fields of a row, which tabs part, one behind the other, and a mark of drawing as the letter that it stands for.
QString ReadOut(const std::string& text) {
    return ToQString(text).replace('\t', ' ').replace("&&", "&").simplified();
}

// The n-th row, whichever that is at the time. Belongs to the list's interface.
class RowAccess : public QAccessibleInterface {
public:
    RowAccess(QWidget& widget, int index) : widget(widget), index(index) {}

    bool isValid() const override {
        const ListBox* list = List();
        return list != nullptr && list->rows.Has(index);
    }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(&widget); }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    void setText(QAccessible::Text, const QString&) override {}

    QString text(QAccessible::Text kind) const override {
        return isValid() && kind == QAccessible::Name ? ReadOut(List()->rows.Text(index)) : QString();
    }

    QRect rect() const override {
        if (!isValid()) {
            return {};
        }
        const RECT row = RowRect(HandleOfWidget(widget), index);
        const ScreenWindow* window = Desktop::Get().Find(HandleOfWidget(widget));
        const QPoint corner = widget.mapToGlobal(QPoint(window->client.left + row.left, window->client.top + row.top));
        return {corner, QSize(row.right - row.left, row.bottom - row.top)};
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        const ListBox* list = List();
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        const QRect inSight(widget.mapToGlobal(QPoint()), widget.size());
        state.selectable = true;
        state.focusable = true;
        state.selected = index == list->selected;
        state.focused = list->hasFocus && index == list->focusRow;
        state.disabled = !widget.isEnabled();
        state.offscreen = !inSight.intersects(rect());
        state.invisible = !widget.isVisible();
        return state;
    }

private:
    const ListBox* List() const { return FindList(HandleOfWidget(widget)); }

    QWidget& widget;
    const int index;
};

// Its children are the rows, and behind them what windows stand in it, such as an edit.
class ListAccess : public QAccessibleWidget {
public:
    explicit ListAccess(QWidget* widget) : QAccessibleWidget(widget, QAccessible::List) {}
    ~ListAccess() override {
        for (const QAccessible::Id row : rows) {
            if (row != 0) {
                QAccessible::deleteAccessibleInterface(row);
            }
        }
    }

    // A list shows its own text nowhere.
    QString text(QAccessible::Text kind) const override {
        const ScreenWindow* window = Desktop::Get().Find(HandleOfWidget(*widget()));
        return kind == QAccessible::Name && window != nullptr ? ToQString(window->text) : QAccessibleWidget::text(kind);
    }

    int childCount() const override { return Count() + QAccessibleWidget::childCount(); }

    QAccessibleInterface* child(int index) const override {
        return index >= 0 && index < Count() ? Row(index) : QAccessibleWidget::child(index - Count());
    }

    int indexOfChild(const QAccessibleInterface* wanted) const override {
        for (std::size_t index = 0; index < rows.size(); ++index) {
            if (rows[index] != 0 && QAccessible::accessibleInterface(rows[index]) == wanted) {
                return static_cast<int>(index);
            }
        }
        const int other = QAccessibleWidget::indexOfChild(wanted);
        return other < 0 ? other : other + Count();
    }

    QAccessibleInterface* childAt(int x, int y) const override {
        if (QAccessibleInterface* inside = QAccessibleWidget::childAt(x, y)) {
            return inside;
        }
        for (int index = 0; index < Count(); ++index) {
            if (Row(index)->rect().contains(x, y)) {
                return Row(index);
            }
        }
        return nullptr;
    }

    QAccessibleInterface* focusChild() const override {
        const ListBox* list = List();
        return list != nullptr && list->hasFocus && list->rows.Has(list->focusRow) ? Row(list->focusRow)
                                                                                   : QAccessibleWidget::focusChild();
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.focusable = true;
        return state;
    }

private:
    ListBox* List() const { return FindList(HandleOfWidget(*widget())); }
    int Count() const { return List() != nullptr ? List()->rows.Count() : 0; }

    QAccessibleInterface* Row(int index) const {
        if (rows.size() <= static_cast<std::size_t>(index)) {
            rows.resize(static_cast<std::size_t>(index) + 1);
        }
        QAccessible::Id& row = rows[static_cast<std::size_t>(index)];
        if (row == 0) {
            // From here on the interface belongs to Qt, until it is deleted by its number.
            row = QAccessible::registerAccessibleInterface(new RowAccess(*widget(), index));  // NOLINT
        }
        return QAccessible::accessibleInterface(row);
    }

    mutable std::vector<QAccessible::Id> rows;  // 0 for one that was never asked for
};

QAccessibleInterface* MakeAccess(const QString&, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    const HWND handle = widget != nullptr ? HandleOfWidget(*widget) : nullptr;
    return handle != nullptr && IsClass(handle, "LISTBOX") ? new ListAccess(widget) : nullptr;
}

QAccessibleInterface* AccessOf(HWND list) {
    const ScreenWindow* window = QAccessible::isActive() ? Desktop::Get().Find(list) : nullptr;
    return window != nullptr ? QAccessible::queryAccessibleInterface(window->widget) : nullptr;
}

}  // namespace

void OfferListAccess() {
    QAccessible::installFactory(MakeAccess);
}

QString SelectedRowText(HWND list) {
    const ListBox* box = IsClass(list, "LISTBOX") ? FindList(list) : nullptr;
    return box != nullptr && box->rows.Has(box->selected) ? ReadOut(box->rows.Text(box->selected)) : QString();
}

void TellSelectedRow(HWND list) {
    QAccessibleInterface* access = IsClass(list, "LISTBOX") ? AccessOf(list) : nullptr;
    const ListBox* box = access != nullptr ? FindList(list) : nullptr;
    if (box == nullptr || !box->rows.Has(box->selected)) {
        return;
    }
    QAccessibleInterface* row = access->child(box->selected);
    QAccessibleEvent selected(row, QAccessible::Selection);
    QAccessible::updateAccessibility(&selected);
    if (box->hasFocus) {
        QAccessibleEvent focused(row, QAccessible::Focus);
        QAccessible::updateAccessibility(&focused);
    }
}

void TellRows(HWND list) {
    if (QAccessibleInterface* access = AccessOf(list)) {
        QAccessibleEvent changed(access, QAccessible::ObjectReorder);
        QAccessible::updateAccessibility(&changed);
    }
}

}  // namespace desktop
