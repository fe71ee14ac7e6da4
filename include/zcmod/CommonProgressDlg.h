// CCommonProgressDlg: a small animated waiting window shown while a function of the application runs on a
// worker thread. DoModal blocks the calling thread in a modal dialog and returns the function's result; the
// dialog has no Cancel and ends only when the work ends.
//
//   LONGLONG CopyAll(void* job) { ...; return copied; }   // runs on the work thread; touches no window
//
//   CCommonProgressDlg progress(L"Desk Hub", L"Copying pictures...");
//   const INT_PTR copied = progress.DoModal(CopyAll, &job, hwndMain);   // the low 32 bits of the result
//
// Three threads take part: the caller's, which owns the dialog and its modal loop; the work thread
// (ModalDialogThread), which runs the function and then sets the done event; and the watch thread
// (EventMonitorThread), which turns that event into the message WM_PROGRESS_DONE to the dialog, so that the
// work function needs to know nothing of windows. Work that ends before the dialog appears still ends it:
// the event stays set until the watch thread, started at WM_INITDIALOG, takes it.
//
// The work function may call SetProgressText and SetWindowCaption; it must touch no window otherwise.
// DoModal returns only after both threads have ended, and it closes their handles and the event.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/NBitmapUtil.h"
#include "zcmod/PNGAnimation.h"
#include "zcmod/VuikStaticCtrl.h"
#include "zcmod/VuikWindowBackgroundCtrl.h"

// The window property on the dialog that holds its object.
#define ZCMOD_PROP_PROGRESS_INSTANCE L"__DeskHubCCommonProgressDlgInstance"

class ZCMOD_API CCommonProgressDlg {
public:
    // The work: one pointer-sized argument, a 64-bit result of which DoModal returns the low 32 bits.
    typedef LONGLONG (*WorkFunction)(void* argument);

    // Posted by the watch thread when the work has ended.
    enum { WM_PROGRESS_DONE = WM_USER + 1 };
    // The template's controls: the two side pictures and the placeholder of the animation.
    enum { IDC_LEFT_IMAGE = 1016, IDC_RIGHT_IMAGE = 1017, IDC_ANIMATION = 1018 };
    // The animation: room for twelve frames, of which the theme fills eleven, at 150 ms each.
    enum { AnimationCapacity = 12, AnimationDelay = 150 };

    // Either text may be null; both are copied.
    CCommonProgressDlg(const wchar_t* caption, const wchar_t* text);
    // Frees the texts, the font, the frames, the animation and the skins.
    virtual ~CCommonProgressDlg();

    // Both may be called from the work thread. A null text clears it. While the dialog lives, the caption
    // goes on the window at once and a new progress text repaints the dialog.
    virtual void SetWindowCaption(const wchar_t* text);
    virtual void SetProgressText(const wchar_t* text);

private:
    // A modeless progress window over `parent`; set m_hDoneEvent first, or it closes at once.
    virtual HWND CreateModeless(HWND parent);
    virtual void DestroyModeless();

public:
    // Runs `function(argument)` on a new thread (a null function counts as one that returns 0) while a
    // modal dialog owned by `parent` shows; returns the result's low 32 bits, as an unsigned value, or -1 if
    // the done event or the dialog can't be made. A second call on the same object starts afresh.
    virtual INT_PTR DoModal(WorkFunction function, void* argument, HWND parent);

protected:
    virtual BOOL OnInitDialog();
    // Stops the animation and removes the window property.
    virtual void OnDestroy();
    // After the frame has painted: the progress text under the animation's place. Returns 1.
    virtual LRESULT OnCustomPaint(HDC dc);

public:
    static INT_PTR CALLBACK CommonDialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // Centres the dialog over `parent`; with none, over the parent of a child window or else the owner. A
    // hidden or minimised owner counts as none; a top-level window is then centred on the work area, and is
    // always kept inside it.
    void CenterWindow(HWND parent = nullptr);
    // The thread functions; their parameters are heap records that ModalDialogThread leaves to DoModal and
    // EventMonitorThread frees itself.
    static DWORD WINAPI ModalDialogThread(void* parameter);
    static DWORD WINAPI EventMonitorThread(void* parameter);

    HWND GetSafeHwnd() const { return m_hWnd; }
    // Copies the progress text (empty without one) into `buffer` of `size` characters, cut to fit; returns
    // the characters copied.
    int GetProgressText(wchar_t* buffer, int size);

    HWND m_hWnd;
    HWND m_hModeless;

protected:
    CVuikWindowBackgroundCtrl m_background;
    CVuikStaticCtrl m_leftImage;
    CVuikStaticCtrl m_rightImage;
    CVuikWindowBackgroundSkin m_backgroundSkin;
    CVuikStaticBitmapSkin m_leftSkin;
    CVuikStaticBitmapSkin m_rightSkin;
    CPNGAnimation m_animation;
    CNBitmapUtil m_bitmaps;
    HFONT m_hFont;
    RECT m_rcAnimation;
    wchar_t* m_pszText;
    wchar_t* m_pszCaption;
    HANDLE m_hDoneEvent;

private:
    CCommonProgressDlg(const CCommonProgressDlg&);
    CCommonProgressDlg& operator=(const CCommonProgressDlg&);

    // Starts the watch thread on the dialog and m_hDoneEvent; its handle is kept for DoModal.
    void StartWatch(HWND dialog);
    // Waits for the watch thread, if any, and closes its handle.
    void JoinWatch();
    // The template, left to right whatever the layout.
    const DLGTEMPLATE* PrepareTemplate();
    // Right to left: each control moves to the mirror image of its place.
    void MirrorControls();
    // Blends the theme's frames over the client colour and hands them to the animation.
    void LoadAnimationFrames(bool rtl, COLORREF ground);
    // Replaces `*slot` by a copy of `text` (null: none) under the lock.
    void ReplaceText(wchar_t** slot, const wchar_t* text);

    // The frame and the statics keep pieces of the window they last took over (the frame its caption
    // buttons): for a new dialog they start afresh.
    void RenewControls();

    HANDLE m_hWatchThread;
    bool m_bControlsUsed;
    // Guards the two texts, which the work thread may replace while the dialog paints.
    CRITICAL_SECTION m_lock;
    // The template as last prepared, when it had to be copied to clear the layout bit.
    BYTE* m_pTemplateCopy;
};
