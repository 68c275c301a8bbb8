// What the program keeps from one run to the next: the window's place, the selected group, the display ranges and the font,
// for all users of the machine alike. Whatever cannot be read takes its default, whatever cannot be written is lost, and
// nobody is told.
#include <cstdint>
#include <cstring>

#include "AppWindow.h"
#include "WindowPlacement.h"

namespace {

constexpr char kMainKey[] = R"(SOFTWARE\ORVANE\HDD/CD recorder\Tesselia\)";
constexpr char kFontKey[] = R"(SOFTWARE\ORVANE\HDD/CD recorder\Tesselia\Font\)";

// A key below HKEY_LOCAL_MACHINE, made if need be, as long as it is open.
class SettingsKey {
public:
    explicit SettingsKey(const char* name) {
        isOpen = RegCreateKeyExA(HKEY_LOCAL_MACHINE, name, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                                 &key, &disposition) == ERROR_SUCCESS;
    }
    ~SettingsKey() {
        if (isOpen) {
            RegCloseKey(key);
        }
    }
    SettingsKey(const SettingsKey&) = delete;
    SettingsKey& operator=(const SettingsKey&) = delete;

    bool IsOpen() const { return isOpen; }
    bool IsNew() const { return disposition == REG_CREATED_NEW_KEY; }

    // The number as it is, or the other one if there is none. The type is not looked at.
    std::int32_t Number(const char* name, std::int32_t otherwise) const {
        std::int32_t number = 0;
        DWORD size = sizeof number;
        return Read(name, reinterpret_cast<BYTE*>(&number), size) ? number : otherwise;
    }
    bool Read(const char* name, BYTE* data, DWORD size) const {
        return RegQueryValueExA(key, name, nullptr, nullptr, data, &size) == ERROR_SUCCESS;
    }
    void SetNumber(const char* name, std::int32_t number) const {
        RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
    }
    void SetText(const char* name, const char* text, DWORD size) const {
        RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), size);
    }

private:
    HKEY key = nullptr;
    DWORD disposition = 0;
    bool isOpen = false;
};

struct RangeValue {
    const char* name;
    std::int32_t DisplayRanges::* number;
};

constexpr RangeValue kRangeValues[] = {
    {"DiscFrom", &DisplayRanges::discFrom},   {"DiscTo", &DisplayRanges::discTo},
    {"AlbumFrom", &DisplayRanges::albumFrom}, {"AlbumTo", &DisplayRanges::albumTo},
    {"TrackFrom", &DisplayRanges::trackFrom}, {"TrackTo", &DisplayRanges::trackTo},
};

struct FontNumber {
    const char* name;
    LONG LOGFONTA::* number;
};

constexpr FontNumber kFontNumbers[] = {
    {"Height", &LOGFONTA::lfHeight},           {"Width", &LOGFONTA::lfWidth},   {"Escapement", &LOGFONTA::lfEscapement},
    {"Orientation", &LOGFONTA::lfOrientation}, {"Weight", &LOGFONTA::lfWeight},
};

struct FontByte {
    const char* name;
    BYTE LOGFONTA::* number;
};

constexpr FontByte kFontBytes[] = {
    {"Italic", &LOGFONTA::lfItalic},
    {"Underline", &LOGFONTA::lfUnderline},
    {"StrikeOut", &LOGFONTA::lfStrikeOut},
    {"CharSet", &LOGFONTA::lfCharSet},
    {"OutPrecision", &LOGFONTA::lfOutPrecision},
    {"ClipPrecision", &LOGFONTA::lfClipPrecision},
    {"Quality", &LOGFONTA::lfQuality},
    {"PitchAndFamily", &LOGFONTA::lfPitchAndFamily},
};

constexpr char kFaceName[] = "FaceName";

LOGFONTA ReadFont(const SettingsKey& key) {
    LOGFONTA font = {};
    for (const FontNumber& value : kFontNumbers) {
        font.*value.number = key.Number(value.name, 0);
    }
    for (const FontByte& value : kFontBytes) {
        font.*value.number = static_cast<BYTE>(key.Number(value.name, 0));
    }
    char face[sizeof font.lfFaceName] = "";
    if (key.Read(kFaceName, reinterpret_cast<BYTE*>(face), sizeof face)) {
        std::memcpy(font.lfFaceName, face, sizeof face - 1);
    }
    return font;
}

void WriteFont(const SettingsKey& key, const LOGFONTA& font) {
    for (const FontNumber& value : kFontNumbers) {
        key.SetNumber(value.name, font.*value.number);
    }
    for (const FontByte& value : kFontBytes) {
        key.SetNumber(value.name, font.*value.number);
    }
    key.SetText(kFaceName, font.lfFaceName, sizeof font.lfFaceName);
}

// The lowest number has no absolute value of its own.
int Absolute(std::int32_t number) {
    return number == INT32_MIN ? INT32_MAX : number < 0 ? -number : number;
}

}  // namespace

// 1 if settings of an earlier run are in force, 0 if the window has to go where a first start puts it.
int AppWindow::LoadSettings(HWND window) {
    {
        const SettingsKey key(kMainKey);
        if (!key.IsOpen() || key.IsNew()) {
            return 0;
        }
        const int width = Absolute(key.Number("SizeX", kDefaultWidth));
        const int height = Absolute(key.Number("SizeY", kDefaultHeight));
        const int x = key.Number("PosX", kDefaultX);
        const int y = key.Number("PosY", kDefaultY);
        if (editorPane) {
            editorPane->SetCurrentGroup(key.Number("GroupNo", -1));
            DisplayRanges ranges;
            for (const RangeValue& value : kRangeValues) {
                ranges.*value.number = key.Number(value.name, ranges.*value.number);
            }
            editorPane->SetRanges(ranges);
        }
        PlaceWindow(window, width, height, x, y);
    }
    const SettingsKey key(kFontKey);
    if (!key.IsOpen()) {
        return 0;
    }
    if (editorPane && !key.IsNew()) {
        const LOGFONTA font = ReadFont(key);
        editorPane->SetLogFont(&font);
    }
    return 1;
}

// Without a selected group the one of the run before stays.
void AppWindow::SaveSettings() const {
    RECT place = {};
    if (hWnd == nullptr || !GetWindowRect(hWnd, &place)) {
        return;
    }
    {
        const SettingsKey key(kMainKey);
        if (!key.IsOpen()) {
            return;
        }
        key.SetNumber("SizeX", place.right - place.left);
        key.SetNumber("SizeY", place.bottom - place.top);
        key.SetNumber("PosX", place.left);
        key.SetNumber("PosY", place.top);
        if (editorPane) {
            const GroupId group = editorPane->CurrentGroupForSaving();
            if (group > 0) {
                key.SetNumber("GroupNo", group);
            }
            for (const RangeValue& value : kRangeValues) {
                key.SetNumber(value.name, editorPane->Ranges().*value.number);
            }
        }
    }
    const SettingsKey key(kFontKey);
    if (key.IsOpen() && editorPane) {
        LOGFONTA font = {};
        editorPane->GetLogFont(&font);
        WriteFont(key, font);
    }
}
