#include "Pictures.h"

#include <QApplication>
#include <QBuffer>
#include <QFileDialog>
#include <QLineEdit>
#include <QPainter>
#include <QWidget>
#include <algorithm>

#include "Desktop.h"

namespace desktop {

namespace {

constexpr int kMargin = 16;
constexpr int kCaptionHeight = 22;
constexpr QRgb kBackground = 0xFF246E96;

bool HasCaption(const QWidget& widget) {
    const Qt::WindowType type = widget.windowType();
    return (type == Qt::Window || type == Qt::Dialog) && !widget.windowFlags().testFlag(Qt::FramelessWindowHint);
}

QRect PlaceOf(const QWidget& widget) {
    return widget.geometry().adjusted(0, HasCaption(widget) ? -kCaptionHeight : 0, 0, 0);
}

// From the back to the front; what is none of the desktop's windows, such as a menu or a chooser, stands before them.
std::vector<QWidget*> VisibleWidgets() {
    std::vector<QWidget*> visible;
    const auto& windows = Desktop::Get().TopLevel();
    std::for_each(windows.rbegin(), windows.rend(), [&](const ScreenWindow* window) {
        if (window->widget->isVisible()) {
            visible.push_back(window->widget);
        }
    });
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && std::find(visible.begin(), visible.end(), widget) == visible.end()) {
            visible.push_back(widget);
        }
    }
    return visible;
}

void Draw(QPainter& painter, QWidget& widget) {
    const QRect place = widget.geometry();
    painter.drawPixmap(place.topLeft(), widget.grab());
    if (HasCaption(widget)) {
        const QRect caption(place.left(), place.top() - kCaptionHeight, place.width(), kCaptionHeight);
        const QPalette palette = QApplication::palette();
        painter.fillRect(caption, palette.color(QPalette::Highlight));
        painter.setPen(palette.color(QPalette::HighlightedText));
        painter.drawText(caption, Qt::AlignCenter, widget.windowTitle());
    }
}

}  // namespace

std::string PictureOfWindows() {
    const std::vector<QWidget*> widgets = VisibleWidgets();
    QRect bounds;
    for (const QWidget* widget : widgets) {
        bounds |= PlaceOf(*widget);
    }
    if (bounds.isEmpty()) {
        return {};
    }
    bounds.adjust(-kMargin, -kMargin, kMargin, kMargin);
    QImage image(bounds.size(), QImage::Format_RGB32);
    image.fill(kBackground);
    QPainter painter(&image);
    painter.translate(-bounds.topLeft());
    for (QWidget* widget : widgets) {
        Draw(painter, *widget);
    }
    painter.end();
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    image.save(&file, "PNG");
    return file.data().toStdString();
}

bool ChooseFile(const std::string& name) {
    auto* chooser = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (chooser == nullptr && widget->isVisible()) {
            chooser = qobject_cast<QFileDialog*>(widget);
        }
    }
    auto* edit = chooser != nullptr ? chooser->findChild<QLineEdit*>("fileNameEdit") : nullptr;
    if (edit == nullptr) {
        return false;
    }
    edit->setText(QString::fromStdString(name));
    // Not from inside: pressing the button ends the chooser.
    QMetaObject::invokeMethod(chooser, "accept", Qt::QueuedConnection);
    return true;
}

}  // namespace desktop
