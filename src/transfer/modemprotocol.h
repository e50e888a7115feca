// CModemProtocol: the engine of XModem, YModem and ZModem, one for each transfer.
#pragma once

#include "blockreceiver.h"
#include "blocksender.h"
#include "zmodemreceiver.h"
#include "zmodemsender.h"

class CModemProtocol {
  public:
    // bResume: a ZModem file goes on where a part of it is there already.
    CModemProtocol(TRANSFER& transfer, bool bResume);

    // Both: 0 for success.
    int StartModemSend(int nProtocol);
    int StartModemReceive(int nProtocol);

  private:
    // What became of a file that was to be sent.
    enum class Sent {
        Whole,
        SkippedByReceiver,
        LeftOut, // and told so: it can't be read
        Failed,
    };

    int ReceiveAll();
    int ReceiveBatch();
    int ReceiveYModem();
    int ReceiveOne();
    void DropEarlyInput();

    int SendAll();
    bool SendQueuedFiles();
    bool SendQueuedFile(const std::string& source, const std::string& dest);
    void EndBatch();
    int SendNothing();
    Sent wcs(const std::string& source, const std::string& dest);
    Sent SendOpenFile(const std::string& dest, const FileInfo& info);
    Sent LeaveOut(const char* szStatus);
    int wctxpn(const std::string& name, const FileInfo& info);
    int GetNak();
    bool Cancelled(int before);

    ModemLine line_;
    ZModemFraming framing_; // its bZModem: the ZModem protocol is running
    ReceivedFile received_;
    BlockReceiver blockReceiver_;
    ZModemReceiver zmodemReceiver_;
    FileStream fin_;
    BlockSender blockSender_;
    ZModemSender zmodemSender_;

    bool Nozmodem = false;
    bool Batch = false;  // receive: several files (YModem, ZModem)
    bool Modem2 = false; // send: no header block (XModem)
    int Sentcount = 0;   // files offered
    int Errcnt = 0;      // files that could not be read
    int Exitcode = 0;
};
