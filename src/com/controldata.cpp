// The control as data: its picture as a metafile, for containers that keep one while it isn't running.
#include "olecontrol.h"

#include "wall.h"

#include <cstddef>

using Microsoft::WRL::ComPtr;

namespace {

HRESULT CheckFormat(const FORMATETC& format) {
    if (format.cfFormat != CF_METAFILEPICT)
        return DV_E_FORMATETC;
    if (!(format.tymed & TYMED_MFPICT))
        return DV_E_TYMED;
    if (format.dwAspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    return format.lindex == -1 ? S_OK : DV_E_LINDEX;
}

// Recorded in himetric units with the origin at the upper left, and fit for any size of output.
HMETAFILE Record(SIZEL himetric, auto&& draw) {
    const HDC context = CreateMetaFileA(nullptr);
    if (!context)
        return nullptr;
    SetMapMode(context, MM_ANISOTROPIC);
    SetWindowOrgEx(context, 0, 0, nullptr);
    SetWindowExtEx(context, himetric.cx, himetric.cy, nullptr);
    draw(context);
    return CloseMetaFile(context);
}

HRESULT GivePicture(HMETAFILE metafile, SIZEL himetric, STGMEDIUM& medium) {
    const HGLOBAL memory = metafile ? GlobalAlloc(GMEM_MOVEABLE | GMEM_SHARE, sizeof(METAFILEPICT)) : nullptr;
    if (!memory) {
        DeleteMetaFile(metafile);
        return E_OUTOFMEMORY;
    }
    auto* picture = static_cast<METAFILEPICT*>(GlobalLock(memory));
    *picture = {MM_ANISOTROPIC, himetric.cx, himetric.cy, metafile};
    GlobalUnlock(memory);
    medium = {};
    medium.tymed = TYMED_MFPICT;
    medium.hMetaFilePict = memory;
    return S_OK;
}

} // namespace

HRESULT OleControl::GetData(FORMATETC* format, STGMEDIUM* medium) {
    if (!format || !medium)
        return E_POINTER;
    const HRESULT result = CheckFormat(*format);
    if (FAILED(result))
        return result;
    const ComPtr<IUnknown> keep(Identity());
    return AsResult([&] {
        const HMETAFILE metafile = Record(extent_, [&](HDC context) {
            OnDraw(context, {0, 0, extent_.cx, extent_.cy});
        });
        return GivePicture(metafile, extent_, *medium);
    });
}

HRESULT OleControl::GetDataHere(FORMATETC*, STGMEDIUM*) {
    return DATA_E_FORMATETC;
}

HRESULT OleControl::QueryGetData(FORMATETC* format) {
    return format ? CheckFormat(*format) : E_POINTER;
}

HRESULT OleControl::GetCanonicalFormatEtc(FORMATETC* in, FORMATETC* out) {
    if (!in || !out)
        return E_POINTER;
    *out = *in;
    out->ptd = nullptr;
    return DATA_S_SAMEFORMATETC;
}

HRESULT OleControl::SetData(FORMATETC*, STGMEDIUM*, BOOL) {
    return E_NOTIMPL;
}

HRESULT OleControl::EnumFormatEtc(DWORD, IEnumFORMATETC** formats) {
    if (!formats)
        return E_POINTER;
    *formats = nullptr;
    return E_NOTIMPL; // containers ask for the one that they want
}

HRESULT OleControl::DAdvise(FORMATETC* format, DWORD flags, IAdviseSink* sink, DWORD* connection) {
    if (!dataAdvises_) {
        const HRESULT result = CreateDataAdviseHolder(&dataAdvises_);
        if (FAILED(result))
            return result;
    }
    return dataAdvises_->Advise(this, format, flags, sink, connection);
}

HRESULT OleControl::DUnadvise(DWORD connection) {
    return dataAdvises_ ? dataAdvises_->Unadvise(connection) : OLE_E_NOCONNECTION;
}

HRESULT OleControl::EnumDAdvise(IEnumSTATDATA** advises) {
    if (!advises)
        return E_POINTER;
    *advises = nullptr;
    return dataAdvises_ ? dataAdvises_->EnumAdvise(advises) : S_OK;
}
