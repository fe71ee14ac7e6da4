/* Resource ids of the gallery's tab control pieces (art/tabs.py draws them): one set of 18 per theme, piece i
   of a set at its first id + i. The spare piece (7) has no picture. */
#define IDB_GALLERY_TAB_DEFAULT 7300
#define IDB_GALLERY_TAB_GRAPHITE 7340
#define IDB_GALLERY_TAB_SPARE 7
