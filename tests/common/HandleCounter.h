// Counts the GDI and USER objects that zcmod.dll creates and has not freed, by replacing the creating and
// freeing functions in the DLL's import table. GetGuiResources answers 0 under Wine, and this counts only what
// the library itself is responsible for, whatever the test program or the platform does beside it.
//
//   zcmod_test::HandleCounter counter;        // patches the imports; one counter at a time
//   RunOneCycle();                             // warm-up: shared objects made once are not leaks
//   const auto before = counter.Live();
//   for (int i = 0; i < 1000; ++i) RunOneCycle();
//   EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
//
// Windows count until destroyed (by the library or by anyone: a window that is gone is gone), timers until
// killed or their window is gone, regions handed to SetWindowRgn belong to the window from then on.
#pragma once

#include <windows.h>

#include <string>

namespace zcmod_test {

class HandleCounter {
public:
    enum Kind { Bitmap, DC, Brush, Pen, Font, Region, Icon, Window, Timer, Hook, ImageList, KindCount };

    struct Counts {
        long n[KindCount] = {};
        long Total() const;
        long operator[](Kind kind) const { return n[kind]; }
        bool operator==(const Counts& other) const;
        bool operator!=(const Counts& other) const { return !(*this == other); }
        std::string ToString() const;  // "bitmaps 2, windows 1" (the non-zero kinds)
    };

    // Patches the imports of `module`, by default the loaded zcmod.dll.
    explicit HandleCounter(HMODULE module = GetModuleHandleW(L"zcmod.dll"));
    ~HandleCounter();
    HandleCounter(const HandleCounter&) = delete;
    HandleCounter& operator=(const HandleCounter&) = delete;

    // What the module has created and not yet freed, by kind.
    Counts Live() const;
    // How many import slots were patched: 0 means the module imports none of the watched functions.
    int Patched() const { return m_patched; }

private:
    HMODULE m_module;
    int m_patched = 0;
};

}  // namespace zcmod_test
