/* Ids of the resources that the library asks its language (zlr) and graphics (zgr) modules for. A theme or a
   translation of its own supplies the same ids. Only #defines: resource scripts include this file too. */
#ifndef ZCMOD_RESOURCE_IDS_H
#define ZCMOD_RESOURCE_IDS_H

/* Language module (Lang\ZCMOD_<code>.zlr): strings. */
#define ZLR_STR_LANGUAGE_NAME 1   /* the language's own name, e.g. "English" */
#define ZLR_STR_SUITE_NAME 3      /* caption of the suite's messages */
#define ZLR_STR_VERSION 95        /* three characters of prefix, then the word for "Version" */

/* Language module: the phone file dialog. "%1" stands for the file's name. */
#define ZLR_STR_FD_OVERWRITE 15   /* the file exists; replace it? */
#define ZLR_STR_FD_FORBIDDEN 17   /* nothing may be saved in this folder */
#define ZLR_STR_FD_OPEN_TITLE 19  /* title of the open dialog */
#define ZLR_STR_FD_SAVE_TITLE 20  /* title of the save dialog */
#define ZLR_STR_FD_READ_ONLY 33   /* the file is read-only */

/* The library's own resources (zcmod.dll): the child template of the phone file dialog. */
#define ZCMOD_DLG_FILE_DIALOG 1000

/* Language module: the phone's state in the title bar, and the device selection window. */
#define ZLR_STR_TITLE_NO_DEVICE 0x22     /* no phone */
#define ZLR_STR_TITLE_UNSUPPORTED 0x23   /* only phones the application can't work with */
#define ZLR_STR_TITLE_ATTACHED 0x24      /* one "%s": the phone's friendly name */
#define ZLR_STR_TITLE_CHOOSE 0x26        /* several phones and none chosen */
#define ZLR_STR_DEVSEL_CAPTION 4100
#define ZLR_STR_DEVSEL_PROMPT 4101
#define ZLR_STR_DEVSEL_OK 4102
#define ZLR_STR_DEVSEL_CANCEL 4103
#define ZLR_STR_DEVSEL_REFRESH 4104
#define ZLR_STR_DEVSEL_CONNECTIONS 4105
#define ZLR_STR_DEVSEL_EMPTY 4107
#define ZLR_STR_DEVSEL_UNSUPPORTED 4108
#define ZLR_STR_DEVSEL_HELP_TEXT 4109

/* Graphics module (Resource\ZCMOD_<theme>.zgr): colours as "red,green,blue" strings. */
#define ZGR_COLOR_TEXT 600
#define ZGR_COLOR_TEXT_DISABLED 601
#define ZGR_COLOR_WINDOW 602
#define ZGR_COLOR_CAPTION_TEXT 603
#define ZGR_COLOR_CAPTION 604
#define ZGR_COLOR_ACCENT 605
#define ZGR_COLOR_HIGHLIGHT 606
#define ZGR_COLOR_BORDER 607

/* Graphics module: list view and edit. The column texts of the list view's header, drawn on the header's light
   gradient in every theme. */
#define ZGR_COLOR_LISTVIEW_HEADER_TEXT 4300

/* Graphics module: the theme's name, for display. */
#define ZGR_STR_THEME_NAME 1

/* Graphics module: the suite's four fonts, resource type "TTF", all of the family "Zelvo Sans Wide". */
#define ZGR_FONT_REGULAR 34001
#define ZGR_FONT_BOLD 34002
#define ZGR_FONT_OBLIQUE 34003
#define ZGR_FONT_BOLD_OBLIQUE 34004

/* Graphics module: the backgrounds of the common (icon) button, seven states each (disabled, normal, hover,
   pressed, focused, focused hover, focused pressed) from the first id of its size on. */
#define ZGR_BMP_COMMON_BUTTON_SMALL 5030  /* 5030-5036 */
#define ZGR_BMP_COMMON_BUTTON_MEDIUM 5037 /* 5037-5043 */
#define ZGR_BMP_COMMON_BUTTON_LARGE 5044  /* 5044-5050 */
/* Graphics module: the marks of the check box and the radio button, six states each (unchecked disabled,
   unchecked, unchecked hover, checked disabled, checked, checked hover). */
#define ZGR_BMP_CHECK_BOX 5100    /* 5100-5105 */
#define ZGR_BMP_RADIO_BUTTON 5106 /* 5106-5111 */

/* Graphics module: the colours of the plain dialogs of CDkhDialog. */
#define ZGR_COLOR_DIALOG_BACKGROUND 2
#define ZGR_COLOR_DIALOG_TEXT 100

/* Language module: the recipient box's messages on a malformed or unknown recipient. */
#define ZLR_STR_RECIPIENT_PHONE_ONLY 0x8344
#define ZLR_STR_RECIPIENT_EMAIL_ONLY 0x8345
#define ZLR_STR_RECIPIENT_PHONE_OR_EMAIL 0x8346
#define ZLR_STR_RECIPIENT_UNKNOWN 0x8347

