// The clip of the phone file transfer's progress window: each theme carries it in both directions as AVI
// resources that the platform's animation control opens, shows frame by frame (as reviewed) and plays to the
// end; the right-to-left clip is the mirror of the other, as the reviewed picture shows.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include "Golden.h"
#include "MessageSequence.h"
#include "TestSkins.h"
#include "TestSupport.h"
#include "zcmod/ResourceIds.h"

using namespace testskin;

namespace {

TEST(TransferClip, BothThemesPlayBothDirections)
{
    INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_ANIMATE_CLASS};
    InitCommonControlsEx(&controls);
    for (const wchar_t* theme : {L"Default", L"Graphite"}) {
        SCOPED_TRACE(testing::Message() << theme);
        HMODULE module = LoadLibraryExW((zcmod_test::BinDir() + L"\\Resource\\ZCMOD_" + theme + L".zgr").c_str(),
                                        nullptr, LOAD_LIBRARY_AS_DATAFILE);
        ASSERT_NE(module, nullptr);
        Capture first[2], middle[2];
        for (int rtl = 0; rtl < 2; ++rtl) {
            SCOPED_TRACE(rtl ? "right to left" : "left to right");
            msgseq::Recorder rec;
            HWND host = rec.CreateParent("host", {40, 40, 440, 160});
            HWND clip = CreateWindowExW(0, ANIMATE_CLASSW, L"", WS_CHILD | WS_VISIBLE, 0, 0, 10, 10, host, nullptr,
                                        nullptr, nullptr);
            ASSERT_TRUE(SendMessageW(
                clip, ACM_OPENW, reinterpret_cast<WPARAM>(module),
                reinterpret_cast<LPARAM>(MAKEINTRESOURCEW(rtl ? ZGR_AVI_TRANSFER_RTL : ZGR_AVI_TRANSFER))));
            for (auto [frame, shown] : {std::pair<int, Capture*>{0, &first[rtl]}, {8, &middle[rtl]}}) {
                SendMessageW(clip, ACM_PLAY, 1, MAKELPARAM(frame, frame));
                *shown = CaptureWindow(clip);
            }
            ASSERT_GT(first[rtl].width, 100);
            // Played once through: the control says it started and, at the clip's end, that it stopped.
            rec.Only({WM_COMMAND});
            ASSERT_TRUE(SendMessageW(clip, ACM_PLAY, 1, MAKELPARAM(0, 0xFFFF)));
            EXPECT_TRUE(msgseq::Recorder::PumpUntil([&] { return rec.Count(WM_COMMAND) >= 2; }, 10000));
            EXPECT_TRUE(rec.Matches({{0, WM_COMMAND, msgseq::wparam, MAKEWPARAM(0, ACN_START)},
                                     {0, WM_COMMAND, msgseq::wparam, MAKEWPARAM(0, ACN_STOP)}}));
            DestroyWindow(host);
        }
        // Drawn as reviewed (the right-to-left frames the mirror of the others): the first and a middle frame of
        // each direction, as the control shows them.
        Sheet sheet(first[0].width * 2, first[0].height * 2);
        for (int i = 0; i < 4; ++i)
            sheet.Paste(i % 2 ? middle[i / 2] : first[i / 2], i % 2 * first[0].width, i / 2 * first[0].height);
        EXPECT_TRUE(zcmod_test::MatchesGolden(theme[0] == L'D' ? "transfer_clip_Default" : "transfer_clip_Graphite",
                                              sheet.width, sheet.height, sheet.pixels.data()));
        FreeLibrary(module);
    }
}

}  // namespace
