// A font in use: its measures and its glyphs.
#pragma once

#include <windows.h>

#include <QFont>
#include <QRawFont>

#include <unordered_map>
#include <vector>

#include "ObjectTable.h"

namespace drawing {

// What a face reaches above and below the base line, in whole pixels: as on Windows, what its designer tells Windows, which
// is where letters are cut off. Other measures of the same face may be for the distance of lines and leave less room.
struct CellReach {
    int above;
    int below;
};
CellReach ReachOf(const QRawFont& face);

// Like the fonts of Windows it is as wide as whole pixels: each character has the same width wherever it stands.
class FontFace : public Object {
public:
    static constexpr Kind kKind = Kind::kFont;
    explicit FontFace(const LOGFONTA& description);

    struct Glyph {
        int face;       // which of the families has it
        quint32 index;  // in that face
        int advance;    // logical pixels
    };
    // What no family has is the first one's sign for it; control characters are blanks.
    Glyph GlyphOf(char32_t character);

    // A family's glyphs for an image of that scale.
    const QRawFont& Face(int face, qreal scale);

    int Height() const { return ascent + descent; }

    const LOGFONTA description;
    const QFont font;
    int ascent = 0;
    int descent = 0;
    int internalLeading = 0;
    int externalLeading = 0;
    int averageWidth = 0;
    int underlineOffset = 0;  // below the base line
    int strikeOutOffset = 0;  // above the base line
    int lineThickness = 0;

private:
    Glyph FindGlyph(char32_t character) const;

    std::vector<QRawFont> faces;  // one a family, in the size of the font
    std::unordered_map<char32_t, Glyph> glyphs;
    std::vector<QRawFont> scaledFaces;
    qreal scaledFor = 0;
};

}  // namespace drawing
