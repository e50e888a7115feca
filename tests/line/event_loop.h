// Files and who is called when something happens on them. Single-threaded.
#pragma once

#include "clock.h"
#include "unique_fd.h"

#include <cstdint>
#include <functional>
#include <map>

class EventLoop {
  public:
    using Handler = std::function<void(std::uint32_t events)>;

    EventLoop();

    // `events` are epoll's. A file must be removed before it is closed.
    void Add(int fd, std::uint32_t events, Handler handler);
    void Remove(int fd);

    // Calls the handlers of what has happened; waits for it until `deadline` at the longest.
    void RunOnce(Nanoseconds deadline);

  private:
    UniqueFd poll_;
    std::map<int, Handler> handlers_;
};
