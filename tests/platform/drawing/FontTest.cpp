// Fonts that stand in for those of Windows.
#include <gtest/gtest.h>

#include <QFontDatabase>
#include <QFontInfo>
#include <QRawFont>

#include <climits>
#include <cstring>
#include <string>

#include "CodePage.h"
#include "FontFace.h"
#include "GdiObjects.h"
#include "Surface.h"

namespace {

LOGFONTA Description(LONG height, const std::string& face, LONG weight = FW_NORMAL) {
    LOGFONTA description{};
    description.lfHeight = height;
    description.lfWeight = weight;
    std::memcpy(description.lfFaceName, face.data(), std::min<std::size_t>(face.size(), LF_FACESIZE));
    return description;
}

TEXTMETRICA MetricsOf(const LOGFONTA& description) {
    TEXTMETRICA metrics{};
    const HFONT font = CreateFontIndirectA(&description);
    {
        const Measure measure;
        SelectObject(measure, font);
        EXPECT_TRUE(GetTextMetricsA(measure, &metrics));
    }
    EXPECT_TRUE(DeleteObject(font));
    return metrics;
}

// What leaves the cell is cut off. The box of a hinted letter is up to a pixel larger than the letter.
TEST(Fonts, LettersFitTheirCells) {
    for (const char* family : {"System", "DejaVu Sans", "IPAGothic", "IPAPGothic"}) {
        for (const LONG height : {12, 16, 20, 33}) {
            drawing::FontFace font(Description(height, family));
            for (const char32_t letter : U"gjpqyQ_(|") {
                const drawing::FontFace::Glyph glyph = font.GlyphOf(letter);
                const QRectF ink = font.Face(glyph.face, 1).boundingRect(glyph.index);
                EXPECT_LE(ink.bottom(), font.descent + 1) << family << ' ' << height << ' ' << static_cast<char>(letter);
            }
        }
    }
}

TEST(Fonts, HaveTheHeightThatWasAskedFor) {
    for (const char* face : {"System", "MS Sans Serif", "Courier", "", "No such face", "DejaVu Sans", "IPAPGothic"}) {
        for (const LONG height : {1, 8, 12, 16, 20, 33, 100}) {
            const TEXTMETRICA cell = MetricsOf(Description(height, face));
            EXPECT_EQ(cell.tmHeight, cell.tmAscent + cell.tmDescent);
            EXPECT_GT(cell.tmAveCharWidth, 0);
            if (height >= 8) {
                EXPECT_LE(cell.tmHeight, height) << face;
                EXPECT_GE(cell.tmHeight, height - 2) << face;
            }
            const LOGFONTA characters = Description(-height, face);
            EXPECT_EQ(drawing::MakeFont(characters).pixelSize(), height);
            const TEXTMETRICA metrics = MetricsOf(characters);
            EXPECT_EQ(metrics.tmHeight - metrics.tmInternalLeading, height) << face;
        }
    }
    for (const LONG height : {INT_MIN, INT_MAX}) {
        EXPECT_GT(MetricsOf(Description(height, "System")).tmHeight, 100);
    }
    const TEXTMETRICA usual = MetricsOf(Description(0, "System"));
    EXPECT_GE(usual.tmHeight, 14);
    EXPECT_LE(usual.tmHeight, 16);
}

TEST(Fonts, FollowTheDescription) {
    LOGFONTA description = Description(-20, "MS Sans Serif", FW_BOLD);
    description.lfItalic = 1;
    description.lfStrikeOut = 255;
    const QFont font = drawing::MakeFont(description);
    EXPECT_EQ(font.weight(), QFont::Bold);
    EXPECT_TRUE(font.italic());
    EXPECT_TRUE(font.strikeOut());
    EXPECT_FALSE(font.underline());
    EXPECT_EQ(drawing::MakeFont(Description(-20, "System", 0)).weight(), QFont::Normal);
    EXPECT_EQ(drawing::MakeFont(Description(-20, "System", -5)).weight(), 1);
    // A name that fills its field has no terminator.
    EXPECT_GT(MetricsOf(Description(-20, std::string(LF_FACESIZE, 'x'))).tmHeight, 0);
    EXPECT_GT(drawing::FontOf(nullptr).pixelSize(), 0);
}

// Some of those that this desktop has, with names that fit a description.
QStringList InstalledFamilies() {
    QStringList found;
    for (const QString& family : QFontDatabase::families()) {
        if (found.size() < 12 && family.size() < LF_FACESIZE && QFontInfo(QFont(family)).family() == family) {
            found.push_back(family);
        }
    }
    return found;
}

bool KnowsJapanese(const QString& family) {
    return QRawFont::fromFont(QFont(family)).supportsCharacter(QChar(0x3042));
}

TEST(Fonts, FindTheFaceOnTheDesktop) {
    const auto family = [](const std::string& face, BYTE charset = ANSI_CHARSET) {
        LOGFONTA description = Description(-16, face);
        description.lfCharSet = charset;
        return drawing::MakeFont(description).families().value(0);
    };
    ASSERT_FALSE(InstalledFamilies().isEmpty());
    for (const QString& installed : InstalledFamilies()) {
        EXPECT_EQ(family(installed.toStdString()), installed);
        EXPECT_EQ(family(installed.toStdString(), SHIFTJIS_CHARSET), installed)
            << "the face counts before the character set";
    }
    EXPECT_EQ(family("System"), family("MS Sans Serif"));
    EXPECT_EQ(family("No such face"), family(""));
    EXPECT_TRUE(QFontInfo(QFont(family("Courier"))).fixedPitch());
    ASSERT_TRUE(KnowsJapanese(QFontDatabase::families(QFontDatabase::Japanese).value(0))) << "no Japanese font installed";
    EXPECT_TRUE(KnowsJapanese(family("MS PGothic")));
    EXPECT_TRUE(KnowsJapanese(family("", SHIFTJIS_CHARSET)));
    // "ＭＳ Ｐゴシック" and "ＭＳ ゴシック" in code page 932.
    kernel::SetCodePage(kernel::kJapanesePage);
    const QString proportional = family("\x82\x6C\x82\x72 \x82\x6F\x83\x53\x83\x56\x83\x62\x83\x4E");
    const QString fixed = family("\x82\x6C\x82\x72 \x83\x53\x83\x56\x83\x62\x83\x4E");
    kernel::SetCodePage(kernel::kWesternPage);
    EXPECT_TRUE(KnowsJapanese(proportional));
    EXPECT_TRUE(KnowsJapanese(fixed));
    // Every font has a second family, so that titles in Japanese are shown in any.
    EXPECT_TRUE(KnowsJapanese(drawing::MakeFont(Description(-16, "System")).families().constLast()));
}

// What the font chooser hands over comes back as the same font.
TEST(Fonts, AreDescribedAndMadeAgain) {
    for (const unsigned page : {kernel::kWesternPage, kernel::kJapanesePage}) {
        kernel::SetCodePage(page);
        for (const QString& family : InstalledFamilies()) {
            QFont font(family);
            font.setPixelSize(19);
            font.setBold(true);
            font.setUnderline(true);
            const LOGFONTA description = drawing::DescribeFont(font);
            EXPECT_EQ(description.lfHeight, -19);
            const QFont again = drawing::MakeFont(description);
            EXPECT_EQ(again.families().value(0), family);
            EXPECT_EQ(again.pixelSize(), 19);
            EXPECT_EQ(again.weight(), QFont::Bold);
            EXPECT_TRUE(again.underline());
        }
    }
    QFont points;
    points.setPointSizeF(12);
    EXPECT_EQ(drawing::DescribeFont(points).lfHeight, -QFontInfo(points).pixelSize());
    // A name that doesn't fit is cut off between two characters, one that the code page lacks is given up.
    points.setFamily(QString(40, QChar(0x30BD)));
    EXPECT_EQ(std::strlen(drawing::DescribeFont(points).lfFaceName), 30u);
    kernel::SetCodePage(kernel::kWesternPage);
    EXPECT_STREQ(drawing::DescribeFont(points).lfFaceName, "MS Shell Dlg");
    points.setFamily(QString(40, QLatin1Char('x')));
    EXPECT_EQ(std::strlen(drawing::DescribeFont(points).lfFaceName), 31u);
}

}  // namespace
