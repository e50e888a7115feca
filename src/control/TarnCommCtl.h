// CTarnCommCtl: the ActiveX control. A thin layer over one comm object: it keeps a copy of every property,
// forwards to the flat functions, turns the object's events into automation events, and refuses a second
// blocking call.
//
// Everything runs on the thread that made it. Each member of the interface holds the control while it runs
// (Body), because the host may release it in an event; the comm object may be gone then, and calls on its
// dead handle do nothing.
#pragma once

#include "collections.h"
#include "com/classinfo.h"
#include "com/connectionpoint.h"
#include "com/dispatch.h"
#include "com/errors.h"
#include "com/olecontrol.h"
#include "com/propertypages.h"
#include "com/safety.h"
#include "com/unknown.h"
#include "controlproperties.h"
#include "fontinuse.h"
#include "modem/TapiApp.h"
#include "opendialog.h"
#include "persistence.h"
#include "propertylog.h"
#include "TarnLink.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class CMyDialog;
class CScriptExtension;

// Results of the control's own.
inline constexpr HRESULT InvalidCall = static_cast<HRESULT>(0x800A0005);
inline constexpr HRESULT TypeMismatch = static_cast<HRESULT>(0x800A000D);
inline constexpr HRESULT FileNotFound = static_cast<HRESULT>(0x800A0035);
inline constexpr HRESULT GeneralFailure = static_cast<HRESULT>(0x800A0000);

#define TARN_GETTER(name, Type) STDMETHOD(get_##name)(Type * value) override;
#define TARN_SETTER(name, Type) STDMETHOD(put_##name)(Type value) override;
#define TARN_PROPERTY(name, Type) TARN_GETTER(name, Type) TARN_SETTER(name, Type)

