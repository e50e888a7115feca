// The ZModem receiver: opening, one file after the other, goodbye.
#pragma once

#include "receivedfile.h"
#include "zmodemframing.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

class ZModemReceiver {
  public:
    ZModemReceiver(ZModemFraming& framing, ReceivedFile& file) : framing_(framing), file_(file) {}

    // 0: no ZModem here. ZFILE: a file header stands in Secbuf. ZCOMPL: finished. -1: failed.
    int TryZModem();

    // After TryZModem gave ZFILE. 0, -1 or the odd result of one file.
    int ReceiveFiles();

  private:
    // After a header: the next one, a new start (which asks the sender again), or the end with a result.
    enum class Next { Header, Pass, End };
    struct Step {
        Next next;
        int result = 0;
    };

    struct DataRow;

    void OfferSession();
    std::optional<int> AwaitOffer();
    Step TakeSessionOptions();
    Step TakeFileOffer();
    Step TakeGoodbye();
    Step TellFreeSpace();
    Step ReadOn() { return {Next::Header}; }
    Step Refuse() { return {Next::End, ReadError}; }

    int ReceiveOffer(); // FileProceeds: the sender may offer the next
    int ReceiveFile();
    bool IsRefusedAgain() const;
    int RefuseAgain();
    std::string_view Offer() const { return {Secbuf.data(), static_cast<size_t>(cbOffer_)}; }
    std::optional<int> ReceiveFrames();
    bool EndFile(int result);
    Step Tolerate(Next next);
    bool BudgetSpent() { return --budget_ < 0; }
    Step Fail(const char* szReason);
    Step HeaderLate();
    Step HeaderBroken();
    Step HeaderRefused();
    Step FileOutOfSequence();
    Step FileSkipped();
    Step TakeData();
    Step TakeEnd();
    Step SenderCancelled();
    Step WrongHeader(int type);
    Step ReceiveSubpackets();
    void StoreSubpacket(const DataRow& row);
    Step DataFailure(int result);

    void SendAttention();
    void SendPosition(int type, LONG position);
    void Acknowledge();

    ModemLine& Line() { return framing_.Line(); }

    static constexpr int subpacketSize = 1024; // bytes
    static constexpr int needlessLimit = 100;  // a far end that never comes to the point ends here

    ZModemFraming& framing_;
    ReceivedFile& file_;
    std::array<char, subpacketSize + 1> Secbuf = {}; // a sub-packet and its NUL
    int cbOffer_ = 0;                                // bytes of the file header in it
    int Tryzhdrtype = ZRINIT;                        // answers the ZFILE before
    int needless_ = 0;                               // headers in a row that cost no budget
    std::string refused_;                            // the offer before, if it was answered by ZFERR
    int budget_ = 0;                                 // errors that the file may still have
};