/* Language module: the labels of the recipient box's rows. */
#define ZLR_STR_RECIPIENT_TO 0x80EA
#define ZLR_STR_RECIPIENT_CC 0x80EB
#define ZLR_STR_RECIPIENT_BCC 0x80EC

/* Graphics module: the icon of the recipient box's picker buttons, and its disabled look. */
#define ZGR_BMP_RECIPIENT_PICKER 0x84E6
#define ZGR_BMP_RECIPIENT_PICKER_DISABLED 0x84E7

/* The library's own module: plain dialog templates served by CDkhDialog, in English and Hebrew. */
#define IDD_ZCMOD_SYSTEM_INFORMATION 105
#define IDC_ZCMOD_SYSTEM_INFORMATION_TEXT 1001
#define IDD_ZCMOD_RECIPIENTS 701
#define IDC_ZCMOD_RECIPIENTS_LIST 1002
#define IDC_ZCMOD_RECIPIENTS_FILTER 1003
#define IDC_ZCMOD_RECIPIENTS_LABEL 1004

/* Graphics module: the skinned combo box's pieces (left end, stretched middle, right end with the arrow) in
   the states normal, disabled (loaded, never drawn), hover or focused, pressed. All of one height. */
#define ZGR_BMP_COMBO_NORMAL_LEFT 5060
#define ZGR_BMP_COMBO_NORMAL_MIDDLE 5061
#define ZGR_BMP_COMBO_NORMAL_RIGHT 5062
#define ZGR_BMP_COMBO_DISABLED_LEFT 5063
#define ZGR_BMP_COMBO_DISABLED_MIDDLE 5064
#define ZGR_BMP_COMBO_DISABLED_RIGHT 5065
#define ZGR_BMP_COMBO_HOVER_LEFT 5066
#define ZGR_BMP_COMBO_HOVER_MIDDLE 5067
#define ZGR_BMP_COMBO_HOVER_RIGHT 5068
#define ZGR_BMP_COMBO_PRESSED_LEFT 5069
#define ZGR_BMP_COMBO_PRESSED_MIDDLE 5070
#define ZGR_BMP_COMBO_PRESSED_RIGHT 5071

/* Graphics module: the step bar of a wizard: the filling's tile, its start and its end, the separator
   between steps, and the empty bar, whose width the steps divide. */
#define ZGR_BMP_STEPBAR_MIDDLE 5205
#define ZGR_BMP_STEPBAR_LEFT 5206
#define ZGR_BMP_STEPBAR_RIGHT 5207
#define ZGR_BMP_STEPBAR_SEPARATOR 5208
#define ZGR_BMP_STEPBAR_BACKGROUND 5209

/* The drawn window frame (CVuikWindowBackgroundCtrl). Language module: the caption buttons' tips and texts
   (at most 19 characters) and the system menu's items. */
#define ZLR_STR_CAPTION_CLOSE 35002
#define ZLR_STR_CAPTION_MINIMIZE 35003
#define ZLR_STR_CAPTION_MAXIMIZE 35004
#define ZLR_STR_CAPTION_RESTORE 35005
#define ZLR_STR_SYSMENU_CLOSE 35011
#define ZLR_STR_SYSMENU_RESTORE 35012
#define ZLR_STR_SYSMENU_SIZE 35013
#define ZLR_STR_SYSMENU_MINIMIZE 35014
#define ZLR_STR_SYSMENU_MAXIMIZE 35015
#define ZLR_STR_SYSMENU_MOVE 35016
/* Graphics module: the caption buttons' pictures, normal, hover and pressed. */
#define ZGR_BMP_CAPTION_CLOSE_BESIDE_NORMAL 32502
#define ZGR_BMP_CAPTION_CLOSE_BESIDE_HOVER 32503
#define ZGR_BMP_CAPTION_CLOSE_BESIDE_PRESSED 32504
#define ZGR_BMP_CAPTION_MINIMIZE_NORMAL 32505
#define ZGR_BMP_CAPTION_MINIMIZE_HOVER 32506
#define ZGR_BMP_CAPTION_MINIMIZE_PRESSED 32507
#define ZGR_BMP_CAPTION_MAXIMIZE_HOVER 32531
#define ZGR_BMP_CAPTION_MAXIMIZE_NORMAL 32532
#define ZGR_BMP_CAPTION_MAXIMIZE_PRESSED 32533
#define ZGR_BMP_CAPTION_CLOSE_ALONE_NORMAL 32534
#define ZGR_BMP_CAPTION_CLOSE_ALONE_HOVER 32535
#define ZGR_BMP_CAPTION_CLOSE_ALONE_PRESSED 32536
#define ZGR_BMP_CAPTION_RESTORE_HOVER 32537
#define ZGR_BMP_CAPTION_RESTORE_NORMAL 32538
#define ZGR_BMP_CAPTION_RESTORE_PRESSED 32539

