// Sinks that record what they are told.
#pragma once

#include "support/counted.h"

#include <ocidl.h>
#include <oleidl.h>

#include <functional>
#include <vector>

namespace host {

// The default events of an object: Invoke is handed to the test.
class EventSink : public Counted<EventSink, IDispatch> {
  public:
    using Faces = FaceTable<FaceRow<IDispatch>>;
    using Handler = std::function<void(DISPID id, DISPPARAMS& arguments)>;

    explicit EventSink(REFIID events, Handler handler = {}) : events_(events), handler_(std::move(handler)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return Counted::QueryInterface(IsEqualIID(iid, events_) ? IID_IDispatch : iid, object);
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*,
                                     EXCEPINFO*, UINT*) override {
        events.push_back(id);
        if (const Handler handler = handler_)
            handler(id, *arguments);
        return S_OK;
    }

    std::vector<DISPID> events;

  private:
    const IID events_;
    Handler handler_;
};

class PropertySink : public Counted<PropertySink, IPropertyNotifySink> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyNotifySink>>;

    HRESULT STDMETHODCALLTYPE OnChanged(DISPID id) override {
        changed.push_back(id);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE OnRequestEdit(DISPID id) override {
        asked.push_back(id);
        return allow ? S_OK : S_FALSE;
    }

    std::vector<DISPID> changed;
    std::vector<DISPID> asked;
    bool allow = true;
};

class AdviseSink : public Counted<AdviseSink, IAdviseSink> {
  public:
    using Faces = FaceTable<FaceRow<IAdviseSink>>;

    void STDMETHODCALLTYPE OnDataChange(FORMATETC*, STGMEDIUM*) override { ++data; }
    void STDMETHODCALLTYPE OnViewChange(DWORD, LONG) override { ++views; }
    void STDMETHODCALLTYPE OnRename(IMoniker*) override {}
    void STDMETHODCALLTYPE OnSave() override { ++saves; }
    void STDMETHODCALLTYPE OnClose() override { ++closes; }

    int data = 0;
    int views = 0;
    int saves = 0;
    int closes = 0;
};

} // namespace host
