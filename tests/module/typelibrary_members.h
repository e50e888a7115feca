// What the type library has to hold, row for row: the members of each interface, the named values, the
// objects.
#pragma once

#include <string>
#include <vector>

namespace members {

// Types carry the names of the IDL; an empty help text asks for any.
struct Property {
    int number;
    const char* name;
    const char* type;
    const char* access;
    const char* marks = "";
    const char* index = "";
    const char* help = "";
};

struct Method {
    int number;
    const char* name;
    const char* result;
    const char* arguments;
    const char* help = "";
};

struct NamedValue {
    int value;
    const char* name;
};

struct Enumeration {
    const char* name;
    std::vector<NamedValue> values;
};

// clang-format off
inline const std::vector<Property> control = {
    // port and line
    {28, "CommPort", "VARIANT", "get put"},
    {1, "Settings", "BSTR", "get put"},
    {88, "PortOpen", "VARIANT_BOOL", "get put", "nonbrowsable"},
    {40, "PortStatus", "BSTR", "get", "nonbrowsable"},
    {27, "CommHandle", "long", "get put", "hidden"},
    {110, "CommID", "long", "get put", "nonbrowsable"},
    {55, "Handshaking", "Handshaking", "get put"},
    {59, "InBufferSize", "long", "get put"},
    {82, "OutBufferSize", "long", "get put"},
    {58, "InBufferCount", "long", "get put", "nonbrowsable"},
    {81, "OutBufferCount", "long", "get put", "nonbrowsable"},
    {90, "RThreshold", "long", "get put"},
    {98, "SThreshold", "long", "get put"},
    {80, "NullDiscard", "VARIANT_BOOL", "get put"},
    {86, "ParityReplace", "BSTR", "get put"},
    {14, "Break", "VARIANT_BOOL", "get put", "nonbrowsable"},
    {18, "CDHolding", "VARIANT_BOOL", "get", "nonbrowsable"},
    {36, "CTSHolding", "VARIANT_BOOL", "get", "nonbrowsable"},
    {46, "DSRHolding", "VARIANT_BOOL", "get", "nonbrowsable"},
    {48, "DTRHolding", "VARIANT_BOOL", "get put", "nonbrowsable"},
    {131, "DTREnable", "VARIANT_BOOL", "get put"},
    {91, "RTSEnable", "VARIANT_BOOL", "get put", "nonbrowsable"},
    {19, "CDTimeOut", "long", "get put"},
    {37, "CTSTimeOut", "long", "get put"},
    {47, "DSRTimeOut", "long", "get put"},
    {65, "InTimeOut", "long", "get put"},
    {111, "OutTimeOut", "long", "get put"},
    {64, "Interval", "long", "get put", "hidden"},
    {79, "Notification", "long", "get put", "hidden nonbrowsable"},
    {97, "ShutDown", "VARIANT_BOOL", "get put", "nonbrowsable"},
    {25, "CommError", "CommError", "get", "nonbrowsable"},
    {26, "CommEvent", "CommEvent", "get", "nonbrowsable"},
    {15, "Busy", "VARIANT_BOOL", "get", "nonbrowsable"},
    {57, "IgnoreOnComm", "VARIANT_BOOL", "get put"},
    // data in and out
    {108, "Input", "VARIANT", "get", "nonbrowsable"},
    {22, "ComInput", "VARIANT", "get", "hidden"},
    {109, "LineInput", "BSTR", "get", "nonbrowsable"},
    {23, "ComLineInput", "BSTR", "get", "hidden"},
    {63, "InputLen", "long", "get put"},
    {126, "InputMode", "CommInputMode", "get put", "nonbrowsable"},
    {62, "InputEcho", "VARIANT_BOOL", "get put"},
    {49, "Echo", "VARIANT_BOOL", "get put"},
    {24, "CommEcho", "VARIANT_BOOL", "get put"},
    {83, "Output", "VARIANT", "put", "nonbrowsable"},
    {84, "OutputLine", "BSTR", "put", "nonbrowsable"},
    {85, "OutputModem", "BSTR", "put", "nonbrowsable"},
    {87, "Pause", "long", "put", "nonbrowsable"},
    {5, "AutoProcess", "long", "get put", "hidden"},
    {6, "AutoReceive", "VARIANT_BOOL", "get put"},
    {11, "AutoSend", "VARIANT_BOOL", "get put"},
    {135, "AutoZModem", "VARIANT_BOOL", "get put"},
    // look-up
    {66, "LookUp", "long", "get", "nonbrowsable"},
    {67, "LookUpInput", "BSTR", "get", "nonbrowsable"},
    {68, "LookUpInputLen", "long", "get put"},
    {69, "LookUpSeparator", "BSTR", "get put"},
    {70, "LookUpText", "BSTR", "get put"},
    {71, "LookUpTimeOut", "long", "get put"},
    // terminal
    {50, "Emulation", "Emulation", "get put"},
    {21, "Columns", "long", "get put"},
    {89, "Rows", "long", "get put"},
    {93, "ScrollRows", "long", "get put"},
    {2, "BackColor", "TerminalColor", "get put"},
    {54, "ForeColor", "TerminalColor", "get put"},
    {20, "ColorFilter", "ColorFilter", "get put"},
    {13, "BackSpace", "BackSpace", "get put"},
    {51, "EndOfLineMode", "EndOfLineMode", "get put"},
    {7, "AutoScroll", "long", "get put", "hidden"},
    {10, "AutoScrollRow", "VARIANT_BOOL", "get put"},
    {8, "AutoScrollColumn", "VARIANT_BOOL", "get put"},
    {9, "AutoScrollKeyboard", "VARIANT_BOOL", "get put"},
    {35, "Contents", "BSTR", "get put", "nonbrowsable"},
    {92, "ScrollContents", "BSTR", "get"},
    {38, "CursorColumn", "long", "get put", "nonbrowsable"},
    {39, "CursorRow", "long", "get put", "nonbrowsable"},
    {43, "Display", "BSTR", "put", "nonbrowsable"},
    {44, "DisplayLine", "BSTR", "put", "nonbrowsable"},
    {94, "SelLength", "long", "get put", "nonbrowsable"},
    {95, "SelStart", "long", "get put", "nonbrowsable"},
    {96, "SelText", "BSTR", "get", "nonbrowsable"},
    {16, "CaptureFilename", "BSTR", "get put", "nonbrowsable"},
    {17, "CaptureMode", "CaptureMode", "get put"},
    {112, "ToolbarVisible", "VARIANT_BOOL", "get put"},
    {113, "StatusbarVisible", "VARIANT_BOOL", "get put"},
    {119, "BorderStyle", "CommBorderStyle", "get put"},
    {12, "AutoSize", "AutoSize", "get put", "hidden"},
    {-512, "Font", "IFontDisp*", "get put putref"},
    {-514, "Enabled", "VARIANT_BOOL", "get put"},
    // modem and telephony
    {118, "UseTAPI", "VARIANT_BOOL", "get put", "hidden"},
    {114, "PhoneNumber", "BSTR", "get put"},
    {41, "DialMode", "DialMode", "get put", "hidden"},
    {42, "DialTimeOut", "long", "get put", "hidden"},
    {117, "DialStatusDialog", "StatusDialog", "get put"},
    {56, "HangUp", "VARIANT_BOOL", "get"},
    {60, "InitModem", "VARIANT_BOOL", "get", "nonbrowsable"},
    {61, "InitModemForAnswer", "VARIANT_BOOL", "get", "nonbrowsable"},
    {78, "ModemTitle", "BSTR", "get put", "hidden"},
    {77, "ModemInitCommand", "BSTR", "get put", "hidden"},
    {74, "ModemDialToneCommand", "BSTR", "get put", "hidden"},
    {73, "ModemDialPulseCommand", "BSTR", "get put", "hidden"},
    {72, "ModemAnswerCommand", "BSTR", "get put", "hidden"},
    {75, "ModemHangUpCommand", "BSTR", "get put", "hidden"},
    {76, "ModemIndex", "long", "get put", "hidden nonbrowsable"},
    {52, "FillModemCombo", "long", "put", "nonbrowsable"},
    {53, "FillModemList", "long", "put", "nonbrowsable"},
    {124, "AnswerCalls", "VARIANT_BOOL", "get put"},
    {123, "Locations", "ITapiLocation*", "get"},
    {128, "Location", "BSTR", "get put"},
    {129, "Config", "BSTR", "get put", "nonbrowsable"},
    {127, "CommPorts", "ICommPort*", "get"},
    // file transfer
    {103, "XferProtocol", "XferProtocol", "get put"},
    {120, "XferPath", "BSTR", "get put"},
    {106, "XferStatusDialog", "StatusDialog", "get put"},
    {99, "Upload", "BSTR", "put"},
    {45, "Download", "BSTR", "put", "nonbrowsable"},
    {3, "AbortTransfer", "VARIANT_BOOL", "get put", "nonbrowsable"},
    {100, "XferDestFilename", "BSTR", "get put", "nonbrowsable"},
    {104, "XferSourceFilename", "BSTR", "get", "nonbrowsable"},
    {101, "XferFileSize", "long", "get", "nonbrowsable"},
    {102, "XferMessage", "BSTR", "get", "nonbrowsable"},
    {105, "XferStatus", "XferStatus", "get", "nonbrowsable"},
    {107, "XferTransferred", "long", "get", "nonbrowsable"},
    {145, "ResumeMethod", "ResumeMethod", "get put", "nonbrowsable"},
    // logging
    {29, "WireTap", "VARIANT_BOOL", "get put"},
    {30, "WireTapEvents", "VARIANT_BOOL", "get put"},
    {31, "WireTapInput", "VARIANT_BOOL", "get put"},
    {32, "WireTapOutput", "VARIANT_BOOL", "get put"},
    {33, "WireTapProperties", "VARIANT_BOOL", "get put"},
    {34, "WireTapWarnings", "VARIANT_BOOL", "get put"},
    {132, "WireTapTransfer", "VARIANT_BOOL", "get put"},
    // project and objects
    {115, "ProjectFilename", "BSTR", "get put"},
    {125, "ScriptExtension", "IScriptExtension*", "get"},
    {121, "CommandState", "CommandState", "get put", "", "CommCommand Command"},
};

inline const std::vector<Method> controlMethods = {
    {4, "About", "void", "", "Displays the About box."},
    {116, "DoCommand", "void", "CommCommand Command", "Simulates pressing a toolbar button"},
    {130, "PropertiesDialog", "VARIANT_BOOL", "", "Shows the communications properties dialog box."},
    {133, "GetPortType", "PortType", "BSTR PortName",
     "Determines the type of a communications port or modem name."},
    {134, "ShowSysInfo", "void", "", "Displays communications system information."},
    {136, "TranslatePhoneNumber", "BSTR", "BSTR Number",
     "Translates a phone number according to the current dial rules and location"},
    {137, "ContentsAt", "BSTR", "short col, short row, short len",
     "Returns the text at the specified location"},
    {138, "HostInputKey", "short", "", "Waits for a keypress from the client"},
    {139, "HostInput", "BSTR", "short MaximumLength",
     "Reads text input from the client and echos it back"},
    {140, "HostInputPassword", "BSTR", "short MaximumLength",
     "Reads text input from the client and echos asteriskes back"},
    {141, "HostPrint", "void", "BSTR Text", "Sends text to the host"},
    {142, "HostLocate", "void", "short row, short col", "Sends cursor location codes to the host "},
    {143, "HostColor", "void", "TerminalColor Foreground, TerminalColor Background",
     "Sends color code attributes to the host"},
    {144, "HostCLS", "void", "", "Sends clear screen codes to the host"},
    {146, "WaitUntilEndOfTransfer", "VARIANT_BOOL", "",
     "Waits until the transfer completes and returns True if the transfer was successful"},
    {147, "put_AllowSending", "void", "VARIANT_BOOL newVal",
     "Pretends that an XOn (if set to true) or XOff (if set false) was received."},
};

inline const std::vector<Method> controlEvents = {
    {1, "Receive", "void", "", "Called when RThreshold or more characters are in the input buffer."},
    {2, "Click", "void", ""},
    {3, "KeyDown", "void", "inout short* Keycode, inout short* Shift"},
    {4, "KeyPress", "void", "inout short* KeyAscii"},
    {5, "KeyUp", "void", "inout short* Keycode, inout short* Shift"},
    {6, "Send", "void", "", "Called when SThreshold or less charactrs are in the output buffer."},
    {7, "CTSChanged", "void", ""},
    {8, "DSRChanged", "void", ""},
    {9, "CarrierChanged", "void", ""},
    {10, "Ring", "void", ""},
    {11, "AbortFileTransfer", "void", ""},
    {12, "FinishFileTransfer", "void", ""},
    {13, "WaitForFile", "void", ""},
    {14, "PrepareFile", "void", ""},
    {15, "StartFile", "void", ""},
    {16, "AbortFile", "void", ""},
    {17, "FinishFile", "void", ""},
    {18, "TransferBlock", "void", ""},
    {19, "OnComm", "void", "", "Included for backward compatibility with the MSComm control."},
    {20, "Command", "void", "CommCommand Command, inout VARIANT_BOOL* Cancel"},
    {21, "DblClick", "void", ""},
    {22, "Hide", "void", ""},
    {23, "Paint", "void", ""},
    {24, "Show", "void", ""},
    {25, "MouseMove", "void", "inout short* Button, inout short* Shift, inout float* X, inout float* Y"},
    {26, "MouseDown", "void", "inout short* Button, inout short* Shift, inout float* X, inout float* Y"},
    {27, "MouseUp", "void", "inout short* Button, inout short* Shift, inout float* X, inout float* Y"},
    {28, "NewConnection", "void", "", "Fired when a new connection is established."},
    {29, "LookUp", "void", "", "Called when a lookup string is detected and AutoReceive is True"},
};

inline const std::vector<Enumeration> enumerations = {
    {"AutoSize", {{0, "AutoSize_None"}, {1, "AutoSize_Terminal"}, {2, "AutoSize_Parent"}}},
    {"BackSpace", {{0, "BackSpace_Destructive"}, {1, "BackSpace_NonDestructive"}}},
    {"CaptureMode", {{0, "Capture_Standard"}, {1, "Capture_Binary"}, {2, "Capture_Visible"}}},
    {"ColorFilter", {{0, "ColorFilter_Full"}, {1, "ColorFilter_Gray"}, {2, "ColorFilter_BW"}}},
    {"CommBorderStyle", {{0, "CommBorderStyle_None"}, {1, "CommBorderStyle_Single"}}},
    {"CommError", {{0, "Error_None"}, {1001, "Error_Break"}, {1002, "Error_CtsTimeOut"},
        {1003, "Error_DsrTimeOut"}, {1004, "Error_FrameError"}, {1005, "Error_InputTimeOut"},
        {1006, "Error_DataOverrun"}, {1007, "Error_CarrierTimeOut"}, {1008, "Error_ReceiveBufferOverflow"},
        {1009, "Error_Parity"}, {1010, "Error_SendBufferOverflow"}}},
    {"CommEvent", {{1, "Event_Send"}, {2, "Event_Receive"}, {3, "Event_Cts"}, {4, "Event_Dsr"},
        {5, "Event_Carrier"}, {6, "Event_Ring"}, {7, "Event_Eof"}, {100, "Event_Transfer"}}},
    {"CommInputMode", {{0, "InputMode_Text"}, {1, "InputMode_Binary"}}},
    {"DialMode", {{0, "Dial_Tone"}, {1, "Dial_Pulse"}}},
    {"Emulation", {{0, "Emulation_None"}, {1, "Emulation_TTY"}, {2, "Emulation_Ansi"},
        {3, "Emulation_VT52"}, {4, "Emulation_VT100"}}},
    {"EndOfLineMode", {{0, "EndOfLineMode_NextLine"}, {1, "EndOfLineMode_DoNothing"},
        {2, "EndOfLineMode_WrapLine"}, {3, "EndOfLineMode_WrapScreen"}}},
    {"Handshaking", {{0, "Handshaking_None"}, {1, "Handshaking_XonXoff"}, {2, "Handshaking_Hardware"},
        {3, "Handshaking_Both"}, {4, "Handshaking_Default"}}},
    {"PortType", {{0, "PortType_Unknown"}, {1, "PortType_Serial"}, {2, "PortType_Modem"}}},
    {"ResumeMethod", {{0, "ResumeMethod_Never"}, {1, "ResumeMethod_Always"}}},
    {"StatusDialog", {{0, "Dialog_Hidden"}, {1, "Dialog_Modal"}, {2, "Dialog_Modeless"}}},
    {"TerminalColor", {{0, "Black"}, {1, "Blue"}, {2, "Green"}, {3, "Cyan"}, {4, "Red"}, {5, "Magenta"},
        {6, "Brown"}, {7, "LightGray"}, {8, "DarkGray"}, {9, "LightBlue"}, {10, "LightGreen"},
        {11, "LightCyan"}, {12, "LightRed"}, {13, "LightMagenta"}, {14, "Yellow"}, {15, "White"}}},
    {"XferProtocol", {{0, "Protocol_XModemChecksum"}, {1, "Protocol_XModemCRC"}, {2, "Protocol_XModem1K"},
        {3, "Protocol_YModem"}, {4, "Protocol_YModemG"}, {5, "Protocol_ZModem"}, {6, "Protocol_Kermit"}}},
    {"XferStatus", {{-1, "TransferStatus_Failure"}, {0, "TransferStatus_Success"},
        {1, "TransferStatus_WaitForFile"}, {2, "TransferStatus_Prepare"}, {3, "TransferStatus_Starting"},
        {4, "TransferStatus_Transfering"}, {5, "TransferStatus_FileAbort"},
        {6, "TransferStatus_TransferAborting"}, {7, "TransferStatus_EndOfFile"}}},
    {"CommandState", {{0, "CommandState_Disabled"}, {1, "CommandState_Enabled"}, {2, "CommandState_Hidden"}}},
    {"CommCommand", {{1, "CommCommand_New"}, {2, "CommCommand_Open"}, {3, "CommCommand_Save"},
        {4, "CommCommand_SaveAs"}, {5, "CommCommand_Copy"}, {6, "CommCommand_Paste"},
        {7, "CommCommand_Connect"}, {8, "CommCommand_Disconnect"}, {9, "CommCommand_SendFile"},
        {10, "CommCommand_ReceiveFile"}, {11, "CommCommand_Properties"}, {12, "CommCommand_Font"},
        {13, "CommCommand_PortProperties"}, {14, "CommCommand_SysInfo"}}},
};

inline const std::vector<Property> script = {
    {4, "WaitForTimeOut", "long", "get put", "", "",
     "The number of miliseconds the WaitFor method should wait."},
};

inline const std::vector<Method> scriptMethods = {
    {1, "Dial", "VARIANT_BOOL", "BSTR PhoneNumber", "Dial a phone number."},
    {2, "HangUp", "VARIANT_BOOL", "", "Disconnects the modem connection."},
    {3, "WaitFor", "BSTR",
     "VARIANT Text1, optional VARIANT Text2, optional VARIANT Text3, optional VARIANT Text4, "
     "optional VARIANT Text5, optional VARIANT Text6, optional VARIANT Text7, "
     "optional VARIANT Text8, optional VARIANT Text9, optional VARIANT Text10"},
    {5, "Send", "void", "BSTR Data", "Sends data to the communications port or modem."},
    {6, "Receive", "BSTR", "optional VARIANT ByteCount",
     "Receives data from the communications port or modem."},
    {7, "ReceiveLine", "BSTR", "", "Receives a line from the communications port or modem"},
};

// Locations and ports alike.
inline const std::vector<Property> collection = {
    {-4, "_NewEnum", "IUnknown*", "get", "restricted"},
    {0, "Item", "BSTR", "get", "", "long index"},
    {1, "Count", "long", "get"},
};
// clang-format on

} // namespace members
