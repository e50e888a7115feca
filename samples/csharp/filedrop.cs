// A file drop: answers calls, and keeps the files that callers send by ZModem.
//
//     filedrop "My Modem" C:\incoming
//
// The modem is one that Windows knows; CommPorts lists them. Wants a reference to the COM library "Tarn Link Objects 1.0
// Type Library" and a program of the registered module's width (PlatformTarget x86 or x64).
using System;
using System.IO;
using System.Linq;
using System.Windows.Forms;
using TarnLink;

internal sealed class FileDrop
{
    private readonly TarnComm comm = new TarnComm();
    private readonly string folder;
    private string name; // of the file under way

    public FileDrop(string folder)
    {
        this.folder = folder;
        comm.XferPath = folder;
        comm.XferProtocol = XferProtocol.Protocol_ZModem;
        comm.XferStatusDialog = StatusDialog.Dialog_Hidden;
        comm.AutoReceive = true;
        comm.AutoZModem = true; // a transfer that the caller starts is received by itself
        comm.NewConnection += () => Console.WriteLine("A caller is there.");
        // The last moment in which the name can be changed; the file isn't made yet.
        comm.PrepareFile += () => comm.XferDestFilename = name = PlainName(comm.XferSourceFilename);
        comm.FinishFile += () => Console.WriteLine($"{name}: {comm.XferTransferred} bytes.");
        comm.AbortFile += () => Console.WriteLine($"{name} is not whole.");
    }

    // Throws nothing: what is read back tells.
    public bool Answer(string modem)
    {
        comm.CommPort = modem;
        comm.AnswerCalls = true;
        return comm.AnswerCalls;
    }

    // The caller chooses the name that it offers, and a hostile one may point anywhere: "..\start.bat",
    // "C:\autoexec.bat", "nul". Of the offered name only the last part is used, of that only plain characters, and
    // behind a number: no device has such a name, and no file that is there already is written over.
    private string PlainName(string offered)
    {
        var last = offered.Split('/', '\\', ':').Last();
        var plain = string.Concat(last.Take(60).Select(c => IsPlain(c) ? c : '_'));
        for (var number = 1;; ++number)
        {
            var free = $"{number:0000}-{plain}";
            if (!File.Exists(Path.Combine(folder, free)))
                return free;
        }
    }

    private static bool IsPlain(char c)
    {
        return c < 128 && (char.IsLetterOrDigit(c) || "._-".IndexOf(c) >= 0);
    }
}

internal static class Program
{
    [STAThread] // the control lives on a thread with messages
    private static int Main(string[] words)
    {
        if (words.Length != 2)
        {
            Console.WriteLine("filedrop MODEM FOLDER");
            return 1;
        }
        var drop = new FileDrop(words[1]);
        if (!drop.Answer(words[0]))
        {
            Console.WriteLine($"{words[0]} does not answer calls.");
            return 1;
        }
        Application.Run();
        GC.KeepAlive(drop);
        return 0;
    }
}
