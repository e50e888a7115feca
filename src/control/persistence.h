// A control's state in a stream, a storage and a property bag: one ordered map of properties (propertymap.h),
// read and written by the control's own IDispatch.
#pragma once

#include "com/faces.h"
#include "com/olecontrol.h"

#include <functional>

class Persistence : public IPersistStreamInit, public IPersistStorage, public IPersistPropertyBag {
  public:
    using Faces = FaceTable<FaceRow<IPersistStreamInit>, FaceRow<IPersist, IPersistStreamInit>,
                            FaceRow<IPersistStorage>, FaceRow<IPersistPropertyBag>>;

    // All three
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* id) override;
    HRESULT STDMETHODCALLTYPE IsDirty() override;
    HRESULT STDMETHODCALLTYPE InitNew() override;

    // IPersistStreamInit
    HRESULT STDMETHODCALLTYPE Load(IStream* stream) override;
    HRESULT STDMETHODCALLTYPE Save(IStream* stream, BOOL clearDirty) override;
    HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) override;

    // IPersistStorage
    HRESULT STDMETHODCALLTYPE InitNew(IStorage* storage) override;
    HRESULT STDMETHODCALLTYPE Load(IStorage* storage) override;
    HRESULT STDMETHODCALLTYPE Save(IStorage* storage, BOOL sameAsLoad) override;
    HRESULT STDMETHODCALLTYPE SaveCompleted(IStorage* storage) override;
    HRESULT STDMETHODCALLTYPE HandsOffStorage() override;

    // IPersistPropertyBag
    HRESULT STDMETHODCALLTYPE Load(IPropertyBag* bag, IErrorLog* log) override;
    HRESULT STDMETHODCALLTYPE Save(IPropertyBag* bag, BOOL clearDirty, BOOL saveAll) override;

  protected:
    virtual ~Persistence() = default;

    // What the control says of itself.
    virtual IDispatch& Values() = 0;
    virtual OleControl& Control() = 0;

    // The control's work before and after. A load of a stream always succeeds; what went wrong stands in the
    // thread's error record.
    virtual HRESULT AroundStreamLoad(const std::function<HRESULT()>& read) = 0;
    virtual HRESULT AroundBagLoad(const std::function<HRESULT()>& read) = 0;
    virtual HRESULT AroundStreamSave(const std::function<HRESULT()>& write) = 0;
    virtual HRESULT AroundBagSave(const std::function<HRESULT()>& write) = 0;
};
