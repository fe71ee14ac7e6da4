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

/* Graphics module (Resource\ZCMOD_<theme>.zgr): colours as "red,green,blue" strings. */
#define ZGR_COLOR_TEXT 600
#define ZGR_COLOR_TEXT_DISABLED 601
#define ZGR_COLOR_WINDOW 602
#define ZGR_COLOR_CAPTION_TEXT 603
#define ZGR_COLOR_CAPTION 604
#define ZGR_COLOR_ACCENT 605
#define ZGR_COLOR_HIGHLIGHT 606
#define ZGR_COLOR_BORDER 607

/* Graphics module: the theme's name, for display. */
#define ZGR_STR_THEME_NAME 1

/* Graphics module: the suite's four fonts, resource type "TTF", all of the family "Zelvo Sans Wide". */
#define ZGR_FONT_REGULAR 34001
#define ZGR_FONT_BOLD 34002
#define ZGR_FONT_OBLIQUE 34003
#define ZGR_FONT_BOLD_OBLIQUE 34004

#endif
