/* Resource ids of the gallery's button artwork (art/buttons.py). Light pictures from 7200, dark from 7300:
   the offset of a variant is added to each id below. */
#define IDB_GALLERY_DARK_OFFSET 100
/* The plain button's face: left, middle, right of each state in the order normal, pressed, hover, disabled. */
#define IDB_GALLERY_FACE 7200
#define IDB_GALLERY_GLYPH 7220
#define IDB_GALLERY_SPINNER_FIRST 7221
#define IDB_GALLERY_SPINNER_LAST 7224
#define IDB_GALLERY_ICON_ARROW 7230
#define IDB_GALLERY_ICON_ARROW_FIXED 7231
#define IDB_GALLERY_ICON_PLUS 7232
#define IDB_GALLERY_ICON_CLOSE 7233
