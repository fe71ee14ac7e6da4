/* Resource ids of the gallery's button artwork (art/buttons.py). Light pictures from 7400, dark from 7500:
   the offset of a variant is added to each id below. */
#define IDB_GALLERY_DARK_OFFSET 100
/* The plain button's face: left, middle, right of each state in the order normal, pressed, hover, disabled. */
#define IDB_GALLERY_FACE 7400
#define IDB_GALLERY_GLYPH 7420
#define IDB_GALLERY_SPINNER_FIRST 7421
#define IDB_GALLERY_SPINNER_LAST 7424
#define IDB_GALLERY_ICON_ARROW 7430
#define IDB_GALLERY_ICON_ARROW_FIXED 7431
#define IDB_GALLERY_ICON_PLUS 7432
#define IDB_GALLERY_ICON_CLOSE 7433
