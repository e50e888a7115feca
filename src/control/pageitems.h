// The property pages' templates and the about box's, with their controls. Macros, as the resource compiler
// reads this too. Each page counts for itself: a number may stand on two of them.
#pragma once

#define CommunicationsTemplate 220
#define WireTapTemplate 221
#define TerminalTemplate 222
#define AboutPageTemplate 223
#define AboutTemplate 224

// CommunicationsTemplate
#define Comm_Port 201
#define Comm_Speed 202
#define Comm_Parity 203
#define Comm_DataBits 204
#define Comm_StopBits 205
#define Comm_InBufferSize 206
#define Comm_OutBufferSize 207
#define Comm_ReplacesBytes 208
#define Comm_Replacement 209
#define Comm_TriggersReceive 210
#define Comm_TriggersOnComm 211
#define Comm_RThreshold 212

// WireTapTemplate
#define WireTap_Enabled 213
#define WireTap_Input 214
#define WireTap_Output 215
#define WireTap_Events 216
#define WireTap_Warnings 217
#define WireTap_Properties 218
#define WireTap_Transfer 219

// TerminalTemplate
#define Terminal_ScrollColumn 219
#define Terminal_ScrollRow 220
#define Terminal_ScrollKeyboard 221
#define Terminal_AutoReceive 222
#define Terminal_AutoSend 223
#define Terminal_Rows 224
#define Terminal_Columns 225
#define Terminal_ScrollRows 226
#define Terminal_InputEcho 227
#define Terminal_Echo 228
#define Terminal_CaptureMode 229
#define Terminal_CaptureFilename 230

// AboutPageTemplate and AboutTemplate
#define About_Version 233
