// A terminal: what is typed goes to the port line by line, what comes back is printed.
//
//     terminal COM1
program terminal;

{$APPTYPE CONSOLE}

uses
  Windows, TarnComm;

const
  Silence = 500; // ms, which ends an answer

var
  Line: HWND;
  Typed: AnsiString;
  Answer: array[0..255] of AnsiChar;
  Error: array[0..TARN_ERROR_TEXT_SIZE - 1] of AnsiChar;
  Count: Integer;

begin
  if ParamCount <> 1 then
  begin
    WriteLn('terminal PORT');
    Halt(1);
  end;
  Line := CreateCommObject(0);
  SetCommPort(Line, PAnsiChar(AnsiString(ParamStr(1))));
  SetSettings(Line, '9600,n,8,1');
  if SetPortOpen(Line, 1, Error) = 0 then
  begin
    WriteLn('The port does not open: ', string(AnsiString(Error)));
    Halt(1);
  end;
  while not Eof do
  begin
    ReadLn(Typed);
    Typed := Typed + #13;
    TarnComm.Output(Line, PAnsiChar(Typed), Length(Typed));
    while WaitForInput(Line, Silence) <> 0 do
    begin
      Count := GetInput(Line, @Answer, SizeOf(Answer));
      Write(Copy(Answer, 1, Count));
    end;
  end;
  DestroyCommObject(Line);
end.
