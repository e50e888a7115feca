// The connection dialogs' templates and their controls. Macros, as the resource compiler reads this too.
#pragma once

#define ConnectionTemplate 126
#define SerialPortTemplate 127
#define DialTemplate 210
#define PropertyTemplate 213

// While a call is dialled
#define Dial_Status 246

// The tab control of ConnectionTemplate and SerialPortTemplate
#define Connection_Tabs 268

// ConnectionTemplate
#define Connection_Country 260
#define Connection_Number 261
#define Connection_Configure 263
#define Connection_UseAreaCode 264
#define Connection_AreaCode 266
#define Connection_Port 267

// SerialPortTemplate
#define Serial_Speed 202
#define Serial_Parity 203
#define Serial_DataBits 204
#define Serial_StopBits 205
#define Serial_FlowControl 273
#define Serial_Restore 276

// PropertyTemplate
#define Property_Port 201
#define Property_Modem 202
#define Property_Parity 203
#define Property_DataBits 204
#define Property_StopBits 205
#define Property_Number 240
#define Property_Direct 249
#define Property_Dial 250
#define Property_Speed 251
#define Property_PortLabel 253
#define Property_ParityLabel 254
#define Property_DataBitsLabel 255
#define Property_StopBitsLabel 256
#define Property_ModemLabel 257
#define Property_SpeedLabel 258
