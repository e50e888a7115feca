// What each command does, once nobody has cancelled it. The control is held by the caller, but its comm
// object and its windows may go while a dialog is open.
#pragma once

class CTarnCommCtl;

namespace commandactions {

void Copy(CTarnCommCtl& control);
void Paste(CTarnCommCtl& control);
void Connect(CTarnCommCtl& control);
void Disconnect(CTarnCommCtl& control);
void SendFile(CTarnCommCtl& control);
void ReceiveFile(CTarnCommCtl& control);
void Properties(CTarnCommCtl& control);
void Font(CTarnCommCtl& control);
void PortProperties(CTarnCommCtl& control);
void SysInfo(CTarnCommCtl& control);

} // namespace commandactions
