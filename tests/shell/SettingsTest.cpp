// What the program keeps from one run to the next.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>

#include "AppWindow.h"
#include "Harness.h"
#include "PaneTesting.h"
#include "ScriptedLink.h"
#include "resource.h"

namespace {

constexpr char kMainKey[] = R"(SOFTWARE\ORVANE\HDD/CD recorder\Tesselia\)";
constexpr char kFontKey[] = R"(SOFTWARE\ORVANE\HDD/CD recorder\Tesselia\Font\)";

class Key {
public:
    explicit Key(const char* name) {
        EXPECT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, name, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
    }
    ~Key() { RegCloseKey(key); }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    void Set(const char* name, int number) {
        RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
    }
    void Set(const char* name, const std::string& text) {
        RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>(text.size() + 1));
    }
    // Of a value that is not there -1.
    int Number(const char* name) {
        int number = -1;
        DWORD size = sizeof number;
        return RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&number), &size) == ERROR_SUCCESS
                   ? number
                   : -1;
    }
    DWORD SizeOf(const char* name) {
        DWORD size = 0;
        RegQueryValueExA(key, name, nullptr, nullptr, nullptr, &size);
        return size;
    }

private:
    HKEY key = nullptr;
};

class SettingsTest : public PaneTest {
protected:
    void SetUp() override { StartAnew(); }

    std::string Place() const { return PlaceOf(main); }
    static std::string Centred(int width, int height) {
        const RECT screen = ScreenOf(nullptr);
        return std::to_string((screen.left + screen.right - width) / 2) + "," +
               std::to_string((screen.top + screen.bottom - height) / 2) + " " + std::to_string(width) + "x" +
               std::to_string(height);
    }
    LOGFONTA ListFont() const { return FontOf(IDC_GROUP_LIST); }
};

}  // namespace

TEST_F(SettingsTest, AFirstRunIsCentredAndShowsEverything) {
    Open();
    EXPECT_EQ(Place(), Centred(600, 450));
    EXPECT_EQ(scripted::Ranges().discFrom, 1);
    EXPECT_EQ(scripted::Ranges().albumTo, 999);
    EXPECT_EQ(scripted::Ranges().trackTo, 99);
    LOGFONTA system = {};
    GetObjectA(GetStockObject(SYSTEM_FONT), sizeof system, &system);
    EXPECT_EQ(ListFont().lfHeight, system.lfHeight);
    Close();
    Key key(kMainKey);
    EXPECT_EQ(key.Number("SizeX"), 600);
    EXPECT_EQ(key.Number("TrackTo"), 99);
    EXPECT_EQ(key.Number("GroupNo"), -1) << "nothing was selected";
}

TEST_F(SettingsTest, ComeBackInTheNextRuns) {
    Open();
    Connect();
    AddDisc(3, 1);
    AddDisc(7, 2);
    Refill(7);
    MoveWindow(main, 40, 60, 510, 380, TRUE);
    ASSERT_TRUE(PumpUntil([this] { return Place() == "40,60 510x380"; }));
    LOGFONTA font = ListFont();
    font.lfHeight = -22;
    font.lfItalic = TRUE;
    // As the font box leaves it: the pane keeps it, and the settings take it from there.
    { Key key(kFontKey); }
    Close();
    {
        Key key(kFontKey);
        EXPECT_EQ(key.SizeOf("FaceName"), 32U);
        key.Set("Height", -22);
        key.Set("Italic", 1);
    }
    for (int run = 0; run < 5; ++run) {
        Open();
        EXPECT_EQ(Place(), "40,60 510x380") << run;
        EXPECT_EQ(ListFont().lfHeight, -22) << run;
        EXPECT_EQ(ListFont().lfItalic & 1, 1) << run;
        EXPECT_STREQ(ListFont().lfFaceName, font.lfFaceName);
        AddDisc(3, 1);
        AddDisc(7, 2);
        Connect();
        // The group of the run before.
        Settle();
        EXPECT_EQ(Selected(IDC_GROUP_LIST), 1) << run;
        EXPECT_EQ(Rows(IDC_GROUP_LIST), "Dsc|3|Disc 3\nDsc|7|Disc 7\n");
        Close();
    }
    EXPECT_EQ(Key(kMainKey).Number("GroupNo"), 7);
    Open();
    Close();
    EXPECT_EQ(Key(kMainKey).Number("GroupNo"), 7) << "without a selected group the one of the run before stays";
}

