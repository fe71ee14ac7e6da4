// One page of the gallery: a title and what it draws, with child windows of its own if it needs them.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

class GalleryPage {
public:
    virtual ~GalleryPage() = default;

    // Shown in the page list and used for the screenshot's file name.
    virtual const wchar_t* Title() const = 0;

    // The page becomes visible in `host` (its client area is the page) or is left.
    virtual void Enter(HWND /*host*/) {}
    virtual void Leave() {}

    // Draws the page into a buffer of the host's size.
    virtual void Paint(HDC dc, const RECT& area) = 0;

    // Called every 50 ms while the page is visible; returns true when the page must be drawn again.
    virtual bool Tick() { return false; }

    // Sees each message of the application's loop first (a menu bar's accelerators); true when it took it.
    virtual bool PreTranslate(MSG* /*msg*/) { return false; }

    // Checks of the screenshot run: an empty string when the page drew what it must, else what is wrong.
    virtual std::wstring Verify() { return L""; }
};

std::unique_ptr<GalleryPage> MakeFramePage();
std::unique_ptr<GalleryPage> MakePicturesPage();
std::unique_ptr<GalleryPage> MakeSkinPage();
std::unique_ptr<GalleryPage> MakeStaticsPage();
std::unique_ptr<GalleryPage> MakeButtonFamilyPage();
std::unique_ptr<GalleryPage> MakeCommonCheckButtonsPage();
std::unique_ptr<GalleryPage> MakeMessageBoxPage();
std::unique_ptr<GalleryPage> MakeDevicePage();
std::unique_ptr<GalleryPage> MakeSearchPage();
std::unique_ptr<GalleryPage> MakeRtlPage();
std::unique_ptr<GalleryPage> MakeTabsPage();
std::unique_ptr<GalleryPage> MakeWizardPage();
std::unique_ptr<GalleryPage> MakeListViewPage();
std::unique_ptr<GalleryPage> MakeMenuBarPage();
std::unique_ptr<GalleryPage> MakeAnimationPage();
std::unique_ptr<GalleryPage> MakeMessageEditorPage();
std::unique_ptr<GalleryPage> MakeAboutPage();
std::unique_ptr<GalleryPage> MakeProgressPage();
std::unique_ptr<GalleryPage> MakePhoneFilesPage();
std::unique_ptr<GalleryPage> MakeFileDlgPage();

// Every page, in the order of the list.
std::vector<std::unique_ptr<GalleryPage>> MakeGalleryPages();
