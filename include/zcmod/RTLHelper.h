// CRTLHelper: whether the interface language reads right to left, and dialog templates made to follow it.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"

class ZCMOD_API CRTLHelper {
public:
    // The flag is IsRTL(language).
    explicit CRTLHelper(const wchar_t* language = nullptr);
    virtual ~CRTLHelper();

    // Takes the flag from another language code.
    void Initialize(const wchar_t* language);
    // 1 when the language given reads right to left.
    int IsRTL() const { return m_nRTL; }

    // 1 when `language` is "heb" or "ara" in any mix of case; 0 for any other code and for a null pointer.
    static int IsRTL(const wchar_t* language);

    // The dialog template `name` of `module`, flipped with this object's flag.
    DLGTEMPLATE* FlipDialog(HINSTANCE module, const wchar_t* name) const;
    DLGTEMPLATE* FlipDialog(HINSTANCE module, UINT id) const;
    // Finds, loads and locks the dialog template `name` (RT_DIALOG) of `module`, and when `rtl` is non-zero
    // sets WS_EX_LAYOUTRTL in its extended style, in either template layout. The change is made in the loaded
    // resource itself, so it holds for every later use of that template in the process; nothing clears it.
    // Returns the template for DialogBoxIndirectParamW and CreateDialogIndirectParamW, or null when the
    // resource is missing or too short to be a template.
    static DLGTEMPLATE* FlipDialog(HINSTANCE module, const wchar_t* name, int rtl);

    // Reads the string `value` of `key`\`subKey` into a new buffer of 260 characters, which the caller frees
    // with delete[]. Null when either name is missing, the key can't be opened or the value doesn't fit.
    static wchar_t* GetLangID(HKEY key, const wchar_t* subKey, const wchar_t* value);
    // GetSystemMetrics(SM_MIDEASTENABLED).
    static int IsMidEastEnabled();

private:
    static const wchar_t* const m_RTLLAngIDS[2];
    int m_nRTL;
};
