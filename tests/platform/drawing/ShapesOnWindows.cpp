// Prints the shapes as Windows draws them, into a bitmap in memory. The output is kept beside this file, as shapes.txt; the
// one that is there comes from Wine 8.0.
#include <cstdio>

#include "Shapes.h"

int main() {
    for (const Shape& shape : Shapes()) {
        const HDC dc = CreateCompatibleDC(nullptr);
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof(info.bmiHeader);
        info.bmiHeader.biWidth = shape.width;
        info.bmiHeader.biHeight = -shape.height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* pixels = nullptr;
        const HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
        const HGDIOBJ before = SelectObject(dc, bitmap);
        std::printf("[%s]\n%s", shape.name, DrawShape(dc, shape).c_str());
        SelectObject(dc, before);
        DeleteObject(bitmap);
        DeleteDC(dc);
    }
}
