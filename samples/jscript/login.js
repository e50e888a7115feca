// Dials by a modem at a serial port, logs in by look-up, and shows what the far end says to a command.
//
//     cscript //nologo login.js PORT NUMBER USER PASSWORD PROMPT COMMAND
function fail(reason) {
    WScript.Echo(reason);
    if (comm)
        comm.PortOpen = false;
    WScript.Quit(1);
}

var args = WScript.Arguments;
if (args.length !== 6)
    fail("Usage: login.js PORT NUMBER USER PASSWORD PROMPT COMMAND");
var prompt = args(4);

var comm = new ActiveXObject("TarnLink.TarnComm");
comm.AutoReceive = false; // what comes is for LookUp, and not for the terminal
comm.CommPort = args(0);
comm.Settings = "115200,n,8,1";
comm.LookUpSeparator = "|";
comm.PortOpen = true;
if (!comm.PortOpen)
    fail(args(0) + " does not open: " + comm.PortStatus);

// The first command has the carrier tell of the call and DTR end it.
//
// What is said, and what is awaited then: the first text is hoped for, the others end the script.
var steps = [
    {say: "AT&C1&D2", await: ["OK"], seconds: 5},
    {say: "ATDT" + args(1), await: ["CONNECT", "BUSY", "NO CARRIER", "NO DIALTONE", "ERROR"], seconds: 60},
    {await: ["login:", "NO CARRIER"], seconds: 15},
    {say: args(2), await: ["Password:", "NO CARRIER"], seconds: 15},
    {say: args(3), await: [prompt, "incorrect", "NO CARRIER"], seconds: 15}
];

// LookUp gives the place of the text that came, from 0, or -1 when the time is over.
function take(step) {
    if (step.say)
        comm.OutputLine = step.say;
    comm.LookUpText = step.await.join("|");
    comm.LookUpTimeOut = step.seconds * 1000;
    var found = comm.LookUp;
    if (found !== 0)
        fail(found > 0 ? "The answer is " + step.await[found] + "." : "Nobody says " + step.await[0] + ".");
}

for (var i = 0; i < steps.length; ++i)
    take(steps[i]);
WScript.Echo("Logged in as " + args(2) + ".");

comm.LookUpInputLen = 4096; // what comes ahead of the prompt is kept
take({say: args(5), await: [prompt, "NO CARRIER"], seconds: 15});
WScript.Echo(comm.LookUpInput);
comm.DTREnable = false;
comm.Pause = 500; // ms
if (comm.CDHolding)
    fail("The modem does not hang up.");
comm.PortOpen = false;
