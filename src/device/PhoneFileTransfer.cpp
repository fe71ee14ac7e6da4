// Carrying one file between a phone and its mirror under the temporary folder, with the platform's progress
// window: CFD_DownloadFile and CFD_UploadFile.
#include <shlobj.h>
#include <shlwapi.h>

#include <atomic>
#include <string>

#include "device/ConnectivityApi.h"
#include "device/PhoneFileSetup.h"
#include "device/core/PhonePaths.h"
#include "zcmod/DKHLInfoReader.h"
#include "zcmod/PhoneFileDialog.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"

using namespace zcmod;
using namespace zcmod::phonefile;
using namespace zcmod::service;

namespace {

// The clips of the progress window, in the graphics module: a document flying to the right or, in a
// right-to-left language, to the left.
constexpr UINT kCopyAnimation = ZGR_AVI_TRANSFER;
constexpr UINT kCopyAnimationRtl = ZGR_AVI_TRANSFER_RTL;

// Follows a copy's progress on the service's side and shows it; answers "cancelled" when the user closed the
// progress window or the service says the copy cannot go on.
class CFSNotify : public IFSAPINotify {
public:
    CFSNotify(HLNKAFS fs, HWND parent) : m_fs(fs)
    {
        m_bStarted = FSAPI_Initialize(kFsapiVersion, 0) == S_OK;
        m_bRegistered = LNKARegisterFSNotifyIF(m_fs, API_REGISTER, this) == S_OK;
        if (SUCCEEDED(CoCreateInstance(CLSID_ProgressDialog, nullptr, CLSCTX_INPROC_SERVER, IID_IProgressDialog,
                                       reinterpret_cast<void**>(&m_pDialog))) &&
            FAILED(m_pDialog->StartProgressDialog(parent, nullptr, PROGDLG_NOTIME | PROGDLG_NOMINIMIZE, nullptr))) {
            m_pDialog->Release();
            m_pDialog = nullptr;
        }
    }
    ~CFSNotify() { End(); }
    CFSNotify(const CFSNotify&) = delete;
    CFSNotify& operator=(const CFSNotify&) = delete;

    void SetAnimation(HMODULE module, UINT id)
    {
        if (m_pDialog && module)
            m_pDialog->SetAnimation(module, id);
    }
    void SetLine(const std::wstring& text)
    {
        if (m_pDialog)
            m_pDialog->SetLine(1, text.c_str(), FALSE, nullptr);
    }

    // Unregisters, ends the service start of its own and closes the progress window.
    void End()
    {
        if (m_bRegistered)
            LNKARegisterFSNotifyIF(m_fs, API_UNREGISTER, this);
        m_bRegistered = false;
        if (m_bStarted)
            FSAPI_Terminate(0);
        m_bStarted = false;
        if (m_pDialog) {
            m_pDialog->StopProgressDialog();
            m_pDialog->Release();
            m_pDialog = nullptr;
        }
    }

