"""Sends a file by ZModem, or receives the one that the far end sends.

    python transfer.py COM1 send C:\\notes.txt
    python transfer.py COM1 receive C:\\notes.txt

The file is told by its whole path. The first file that is received gets that name; those behind it bring names of
their own: receive from a far end that you trust. Needs comtypes, and the registered module of Python's own width.
"""
import os
import sys

import comtypes.client


def transfer(port, action, file):
    comm = comtypes.client.CreateObject("TarnLink.TarnComm")
    from comtypes.gen import TarnLink  # made of the type library by CreateObject

    comm.CommPort = port
    comm.Settings = "115200,n,8,1"
    comm.XferProtocol = TarnLink.Protocol_ZModem
    comm.XferStatusDialog = TarnLink.Dialog_Hidden
    comm.PortOpen = True  # raises no error: PortOpen and PortStatus tell
    if not comm.PortOpen:
        sys.exit(f"{port} does not open: {comm.PortStatus}")
    if action == "send":
        comm.Upload = file
    else:
        comm.Download = file
    if not comm.WaitUntilEndOfTransfer():
        sys.exit("The transfer failed.")
    if not os.path.exists(file):  # a lost file alone makes no failure
        sys.exit("No file went over.")
    print(f"{file}: {os.path.getsize(file)} bytes.")
    comm.PortOpen = False


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit("Usage: transfer.py PORT send|receive FILE")
    transfer(*sys.argv[1:])
