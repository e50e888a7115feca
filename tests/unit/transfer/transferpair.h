// Two comm objects on the two ends of the cable: what the one sends the other receives.
#pragma once

#include "core/live.h"
#include "support/line.h"
#include "transfer/transfer.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace host {

// A folder of its own for each test, gone with it.
class Folder {
  public:
    Folder() {
        char base[MAX_PATH] = {};
        GetTempPathA(sizeof base, base);
        static int count = 0;
        path_ = std::string(base) + "tarn" + std::to_string(GetCurrentProcessId()) + "-" +
                std::to_string(++count);
        CreateDirectoryA(path_.c_str(), nullptr);
    }
    ~Folder() {
        WIN32_FIND_DATAA found = {};
        const HANDLE search = FindFirstFileA((path_ + "\\*").c_str(), &found);
        if (search != INVALID_HANDLE_VALUE) {
            do
                DeleteFileA(In(found.cFileName).c_str());
            while (FindNextFileA(search, &found));
            FindClose(search);
        }
        RemoveDirectoryA(path_.c_str());
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::string& Path() const { return path_; }
    std::string In(const std::string& name) const { return path_ + "\\" + name; }

    std::string Write(const std::string& name, const std::string& contents) const {
        std::ofstream(In(name), std::ios::binary) << contents;
        return In(name);
    }
    bool Has(const std::string& name) const {
        return GetFileAttributesA(In(name).c_str()) != INVALID_FILE_ATTRIBUTES;
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(In(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::string path_;
};

// All byte values, and not the same in every block.
inline std::string Contents(size_t size) {
    std::string contents(size, '\0');
    for (size_t i = 0; i < size; ++i)
        contents[i] = static_cast<char>(i * 7 + i / 256);
    return contents;
}

// The statuses of a transfer in the order of their events; progress within a file counts once.
class StatusList {
  public:
    explicit StatusList(CommObject& object) : object_(object) {
        object_.OnEventDo([this](int code) { Take(code); });
    }
    ~StatusList() { object_.OnEventDo({}); }
    StatusList(const StatusList&) = delete;
    StatusList& operator=(const StatusList&) = delete;

    std::vector<int> statuses;
    std::vector<DWORD> threads;
    std::function<void(int status)> onStatus;

    bool Ended() const { return ended_; }
    int Last() const { return statuses.empty() ? -2 : statuses.back(); }

  private:
    void Take(int code) {
        if (code != TARN_EVENT_TRANSFER)
            return;
        const int status = GetTransferStatus(object_);
        threads.push_back(GetCurrentThreadId());
        if (statuses.empty() || statuses.back() != status || status != TransferStatus_Transfering)
            statuses.push_back(status);
        ended_ = status <= 0;
        if (onStatus)
            onStatus(status);
    }

    CommObject& object_;
    bool ended_ = false;
};

class TransferTest : public LineTest {
  protected:
    static constexpr DWORD limit = 60000; // ms for a transfer

    void SetUp() override {
        LineTest::SetUp();
        ASSERT_EQ(sender.Open("COM5"), "");
        ASSERT_EQ(receiver.Open("COM6"), "");
        SetXferPath(receiver, in.Path().c_str());
        SetAutoZModem(receiver, 0);
    }

    void Use(int nProtocol) {
        SetProtocol(sender, nProtocol);
        SetProtocol(receiver, nProtocol);
    }

    bool BothEnd() {
        return PumpUntil([&] { return sent.Ended() && received.Ended(); }, limit);
    }

    COMCTL& Record(const CommObject& object) { return *RecordOf(object); }

    Folder out;
    Folder in;
    CommObject sender;
    CommObject receiver;
    StatusList sent{sender};
    StatusList received{receiver};
};

} // namespace host
