// Client of a cable's control port, for native programs and for programs under Wine (link ws2_32).
//
// One object per thread. README.md lists the commands and their replies.
#pragma once

#ifdef _WIN32
#include <winsock2.h>
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <cstdio>
#include <stdexcept>
#include <string>

class Cable {
  public:
    // `controlFile` is DIR/control as this program sees it. Throws std::runtime_error when no tarnline
    // answers. `index` picks one of several cables.
    explicit Cable(const std::string& controlFile, int index = 0) : prefix_(std::to_string(index) + " ") {
        Connect(ReadPort(controlFile));
    }
    ~Cable() { CloseSocket(); }
    Cable(const Cable&) = delete;
    Cable& operator=(const Cable&) = delete;

    // The reply line, "ok ..." or "error ...". Throws std::runtime_error when tarnline has gone.
    std::string Command(const std::string& command) {
        const std::string line = prefix_ + command + "\n";
        const auto sent = send(socket_, line.data(), static_cast<Size>(line.size()), 0);
        if (sent < 0 || static_cast<std::size_t>(sent) != line.size())
            throw std::runtime_error("cable control: send failed");
        return ReceiveLine();
    }

    // As Command, but an "error" reply throws too. Returns what stands behind "ok".
    std::string Do(const std::string& command) {
        const std::string reply = Command(command);
        if (reply.compare(0, 2, "ok") != 0)
            throw std::runtime_error("cable control: " + command + ": " + reply);
        return reply.size() > 3 ? reply.substr(3) : "";
    }

    void Baud(long baud) { Do("baud " + std::to_string(baud)); }
    void Latency(long milliseconds) { Do("latency " + std::to_string(milliseconds)); }
    void Cut() { Do("cut"); }
    void Mend() { Do("mend"); }
    void HangUp(char end) { Do(std::string("hangup ") + end); }
    void Restore(char end) { Do(std::string("restore ") + end); }
    void Reset() { Do("reset"); }
    void Ring(char end, bool on) { Do(std::string("ring ") + end + (on ? " on" : " off")); }
    // `kind` is frame, overrun, parity, buffer or break; the end receives it.
    void Error(char end, const std::string& kind) { Do(std::string("error ") + end + " " + kind); }
    // "on", "off" or "follow".
    void Carrier(char end, const std::string& mode) { Do(std::string("carrier ") + end + " " + mode); }

    // Numbers of the reports by name: Stat("ab.out"), Signal("a.cts").
    long long Stat(const std::string& name) { return Number(Do("stats"), name); }
    long long Signal(const std::string& name) { return Number(Do("signals"), name); }

  private:
    // A tarnline that is there and says nothing counts as gone.
    static constexpr int replySeconds = 30;
#ifdef _WIN32
    using Socket = SOCKET;
    using Size = int;
    void CloseSocket() {
        closesocket(socket_);
    }
    static void StartSockets() {
        WSADATA data;
        WSAStartup(MAKEWORD(2, 2), &data);
    }
    static DWORD ReplyLimit() {
        return replySeconds * 1000;
    }
#else
    using Socket = int;
    using Size = std::size_t;
    void CloseSocket() {
        close(socket_);
    }
    static void StartSockets() {}
    static timeval ReplyLimit() {
        return {replySeconds, 0};
    }
#endif

    static int ReadPort(const std::string& controlFile) {
        int port = 0;
        std::FILE* file = std::fopen(controlFile.c_str(), "r");
        const bool read = file && std::fscanf(file, "%d", &port) == 1;
        if (file)
            std::fclose(file);
        if (!read)
            throw std::runtime_error("cable control: no port in " + controlFile);
        return port;
    }

    void Connect(int port) {
        StartSockets();
        socket_ = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<unsigned short>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
            CloseSocket();
            throw std::runtime_error("cable control: no tarnline at its port");
        }
        const int on = 1;
        setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
        const auto limit = ReplyLimit();
        setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&limit), sizeof limit);
    }

    std::string ReceiveLine() {
        for (;;) {
            const std::size_t end = input_.find('\n');
            if (end != std::string::npos) {
                const std::string line = input_.substr(0, end);
                input_.erase(0, end + 1);
                return line;
            }
            char buffer[1024];
            const auto count = recv(socket_, buffer, sizeof buffer, 0);
            if (count <= 0)
                throw std::runtime_error("cable control: tarnline has gone");
            input_.append(buffer, static_cast<std::size_t>(count));
        }
    }

    static long long Number(const std::string& report, const std::string& name) {
        const std::string key = " " + name + "=";
        const std::string text = " " + report;
        const std::size_t found = text.find(key);
        if (found == std::string::npos)
            throw std::runtime_error("cable control: no " + name + " in " + report);
        return std::stoll(text.substr(found + key.size()));
    }

    std::string prefix_;
    std::string input_;
    Socket socket_{};
};
