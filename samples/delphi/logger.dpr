// Writes the lines that an instrument sends to a file, each behind its date and time.
//
//     logger COM1 readings.csv 1000
program logger;

{$APPTYPE CONSOLE}

uses
  Windows, SysUtils, TarnComm;

const
  Limit = 60000; // ms; GetLineInput gives 0 when no line came in time

procedure AddLine(const Path, Reading: string);
var
  Log: TextFile;
begin
  AssignFile(Log, Path);
  if FileExists(Path) then
    Append(Log)
  else
    Rewrite(Log);
  WriteLn(Log, FormatDateTime('yyyy-mm-dd hh":"nn":"ss', Now), ',', Reading);
  CloseFile(Log); // a reading that was taken is not lost with the program
end;

var
  Line: HWND;
  Reading: array[0..127] of AnsiChar;
  Error: array[0..TARN_ERROR_TEXT_SIZE - 1] of AnsiChar;
  Count, Left: Integer;

begin
  if (ParamCount <> 3) or not TryStrToInt(ParamStr(3), Left) then
  begin
    WriteLn('logger PORT FILE COUNT');
    Halt(1);
  end;
  Line := CreateCommObject(0);
  SetCommPort(Line, PAnsiChar(AnsiString(ParamStr(1))));
  SetSettings(Line, '9600,n,8,1');
  SetInputTimeOut(Line, Limit);
  if SetPortOpen(Line, 1, Error) = 0 then
  begin
    WriteLn('The port does not open: ', string(AnsiString(Error)));
    Halt(1);
  end;
  while Left > 0 do
  begin
    Count := GetLineInput(Line, Reading, SizeOf(Reading) - 1);
    Reading[Count] := #0; // which a line as long as the buffer lacks
    if Count = 0 then
      Continue;
    AddLine(ParamStr(2), string(AnsiString(Reading)));
    Dec(Left);
  end;
  DestroyCommObject(Line);
end.
