// The numbers of ZModem: frame types, frame characters, sub-packet ends, flags.
// Origin: Chuck Forsberg, "The ZMODEM Inter Application File Transfer Protocol", 1988.
#pragma once

enum ZFrameType : int {
    ZRQINIT = 0,
    ZRINIT = 1,
    ZSINIT = 2,
    ZACK = 3,
    ZFILE = 4,
    ZSKIP = 5,
    ZNAK = 6,
    ZABORT = 7,
    ZFIN = 8,
    ZRPOS = 9,
    ZDATA = 10,
    ZEOF = 11,
    ZFERR = 12,
    ZCRC = 13,
    ZCHALLENGE = 14,
    ZCOMPL = 15,
    ZCAN = 16,
    ZFREECNT = 17,
    ZCOMMAND = 18,
    ZSTDERR = 19,
};

inline constexpr int ZPAD = '*';
inline constexpr int ZDLE = 0x18;

// The frame character after ZPAD ZDLE.
enum ZFrameCharacter : char {
    ZBIN = 'A',    // binary, CRC-16
    ZHEX = 'B',    // hexadecimal, CRC-16
    ZBIN32 = 'C',  // binary, CRC-32
    ZBINR32 = 'D', // the same for run-length data
    ZVBIN = 'a',   // the four with a length byte in front of the type
    ZVHEX = 'b',
    ZVBIN32 = 'c',
    ZVBINR32 = 'd',
};

// The end of a data sub-packet, after ZDLE.
enum ZSubpacketEnd : char {
    ZCRCE = 'h', // end of frame, no reply wanted
    ZCRCG = 'i', // the frame goes on, no reply
    ZCRCQ = 'j', // the frame goes on, ZACK wanted
    ZCRCW = 'k', // end of frame, ZACK wanted
};

// What reading an escaped byte gives beside bytes and negative results.
inline constexpr int EscapedFlag = 256;
inline constexpr int GotCancel = ZDLE + EscapedFlag;
inline constexpr int GotZCRCE = ZCRCE + EscapedFlag;
inline constexpr int GotZCRCG = ZCRCG + EscapedFlag;
inline constexpr int GotZCRCQ = ZCRCQ + EscapedFlag;
inline constexpr int GotZCRCW = ZCRCW + EscapedFlag;

// Where the flags stand in a header.
inline constexpr int ZF0 = 3;
inline constexpr int ZF1 = 2;
inline constexpr int ZF2 = 1;
inline constexpr int ZF3 = 0;

// ZRINIT, ZF0
inline constexpr int CANFDX = 0x01;  // full duplex
inline constexpr int CANOVIO = 0x02; // receives while it writes to disk
inline constexpr int CANFC32 = 0x20; // takes CRC-32
inline constexpr int ESCCTL = 0x40;  // wants control characters escaped; the same bit in ZSINIT

// ZFILE, ZF0: conversion
inline constexpr int ZCBIN = 1;
inline constexpr int ZCNL = 2;
inline constexpr int ZCRESUM = 3;

// ZFILE, ZF1: management
inline constexpr int ZMMASK = 31;
inline constexpr int ZMNEWL = 1; // newer or longer
inline constexpr int ZMCRC = 2;
inline constexpr int ZMAPND = 3;
inline constexpr int ZMCLOB = 4; // replace
inline constexpr int ZMNEW = 5;
inline constexpr int ZMPROT = 7;
inline constexpr int ZMSKNOLOC = 0x80; // skip if there is no local copy

// "ZRQINIT" ..., and for negative results "error", "timeout" ...: from the first to the last of these
// numbers, "xxxxx" for all others.
inline constexpr int FirstNamedFrame = -4;
inline constexpr int LastNamedFrame = 20;
const char* FrameName(int type);

// "ZCRCE" ..., by the byte or by what reading it gave.
const char* SubpacketEndName(int end);
