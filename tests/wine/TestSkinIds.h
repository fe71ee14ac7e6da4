/* Resource ids of the test program's own skin pictures (TestSkins.rc). 9099 stays free: a picture that isn't
   there. */
#define IDB_TEST_BADGE 9001
#define IDB_TEST_MISSING 9099
