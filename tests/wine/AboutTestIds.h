/* The about box tests' application resources (AboutTest.rc): its strings and its product picture. */
#define IDS_ABOUT_TEST_TITLE 9296
#define IDS_ABOUT_TEST_PRODUCT 9297 /* also the product picture */
#define IDS_ABOUT_TEST_FOOTER 9298
#define IDS_ABOUT_TEST_LONG 9299
#define IDS_ABOUT_TEST_EMPTY 9300
#define IDS_ABOUT_TEST_BLOCK_END 9311 /* the sixteenth string of its block */
#define IDS_ABOUT_TEST_GAP 9305      /* in a block that exists, but not there */
#define IDS_ABOUT_TEST_NO_BLOCK 9400 /* no string of its block exists */