/* Message boxes. Language module: the texts (and tooltips) of the common box's buttons. Graphics module: the
   icons of those buttons, normal and disabled (Yes wears OK's), and the box's message icon, 32 by 32. */
#define ZLR_STR_MSGBOX_OK 6002
#define ZLR_STR_MSGBOX_CANCEL 6003
#define ZLR_STR_MSGBOX_YES 6004
#define ZLR_STR_MSGBOX_NO 6005
#define ZGR_BMP_MSGBOX_CANCEL 34005
#define ZGR_BMP_MSGBOX_CANCEL_DISABLED 34006
#define ZGR_BMP_MSGBOX_OK 34007
#define ZGR_BMP_MSGBOX_OK_DISABLED 34008
#define ZGR_BMP_MSGBOX_NO 34009
#define ZGR_BMP_MSGBOX_NO_DISABLED 34010
#define ZGR_BMP_MESSAGE_ICON 35010

/* Graphics module: the progress animation's eleven frames, PNG with alpha, drawn over the theme's window
   colour; CPNGAnimation plays them in order. */
#define ZGR_PNG_ANIMATION_FIRST 34030
#define ZGR_PNG_ANIMATION_LAST 34040
#define ZGR_PNG_ANIMATION_FRAMES 11
/* Graphics module: the suite's splash picture, PNG with soft alpha edges, for CVuikSplashScreen. */
#define ZGR_PNG_SPLASH 34100

/* The about box (CCommonAboutDlg). Library module: its template. Language module: the legal text in two
   parts and the OK button's text and tip. Graphics module: the banner, the maker's mark and the OK tick. */
#define ZCMOD_DLG_ABOUT 108
#define ZLR_STR_ABOUT_LEGAL_FIRST 6000
#define ZLR_STR_ABOUT_LEGAL_SECOND 6001
#define ZLR_STR_ABOUT_OK ZLR_STR_MSGBOX_OK  /* the message boxes' "OK" */
#define ZGR_BMP_ABOUT_BANNER 35000
#define ZGR_BMP_ABOUT_MAKER 35001
#define ZGR_BMP_ABOUT_OK_ICON ZGR_BMP_MSGBOX_OK
#define ZGR_BMP_ABOUT_OK_ICON_DISABLED ZGR_BMP_MSGBOX_OK_DISABLED
/* The progress dialog (CCommonProgressDlg). Library module: its template, with the two side pictures and the
   animation's placeholder. Graphics module: the side pictures, left and right (mirrored in a right-to-left
   layout); its frames are ZGR_PNG_ANIMATION_FIRST to _LAST and its text colour ZGR_COLOR_TEXT. Language
   module: a waiting text and a step counter ("%d" the step, "%d" the steps) for applications to show. */
#define ZCMOD_DLG_PROGRESS 702
#define ZGR_BMP_PROGRESS_LEFT 34028
#define ZGR_BMP_PROGRESS_RIGHT 34029
#define ZLR_STR_PROGRESS_WAIT 35210
#define ZLR_STR_PROGRESS_STEP 35211

/* The skinned file dialog (CVuikFileDlg). Graphics module: its four bars, three pieces each (start, middle,
   end): the top bar and the strip with its title run across, the side bar down. */
#define ZGR_BMP_FILEDLG_TOP_LEFT 35300
#define ZGR_BMP_FILEDLG_TOP_MIDDLE 35301
#define ZGR_BMP_FILEDLG_TOP_RIGHT 35302
#define ZGR_BMP_FILEDLG_STRIP_LEFT 35303
#define ZGR_BMP_FILEDLG_STRIP_MIDDLE 35304
#define ZGR_BMP_FILEDLG_STRIP_RIGHT 35305
#define ZGR_BMP_FILEDLG_TITLE_LEFT 35306
#define ZGR_BMP_FILEDLG_TITLE_MIDDLE 35307
#define ZGR_BMP_FILEDLG_TITLE_RIGHT 35308
#define ZGR_BMP_FILEDLG_SIDE_TOP 35309
#define ZGR_BMP_FILEDLG_SIDE_MIDDLE 35310
#define ZGR_BMP_FILEDLG_SIDE_BOTTOM 35311

/* The phone file transfer (CFD_DownloadFile, CFD_UploadFile). Graphics module: the clip of its progress
   window, resource type "AVI", RLE8 frames on the theme's window colour: a document flying from the
   computer to the phone, and the same clip mirrored for a right-to-left language. */
#define ZGR_AVI_TRANSFER 0x17DA
#define ZGR_AVI_TRANSFER_RTL 0x17DB

#endif
