// The numbers of everything in Tesselia's resources: what tesselia.rc defines and the program asks for.
// Plain defines, since the resource compiler reads this file as well.
#pragma once

// The menu of the main window, its keys and the icon.
#define IDR_MENU 101
#define IDR_ACCELERATORS 107
#define IDI_TESSELIA 109

// Commands.
#define IDM_IMPORT 40001
#define IDM_EXPORT 40002
#define IDM_CLOSE 40003
#define IDM_UNDO 40004
#define IDM_CLEAR 40005
#define IDM_ENTER 40007  // The Enter key alone, without a menu item.
#define IDM_SEND_GROUP 40008
#define IDM_GET_ALL 40009
#define IDM_SEND_ALL 40010
#define IDM_OPTION 40011
#define IDM_STATUS_BAR 40012
#define IDM_HELP_TOPICS 40013
#define IDM_VERSION_INFO 40014
#define IDM_FONT 40016
#define IDM_GET_GROUP 40017
#define IDM_CONNECTION 40018
#define IDM_STOP 40019

// A control that nobody looks for. Where they are needed, the numbers of OK and Cancel are the system's: 1 and 2.
#define IDC_NOBODY (-1)

// The editor pane.
#define IDD_PANE 103
#define IDC_GROUP_LIST 1000
#define IDC_TRACK_LIST 1001
#define IDC_SYNC 1002
#define IDC_MESSAGE_LINE 1003
#define IDC_STOP 1004

// The About box.
#define IDD_ABOUT 105
#define IDC_ABOUT_NAME 1004
#define IDC_ABOUT_VERSION 1005
#define IDC_ABOUT_NOTICE 1006

// The display ranges.
#define IDD_RANGES 108
#define IDC_DISC_FROM 1005
#define IDC_DISC_TO 1006
#define IDC_ALBUM_FROM 1007
#define IDC_ALBUM_TO 1008
#define IDC_TRACK_FROM 1009
#define IDC_TRACK_TO 1010
#define IDC_DISC_FROM_LABEL 1011
#define IDC_DISC_TO_LABEL 1012
#define IDC_ALBUM_FROM_LABEL 1013
#define IDC_ALBUM_TO_LABEL 1014
#define IDC_TRACK_FROM_LABEL 1015
#define IDC_TRACK_TO_LABEL 1016

// Made by the program, not from a template.
#define IDC_STATUS_BAR 101

// The program: its title also names the lock that keeps a second copy out.
#define IDS_TITLE 7001
#define IDS_ABOUT_TITLE 7011
#define IDS_VERSION 7012
#define IDS_NOTICE 7013
#define IDS_MODEL_UNKNOWN 7014
#define IDS_MODEL_QX4100 7015
#define IDS_MODEL_QX4300 7016

// Help lines of the commands, for the status bar.
#define IDS_HELP_IMPORT 7101
#define IDS_HELP_EXPORT 7102
#define IDS_HELP_CLOSE 7103
#define IDS_HELP_UNDO 7104
#define IDS_HELP_CLEAR 7105
#define IDS_HELP_INVERT 7107
#define IDS_HELP_GET_GROUP 7108
#define IDS_HELP_GET_ALL 7109
#define IDS_HELP_SEND_GROUP 7110
#define IDS_HELP_SEND_ALL 7111
#define IDS_HELP_STOP 7112
#define IDS_HELP_FONT 7113
#define IDS_HELP_OPTION 7114
#define IDS_HELP_CONNECTION 7115
#define IDS_HELP_STATUS_BAR 7116
#define IDS_HELP_HELP_TOPICS 7117
#define IDS_HELP_VERSION_INFO 7118

// Information, and what the message line says.
#define IDS_INFO_CAPTION 7201
#define IDS_ASK_CLOSE 7202
#define IDS_GETTING_DISCS 7203
#define IDS_GETTING_ALBUMS 7204
#define IDS_GETTING_TRACKS 7205
#define IDS_UPDATING_TITLES 7206
#define IDS_SEARCHING 7207
#define IDS_CHECKING_STATUS 7208
#define IDS_CONNECTED 7209

// Errors.
#define IDS_ERROR_CAPTION 7301
#define IDS_ERROR_START 7302
#define IDS_ERROR_MENU_MODE 7303
#define IDS_ERROR_SELECT_HDD 7304
#define IDS_ERROR_NO_CONNECTION 7305
#define IDS_ERROR_NO_STATUS 7306
#define IDS_ERROR_NO_GROUPS 7307
#define IDS_ERROR_NO_TRACKS 7308
#define IDS_ERROR_NOT_UPDATED 7309
#define IDS_ERROR_BUSY 7310
#define IDS_ERROR_TIME_OUT 7311
#define IDS_ERROR_TRAY_OPEN 7312
#define IDS_ERROR_NO_DATA 7313
#define IDS_ERROR_RANGE 7314
#define IDS_ERROR_IMPORT 7315

// Texts of the display ranges.
#define IDS_RANGES_TITLE 7401
#define IDS_RANGES_FROM 7402
#define IDS_RANGES_TO 7403
