/* Resource ids of the button family's test pictures (ButtonTestSkins.rc). 9299 stays free: a picture that
   isn't there. The three frames are consecutive. */
#define IDB_BUTTON_LEFT 9201
#define IDB_BUTTON_MIDDLE 9202
#define IDB_BUTTON_RIGHT 9203
#define IDB_BUTTON_GLYPH 9204
#define IDB_BUTTON_FRAME_FIRST 9211
#define IDB_BUTTON_FRAME_LAST 9213
#define IDB_BUTTON_MISSING 9299
