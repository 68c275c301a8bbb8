#include "EditWidget.h"

#include <QFocusEvent>
#include <QPainter>

#include "Text.h"

namespace desktop {

EditWidget::EditWidget(QWidget* parent, DWORD style, DWORD exStyle) : QLineEdit(parent), bordered((style & WS_BORDER) != 0) {
    // A style's own frame takes more room than an edit in a row of a list has.
    setFrame((exStyle & WS_EX_CLIENTEDGE) != 0);
    if (bordered) {
        setTextMargins(1, 1, 1, 1);
    }
    setAlignment(((style & ES_RIGHT) != 0 ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    // As on Windows nothing is dropped into an edit.
    setAcceptDrops(false);
}

std::string EditWidget::Bytes() const {
    return FromQString(text());
}

int EditWidget::ByteLength() const {
    return static_cast<int>(Bytes().size());
}

int EditWidget::SelectedBytes() const {
    return static_cast<int>(FromQString(selectedText()).size());
}

int EditWidget::BytesBefore(int position) const {
    return static_cast<int>(FromQString(text().left(position)).size());
}

// A position within a character counts as the one before it.
int EditWidget::PositionOf(int bytes) const {
    const QString whole = text();
    int passed = 0;
    for (int i = 0; i < whole.size(); ++i) {
        passed += static_cast<int>(FromQString(whole.mid(i, 1)).size());
        if (passed > bytes) {
            return i;
        }
    }
    return static_cast<int>(whole.size());
}

EditWidget::Range EditWidget::Selected() const {
    if (!hasSelectedText()) {
        const int cursor = BytesBefore(cursorPosition());
        return {cursor, cursor};
    }
    return {BytesBefore(selectionStart()), BytesBefore(selectionEnd())};
}

void EditWidget::Select(int anchor, int cursor) {
    const int from = PositionOf(anchor);
    const int to = PositionOf(cursor);
    if (from == to) {
        setCursorPosition(to);
        deselect();
    } else {
        setSelection(from, to - from);
    }
}

void EditWidget::PutCursorAt(QPoint point) {
    setCursorPosition(cursorPositionAt(point));
}

void EditWidget::focusInEvent(QFocusEvent* event) {
    setPalette({});
    QLineEdit::focusInEvent(event);
}

// What is selected stays so without the focus, and shows again with it. Qt forgets it for most reasons.
void EditWidget::focusOutEvent(QFocusEvent* event) {
    QFocusEvent keeping(event->type(), Qt::ActiveWindowFocusReason);
    QLineEdit::focusOutEvent(&keeping);
    if (event->reason() != Qt::PopupFocusReason) {
        QPalette hidden = palette();
        hidden.setBrush(QPalette::Highlight, hidden.base());
        hidden.setBrush(QPalette::HighlightedText, hidden.text());
        setPalette(hidden);
    }
}

void EditWidget::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    if (bordered) {
        QPainter painter(this);
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

}  // namespace desktop
