#include "GalleryPage.h"

std::vector<std::unique_ptr<GalleryPage>> MakeGalleryPages()
{
    std::vector<std::unique_ptr<GalleryPage>> pages;
    pages.push_back(MakeFramePage());
    pages.push_back(MakePicturesPage());
    pages.push_back(MakeSkinPage());
    pages.push_back(MakeStaticsPage());
    pages.push_back(MakeButtonFamilyPage());
    pages.push_back(MakeCommonCheckButtonsPage());
    pages.push_back(MakeMessageBoxPage());
    pages.push_back(MakeDevicePage());
    pages.push_back(MakeSearchPage());
    pages.push_back(MakeRtlPage());
    pages.push_back(MakeTabsPage());
    pages.push_back(MakeWizardPage());
    pages.push_back(MakeListViewPage());
    pages.push_back(MakeMenuBarPage());
    pages.push_back(MakeAnimationPage());
    pages.push_back(MakeMessageEditorPage());
    pages.push_back(MakeAboutPage());
    pages.push_back(MakeProgressPage());
    pages.push_back(MakePhoneFilesPage());
    pages.push_back(MakeFileDlgPage());
    return pages;
}
