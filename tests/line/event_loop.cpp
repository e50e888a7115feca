#include "event_loop.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <sys/epoll.h>
#include <system_error>

EventLoop::EventLoop() : poll_(epoll_create1(EPOLL_CLOEXEC)) {
    if (!poll_)
        throw std::system_error(errno, std::generic_category(), "epoll_create1");
}

void EventLoop::Add(int fd, std::uint32_t events, Handler handler) {
    epoll_event event{};
    event.events = events;
    event.data.fd = fd;
    if (epoll_ctl(poll_.Get(), EPOLL_CTL_ADD, fd, &event) != 0)
        throw std::system_error(errno, std::generic_category(), "epoll_ctl");
    handlers_[fd] = std::move(handler);
}

void EventLoop::Remove(int fd) {
    if (handlers_.erase(fd) > 0)
        epoll_ctl(poll_.Get(), EPOLL_CTL_DEL, fd, nullptr);
}

void EventLoop::RunOnce(Nanoseconds deadline) {
    std::array<epoll_event, 64> events{};
    timespec left{};
    if (deadline != kNever) {
        const Nanoseconds wait = std::max<Nanoseconds>(0, deadline - Now());
        left.tv_sec = wait / kSecond;
        left.tv_nsec = wait % kSecond;
    }
    const int count = epoll_pwait2(poll_.Get(), events.data(), static_cast<int>(events.size()),
                                   deadline == kNever ? nullptr : &left, nullptr);
    for (int i = 0; i < count; i++) {
        const epoll_event& event = events[static_cast<std::size_t>(i)];
        const auto found = handlers_.find(event.data.fd);
        if (found == handlers_.end())
            continue;
        const Handler handler = found->second; // a copy: it may remove itself
        handler(event.events);
    }
}
