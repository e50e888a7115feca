// File transfer. Each step of a transfer comes as an event.
#include "ansi.h"
#include "objectaccess.h"
#include "propertyrows.h"

namespace {

constexpr int nameSize = 1024; // of a file on either side, with its NUL

template <class Flat>
BSTR NameFrom(Flat flat, HWND object) {
    char name[nameSize] = {};
    flat(object, name, nameSize);
    return MakeBstr(std::string_view(name));
}

} // namespace

PLAIN(XferProtocol, XferProtocol, m_nXferProtocol, GetProtocol, SetProtocol)
PLAIN(XferStatusDialog, StatusDialog, m_nXferStatusDialog, GetTransferDialogType, SetTransferDialogType)
READ(XferFileSize, LONG, GetTransferFileSize)
READ(XferStatus, XferStatus, GetTransferStatus)
READ(XferTransferred, LONG, GetTransferBytesTransferred)
UNCACHED(ResumeMethod, ResumeMethod, GetResumeMethod, SetResumeMethod)
READ_CACHED(AbortTransfer, VARIANT_BOOL, m_bAbortTransfer)

STDMETHODIMP CTarnCommCtl::put_AbortTransfer(VARIANT_BOOL value) {
    return Body([&] {
        m_Properties.m_bAbortTransfer = value;
        if (value)
            AbortTransfer(CommObject());
        Log().AssignedBool("AbortTransfer", value != VARIANT_FALSE);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_Upload(BSTR value) {
    return Body([&]() -> HRESULT {
        m_Properties.m_bAbortTransfer = 0;
        if (!Upload(CommObject(), AnsiOf(value).c_str()))
            return ReportError(FileNotFound, "File not found.");
        Log().AssignedText("Upload", value);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_Download(BSTR value) {
    return Body([&] {
        Download(CommObject(), AnsiOf(value).c_str());
        m_Properties.m_bAbortTransfer = 0;
        Log().AssignedText("Download", value);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_XferPath(BSTR* value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = MakeBstr(m_Properties.m_sXferPath);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_XferPath(BSTR value) {
    return Body([&] {
        SetXferPath(CommObject(), AnsiOf(value).c_str());
        m_Properties.m_sXferPath = value ? value : L"";
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_XferDestFilename(BSTR* value) {
    return ReadText("XferDestFilename", value, [this] { return NameFrom(GetDestFilename, CommObject()); });
}

STDMETHODIMP CTarnCommCtl::put_XferDestFilename(BSTR value) {
    return Body([&] {
        SetDestFilename(CommObject(), AnsiOf(value).c_str());
        Log().AssignedText("XferDestFilename", value);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_XferSourceFilename(BSTR* value) {
    return ReadText("XferSourceFilename", value,
                    [this] { return NameFrom(GetSourceFilename, CommObject()); });
}

STDMETHODIMP CTarnCommCtl::get_XferMessage(BSTR* value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = MakeBstr(std::string_view(TransferMessageOf(CommObject())));
        return S_OK;
    });
}
