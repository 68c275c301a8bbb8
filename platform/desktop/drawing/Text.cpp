// Text and its measures.
#include <algorithm>
#include <cassert>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Canvas.h"
#include "CodePage.h"
#include "DeviceContext.h"
#include "FontFace.h"
#include "ObjectTable.h"

namespace drawing {

namespace {

constexpr int kTabColumns = 8;
constexpr qint64 kWidest = std::numeric_limits<int>::max();

// From the start of the line, in logical pixels.
struct Span {
    int left;
    int right;
};

struct Line {
    std::vector<PlacedGlyph> glyphs;
    std::vector<Span> cells;     // what the glyphs stand in; a tab leaves a gap
    std::optional<Span> marked;  // the character behind a "&"
    int width = 0;
};

// Builds a line character by character.
class LineMaker {
public:
    explicit LineMaker(FontFace& font) : font(font) {}

    void Put(char32_t character) {
        const FontFace::Glyph glyph = font.GlyphOf(character);
        line.glyphs.push_back({glyph.face, glyph.index, line.width});
        const int right = static_cast<int>(std::min(kWidest, qint64{line.width} + glyph.advance));
        if (line.cells.empty() || line.cells.back().right != line.width) {
            line.cells.push_back({line.width, right});
        } else {
            line.cells.back().right = right;
        }
        if (markNext) {
            line.marked = Span{line.width, right};
            markNext = false;
        }
        line.width = right;
    }

    void Tab() {
        const qint64 stop = qint64{kTabColumns} * font.averageWidth;
        line.width = static_cast<int>(std::min(kWidest, (line.width / stop + 1) * stop));
    }

    void MarkNext() { markNext = true; }

    Line Take() { return std::move(line); }

private:
    FontFace& font;
    Line line;
    bool markNext = false;
};

std::u32string Decoded(LPCSTR text, int length) {
    const std::string_view bytes =
        length < 0 ? std::string_view(text) : std::string_view(text, static_cast<std::size_t>(length));
    return QString::fromStdString(kernel::ToUtf8(bytes)).toStdU32String();
}

// All characters as they stand.
Line PlainLine(FontFace& font, const std::u32string& text) {
    LineMaker maker(font);
    for (const char32_t character : text) {
        maker.Put(character);
    }
    return maker.Take();
}

Line FormattedLine(FontFace& font, const std::u32string& text, bool expandTabs) {
    LineMaker maker(font);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == U'\t' && expandTabs) {
            maker.Tab();
        } else if (text[i] == U'&' && i + 1 < text.size() && text[i + 1] == U'&') {
            maker.Put(text[++i]);
        } else if (text[i] == U'&' && i + 1 < text.size()) {
            maker.MarkNext();
        } else {
            maker.Put(text[i]);
        }
    }
    return maker.Take();
}

// The line with its left end and its top there; no more than `area` of it.
void DrawLine(DeviceContext& context, const Line& line, qint64 left, qint64 top, const QRect& area) {
    FontFace& font = context.Font();
    const QRect visible = Area(left, top, left + line.width, top + font.Height()) & area & context.canvas.ClipBounds();
    if (visible.isEmpty()) {
        return;
    }
    // What is visible lies within the image, so the line begins at most its own width away from it.
    const auto draw = [&](const Span& span, qint64 below, qint64 height, COLORREF color) {
        const qint64 spanTop = top + below;
        context.canvas.Fill(Area(left + span.left, spanTop, left + span.right, spanTop + height) & area, ToRgb(color));
    };
    for (const Span& cell : line.cells) {
        draw(cell, 0, font.Height(), context.backgroundColor);
    }
    const QPoint start(static_cast<int>(left), static_cast<int>(top) + font.ascent);
    context.canvas.Glyphs(font, line.glyphs, start, area, ToRgb(context.textColor));
    for (const Span& cell : line.cells) {
        if (font.font.underline()) {
            draw(cell, font.ascent + font.underlineOffset, font.lineThickness, context.textColor);
        }
        if (font.font.strikeOut()) {
            draw(cell, font.ascent - font.strikeOutOffset, font.lineThickness, context.textColor);
        }
    }
    if (line.marked) {
        draw(*line.marked, font.ascent + font.underlineOffset, font.lineThickness, context.textColor);
    }
}

}  // namespace

}  // namespace drawing

using namespace drawing;

BOOL GetTextMetricsA(HDC dc, TEXTMETRICA* metrics) {
    const DeviceContext* context = ContextOf(dc);
    if (context == nullptr || metrics == nullptr) {
        return FALSE;
    }
    const FontFace& font = context->Font();
    *metrics = {};
    metrics->tmHeight = font.Height();
    metrics->tmAscent = font.ascent;
    metrics->tmDescent = font.descent;
    metrics->tmInternalLeading = font.internalLeading;
    metrics->tmExternalLeading = font.externalLeading;
    metrics->tmAveCharWidth = font.averageWidth;
    return TRUE;
}

BOOL GetTextExtentPoint32A(HDC dc, LPCSTR text, int length, LPSIZE size) {
    const DeviceContext* context = ContextOf(dc);
    if (context == nullptr || text == nullptr || length < 0 || size == nullptr) {
        return FALSE;
    }
    FontFace& font = context->Font();
    *size = {PlainLine(font, Decoded(text, length)).width, length > 0 ? font.Height() : 0};
    return TRUE;
}

int DrawTextA(HDC dc, LPCSTR text, int length, LPRECT rect, UINT format) {
    assert((format & ~(DT_RIGHT | DT_VCENTER | DT_SINGLELINE | DT_EXPANDTABS)) == 0);
    DeviceContext* context = ContextOf(dc);
    if (context == nullptr || text == nullptr || rect == nullptr || length == 0) {
        return 0;
    }
    FontFace& font = context->Font();
    const Line line = FormattedLine(font, Decoded(text, length), (format & DT_EXPANDTABS) != 0);
    if (line.width == 0) {
        return font.Height();
    }
    qint64 top = rect->top;
    if ((format & DT_VCENTER) != 0 && (format & DT_SINGLELINE) != 0) {
        // Each half is rounded by itself, as on Windows.
        top += (qint64{rect->bottom} - rect->top) / 2 - font.Height() / 2;
    }
    const qint64 left = (format & DT_RIGHT) != 0 ? qint64{rect->right} - line.width : rect->left;
    DrawLine(*context, line, left, top, SortedArea(rect->left, rect->top, rect->right, rect->bottom));
    return static_cast<int>(std::clamp<qint64>(top + font.Height() - rect->top, -kWidest, kWidest));
}
