#include "GalleryPage.h"

std::vector<std::unique_ptr<GalleryPage>> MakeGalleryPages()
{
    std::vector<std::unique_ptr<GalleryPage>> pages;
    pages.push_back(MakeFramePage());
    return pages;
}
