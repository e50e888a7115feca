"""A file drop: answers calls, and keeps the files that callers send by ZModem.

    python filedrop.py "My Modem" C:\\incoming

The modem is one that Windows knows; CommPorts lists them. Ends by Ctrl+C. Needs comtypes, and the registered module of
Python's own width.
"""
import itertools
import pathlib
import re
import sys

import comtypes.client


class FileDrop:
    def __init__(self, modem, folder):
        self.folder = pathlib.Path(folder)
        self.name = ""  # of the file under way
        self.comm = comm = comtypes.client.CreateObject("TarnLink.TarnComm")
        from comtypes.gen import TarnLink  # made of the type library by CreateObject

        comm.CommPort = modem
        if comm.GetPortType(modem) != TarnLink.PortType_Modem:
            sys.exit(f"{modem} is no modem of Windows.")
        comm.XferPath = str(self.folder)
        comm.XferProtocol = TarnLink.Protocol_ZModem
        comm.XferStatusDialog = TarnLink.Dialog_Hidden
        comm.AutoReceive = True
        comm.AutoZModem = True  # a transfer that the caller starts is received by itself
        self.connection = comtypes.client.GetEvents(comm, self)
        comm.AnswerCalls = True  # raises no error: what is read back tells
        if not comm.AnswerCalls:
            sys.exit(f"{modem} does not answer calls.")

    def plain_name(self, offered):
        """A name for a file that the caller calls by `offered`.

        A hostile one may point anywhere: "..\\start.bat", "C:\\autoexec.bat", "nul". Of the offered name only the last
        part is used, of that only plain characters, and behind a number: no device has such a name, and no file that
        is there already is written over.
        """
        last = re.sub(r"[^A-Za-z0-9._-]", "_", re.split(r"[/\\:]", offered)[-1])[:60]
        for number in itertools.count(1):
            name = f"{number:04}-{last}"
            if not (self.folder / name).exists():
                return name

    # The control's events.

    def NewConnection(self):
        print("A caller is there.")

    def PrepareFile(self):
        """The last moment in which the name can be changed; the file isn't made yet."""
        self.name = self.plain_name(self.comm.XferSourceFilename)
        self.comm.XferDestFilename = self.name

    def FinishFile(self):
        print(f"{self.name}: {self.comm.XferTransferred} bytes.")

    def AbortFile(self):
        print(f"{self.name} is not whole.")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("Usage: filedrop.py MODEM FOLDER")
    drop = FileDrop(*sys.argv[1:])
    try:
        while True:
            comtypes.client.PumpEvents(3600)  # seconds
    except KeyboardInterrupt:
        drop.comm.PortOpen = False  # hangs up
