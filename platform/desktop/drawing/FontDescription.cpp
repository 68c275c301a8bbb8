// Fonts as LOGFONTA describes them.
#include <QFontInfo>
#include <QRawFont>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

#include "CodePage.h"
#include "FontFace.h"
#include "FontFamilies.h"
#include "GdiObjects.h"
#include "ObjectTable.h"

namespace drawing {

namespace {

constexpr int kDefaultHeight = 16;
constexpr int kLargestSize = 1024;

QFont WithSize(QFont font, int pixelSize) {
    font.setPixelSize(pixelSize);
    return font;
}

int CellHeight(const QFont& font) {
    const CellReach reach = ReachOf(QRawFont::fromFont(font));
    return reach.above + reach.below;
}

// The largest size whose characters, with what they reach below the base line, fit that height.
int SizeForCell(const QFont& font, int height) {
    int size = height;
    while (size > 1 && CellHeight(WithSize(font, size)) > height) {
        --size;
    }
    return size;
}

// In the code page, cut off behind a whole character if it is too long.
std::string FittingName(QString family) {
    std::optional<std::string> name = kernel::FromUtf8(family.toStdString());
    while (name && name->size() >= LF_FACESIZE) {
        family.chop(1);
        name = kernel::FromUtf8(family.toStdString());
    }
    return name.value_or("MS Shell Dlg");
}

}  // namespace

QFont MakeFont(const LOGFONTA& description) {
    QFont font;
    font.setFamilies(FamiliesFor(description));
    const int weight = description.lfWeight == 0 ? FW_NORMAL : std::clamp<int>(description.lfWeight, 1, 1000);
    font.setWeight(static_cast<QFont::Weight>(weight));
    font.setItalic(description.lfItalic != 0);
    font.setUnderline(description.lfUnderline != 0);
    font.setStrikeOut(description.lfStrikeOut != 0);
    font.setHintingPreference(QFont::PreferFullHinting);
    const LONG height = std::clamp(description.lfHeight, -kLargestSize, kLargestSize);
    font.setPixelSize(height < 0 ? -height : SizeForCell(font, height == 0 ? kDefaultHeight : height));
    return font;
}

LOGFONTA DescribeFont(const QFont& font) {
    const QFontInfo info(font);
    LOGFONTA description{};
    description.lfHeight = -std::max(1, info.pixelSize());
    description.lfWeight = font.weight();
    description.lfItalic = font.italic();
    description.lfUnderline = font.underline();
    description.lfStrikeOut = font.strikeOut();
    description.lfCharSet = kernel::CodePage() == kernel::kJapanesePage ? SHIFTJIS_CHARSET : ANSI_CHARSET;
    description.lfPitchAndFamily = info.fixedPitch() ? FIXED_PITCH | FF_MODERN : VARIABLE_PITCH | FF_SWISS;
    const std::string face = FittingName(font.family());
    std::copy(face.begin(), face.end(), description.lfFaceName);
    return description;
}

}  // namespace drawing

using namespace drawing;

HFONT CreateFontIndirectA(const LOGFONTA* description) {
    return description != nullptr ? static_cast<HFONT>(AddObject(std::make_unique<FontFace>(*description))) : nullptr;
}

int GetObjectA(HANDLE object, int size, LPVOID buffer) {
    const FontFace* face = Find<FontFace>(object);
    if (face == nullptr) {
        return 0;
    }
    if (buffer == nullptr) {
        return sizeof(LOGFONTA);
    }
    const int copied = std::clamp<int>(size, 0, sizeof(LOGFONTA));
    std::memcpy(buffer, &face->description, static_cast<std::size_t>(copied));
    return copied;
}
