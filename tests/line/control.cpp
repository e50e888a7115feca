#include "control.h"

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <system_error>

namespace {

// Longer than any command with a path; a client that sends more without a line's end is no client.
constexpr std::size_t kLineLimit = 16 * 1024;

[[noreturn]] void Fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// Replies are short and a client waits for each, so a full socket means that the client is gone.
bool SendAll(int socket, const std::string& text) {
    return send(socket, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT) ==
           static_cast<ssize_t>(text.size());
}

} // namespace

ControlServer::ControlServer(EventLoop& loop, Executor execute)
    : loop_(loop), execute_(std::move(execute)),
      listener_(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(listener_.Get(), reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        listen(listener_.Get(), SOMAXCONN) != 0 ||
        getsockname(listener_.Get(), reinterpret_cast<sockaddr*>(&address), &size) != 0)
        Fail("control port");
    port_ = ntohs(address.sin_port);
    loop_.Add(listener_.Get(), EPOLLIN, [this](std::uint32_t) { Accept(); });
}

ControlServer::~ControlServer() {
    loop_.Remove(listener_.Get());
    for (const auto& [fd, client] : clients_)
        loop_.Remove(fd);
}

void ControlServer::Accept() {
    UniqueFd socket(accept4(listener_.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!socket)
        return;
    const int fd = socket.Get();
    const int on = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    loop_.Add(fd, EPOLLIN, [this, fd](std::uint32_t) { Serve(fd); });
    clients_[fd] = Client{std::move(socket), {}};
}

void ControlServer::Serve(int fd) {
    Client& client = clients_.at(fd);
    char buffer[4096];
    const ssize_t count = recv(fd, buffer, sizeof buffer, 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0)
        return Drop(fd);
    client.input.append(buffer, static_cast<std::size_t>(count));
    for (std::size_t end = 0; (end = client.input.find('\n')) != std::string::npos;) {
        const std::string line = client.input.substr(0, end);
        client.input.erase(0, end + 1);
        if (!SendAll(fd, execute_(line) + "\n"))
            return Drop(fd);
    }
    if (client.input.size() > kLineLimit)
        Drop(fd);
}

void ControlServer::Drop(int fd) {
    loop_.Remove(fd);
    clients_.erase(fd);
}
