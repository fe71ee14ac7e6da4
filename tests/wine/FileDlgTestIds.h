/* The skinned file dialog's test template, a resource of the test program. Only #defines. */
#define IDD_FILEDLG_CALLER 9050
#define IDC_FILEDLG_CALLER_LABEL 9051
