#include "pty.h"

#include "clock.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <system_error>
#include <termios.h>

namespace {

// The kernel moves written bytes across within some ten microseconds; a reader that took them meanwhile
// cannot be told from a slow kernel, so the wait for them is short.
constexpr Nanoseconds kSettleLimit = 200 * kMicrosecond;

[[noreturn]] void Fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void MakeRaw(int slave) {
    termios settings{};
    if (tcgetattr(slave, &settings) != 0)
        Fail("tcgetattr");
    cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    if (tcsetattr(slave, TCSANOW, &settings) != 0)
        Fail("tcsetattr");
}

} // namespace

Pty::Pty() : master_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    if (!master_ || grantpt(Master()) != 0 || unlockpt(Master()) != 0)
        Fail("no pty");
    char name[64];
    if (ptsname_r(Master(), name, sizeof name) != 0)
        Fail("ptsname");
    path_ = name;
    slave_ = UniqueFd(open(name, O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!slave_)
        Fail(name);
    MakeRaw(slave_.Get());
    struct stat about {};
    if (fstat(slave_.Get(), &about) != 0)
        Fail("fstat");
    minor_ = minor(about.st_rdev);
}

std::size_t Pty::Unread() const {
    int count = 0;
    return ioctl(slave_.Get(), FIONREAD, &count) == 0 ? static_cast<std::size_t>(count) : 0;
}

std::size_t Pty::UnreadAfterFeeding(std::size_t before, std::size_t fed) const {
    // A poll that finds nothing makes the kernel finish moving what was written.
    pollfd ask{slave_.Get(), POLLIN, 0};
    poll(&ask, 1, 0);
    const Nanoseconds limit = Now() + kSettleLimit;
    for (;;) {
        const std::size_t unread = Unread();
        if (unread < before || unread >= before + fed || unread == 0 || Now() > limit)
            return unread;
        sched_yield();
    }
}

std::size_t Pty::Read(std::span<std::uint8_t> room) const {
    const ssize_t count = read(Master(), room.data(), room.size());
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::size_t Pty::Write(Bytes bytes) const {
    const ssize_t count = write(Master(), bytes.data(), bytes.size());
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

void Pty::Flush() const {
    tcflush(slave_.Get(), TCIOFLUSH);
    std::uint8_t waste[4096];
    while (Read(waste) > 0) {
    }
    tcflush(slave_.Get(), TCIFLUSH);
}
