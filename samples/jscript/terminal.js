// A small terminal for scripts: sends each line that it is given, and prints what comes back.
//
//     cscript //nologo terminal.js PORT LINE...
var args = WScript.Arguments;
var comm = new ActiveXObject("TarnLink.TarnComm");
comm.AutoReceive = false; // what comes is for Input, and not for the terminal on the screen
comm.CommPort = args(0);
comm.Settings = "9600,n,8,1";
comm.PortOpen = true;
if (!comm.PortOpen) {
    WScript.Echo(args(0) + " does not open: " + comm.PortStatus);
    WScript.Quit(1);
}
for (var i = 1; i < args.length; ++i) {
    comm.OutputLine = args(i);
    var answer = "", piece;
    do {
        comm.Pause = 500; // ms of silence end an answer
        piece = comm.Input;
        answer += piece;
    } while (piece);
    WScript.Echo(answer);
}