    HRESULT STDMETHODCALLTYPE FileProgress(DWORD state, DWORD percent, DWORD64 bytes) override
    {
        if (state == LNKA_PROGRESS_ABORTED)
            return LNKA_E_CANCELLED;
        if (m_pDialog && m_pDialog->HasUserCancelled())
            return LNKA_E_CANCELLED;
        if (percent == 100 && !m_finished) {
            m_completed += bytes;
            m_finished = true;
        } else if (percent != 100) {
            m_finished = false;
        }
        if (m_pDialog) {
            if (m_total == 0)
                m_pDialog->SetProgress64(percent, 100);
            else
                m_pDialog->SetProgress64(m_completed + (m_finished ? 0 : bytes), m_total);
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DeviceNotify(DWORD, const wchar_t*) override { return S_OK; }

private:
    HLNKAFS m_fs;
    IProgressDialog* m_pDialog = nullptr;
    DWORD64 m_total = 0;
    DWORD64 m_completed = 0;
    bool m_finished = false;
    bool m_bStarted = false;
    bool m_bRegistered = false;
};

// Makes the folders of `folder` that lie below the mirror and do not exist yet.
void MakeMirrorFolders(const std::wstring& folder)
{
    const std::wstring& mirror = MirrorFolder();
    if (!phonepath::IsInMirror(folder, mirror))
        return;
    for (size_t at = mirror.size(); at != std::wstring::npos; at = folder.find(L'\\', at + 1)) {
        CreateDirectoryW(folder.substr(0, at).c_str(), nullptr);
        if (at >= folder.size())
            break;
    }
    CreateDirectoryW(folder.c_str(), nullptr);
}

HRESULT Transfer(const wchar_t* mirrorPath, HWND parent, bool download)
{
    if (!EnsureSetup() || !mirrorPath)
        return static_cast<HRESULT>(phonepath::MapServiceResult(static_cast<uint32_t>(E_INVALIDARG)));
    const std::wstring path = mirrorPath;
    // A name that could lead out of the mirror never reaches the service: its split stays empty.
    const std::wstring phone = phonepath::MirrorToPhonePath(path, MirrorFolder());
    const bool safe = !phone.empty() && !phonepath::PhoneToMirrorPath(phone, TempPath()).empty();
    const phonepath::PhoneFile file = safe ? phonepath::SplitMirrorPath(path, MirrorFolder()) : phonepath::PhoneFile();
    const std::wstring localFolder = phonepath::ParentFolder(path);
    if (download && !file.serial.empty())
        MakeMirrorFolders(localFolder);

    const HRESULT comStatus = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    CDKHL2InfoReader settings;
    settings.ReadDKHL();
    FSAPI_Initialize(kFsapiVersion, 0);
    if (DMAPI_Initialize(kDmapiVersion, 0) == S_OK) {
        HLNKADM dm = nullptr;
        if (LNKAOpenDM(&dm) == S_OK) {
            for (const wchar_t* maker = settings.GetFirstPhoneManufacturer(); maker;
                 maker = settings.GetNextPhoneManufacturer()) {
            }
            LNKACloseDM(dm);
        }
        DMAPI_Terminate(0);
    }

    DWORD media = LNKA_MEDIA_USB;
    HLNKAFS fs = nullptr;
    DWORD deviceId = 0;
    HRESULT result = LNKAOpenFS(file.serial.c_str(), &media, &fs, &deviceId);
    if (result == S_OK) {
        CFSNotify notify(fs, parent);
        HMODULE graphics = ZCMOD_GetCommonZGR();
        if (graphics && FindResourceW(graphics, MAKEINTRESOURCEW(IsRightToLeft() ? kCopyAnimationRtl : kCopyAnimation),
                                      L"AVI"))
            notify.SetAnimation(graphics, IsRightToLeft() ? kCopyAnimationRtl : kCopyAnimation);
        notify.SetLine(file.fileName);
        result = download ? LNKACopyFile(fs, LNKA_COPY_FROM_DEVICE, file.fileName.c_str(), file.folder.c_str(),
                                         localFolder.c_str())
                          : LNKACopyFile(fs, LNKA_COPY_TO_DEVICE, file.fileName.c_str(), localFolder.c_str(),
                                         file.folder.c_str());
        LNKACloseFS(fs);
        notify.End();
    }
    FSAPI_Terminate(0);
    if (SUCCEEDED(comStatus))
        CoUninitialize();
    return static_cast<HRESULT>(phonepath::MapServiceResult(static_cast<uint32_t>(result)));
}

}  // namespace

HRESULT CFD_DownloadFile(const wchar_t* mirrorPath, HWND parent) { return Transfer(mirrorPath, parent, true); }
HRESULT CFD_UploadFile(const wchar_t* mirrorPath, HWND parent) { return Transfer(mirrorPath, parent, false); }
