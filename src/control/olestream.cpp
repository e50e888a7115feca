#include "olestream.h"

#include <ocidl.h>
#include <ole2.h>

using Microsoft::WRL::ComPtr;

HRESULT OleStreamSource::Read(void* bytes, ULONG count) {
    ULONG read = 0;
    const HRESULT result = stream_->Read(bytes, count, &read);
    if (FAILED(result))
        return result;
    return read == count ? S_OK : E_FAIL;
}

// As OleLoadFromStream, which refuses what was written for no object. Asking for a font keeps a damaged
// stream from loading an object of any other kind.
HRESULT OleStreamSource::ReadObject(IDispatch** object) {
    *object = nullptr;
    CLSID id = {};
    if (FAILED(ReadClassStm(stream_.Get(), &id)))
        return E_FAIL;
    if (id == CLSID_NULL)
        return S_OK;
    ComPtr<IFontDisp> font;
    ComPtr<IPersistStream> persist;
    constexpr DWORD anyServer = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER;
    if (FAILED(CoCreateInstance(id, nullptr, anyServer, IID_IFontDisp, &font)) || FAILED(font.As(&persist)) ||
        FAILED(persist->Load(stream_.Get())))
        return E_FAIL;
    *object = font.Detach();
    return S_OK;
}

HRESULT OleStreamSink::Write(const void* bytes, ULONG count) {
    ULONG written = 0;
    const HRESULT result = stream_->Write(bytes, count, &written);
    if (FAILED(result))
        return result;
    return written == count ? S_OK : STG_E_MEDIUMFULL;
}

HRESULT OleStreamSink::WriteObject(IUnknown* object) {
    if (!object)
        return WriteClassStm(stream_.Get(), CLSID_NULL);
    ComPtr<IPersistStream> persist;
    const HRESULT result = object->QueryInterface(IID_PPV_ARGS(&persist));
    return SUCCEEDED(result) ? OleSaveToStream(persist.Get(), stream_.Get()) : result;
}

HRESULT CountingSink::Write(const void*, ULONG count) {
    count_ += count;
    return S_OK;
}

HRESULT CountingSink::WriteObject(IUnknown* object) {
    count_ += sizeof(CLSID);
    if (!object)
        return S_OK;
    ComPtr<IPersistStream> persist;
    HRESULT result = object->QueryInterface(IID_PPV_ARGS(&persist));
    ULARGE_INTEGER size = {};
    if (SUCCEEDED(result))
        result = persist->GetSizeMax(&size);
    count_ += size.QuadPart;
    return result;
}
