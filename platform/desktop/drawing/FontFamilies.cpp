#include "FontFamilies.h"

#include <QFontDatabase>
#include <QFontInfo>

#include <algorithm>
#include <iterator>

#include "CodePage.h"

namespace drawing {

namespace {

// The faces of Windows for its own texts. They follow the desktop's.
constexpr const char* kDesktopFaces[] = {
    "", "System", "MS Sans Serif", "MS Shell Dlg", "MS Shell Dlg 2", "Segoe UI", "Microsoft Sans Serif", "Tahoma"};

constexpr const char* kFixedFaces[] = {"Fixedsys", "Terminal", "Courier", "Lucida Console", "Consolas"};

// By their English and by their Japanese names; wide letters are part of these.
constexpr const char* kJapaneseFaces[] = {"MS PGothic", "MS UI Gothic", "Meiryo",     "Meiryo UI",
                                          "Yu Gothic",  "Yu Gothic UI", "MS PMincho", "ＭＳ Ｐゴシック",
                                          "メイリオ",   "游ゴシック",   "ＭＳ Ｐ明朝"};
constexpr const char* kFixedJapaneseFaces[] = {"MS Gothic", "MS Mincho", "ＭＳ ゴシック", "ＭＳ 明朝"};

// The better ones first; any other that knows Japanese will do as well.
constexpr const char* kJapaneseFamilies[] = {"Noto Sans CJK JP", "Noto Sans JP", "IPAexGothic",
                                             "IPAPGothic",       "VL PGothic",   "TakaoPGothic"};
constexpr const char* kFixedJapaneseFamilies[] = {"Noto Sans Mono CJK JP", "IPAGothic", "VL Gothic", "TakaoGothic"};

template <std::size_t kCount>
bool Contains(const char* const (&names)[kCount], const QString& name) {
    return std::any_of(std::begin(names), std::end(names),
                       [&](const char* known) { return name.compare(QString::fromUtf8(known), Qt::CaseInsensitive) == 0; });
}

template <std::size_t kCount>
QString FirstInstalled(const char* const (&names)[kCount], const QStringList& installed) {
    for (const char* name : names) {
        if (installed.contains(QString::fromUtf8(name))) {
            return QString::fromUtf8(name);
        }
    }
    return installed.value(0);
}

// Empty if the desktop has none. Looked up once: the list of all fonts takes milliseconds.
const QString& JapaneseFamily(bool fixed) {
    static const QStringList installed = QFontDatabase::families(QFontDatabase::Japanese);
    static const QString proportionalFamily = FirstInstalled(kJapaneseFamilies, installed);
    static const QString fixedFamily = FirstInstalled(kFixedJapaneseFamilies, installed);
    return fixed ? fixedFamily : proportionalFamily;
}

QString Resolved(const QString& family) {
    return QFontInfo(QFont(family)).family();
}

const QString& FixedFamily() {
    static const QString family = Resolved(QFontDatabase::systemFont(QFontDatabase::FixedFont).family());
    return family;
}

// The families whose names are too long for a description are known by their beginnings.
QString FamilyThatBegins(const QString& name) {
    for (const QString& family : QFontDatabase::families()) {
        if (family.startsWith(name)) {
            return family;
        }
    }
    return {};
}

// Empty if the desktop has nothing that comes near to it.
QString NearestFamily(const QString& face, bool cutOff) {
    if (QFontDatabase::hasFamily(face)) {
        return face;
    }
    if (cutOff) {
        return FamilyThatBegins(face);
    }
    // Knows what the desktop declares to be alike, and answers with its default for what it has never heard of.
    const QString resolved = Resolved(face);
    return resolved == Resolved(QStringLiteral("no such font")) ? QString() : resolved;
}

// Whether the face's name fills its field; one byte is left over if the next character has two.
bool IsCutOff(const LOGFONTA& description) {
    const char* const begin = std::begin(description.lfFaceName);
    return std::find(begin, std::end(description.lfFaceName), '\0') - begin >= LF_FACESIZE - 2;
}

QString FamilyFor(const LOGFONTA& description) {
    const QString face = FaceName(description);
    const bool fixed = (description.lfPitchAndFamily & 0x03) == FIXED_PITCH;
    if (Contains(kJapaneseFaces, face) || Contains(kFixedJapaneseFaces, face)) {
        return JapaneseFamily(Contains(kFixedJapaneseFaces, face));
    }
    if (Contains(kFixedFaces, face)) {
        return FixedFamily();
    }
    if (!Contains(kDesktopFaces, face)) {
        QString nearest = NearestFamily(face, IsCutOff(description));
        if (!nearest.isEmpty()) {
            return nearest;
        }
    }
    if (description.lfCharSet == SHIFTJIS_CHARSET) {
        return JapaneseFamily(fixed);
    }
    return fixed ? FixedFamily() : DesktopFamily();
}

}  // namespace

QString FaceName(const LOGFONTA& description) {
    const char* const end = std::find(std::begin(description.lfFaceName), std::end(description.lfFaceName), '\0');
    return QString::fromStdString(kernel::ToUtf8({std::begin(description.lfFaceName), end}));
}

QString DesktopFamily() {
    static const QString family = Resolved(QFontDatabase::systemFont(QFontDatabase::GeneralFont).family());
    return family;
}

QStringList FamiliesFor(const LOGFONTA& description) {
    QStringList families;
    for (const QString& family : {FamilyFor(description), DesktopFamily(), JapaneseFamily(false)}) {
        if (!family.isEmpty() && !families.contains(family)) {
            families.push_back(family);
        }
    }
    return families;
}

}  // namespace drawing
