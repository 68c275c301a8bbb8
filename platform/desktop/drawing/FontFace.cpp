#include "FontFace.h"

#include <QFontInfo>

#include <algorithm>
#include <cmath>

#include "GdiObjects.h"

namespace drawing {

namespace {

std::vector<QRawFont> LoadFaces(const QFont& font, int pixelSize) {
    std::vector<QRawFont> faces;
    for (const QString& family : font.families()) {
        QFont single(font);
        single.setFamilies({family});
        single.setPixelSize(pixelSize);
        // Each face answers for itself alone, and full hinting makes its widths whole pixels.
        single.setStyleStrategy(QFont::NoFontMerging);
        single.setHintingPreference(QFont::PreferFullHinting);
        faces.push_back(QRawFont::fromFont(single));
    }
    return faces;
}

// A measure in the units of the face, from the table that Windows reads (usWinAscent at 74, usWinDescent at 76, both above
// zero); 0 if there is none.
qreal WindowsMeasure(const QRawFont& face, qsizetype offset) {
    const QByteArray table = face.fontTable("OS/2");
    if (table.size() < offset + 2 || face.unitsPerEm() <= 0) {
        return 0;
    }
    const int units = static_cast<unsigned char>(table[offset]) << 8 | static_cast<unsigned char>(table[offset + 1]);
    return units * face.pixelSize() / face.unitsPerEm();
}

}  // namespace

CellReach ReachOf(const QRawFont& face) {
    const qreal above = WindowsMeasure(face, 74);
    const qreal below = WindowsMeasure(face, 76);
    // Faces for formulas tell the height of their largest sign.
    const bool isUsable = above > 0 && above + below <= 2 * face.pixelSize();
    return {qRound(isUsable ? above : face.ascent()), qRound(isUsable ? below : face.descent())};
}

FontFace::FontFace(const LOGFONTA& description)
    : Object(kKind), description(description), font(MakeFont(description)), faces(LoadFaces(font, font.pixelSize())) {
    const QRawFont& first = faces.front();
    const CellReach reach = ReachOf(first);
    ascent = reach.above;
    descent = reach.below;
    internalLeading = std::max(0, Height() - font.pixelSize());
    externalLeading = std::max(0, qRound(first.leading()));
    averageWidth = std::max(1, qRound(first.averageCharWidth()));
    lineThickness = std::max(1, qRound(first.lineThickness()));
    underlineOffset = std::clamp(qRound(first.underlinePosition()), 1, std::max(1, descent - lineThickness));
    strikeOutOffset = std::max(1, ascent / 3);
}

FontFace::Glyph FontFace::FindGlyph(char32_t character) const {
    const char32_t shown = character < 0x20 || (character >= 0x7F && character < 0xA0) ? U' ' : character;
    const QString text = QString::fromUcs4(&shown, 1);
    int face = 0;
    while (face < static_cast<int>(faces.size()) && !faces[static_cast<std::size_t>(face)].supportsCharacter(shown)) {
        ++face;
    }
    if (face == static_cast<int>(faces.size())) {
        face = 0;
    }
    const QRawFont& raw = faces[static_cast<std::size_t>(face)];
    const quint32 index = raw.glyphIndexesForString(text).value(0);
    const QList<QPointF> advances = raw.advancesForGlyphIndexes({index});
    return {face, index, std::max(0, qRound(advances.value(0).x()))};
}

FontFace::Glyph FontFace::GlyphOf(char32_t character) {
    const auto known = glyphs.find(character);
    return known != glyphs.end() ? known->second : glyphs.emplace(character, FindGlyph(character)).first->second;
}

const QRawFont& FontFace::Face(int face, qreal scale) {
    if (scale == 1) {
        return faces[static_cast<std::size_t>(face)];
    }
    if (scale != scaledFor) {
        // Rounded down, so that no glyph leaves its cell.
        scaledFaces = LoadFaces(font, std::max(1, static_cast<int>(std::floor(font.pixelSize() * scale))));
        scaledFor = scale;
    }
    return scaledFaces[static_cast<std::size_t>(face)];
}

QFont FontOf(HFONT font) {
    if (const FontFace* face = Find<FontFace>(font)) {
        return face->font;
    }
    const FontFace* system = Find<FontFace>(GetStockObject(SYSTEM_FONT));
    return system != nullptr ? system->font : QFont();
}

}  // namespace drawing
