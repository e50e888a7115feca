// Events of the comm object as events of the control.
#include "events.h"
#include "objectaccess.h"
#include "TarnComm.h"
#include "TarnCommCtl.h"

namespace {

// Codes without a source in the comm object
constexpr int newConnection = 9;
constexpr int transferAborted = 6; // a status

enum class First {
    Log,
    Fire,
};

enum class Afterwards {
    Nothing,
    UpdateStatus,
};

struct CommEventRow {
    int code;
    events::Id event;
    const char* logName;
    First first = First::Log;
    Afterwards afterwards = Afterwards::Nothing;
};

constexpr CommEventRow commEvents[] = {
    {TARN_EVENT_SEND, events::Send, "Send"},
    {TARN_EVENT_RECEIVE, events::Receive, "Receive"},
    // The one whose line comes after what its handlers write; kept so, readers of logs know it.
    {TARN_EVENT_CTS, events::CTSChanged, "CTSChanged", First::Fire},
    {TARN_EVENT_DSR, events::DSRChanged, "DSRChanged"},
    {TARN_EVENT_CARRIER, events::CarrierChanged, "CarrierChanged", First::Log, Afterwards::UpdateStatus},
    {TARN_EVENT_RING, events::Ring, "Ring"},
    // Not spelled as the line of FireLookUp; kept so, a match writes both.
    {TARN_EVENT_LOOKUP, events::LookUp, "Lookup"},
    {newConnection, events::NewConnection, "NewConnection"},
};

// The steps of a transfer share one code; here it is the status.
constexpr CommEventRow transferEvents[] = {
    {TARN_TRANSFER_SUCCESS, events::FinishFileTransfer, "FinishFileTransfer"},
    {TARN_TRANSFER_WAIT_FOR_FILE, events::WaitForFile, "WaitForFile"},
    {TARN_TRANSFER_PREPARE, events::PrepareFile, "PrepareFile"},
    {TARN_TRANSFER_STARTING, events::StartFile, "StartFile"},
    {TARN_TRANSFER_TRANSFERING, events::TransferBlock, "TransferBlock"},
    {TARN_TRANSFER_FILE_ABORT, events::AbortFile, "AbortFile"},
    {transferAborted, events::AbortFileTransfer, "AbortFileTransfer"},
    {TARN_TRANSFER_END_OF_FILE, events::FinishFile, "FinishFile"},
    {TARN_TRANSFER_FAILURE, events::AbortFileTransfer, "AbortFileTransfer"},
};

const CommEventRow* FindRow(std::span<const CommEventRow> rows, int code) {
    for (const CommEventRow& row : rows)
        if (row.code == code)
            return &row;
    return nullptr;
}

const CommEventRow* RowOf(HWND object, int code) {
    return code == TARN_EVENT_TRANSFER ? FindRow(transferEvents, GetTransferStatus(object))
                                       : FindRow(commEvents, code);
}

void FireRow(CTarnCommCtl& control, const CommEventRow& row) {
    if (row.first == First::Log)
        control.Log().Event(row.logName);
    control.Fire(row.event);
    if (row.first == First::Fire)
        control.Log().Event(row.logName);
    if (row.afterwards == Afterwards::UpdateStatus)
        control.UpdateStatus();
}

} // namespace

// A host that closes the object in OnComm, or brings another one by showing the control, hears no more of the
// event.
void CTarnCommCtl::FireCommEvent(int code) {
    const ComPtr<IUnknown> held(static_cast<ITarnComm*>(this));
    const HWND object = CommObject();
    if (ControlOf(object) != this)
        return;
    if (!m_Properties.m_bIgnoreOnComm)
        Fire(events::OnComm);
    if (CommObject() != object || ControlOf(object) != this)
        return;
    if (const CommEventRow* row = RowOf(object, code))
        FireRow(*this, *row);
    else if (const char* text = ErrorTextOf(code))
        Log().Event(text);
}

void CTarnCommCtl::Fire(DISPID event, std::span<VARIANT> arguments) {
    FireEvent(DIID__ITarnCommEvents, event, arguments);
}

// The event itself takes the road of all others and comes back to FireCommEvent.
void CTarnCommCtl::FireLookUp(std::string_view input) {
    const ComPtr<IUnknown> held(static_cast<ITarnComm*>(this));
    m_Properties.m_sLookUpInput = input;
    Log().Event("LookUp");
    NotifyObject(CommObject(), TARN_EVENT_LOOKUP);
}
