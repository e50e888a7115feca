// The control port: TCP on 127.0.0.1, one command a line, one reply a line.
#pragma once

#include "event_loop.h"

#include <functional>
#include <string>

class ControlServer {
  public:
    using Executor = std::function<std::string(const std::string& line)>;

    // Throws std::system_error.
    ControlServer(EventLoop& loop, Executor execute);
    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    int Port() const { return port_; }

  private:
    struct Client {
        UniqueFd socket;
        std::string input;
    };

    void Accept();
    void Serve(int fd);
    void Drop(int fd);

    EventLoop& loop_;
    Executor execute_;
    UniqueFd listener_;
    int port_ = 0;
    std::map<int, Client> clients_;
};
