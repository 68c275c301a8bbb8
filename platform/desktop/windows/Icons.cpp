#include "Icons.h"

#include <QApplication>
#include <QPixmap>
#include <vector>

#include "LastError.h"
#include "Resources.h"

namespace desktop {

namespace {

// Icons stay for the life of the process; a handle is the place in here, counted from 1.
struct LoadedIcon {
    ULONG_PTR name;
    QIcon icon;
};

std::vector<LoadedIcon>& Icons() {
    static auto& icons = *new std::vector<LoadedIcon>;
    return icons;
}

}  // namespace

HICON StandardIcon(QStyle::StandardPixmap which) {
    // Beyond the numbers that resources can have.
    const ULONG_PTR name = 0x10000 + static_cast<ULONG_PTR>(which);
    for (std::size_t i = 0; i < Icons().size(); ++i) {
        if (Icons()[i].name == name) {
            return reinterpret_cast<HICON>(i + 1);
        }
    }
    Icons().push_back({name, QApplication::style()->standardIcon(which)});
    return reinterpret_cast<HICON>(Icons().size());
}

QIcon IconOf(HICON handle) {
    const auto number = reinterpret_cast<ULONG_PTR>(handle);
    return number >= 1 && number <= Icons().size() ? Icons()[number - 1].icon : QIcon();
}

}  // namespace desktop

HICON LoadIconA(HINSTANCE, LPCSTR name) {
    const auto number = reinterpret_cast<ULONG_PTR>(name);
    std::vector<desktop::LoadedIcon>& icons = desktop::Icons();
    for (std::size_t i = 0; i < icons.size(); ++i) {
        if (icons[i].name == number) {
            return reinterpret_cast<HICON>(i + 1);
        }
    }
    QIcon icon;
    for (const kernel::IconImage& image : kernel::IconImages(name)) {
        const QImage picture(reinterpret_cast<const uchar*>(image.pixels.data()), image.width, image.height,
                             QImage::Format_ARGB32);
        icon.addPixmap(QPixmap::fromImage(picture.copy()));
    }
    if (icon.isNull()) {
        kernel::Fail(ERROR_RESOURCE_NAME_NOT_FOUND);
        return nullptr;
    }
    icons.push_back({number, icon});
    return reinterpret_cast<HICON>(icons.size());
}
