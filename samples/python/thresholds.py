"""A protocol that runs in events alone: RThreshold says how many bytes the next step needs.

    python thresholds.py COM1

The far end sends packets: ":", the body's length in two digits, the body, in plain ASCII, and the low byte of the sum
of the body's bytes in two hexadecimal digits. Each is answered by "+" if its sum is right and by "-" if it isn't. An
empty body ends the program. Needs comtypes, and the registered module of Python's own width.
"""
import re
import sys

import comtypes.client

HEADER_SIZE = 3
SUM_SIZE = 2


class Station:
    def __init__(self, port):
        self.result = None  # of the program, once it has ended
        self.in_body = False
        self.comm = comm = comtypes.client.CreateObject("TarnLink.TarnComm")
        comm.AutoReceive = False  # what comes is for the event, and not for the terminal
        comm.CommPort = port
        comm.Settings = "9600,n,8,1"
        self.expect(HEADER_SIZE)
        self.connection = comtypes.client.GetEvents(comm, self)
        comm.PortOpen = True
        if not comm.PortOpen:
            sys.exit(f"{port} does not open: {comm.PortStatus}")
        print(f"{port} is open.")

    def expect(self, count):
        """The event is raised once so many bytes wait, and not for every byte."""
        self.wanted = count
        self.comm.RThreshold = count
        self.comm.InputLen = count

    def Receive(self):
        """The control's event. What comes next may be there already: it is taken at once, and needs no event."""
        while self.result is None and self.comm.InBufferCount >= self.wanted:
            text = self.comm.Input
            if self.in_body:
                self.take_body(text)
            else:
                self.take_header(text)

    def take_header(self, header):
        length = int(header[1:]) if re.fullmatch(":[0-9]{2}", header) else -1
        if length <= 0:  # the end, or a far end that speaks another language
            self.result = 0 if length == 0 else 1
        self.in_body = length > 0
        self.expect(length + SUM_SIZE if self.in_body else HEADER_SIZE)

    def take_body(self, text):
        body, told = text[:-SUM_SIZE], text[-SUM_SIZE:]
        whole = told.upper() == f"{sum(map(ord, body)) % 256:02X}"
        print("good" if whole else "bad ", body)
        self.comm.Output = "+" if whole else "-"
        self.in_body = False
        self.expect(HEADER_SIZE)

    def run(self):
        while self.result is None:
            comtypes.client.PumpEvents(0.1)  # seconds
        self.comm.PortOpen = False
        return self.result


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("Usage: thresholds.py PORT")
    sys.exit(Station(sys.argv[1]).run())
