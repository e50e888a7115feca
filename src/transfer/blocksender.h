// Sends the blocks of XModem and YModem.
#pragma once

#include "blocks.h"
#include "filestream.h"
#include "modemline.h"

#include <array>

class BlockSender {
  public:
    BlockSender(ModemLine& line, FileStream& fin) : line_(line), fin_(fin) {}

    // The file that is open, flen bytes of it. 0, or -1.
    int wctx(LONG flen);

    // One block. 0, or -1.
    int SendBlock(const void* lpBytes, int number, int cbBytes);

    bool Crcflg = false;
    bool firstsec = true; // nothing was acknowledged yet
    bool Force128 = false;
    bool Optiong = false; // no wait for acknowledgements
    int blklen = block::LongBlock;
    int Rxtimeout = 600; // tenths of a second
    int Verbose = 1;     // above 1: each block's place goes to a debugger
    int Totsecs = 0;     // short blocks' worth that was acknowledged of this file

  private:
    enum class Answer { Acknowledged, Again, Cancelled };

    bool AwaitStart(); // false: the receiver cancelled
    int SendFileBlocks(LONG flen);
    int SendEot();
    void TellPlace() const;
    int ReadBlock(int cbBlock); // the file's next bytes into Txbuf, padded; 0 at the end
    void PutBlock(const unsigned char* lpBytes, int number, int cbBytes);
    Answer ReadAnswer(int& lastReply);
    Answer AwaitRequest(int& lastReply);
    Answer AskedAgain(int c);

    ModemLine& line_;
    FileStream& fin_;
    std::array<unsigned char, block::LongBlock> Txbuf = {};
};
