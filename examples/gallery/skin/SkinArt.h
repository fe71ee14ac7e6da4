/* Resource ids of the gallery's skin page (gallery.rc); pictures made by skin/make_skin.sh. */
#define IDB_GALLERY_NORMAL 7101
#define IDB_GALLERY_HOVER 7102
#define IDB_GALLERY_PUSHED 7103
#define IDB_GALLERY_CHECKED 7104
#define IDB_GALLERY_DISABLED 7105
#define IDB_GALLERY_ARROW 7106
/* The same family for a dark theme: each id 10 above its light one. */
#define IDB_GALLERY_SKIN_DARK_OFFSET 10