TEST_F(SettingsTest, WhatIsMissingOrOddTakesItsDefaultAlone) {
    const struct {
        std::map<std::string, int> values;
        std::string place;
        int trackTo;
    } cases[] = {
        {{{"PosX", 30}, {"PosY", 50}, {"TrackTo", 12}}, "30,50 600x450", 12},
        {{{"SizeX", -500}, {"SizeY", -300}, {"PosX", 10}, {"PosY", 20}}, "10,20 500x300", 99},
        {{{"SizeX", 500}, {"SizeY", 300}, {"PosX", 90000}, {"PosY", 20}}, Centred(500, 300), 99},
        {{{"SizeX", 500}, {"SizeY", 300}}, Centred(500, 300), 99},
        {{{"PosX", 2147483647}, {"PosY", -2147483647 - 1}}, Centred(600, 450), 99},
        // Beyond all screens, wherever that leads.
        {{{"SizeX", 2147483647}, {"SizeY", -2147483647 - 1}, {"PosX", -1073741000}, {"PosY", -1073741000}}, "", 99},
    };
    for (const auto& stored : cases) {
        StartAnew();
        {
            Key key(kMainKey);
            for (const auto& [name, number] : stored.values) {
                key.Set(name.c_str(), number);
            }
        }
        Open();
        EXPECT_TRUE(IsWindowVisible(main));
        EXPECT_TRUE(stored.place.empty() || Place() == stored.place) << Place() << ", not " << stored.place;
        EXPECT_EQ(scripted::Ranges().trackTo, stored.trackTo);
        EXPECT_EQ(scripted::Ranges().trackFrom, 1);
        Close();
    }
    // A value that does not fit counts as missing.
    StartAnew();
    {
        Key key(kMainKey);
        key.Set("DiscTo", "too long for a number");
        key.Set("AlbumTo", 5);
        Key font(kFontKey);
        font.Set("Height", -30);
        font.Set("FaceName", std::string(60, 'x'));
    }
    Open();
    EXPECT_EQ(scripted::Ranges().discTo, 999);
    EXPECT_EQ(scripted::Ranges().albumTo, 5);
    EXPECT_NE(ListFont().lfHeight, -30) << "a font without a name leaves the lists the one that they have";
    Close();
}

TEST_F(SettingsTest, TheEndOfTheSessionCommitsAndSaves) {
    Open();
    Connect();
    AddDisc(3, 1);
    Refill(3);
    MoveWindow(main, 40, 60, 510, 380, TRUE);
    SetFocus(Control(IDC_GROUP_LIST));
    Command(IDM_ENTER);
    constexpr int kEditorId = 102;
    SetWindowTextA(GetDlgItem(Control(IDC_GROUP_LIST), kEditorId), "Typed");
    EXPECT_NE(SendMessageA(main, WM_QUERYENDSESSION, 0, 0), 0);
    SendMessageA(main, WM_ENDSESSION, FALSE, 0);
    EXPECT_EQ(Title(3, 0), "Disc 3");
    // The system may end the process right behind it.
    SendMessageA(main, WM_ENDSESSION, TRUE, 0);
    EXPECT_EQ(Title(3, 0), "Typed");
    EXPECT_EQ(Key(kMainKey).Number("PosX"), 40);
    MSG message = {};
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        DispatchMessageA(&message);
    }
    Close();
}
