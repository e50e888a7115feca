// The flat functions that the samples use. The others are declared alike: see TarnComm.h.
unit TarnComm;

interface

uses
  Windows;

const
  TARN_ERROR_TEXT_SIZE = 128;

function CreateCommObject(hParent: HWND): HWND; stdcall;
function DestroyCommObject(Line: HWND): Integer; stdcall;
procedure SetCommPort(Line: HWND; szPort: PAnsiChar); stdcall;
function SetSettings(Line: HWND; szSettings: PAnsiChar): Integer; stdcall;
function SetPortOpen(Line: HWND; bOpen: Integer; szError: PAnsiChar): Integer; stdcall;
function Output(Line: HWND; lpBytes: Pointer; cbBytes: Integer): Integer; stdcall;
function GetInput(Line: HWND; lpBuffer: Pointer; cbBuffer: Integer): Integer; stdcall;
function GetLineInput(Line: HWND; lpBuffer: PAnsiChar; cbBuffer: Integer): Integer; stdcall;
procedure SetInputTimeOut(Line: HWND; lTimeOut: Longint); stdcall;
function WaitForInput(Line: HWND; lTimeOut: Longint): Integer; stdcall;

implementation

const
  Module = 'Lantry.ocx';

function CreateCommObject; external Module;
function DestroyCommObject; external Module;
procedure SetCommPort; external Module;
function SetSettings; external Module;
function SetPortOpen; external Module;
function Output; external Module;
function GetInput; external Module;
function GetLineInput; external Module;
procedure SetInputTimeOut; external Module;
function WaitForInput; external Module;

end.
