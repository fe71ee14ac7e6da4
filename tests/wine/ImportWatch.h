// Replaces imports of zcmod.dll for a scope and puts them back: how a test watches what the library hands to
// the platform (alphas, waits, threads) or gives it a clock of its own.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <vector>

#include "ImportPatch.h"

namespace zcmod_test {

class ImportPatches {
public:
    ImportPatches() = default;
    ImportPatches(const ImportPatches&) = delete;
    ImportPatches& operator=(const ImportPatches&) = delete;
    ~ImportPatches()
    {
        for (auto it = m_undo.rbegin(); it != m_undo.rend(); ++it)
            PatchImport(Dll(), it->dll, it->function, it->old);
    }
    // Puts `replacement` in place of `function` of `dll`; `real` receives the platform's function.
    template <class F>
    void Add(const char* dll, const char* function, F replacement, F* real = nullptr)
    {
        void* old = PatchImport(Dll(), dll, function, reinterpret_cast<void*>(replacement));
        ASSERT_NE(old, nullptr) << "zcmod.dll imports no " << function;
        m_undo.push_back(Undo{dll, function, old});
        if (real)
            *real = reinterpret_cast<F>(old);
    }

private:
    static HMODULE Dll() { return GetModuleHandleW(L"zcmod.dll"); }
    struct Undo {
        const char* dll;
        const char* function;
        void* old;
    };
    std::vector<Undo> m_undo;
};

}  // namespace zcmod_test
