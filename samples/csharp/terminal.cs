// A terminal: what is typed goes to the port line by line, what comes is printed at once, by the Receive event.
//
//     terminal COM1
//
// Wants a reference to the COM library "Tarn Link Objects 1.0 Type Library" and a program of the registered module's
// width (PlatformTarget x86 or x64).
using System;
using System.Threading.Tasks;
using System.Windows.Forms;
using TarnLink;

internal static class Program
{
    [STAThread] // the control lives on a thread with messages
    private static int Main(string[] words)
    {
        if (words.Length != 1)
        {
            Console.WriteLine("terminal PORT");
            return 1;
        }
        var comm = new TarnComm();
        comm.AutoReceive = false; // what comes is for the event, and not for the terminal on the screen
        comm.CommPort = words[0];
        comm.Settings = "9600,n,8,1";
        comm.RThreshold = 1;
        comm.Receive += () => Console.Write((string)comm.Input);
        comm.PortOpen = true; // throws nothing: PortOpen and PortStatus tell
        if (!comm.PortOpen)
        {
            Console.WriteLine($"{words[0]} does not open: {comm.PortStatus}");
            return 1;
        }

        // The keyboard is waited for on another thread; the control belongs to this one.
        using (var messages = new Control())
        {
            _ = messages.Handle; // which makes its window on this thread
            Task.Run(() =>
            {
                for (string line; (line = Console.ReadLine()) != null;)
                    messages.Invoke(new Action(() => comm.OutputLine = line));
                messages.Invoke(new Action(Application.ExitThread));
            });
            Application.Run();
        }
        comm.PortOpen = false;
        return 0;
    }
}
