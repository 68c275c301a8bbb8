// The widget behind the class "EDIT": a line edit that text enters only where the edit's procedure lets it.
#pragma once

#include <windows.h>

#include <QLineEdit>
#include <string>

namespace desktop {

// Positions are told in bytes of the code page, and always stand between two characters.
class EditWidget : public QLineEdit {
public:
    EditWidget(QWidget* parent, DWORD style, DWORD exStyle);

    std::string Bytes() const;
    int ByteLength() const;
    int SelectedBytes() const;
    struct Range {
        int first;
        int end;
    };
    // Both are where the cursor is if nothing is selected.
    Range Selected() const;
    // The cursor stands at the second position afterwards. Positions behind the end mean the end.
    void Select(int anchor, int cursor);

    // The position in characters below a point of the widget.
    void PutCursorAt(QPoint point);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int BytesBefore(int position) const;
    int PositionOf(int bytes) const;

    const bool bordered;
};

}  // namespace desktop
