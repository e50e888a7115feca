// Whole ZModem uploads before a scripted far end: what goes over the line, and what the host sees of it.
#include "memorydisk.h"
#include "transfer/modemprotocol.h"
#include "transferdouble.h"
#include "zmodemsendcase.h"

#include <gtest/gtest.h>

namespace {

using zmodem::Hex;

enum : int { RINIT = 1, ACK = 3, SKIP = 5, FIN = 8, RPOS = 9, FERR = 12 };

using Heard = std::vector<std::string>;

struct Upload {
    Upload(std::vector<zmodem::Exchange> script, int nProtocol = Protocol_ZModem)
        : transfer(XferUpload, nProtocol), peer(std::move(script)) {
        disk.files["a"].contents = AllBytes(100);
        disk.files["b"].contents = AllBytes(50);
        transfer.keepBlocks = false;
        transfer.transfer.bWireTap = 0;
        peer.Plug(transfer.line);
    }

    int Send() {
        return CModemProtocol(transfer.transfer, resumes).StartModemSend(transfer.transfer.nProtocol);
    }

    Heard Events() const {
        Heard events;
        for (const std::string& entry : transfer.journal)
            if (entry == "finish" || entry == "abort" || entry.starts_with("prepare"))
                events.push_back(entry);
        return events;
    }

    MemoryDisk disk;
    TransferDouble transfer;
    zmodem::FarEnd peer;
    bool resumes = false;
};

const zmodem::Exchange takes = {"data ", Hex(RPOS)};
const zmodem::Exchange receipt = {"bin ZEOF", Hex(RINIT)};
const zmodem::Exchange goodbye = {"hex ZFIN", Hex(FIN)};

TEST(ZModemUpload, OffersWithoutAnInvitation) {
    Upload at({takes, receipt, goodbye});
    at.transfer.Queue("a");
    EXPECT_EQ(at.Send(), 0);
    EXPECT_EQ(at.peer.heard, (Heard{"hex ZRQINIT 0", "bin ZFILE 262144", at.peer.heard.at(2), "bin ZDATA 0",
                                    "data 100 E", "bin ZEOF 100", "hex ZFIN 0", "OO"}));
    EXPECT_EQ(at.peer.decoder.fileHeader.substr(0, 6), std::string("a\000100 ", 6));
    EXPECT_EQ(at.Events(), (Heard{"prepare a a", "finish"}));
    EXPECT_EQ(at.peer.decoder.contents, AllBytes(100));
}

TEST(ZModemUpload, SendsAllFilesOfTheQueue) {
    Upload at({takes, receipt, takes, receipt, goodbye});
    at.transfer.Queue("a");
    at.transfer.Queue("b");
    EXPECT_EQ(at.Send(), 0);
    EXPECT_EQ(at.Events(), (Heard{"prepare a a", "finish", "prepare b b", "finish"}));
}

TEST(ZModemUpload, TellsWhatTheReceiverSkips) {
    for (const int answer : {SKIP, FERR}) {
        Upload at({{"data ", Hex(answer)}, takes, receipt, goodbye});
        at.transfer.Queue("a");
        at.transfer.Queue("b");
        EXPECT_EQ(at.Send(), 0);
        EXPECT_EQ(at.Events(), (Heard{"prepare a a", "abort", "prepare b b", "finish"}));
        EXPECT_EQ(std::ranges::count(at.transfer.journal, "status File as skipped."), 1);
    }
}

TEST(ZModemUpload, CancelsWhenTheReceiverIsSilent) {
    Upload at({});
    at.transfer.Queue("a");
    at.transfer.Queue("b");
    EXPECT_EQ(at.Send(), 1);
    EXPECT_EQ(std::ranges::count(at.peer.heard, "bin ZFILE 262144"), 1);
    EXPECT_EQ(at.peer.heard.back(), "CAN 10");
    EXPECT_EQ(at.Events(), (Heard{"prepare a a", "abort"}));
}

TEST(ZModemUpload, CancelsWhenTheReceiverDoes) {
    Upload at({{"data ", std::string(10, '\x18')}});
    at.transfer.Queue("a");
    EXPECT_EQ(at.Send(), 1);
    EXPECT_EQ(at.peer.heard.back(), "CAN 10");
}

TEST(ZModemUpload, AsksToResumeWhereTheHostWantsIt) {
    Upload at({takes, receipt, goodbye});
    at.resumes = true;
    at.transfer.Queue("a");
    EXPECT_EQ(at.Send(), 0);
    EXPECT_EQ(at.peer.heard.at(1), "bin ZFILE " + std::to_string(3U << 24 | 4U << 16));
}

TEST(ZModemUpload, TakesOverFromAYModemSender) {
    Upload at({takes, receipt, goodbye}, Protocol_YModem);
    at.transfer.Queue("a");
    at.transfer.line.Say(Hex(RINIT, 0x23000000), 100);
    EXPECT_EQ(at.Send(), 0);
    EXPECT_EQ(at.peer.decoder.contents, AllBytes(100));
    EXPECT_EQ(at.Events(), (Heard{"prepare a a", "finish"}));
}

} // namespace
