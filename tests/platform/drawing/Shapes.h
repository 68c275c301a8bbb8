// Drawings whose every pixel is compared with Windows. They are made through the calls of <windows.h> alone, so that one
// source draws them on the layer and on Windows.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

struct Shape {
    const char* name;
    int width;
    int height;
    void (*draw)(HDC dc);
};

const std::vector<Shape>& Shapes();

// Wipes the device context, draws the shape from 0, 0 and reads it back: a line for each row, with "<times> x " in front of
// equal rows that follow each other, as runs of "<pixels><colour>": "." untouched, "#" ink, "f" face, "b" band, "?" any
// other.
std::string DrawShape(HDC dc, const Shape& shape);