class CTarnCommCtl final
    : public Unknown<CTarnCommCtl, Dual<ITarnComm>, OleControl,
                     EventSource<IPropertyNotifySink, _ITarnCommEvents>, ErrorSupport<ITarnComm>,
                     ClassInfo<TarnComm, _ITarnCommEvents>, PropertyPages, NotSafe, Persistence>,
      private CTapiOwner {
  public:
    using Faces = FaceTable<FaceRow<ITarnComm>, FaceRow<IDispatch, ITarnComm>, OleControl::Faces,
                            FaceRow<IConnectionPointContainer>, FaceRow<ISupportErrorInfo>,
                            FaceRow<IProvideClassInfo2>, FaceRow<IProvideClassInfo, IProvideClassInfo2>,
                            FaceRow<ISpecifyPropertyPages>, FaceRow<IObjectSafety>, Persistence::Faces>;

    CTarnCommCtl();
    ~CTarnCommCtl() override;
    HRESULT FinalConstruct() override;

    // The comm object: the one without a window at first, then the child of the control's window.
    HWND CommObject() const { return m_hWndNonVisibleControl ? m_hWndNonVisibleControl : m_hWndComm; }

    ControlProperties& Properties() { return m_Properties; }
    const ControlProperties& Properties() const { return m_Properties; }
    PropertyLog Log() const;
    bool IsConnected() const { return m_bConnected; }
    bool IsLoading() const { return m_bLoading; }
    CTapiApp& Telephony() { return m_Tapi; }

    // Copies all cached values into the comm object.
    void ApplyProperties();
    // What the bars show, and which buttons can be pressed.
    void UpdateStatus();
    void SetWireTapFlags();

    // Whether this is the comm object still, after what may have run the host.
    bool Has(HWND object) const;

    // Shows a dialog, one of this module's or one of the system's, over the owner that it was made with.
    // True: the user confirmed, and the comm object is the one that it was. The caller holds the control.
    bool Ask(CMyDialog& dialog);
    bool Ask(const std::function<bool()>& systemDialog);
    HWND DialogOwner() const; // where nothing else is asked for

    // The dialog for port and number. True: the user confirmed, and the properties are set.
    bool ChooseConnection();

    // Sets the thread's error record and gives the code back.
    HRESULT ReportError(HRESULT code, const char* message) const;

    // An event of the comm object.
    void FireCommEvent(int code);
    // Fires one event by its DISPID. Arguments stand in the order of their declaration.
    void Fire(DISPID event, std::span<VARIANT> arguments = {});
    void FireLookUp(std::string_view input);

    // Serves the thread's messages until there are none.
    void IdleLoop();

    // False, with the error reported: the property of this name can't be had while input is processed by
    // itself.
    bool CheckAutoReceive(const char* name) const;

    // Port and line
    TARN_PROPERTY(CommPort, VARIANT)
    TARN_PROPERTY(Settings, BSTR)
    TARN_PROPERTY(PortOpen, VARIANT_BOOL)
    TARN_GETTER(PortStatus, BSTR)
    TARN_PROPERTY(CommHandle, LONG)
    TARN_PROPERTY(CommID, LONG)
    TARN_PROPERTY(Handshaking, Handshaking)
    TARN_PROPERTY(InBufferSize, LONG)
    TARN_PROPERTY(OutBufferSize, LONG)
    TARN_PROPERTY(InBufferCount, LONG)
    TARN_PROPERTY(OutBufferCount, LONG)
    TARN_PROPERTY(RThreshold, LONG)
    TARN_PROPERTY(SThreshold, LONG)
    TARN_PROPERTY(NullDiscard, VARIANT_BOOL)
    TARN_PROPERTY(ParityReplace, BSTR)
    TARN_PROPERTY(Break, VARIANT_BOOL)
    TARN_GETTER(CDHolding, VARIANT_BOOL)
    TARN_GETTER(CTSHolding, VARIANT_BOOL)
    TARN_GETTER(DSRHolding, VARIANT_BOOL)
    TARN_PROPERTY(DTRHolding, VARIANT_BOOL)
    TARN_PROPERTY(DTREnable, VARIANT_BOOL)
    TARN_PROPERTY(RTSEnable, VARIANT_BOOL)
    TARN_PROPERTY(CDTimeOut, LONG)
    TARN_PROPERTY(CTSTimeOut, LONG)
    TARN_PROPERTY(DSRTimeOut, LONG)
    TARN_PROPERTY(InTimeOut, LONG)
    TARN_PROPERTY(OutTimeOut, LONG)
    TARN_PROPERTY(Interval, LONG)
    TARN_PROPERTY(Notification, LONG)
    TARN_PROPERTY(ShutDown, VARIANT_BOOL)
    TARN_GETTER(CommError, CommError)
    TARN_GETTER(CommEvent, CommEvent)
    TARN_GETTER(Busy, VARIANT_BOOL)
    TARN_PROPERTY(IgnoreOnComm, VARIANT_BOOL)

    // Data in and out
    TARN_GETTER(Input, VARIANT)
    TARN_GETTER(ComInput, VARIANT)
    TARN_GETTER(LineInput, BSTR)
    TARN_GETTER(ComLineInput, BSTR)
    TARN_PROPERTY(InputLen, LONG)
    TARN_PROPERTY(InputMode, CommInputMode)
    TARN_PROPERTY(InputEcho, VARIANT_BOOL)
    TARN_PROPERTY(Echo, VARIANT_BOOL)
    TARN_PROPERTY(CommEcho, VARIANT_BOOL)
    TARN_SETTER(Output, VARIANT)
    TARN_SETTER(OutputLine, BSTR)
    TARN_SETTER(OutputModem, BSTR)
    TARN_SETTER(Pause, LONG)
    TARN_PROPERTY(AutoProcess, LONG)
    TARN_PROPERTY(AutoReceive, VARIANT_BOOL)
    TARN_PROPERTY(AutoSend, VARIANT_BOOL)
    TARN_PROPERTY(AutoZModem, VARIANT_BOOL)

    // Look-up
    TARN_GETTER(LookUp, LONG)
    TARN_GETTER(LookUpInput, BSTR)
    TARN_PROPERTY(LookUpInputLen, LONG)
    TARN_PROPERTY(LookUpSeparator, BSTR)
    TARN_PROPERTY(LookUpText, BSTR)
    TARN_PROPERTY(LookUpTimeOut, LONG)

    // Terminal
    TARN_PROPERTY(Emulation, Emulation)
    TARN_PROPERTY(Columns, LONG)
    TARN_PROPERTY(Rows, LONG)
    TARN_PROPERTY(ScrollRows, LONG)
    TARN_PROPERTY(BackColor, TerminalColor)
    TARN_PROPERTY(ForeColor, TerminalColor)
    TARN_PROPERTY(ColorFilter, ColorFilter)
    TARN_PROPERTY(BackSpace, BackSpace)
    TARN_PROPERTY(EndOfLineMode, EndOfLineMode)
    TARN_PROPERTY(AutoScroll, LONG)
    TARN_PROPERTY(AutoScrollRow, VARIANT_BOOL)
    TARN_PROPERTY(AutoScrollColumn, VARIANT_BOOL)
    TARN_PROPERTY(AutoScrollKeyboard, VARIANT_BOOL)
    TARN_PROPERTY(Contents, BSTR)
    TARN_GETTER(ScrollContents, BSTR)
    TARN_PROPERTY(CursorColumn, LONG)
    TARN_PROPERTY(CursorRow, LONG)
    TARN_SETTER(Display, BSTR)
    TARN_SETTER(DisplayLine, BSTR)
    TARN_PROPERTY(SelLength, LONG)
    TARN_PROPERTY(SelStart, LONG)
    TARN_GETTER(SelText, BSTR)
    TARN_PROPERTY(CaptureFilename, BSTR)
    TARN_PROPERTY(CaptureMode, CaptureMode)
    TARN_PROPERTY(ToolbarVisible, VARIANT_BOOL)
    TARN_PROPERTY(StatusbarVisible, VARIANT_BOOL)
    TARN_PROPERTY(BorderStyle, CommBorderStyle)
    TARN_PROPERTY(AutoSize, AutoSize)
    TARN_PROPERTY(Font, IFontDisp*)
    STDMETHOD(putref_Font)(IFontDisp* value) override;
    TARN_PROPERTY(Enabled, VARIANT_BOOL)

    // Modem and telephony
    TARN_PROPERTY(UseTAPI, VARIANT_BOOL)
    TARN_PROPERTY(PhoneNumber, BSTR)
    TARN_PROPERTY(DialMode, DialMode)
    TARN_PROPERTY(DialTimeOut, LONG)
    TARN_PROPERTY(DialStatusDialog, StatusDialog)
    TARN_GETTER(HangUp, VARIANT_BOOL)
    TARN_GETTER(InitModem, VARIANT_BOOL)
    TARN_GETTER(InitModemForAnswer, VARIANT_BOOL)
    TARN_PROPERTY(ModemTitle, BSTR)
    TARN_PROPERTY(ModemInitCommand, BSTR)
    TARN_PROPERTY(ModemDialToneCommand, BSTR)
    TARN_PROPERTY(ModemDialPulseCommand, BSTR)
    TARN_PROPERTY(ModemAnswerCommand, BSTR)
    TARN_PROPERTY(ModemHangUpCommand, BSTR)
    TARN_PROPERTY(ModemIndex, LONG)
    TARN_SETTER(FillModemCombo, LONG)
    TARN_SETTER(FillModemList, LONG)
    TARN_PROPERTY(AnswerCalls, VARIANT_BOOL)
    TARN_GETTER(Locations, ITapiLocation*)
    TARN_PROPERTY(Location, BSTR)
    TARN_PROPERTY(Config, BSTR)
    TARN_GETTER(CommPorts, ICommPort*)

    // File transfer
    TARN_PROPERTY(XferProtocol, XferProtocol)
    TARN_PROPERTY(XferPath, BSTR)
    TARN_PROPERTY(XferStatusDialog, StatusDialog)
    TARN_SETTER(Upload, BSTR)
    TARN_SETTER(Download, BSTR)
    TARN_PROPERTY(AbortTransfer, VARIANT_BOOL)
    TARN_PROPERTY(XferDestFilename, BSTR)
    TARN_GETTER(XferSourceFilename, BSTR)
    TARN_GETTER(XferFileSize, LONG)
    TARN_GETTER(XferMessage, BSTR)
    TARN_GETTER(XferStatus, XferStatus)
    TARN_GETTER(XferTransferred, LONG)
    TARN_PROPERTY(ResumeMethod, ResumeMethod)

    // Logging
    TARN_PROPERTY(WireTap, VARIANT_BOOL)
    TARN_PROPERTY(WireTapEvents, VARIANT_BOOL)
    TARN_PROPERTY(WireTapInput, VARIANT_BOOL)
    TARN_PROPERTY(WireTapOutput, VARIANT_BOOL)
    TARN_PROPERTY(WireTapProperties, VARIANT_BOOL)
    TARN_PROPERTY(WireTapWarnings, VARIANT_BOOL)
    TARN_PROPERTY(WireTapTransfer, VARIANT_BOOL)

    // Project and objects
    TARN_PROPERTY(ProjectFilename, BSTR)
    TARN_GETTER(ScriptExtension, IScriptExtension*)

    // Methods, and the indexed property
    STDMETHOD(About)() override;
    STDMETHOD(DoCommand)(CommCommand Command) override;
    STDMETHOD(get_CommandState)(CommCommand Command, CommandState* value) override;
    STDMETHOD(put_CommandState)(CommCommand Command, CommandState value) override;
    STDMETHOD(PropertiesDialog)(VARIANT_BOOL* Result) override;
    STDMETHOD(GetPortType)(BSTR PortName, PortType* Result) override;
    STDMETHOD(ShowSysInfo)() override;
    STDMETHOD(TranslatePhoneNumber)(BSTR Number, BSTR* Result) override;
    STDMETHOD(ContentsAt)(short col, short row, short len, BSTR* Result) override;
    STDMETHOD(HostInputKey)(short* Result) override;
    STDMETHOD(HostInput)(short MaximumLength, BSTR* Result) override;
    STDMETHOD(HostInputPassword)(short MaximumLength, BSTR* Result) override;
    STDMETHOD(HostPrint)(BSTR Text) override;
    STDMETHOD(HostLocate)(short row, short col) override;
    STDMETHOD(HostColor)(TerminalColor Foreground, TerminalColor Background) override;
    STDMETHOD(HostCLS)() override;
    STDMETHOD(WaitUntilEndOfTransfer)(VARIANT_BOOL* Result) override;
    STDMETHOD(put_AllowSending)(VARIANT_BOOL newVal) override;

  private:
    friend class CBusyGuard;

    // Runs the body of a member, held and behind the wall.
    template <class Work>
    HRESULT Body(Work&& work) noexcept {
        const ComPtr<IUnknown> held(static_cast<ITarnComm*>(this));
        return AsResult(std::forward<Work>(work));
    }

    // Plain rows of the property table (propertyrows.h).
    template <class Value, class Flat>
    HRESULT Read(const char* name, Flat flat, Value* value) noexcept;
    template <class Value, class Cached>
    HRESULT ReadCached(const char* name, const Cached& cached, Value* value) noexcept;
    template <class Value, class Cached, class Flat>
    HRESULT Write(const char* name, Cached ControlProperties::*cached, Flat flat, Value value) noexcept;
    template <class Make>
    HRESULT ReadText(const char* name, BSTR* value, Make&& make) noexcept;
    template <class Value, class Flat>
    HRESULT WriteThrough(const char* name, Flat flat, Value value) noexcept;
    template <class Value, class Cached>
    HRESULT WriteCached(const char* name, Cached ControlProperties::*cached, Value value) noexcept;

    // OleControl
    const ControlFacts& Facts() const override;
    bool OnWindowCreated() override;
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    void OnWindowDestroyed() override;
    void OnDraw(HDC context, const RECT& bounds) override;
    void OnAmbientChanged(DISPID id) override;
    void OnClientSite(IOleClientSite* site) override;
    bool OnTranslateAccelerator(MSG& message) override;

    // PropertyPages, Persistence
    std::vector<CLSID> Pages() const override;
    IDispatch& Values() override { return static_cast<ITarnComm&>(*this); }
    OleControl& Control() override { return *this; }
    HRESULT AroundStreamLoad(const std::function<HRESULT()>& read) override;
    HRESULT AroundBagLoad(const std::function<HRESULT()>& read) override;
    HRESULT AroundStreamSave(const std::function<HRESULT()>& write) override;
    HRESULT AroundBagSave(const std::function<HRESULT()>& write) override;

    // CTapiOwner
    void OnDisconnected() override;
    void OnIdle() override;
    void OnAnswered(HANDLE hComm) override;
    void OnNotify(int code) override;
    bool WantsCall() const override;

    void FinalRelease() override;
    void EndConnection();
    void DropInvisibleObject();
    void DropWindowObject();
    void SetDefaultFont();
    void PassEmulation();
    void PassParityReplace();
    void PassFont();
    void Layout();
    HRESULT ShowBar(int ControlProperties::*flag, VARIANT_BOOL value);
    bool TakeCommand(WPARAM wParam, LPARAM lParam);
    void ForgetChild(HWND child);
    void SetBorder();
    HRESULT HostInputText(short maximum, bool password, BSTR* result);
    LONG WaitForLookUp();
    void SizeControl(AutoSize mode);
    HRESULT TakeFont(IFontDisp* font);
    int LineOfPort() const;
    bool GiveUpCall(); // the telephony service's answer
    void HangUpCall();
    HRESULT SetPlainPortOpen(bool open);
    HRESULT DialLine(DWORD device);
    void CancelDial();
    bool HasOtherDevice() const;
    void TakeCallDevice(HANDLE hComm);
    ULONG References();

    void TellFocusAcross(bool got, HWND other);
    // Messages of the comm object's window, before it has them. True: answered by result.
    bool OnCommWindowMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    static LRESULT CALLBACK CommWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                           UINT_PTR id, DWORD_PTR control);

    ControlProperties m_Properties;
    HWND m_hWndComm = nullptr; // child of the control's window
    HWND m_hWndToolbar = nullptr;
    HWND m_hWndStatusbar = nullptr;
    HWND m_hWndNonVisibleControl = nullptr;
    bool m_bCreated = false;
    bool m_bLoading = false;                     // a stream or a bag is being read
    bool m_bTapiCall = false;                    // from the start of a telephony dial until the hang-up
    HANDLE m_hCallDevice = INVALID_HANDLE_VALUE; // the data handle of the call, while the object has it
    ULONG m_nDialReferences = 0;                 // to this control when the dial began
    bool m_bConnected = false;                   // a port is open, a call is connected, or a handle was given
    std::string m_szBusyProperty;                // the blocking property under way
    std::string m_szControlName;
    int m_nNoLog = 0; // nothing is logged while it is above 0
    UINT m_nLastMouseMessage = 0;
    ComPtr<IFontDisp> m_pFont;
    FontInUse m_FontInUse; // by the comm object
    ComPtr<CScriptExtension> m_pScriptExtension;
    ComPtr<CTapiLocation> m_pLocations;
    ComPtr<CCommPort> m_pCommPorts;
    OpenDialog m_OpenDialog;
    CTapiApp m_Tapi;
};

#undef TARN_GETTER
#undef TARN_SETTER
#undef TARN_PROPERTY
