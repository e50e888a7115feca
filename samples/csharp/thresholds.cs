// A protocol that runs in events alone: RThreshold says how many bytes the next step needs.
//
//     thresholds COM1
//
// The far end sends packets: ":", the body's length in two digits, the body, in plain ASCII, and the low byte of the
// sum of the body's bytes in two hexadecimal digits. Each is answered by "+" if its sum is right and by "-" if it isn't.
// An empty body ends the program. Wants a reference to the COM library "Tarn Link Objects 1.0 Type Library" and a
// program of the registered module's width (PlatformTarget x86 or x64).
using System;
using System.Linq;
using System.Windows.Forms;
using TarnLink;

internal sealed class Station
{
    private const int HeaderSize = 3;
    private const int SumSize = 2;

    private readonly TarnComm comm = new TarnComm();
    private int wanted;
    private bool inBody;

    public int Result { get; private set; } // of the program, once it has ended

    public bool Open(string port)
    {
        comm.AutoReceive = false; // what comes is for the event, and not for the terminal
        comm.CommPort = port;
        comm.Settings = "9600,n,8,1";
        comm.Receive += OnReceive;
        Expect(HeaderSize);
        comm.PortOpen = true; // throws nothing: PortOpen and PortStatus tell
        if (!comm.PortOpen)
        {
            Console.WriteLine($"{port} does not open: {comm.PortStatus}");
            return false;
        }
        Console.WriteLine($"{port} is open.");
        return true;
    }

    public void Close()
    {
        comm.PortOpen = false;
    }

    // The event is raised once so many bytes wait, and not for every byte.
    private void Expect(int count)
    {
        wanted = count;
        comm.RThreshold = count;
        comm.InputLen = count;
    }

    // What comes next may be there already: it is taken at once, and needs no event.
    private void OnReceive()
    {
        while (comm.InBufferCount >= wanted)
        {
            var text = (string)comm.Input;
            if (inBody)
                TakeBody(text);
            else
                TakeHeader(text);
        }
    }

    private void TakeHeader(string header)
    {
        var length = header[0] == ':' && int.TryParse(header.Substring(1), out var digits) ? digits : -1;
        if (length <= 0) // the end, or a far end that speaks another language
        {
            Result = length < 0 ? 1 : 0;
            Application.ExitThread();
        }
        inBody = length > 0;
        Expect(inBody ? length + SumSize : HeaderSize);
    }

    private void TakeBody(string text)
    {
        var body = text.Substring(0, text.Length - SumSize);
        var sum = body.Sum(character => (int)character) % 256;
        var whole = text.Substring(body.Length).ToUpperInvariant() == sum.ToString("X2");
        Console.WriteLine((whole ? "good " : "bad  ") + body);
        comm.Output = whole ? "+" : "-";
        inBody = false;
        Expect(HeaderSize);
    }
}

internal static class Program
{
    [STAThread] // the control lives on a thread with messages
    private static int Main(string[] words)
    {
        var station = new Station();
        if (!station.Open(words.Length > 0 ? words[0] : "COM1"))
            return 1;
        Application.Run();
        station.Close();
        return station.Result;
    }
}
