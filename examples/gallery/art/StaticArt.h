/* Resource ids of the gallery's static page (art/statics.py draws them). Each theme has a block of 100:
   Default first, then Graphite. */
#define IDB_GALLERY_STATIC_BASE 7700
#define IDB_GALLERY_STATIC_THEME_STEP 100
#define IDB_GALLERY_STATIC_CARD 0     /* nine pieces, in the order of a frame's ids */
#define IDB_GALLERY_STATIC_ACROSS 10  /* start, middle, end */
#define IDB_GALLERY_STATIC_DOWN 20    /* start, middle, end */
#define IDB_GALLERY_STATIC_SPINNER 30 /* eight frames */
#define IDB_GALLERY_STATIC_SPINNER_FRAMES 8
