// Arbitrary phone paths and mirror paths: a phone path either is refused or becomes a path inside the mirror
// folder with no component that climbs out of it, and a mirror path made from a phone path turns back into the
// same phone path.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "device/core/PhonePaths.h"

using namespace zcmod::phonepath;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::wstring text;
    for (size_t i = 0; i + 1 < size; i += 2)
        text.push_back(static_cast<wchar_t>(data[i] | (data[i + 1] << 8)));

    const std::wstring temp = L"C:\\Temp\\";
    const std::wstring mirror = temp + kMirrorFolderName;
    const std::wstring phone = std::wstring(kPhoneFoldersRoot) + L"\\" + text;

    const std::wstring local = PhoneToMirrorPath(phone, temp);
    if (!local.empty()) {
        if (local.compare(0, mirror.size() + 1, mirror + L"\\") != 0)
            std::abort();
        const std::wstring rest = local.substr(mirror.size() + 1);
        size_t start = 0;
        for (;;) {
            const size_t end = rest.find(L'\\', start);
            const std::wstring part = rest.substr(start, end == std::wstring::npos ? end : end - start);
            const bool last = end == std::wstring::npos;
            if (!(last && part.empty()) && !IsSafeComponent(part))
                std::abort();
            if (last)
                break;
            start = end + 1;
        }
        // Back again: the same phone path, but for a drive written without its ":" on the phone side.
        const std::wstring again = MirrorToPhonePath(local, mirror);
        if (again.empty() || PhoneToMirrorPath(again, temp) != local)
            std::abort();
    }

    // Mirror paths of any shape: a split never reads outside the text and its parts come from it.
    const PhoneFile file = SplitMirrorPath(mirror + L"\\" + text, mirror);
    if (file.serial.size() + file.folder.size() + file.fileName.size() > text.size() + 2)
        std::abort();
    (void)FileTitle(text);
    (void)FolderTypeFromName(text);
    return 0;
}
