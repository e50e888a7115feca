#include "persistence.h"

#include "bagform.h"
#include "com/wall.h"
#include "olestream.h"
#include "statewalk.h"
#include "TarnLink.h"

using Microsoft::WRL::ComPtr;

namespace {

constexpr const wchar_t* streamName = L"Contents";
constexpr DWORD readMode = STGM_READ | STGM_SHARE_EXCLUSIVE;
constexpr DWORD writeMode = STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE;

HRESULT ReadStream(IDispatch& values, OleControl& control, IStream* stream) {
    OleStreamSource source(stream);
    const HRESULT result = ReadVersion(source);
    if (FAILED(result))
        return result;
    StreamRowReader reader(source);
    return LoadState(values, control, reader);
}

HRESULT WriteStream(IDispatch& values, const OleControl& control, ByteSink& sink) {
    const HRESULT result = WriteVersion(sink);
    if (FAILED(result))
        return result;
    StreamRowWriter writer(sink);
    return SaveState(values, control, writer);
}

} // namespace

HRESULT Persistence::GetClassID(CLSID* id) {
    if (!id)
        return E_POINTER;
    *id = CLSID_TarnComm;
    return S_OK;
}

HRESULT Persistence::IsDirty() {
    return Control().IsDirty() ? S_OK : S_FALSE;
}

// The defaults are in force from the start on.
HRESULT Persistence::InitNew() {
    Control().SetDirty(true);
    return S_OK;
}

// Setters run the host's code, which may release the control.
HRESULT Persistence::Load(IStream* stream) {
    if (!stream)
        return E_POINTER;
    const ComPtr<IDispatch> held(&Values());
    return AsResult([&] {
        return AroundStreamLoad([&] {
            const HRESULT result = ReadStream(Values(), Control(), stream);
            if (SUCCEEDED(result))
                Control().SetDirty(false);
            return result;
        });
    });
}

HRESULT Persistence::Save(IStream* stream, BOOL clearDirty) {
    if (!stream)
        return E_POINTER;
    const ComPtr<IDispatch> held(&Values());
    return AsResult([&] {
        OleStreamSink sink(stream);
        const HRESULT result = AroundStreamSave([&] { return WriteStream(Values(), Control(), sink); });
        if (SUCCEEDED(result) && clearDirty)
            Control().SetDirty(false);
        return result;
    });
}

// Counts in silence, but leaves the state as it is.
HRESULT Persistence::GetSizeMax(ULARGE_INTEGER* size) {
    if (!size)
        return E_POINTER;
    const ComPtr<IDispatch> held(&Values());
    return AsResult([&] {
        CountingSink sink;
        const HRESULT result = AroundBagSave([&] { return WriteStream(Values(), Control(), sink); });
        size->QuadPart = SUCCEEDED(result) ? sink.Count() : 0;
        return result;
    });
}

HRESULT Persistence::InitNew(IStorage*) {
    return InitNew();
}

HRESULT Persistence::Load(IStorage* storage) {
    if (!storage)
        return E_POINTER;
    ComPtr<IStream> stream;
    const HRESULT result = storage->OpenStream(streamName, nullptr, readMode, 0, &stream);
    return SUCCEEDED(result) ? Load(stream.Get()) : result;
}

HRESULT Persistence::Save(IStorage* storage, BOOL sameAsLoad) {
    if (!storage)
        return E_POINTER;
    ComPtr<IStream> stream;
    const HRESULT result = storage->CreateStream(streamName, writeMode, 0, 0, &stream);
    return SUCCEEDED(result) ? Save(stream.Get(), sameAsLoad) : result;
}

HRESULT Persistence::SaveCompleted(IStorage*) {
    Control().TellSaved();
    return S_OK;
}

HRESULT Persistence::HandsOffStorage() {
    return S_OK; // none is kept
}

HRESULT Persistence::Load(IPropertyBag* bag, IErrorLog* log) {
    if (!bag)
        return E_POINTER;
    const ComPtr<IDispatch> held(&Values());
    return AsResult([&] {
        BagRowReader reader(bag, log);
        const HRESULT result = AroundBagLoad([&] { return LoadState(Values(), Control(), reader); });
        if (SUCCEEDED(result))
            Control().SetDirty(false);
        return result;
    });
}

HRESULT Persistence::Save(IPropertyBag* bag, BOOL clearDirty, BOOL) {
    if (!bag)
        return E_POINTER;
    const ComPtr<IDispatch> held(&Values());
    return AsResult([&] {
        BagRowWriter writer(bag);
        const HRESULT result = AroundBagSave([&] { return SaveState(Values(), Control(), writer); });
        if (SUCCEEDED(result) && clearDirty)
            Control().SetDirty(false);
        return result;
    });
}
