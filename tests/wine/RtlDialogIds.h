/* Dialog templates of the right-to-left tests, resources of the test program. Only #defines. */
#define IDM_RTL_TEST_MENU 9000
#define IDD_RTL_PLAIN 9001
#define IDD_RTL_EXTENDED 9002
