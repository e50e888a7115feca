// CScriptExtension: what a script can say in plain statements, by the properties of its control.
#pragma once

#include "com/classinfo.h"
#include "com/connectionpoint.h"
#include "com/dispatch.h"
#include "com/errors.h"
#include "com/unknown.h"
#include "TarnLink.h"

class CTarnCommCtl;

// The control owns it and takes itself away before it goes; a script may keep it longer, and then it does
// nothing.
class CScriptExtension final
    : public Unknown<CScriptExtension, Dual<IScriptExtension>, EventSource<_IScriptExtensionEvents>,
                     ErrorSupport<IScriptExtension>, ClassInfo<ScriptExtension, _IScriptExtensionEvents>> {
  public:
    using Faces = FaceTable<FaceRow<IScriptExtension>, FaceRow<IDispatch, IScriptExtension>,
                            FaceRow<IConnectionPointContainer>, FaceRow<ISupportErrorInfo>,
                            FaceRow<IProvideClassInfo2>, FaceRow<IProvideClassInfo, IProvideClassInfo2>>;

    explicit CScriptExtension(CTarnCommCtl& control) : control_(&control) {}
    void Detach() { control_ = nullptr; }

    STDMETHOD(Dial)(BSTR PhoneNumber, VARIANT_BOOL* Result) override;
    STDMETHOD(HangUp)(VARIANT_BOOL* Result) override;
    STDMETHOD(WaitFor)
    (VARIANT Text1, VARIANT Text2, VARIANT Text3, VARIANT Text4, VARIANT Text5, VARIANT Text6, VARIANT Text7,
     VARIANT Text8, VARIANT Text9, VARIANT Text10, BSTR* Result) override;
    STDMETHOD(get_WaitForTimeOut)(LONG* value) override;
    STDMETHOD(put_WaitForTimeOut)(LONG value) override;
    STDMETHOD(Send)(BSTR Data) override;
    STDMETHOD(Receive)(VARIANT ByteCount, BSTR* Result) override;
    STDMETHOD(ReceiveLine)(BSTR* Result) override;

  private:
    CTarnCommCtl* control_;       // not counted: the control holds this object
    LONG waitForTimeOut_ = 30000; // ms
};
