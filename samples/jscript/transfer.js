// Sends a file by ZModem, or receives the one that the far end sends.
//
//     cscript //nologo transfer.js PORT send FILE
//     cscript //nologo transfer.js PORT receive FILE
//
// FILE is a whole path. The first file that is received gets that name; those behind it bring names of their own:
// receive from a far end that you trust.
var zModem = 5;
var noDialog = 0;

function fail(reason) {
    WScript.Echo(reason);
    if (comm)
        comm.PortOpen = false;
    WScript.Quit(1);
}

var args = WScript.Arguments;
if (args.length !== 3)
    fail("Usage: transfer.js PORT send|receive FILE");

var comm = new ActiveXObject("TarnLink.TarnComm");
comm.CommPort = args(0);
comm.Settings = "115200,n,8,1";
comm.XferProtocol = zModem;
comm.XferStatusDialog = noDialog;
comm.PortOpen = true; // throws nothing: PortOpen and PortStatus tell
if (!comm.PortOpen)
    fail(args(0) + " does not open: " + comm.PortStatus);

try {
    if (args(1) === "send")
        comm.Upload = args(2);
    else
        comm.Download = args(2);
} catch (error) { // a file that can't be read
    fail(args(2) + ": " + error.message);
}
if (!comm.WaitUntilEndOfTransfer())
    fail("The transfer failed.");
var disk = new ActiveXObject("Scripting.FileSystemObject");
if (!disk.FileExists(args(2)))
    fail("No file went over."); // a lost file alone makes no failure
WScript.Echo(args(2) + ": " + disk.GetFile(args(2)).Size + " bytes.");
comm.PortOpen = false;
