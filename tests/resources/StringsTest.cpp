// Every string in both languages.
#include <string>

#include "Found.h"
#include "Utf16.h"

namespace {

struct Row {
    UINT id;
    const char* english;
    const char* japanese;
};

// clang-format off
const Row kStrings[] = {
    {7001, "ORVANE HDD/CD recorder - Tesselia", "ORVANE HDD/CD recorder - Tesselia"},
    {7011, "Version information", "バージョン情報"},
    {7012, "1.0.3.0", "1.0.3.0"},
    {7013, "Copyright (C) 2026 The Tesselia developers", "Copyright (C) 2026 The Tesselia developers"},
    {7014, "unkown", "unkown"},
    {7015, "VRD-QX4100", "VRD-QX4100"},
    {7016, "VRD-QX4300", "VRD-QX4300"},
    {7101, "Read title date from a file, and overwrite Group and Track titles.", "外部ファイルよりタイトルを取り込む"},
    {7102, "Write selected Group and Track title data to a file.", "外部ファイルにタイトルを書き出す"},
    {7103, "Terminate this application.", "Tesselia を終了"},
    {7104, "Cancel the editings or assigning the titles.", "直前に変更したタイトルを元に戻す"},
    {7105, "Cancel the selected title.", "選択されている１つのタイトルをクリア"},
    {7107, "Invert", "Invert"},
    {7108, "Get the title data which are selected Group's and belonging Track's from the main unit.", "選択されているグループを機器より再取得"},
    {7109, "Get all Group titles and the Track titles which are belonging the selected Group from the main unit.", "全てのグループタイトルを機器より再取得"},
    {7110, "Send the title data which are selected Group one and belonging Tracks to the main unit.", "選択されているグループとそのトラックの変更されたタイトルを機器へ更新"},
    {7111, "Send all edited titles to the main unit.", "変更された全てのタイトルを機器へ更新"},
    {7112, "Discontinue the communication to the main unit.", "処理を中断する"},
    {7113, "Change display fonts.", "フォントの変更"},
    {7114, "Change the display ranges. Disc, Album and Track, each range can set up.", "グループ／トラックの表示範囲を設定"},
    {7115, "Re-establish the communication.", "再接続処理"},
    {7116, "Set up the appearance of the status bar.", "ステータスバーの表示切り替え"},
    {7117, "Tesselia Help", "Tesselia の Help を表示"},
    {7118, "Display the version and copyright informations.", "バージョン情報"},
    {7201, "Tesselia Message", "Tesselia Message"},
    {7202, "Do you want to close the application ?", "終了してもよろしいですか？"},
    {7203, "Getting Disc information.", "ディスク情報を本体より取得中です。"},
    {7204, "Getting Album information.", "アルバム情報を本体より取得中です。"},
    {7205, "Getting Track information.", "トラック情報を本体より取得中です。"},
    {7206, "Updating the title information.", "タイトルの更新中です。"},
    {7207, "Searching the main unit.", "機器を検索中"},
    {7208, "Checking the statuses of the main unit.", "機器のステータスを確認中"},
    {7209, "Finished re-establishing communication.", "機器との接続を完了しました。"},
    {7301, "Tesselia Error", "Tesselia Error"},
    {7302, "Could not start the application.", "アプリケーションの起動に失敗しました。"},
    {7303, "Release MENU mode on the main unit.", "機器のメニューを解除して下さい。"},
    {7304, "Select the HDD on the main unit and should be stopped it.", "機器のモードをＨＤＤにし、再生停止にして下さい。"},
    {7305, "Communications with the main unit could not be established.", "機器との接続に失敗しました。"},
    {7306, "Could not get the status of the main unit.", "機器のステータス取得に失敗しました。"},
    {7307, "Could not get Group information.", "グループ情報の取得に失敗しました。"},
    {7308, "Could not get Track information.", "トラック情報の取得に失敗しました。"},
    {7309, "Could not update titles.", "タイトルの更新に失敗しました。"},
    {7310, "The Application is busy.", "ビジー状態です。"},
    {7311, "Time out error occurred .", "タイムアウトしました"},
    {7312, "The disc tray is opened.", "ディスクトレイが、開いています。"},
    {7313, "No data exists on HDD.", "ハードディスクにデータがありません。"},
    {7314, "It exceeded the value ranges.", "入力した値が正しくありません。"},
    {7315, "Invalid expression was found in the importing file.", "インポートファイルの記述が正しくありません。"},
    {7401, "Display ranges", "表示設定"},
    {7402, "From", "From"},
    {7403, "To", "To"},
};
// clang-format on

std::string String(UINT id, WORD language) {
    const kernel::Bytes block = Found(RT_STRING, kernel::StringBlockOf(id), language);
    return kernel::Utf8Of(kernel::StringInBlock(block, kernel::StringIndexOf(id)));
}

TEST(StringResource, HasEveryTextInBothLanguages) {
    for (const Row& row : kStrings) {
        SCOPED_TRACE(row.id);
        EXPECT_EQ(String(row.id, kEnglish), row.english);
        EXPECT_EQ(String(row.id, kJapanese), row.japanese);
    }
}

TEST(StringResource, HasNoOtherTexts) {
    for (const WORD language : kBoth) {
        const Row* next = std::begin(kStrings);
        for (UINT id = 6992; id < 7520; ++id) {
            if (next != std::end(kStrings) && next->id == id)
                ++next;
            else
                EXPECT_EQ(String(id, language), "") << id;
        }
        EXPECT_EQ(next, std::end(kStrings));
    }
}

}  // namespace
