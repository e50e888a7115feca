// A terminal for scripts, in ten lines: sends each line that it is given, and prints what comes back.
//
//     cscript //nologo terminal.js PORT LINE...
var comm = new ActiveXObject("TarnLink.TarnComm");
comm.AutoReceive = false; // what comes is for Input, and not for the terminal on the screen
comm.CommPort = WScript.Arguments(0);
comm.Settings = "9600,n,8,1";
comm.PortOpen = true;
for (var i = 1; comm.PortOpen && i < WScript.Arguments.length; ++i) {
    comm.OutputLine = WScript.Arguments(i);
    for (var answer = "", piece = " "; piece; answer += piece = comm.Input)
        comm.Pause = 500; // ms of silence end an answer
    WScript.Echo(answer);
}
