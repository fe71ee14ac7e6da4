/* The gallery's own strings for the about box, in English and in Hebrew, and its product picture, which the
   box takes from the bitmap of the product name's id (art/about.py draws it under both ids). */
#define IDS_GALLERY_ABOUT_TITLE 7950
#define IDS_GALLERY_ABOUT_PRODUCT 7951
#define IDS_GALLERY_ABOUT_FOOTER 7952
#define IDS_GALLERY_ABOUT_TITLE_HEB 7960
#define IDS_GALLERY_ABOUT_PRODUCT_HEB 7961
#define IDS_GALLERY_ABOUT_FOOTER_HEB 7962
