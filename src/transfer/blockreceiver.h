// Receives the blocks of XModem and YModem.
#pragma once

#include "blocks.h"
#include "receivedfile.h"

#include <array>

class BlockReceiver {
  public:
    BlockReceiver(ModemLine& line, ReceivedFile& file) : line_(line), file_(file) {}

    // Block 0 of a YModem file into Secbuf, Blklen bytes of it. 0, or -1.
    int ReceiveFilenameBlock();

    // The file's data. 0, or -1.
    int ReceiveBlocks();

    std::array<char, block::LongBlock + 1> Secbuf = {};
    int Blklen = 0;      // bytes of the block that came last
    bool Crcflg = false; // CRC-16 in the blocks

  private:
    static constexpr int gotEOT = -10;

    int ReceiveBlock(int tenths); // a block number, gotEOT or -1
    int ReadBlockBody();          // what follows SOH or STX: a block number or -1
    bool ReadBlockData();
    bool Drain(); // until the line is silent; false: it is gone
    void TakeBlock();
    int EndOfFile();
    int Skipped();
    int StartRequest() const;
    void Reply(int c);

    ModemLine& line_;
    ReceivedFile& file_;
    bool sizeIsTold_ = false;
    bool Firstsec = false; // no good block yet
};
