#include "wire.h"

#include <algorithm>
#include <unistd.h>

namespace {

constexpr std::size_t kReadSize = 64 * 1024;
// So many rounds before the other cables and the control port have their turn.
constexpr int kRoundsPerTurn = 16;
// A reader of the pty tells us by an event that there is room; this catches one that went unseen, and with a
// FIFO it finds out what has been read.
constexpr Nanoseconds kRetry = 5 * kMillisecond;
constexpr Nanoseconds kFifoRetry = kMillisecond;

constexpr const char* kDirections[] = {"a>b", "b>a"};

// Re-points a link in one step, so that an opener finds the old target or the new one.
void PointLink(const std::filesystem::path& link, const std::string& target) {
    std::filesystem::path fresh = link;
    fresh += ".new";
    std::error_code ignored;
    std::filesystem::remove(fresh, ignored);
    std::filesystem::create_symlink(target, fresh);
    std::filesystem::rename(fresh, link);
}

} // namespace

Wire::Wire(const std::filesystem::path& folder, const std::string& suffix, unsigned number,
           const WireSettings& settings)
    : folder_(folder), suffix_(suffix), start_(settings),
      signals_(folder, "state" + std::to_string(number)), lanes_{Lane(number * 2), Lane(number * 2 + 1)} {
    Apply(settings);
    for (const int end : {0, 1})
        Restore(end);
}

Wire::~Wire() {
    for (const int end : {0, 1})
        HangUp(end);
}

std::filesystem::path Wire::LinkOf(int end) const {
    return folder_ / ((end == 0 ? "a" : "b") + suffix_);
}

void Wire::Apply(const WireSettings& settings) {
    for (Lane& lane : lanes_) {
        lane.noise.Set(settings.noise);
        lane.pacer.SetBaud(settings.baud);
        lane.pacer.SetLatency(settings.latency);
        lane.receiver.SetCapacity(settings.fifo);
    }
    cut_ = false;
}

int Wire::Master(int end) const {
    const auto& pty = ends_[Index(end)].pty;
    return pty ? pty->Master() : -1;
}

bool Wire::HangUp(int end) {
    if (!ends_[Index(end)].pty)
        return false;
    std::error_code ignored;
    std::filesystem::remove(LinkOf(end), ignored);
    signals_.Detach(end);
    Lane& towards = lanes_[Index(!end)];
    towards.lost += towards.receiver.Held();
    towards.receiver.Clear();
    ends_[Index(end)].pty.reset();
    return true;
}

bool Wire::Restore(int end) {
    End& fresh = ends_[Index(end)];
    if (fresh.pty)
        return false;
    fresh.pty = std::make_unique<Pty>();
    fresh.readable = true;
    signals_.Attach(end, fresh.pty->Minor());
    PointLink(LinkOf(end), fresh.pty->Path());
    return true;
}

void Wire::Reset() {
    for (const int end : {0, 1})
        Restore(end);
    for (const End& end : ends_)
        end.pty->Flush();
    for (Lane& lane : lanes_) {
        lane.pacer.Clear();
        lane.receiver.Clear();
        lane.noise.ClearCounts();
        lane.in = lane.out = lane.lost = lane.overrun = 0;
    }
    signals_.Reset();
    transcript_.Close();
    Apply(start_);
}

bool Wire::TakeIn(int direction, Nanoseconds now) {
    End& source = ends_[Index(direction)];
    Lane& lane = lanes_[Index(direction)];
    const std::size_t room = std::min(lane.pacer.Room(), kReadSize);
    if (!source.pty || !source.readable || room == 0)
        return false;
    std::uint8_t buffer[kReadSize];
    const std::size_t count = source.pty->Read(std::span(buffer).first(room));
    if (count == 0) {
        source.readable = false;
        return false;
    }
    lane.in += count;
    signals_.CountBytes(direction, TARN_COUNT_TX, count);
    lane.pacer.Push(lane.noise.Apply(Bytes(buffer).first(count)), now);
    return true;
}

bool Wire::Deliver(int direction, Nanoseconds now) {
    const int far_end = !direction;
    End& target = ends_[Index(far_end)];
    Lane& lane = lanes_[Index(direction)];
    if (target.pty && lane.receiver.Held() > 0)
        lane.receiver.Feed(*target.pty);
    const std::size_t room = lane.receiver.Room();
    if (room == 0)
        lane.pacer.Stall(now);
    const Bytes arrived = lane.pacer.Arrived(now, room);
    if (arrived.empty())
        return false;
    if (cut_ || !target.pty) {
        lane.lost += arrived.size();
    } else {
        const std::size_t overrun = lane.receiver.Offer(arrived, *target.pty);
        const Bytes taken = arrived.first(arrived.size() - overrun);
        transcript_.Data(kDirections[direction], taken, now);
        lane.out += taken.size();
        signals_.CountBytes(far_end, TARN_COUNT_RX, taken.size());
        if (overrun > 0) {
            lane.overrun += overrun;
            signals_.Count(far_end, TARN_COUNT_OVERRUN, static_cast<unsigned>(overrun));
        }
    }
    lane.pacer.Pop(arrived.size());
    return true;
}

Nanoseconds Wire::NextCall(int direction, Nanoseconds now) const {
    const Lane& lane = lanes_[Index(direction)];
    const Nanoseconds retry = now + (lane.receiver.Capacity() > 0 ? kFifoRetry : kRetry);
    if (lane.receiver.Room() == 0)
        return retry;
    return std::min(lane.receiver.Held() > 0 ? retry : kNever, lane.pacer.NextDue());
}

Nanoseconds Wire::Pump() {
    for (int round = 0; round < kRoundsPerTurn; round++) {
        const Nanoseconds now = Now();
        bool moved = false;
        for (const int direction : {0, 1}) {
            moved |= TakeIn(direction, now);
            moved |= Deliver(direction, now);
        }
        if (!moved)
            return std::min(NextCall(0, now), NextCall(1, now));
    }
    return 0;
}

std::string Wire::Stats() const {
    std::string text;
    for (const int direction : {0, 1}) {
        const Lane& lane = lanes_[Index(direction)];
        const struct {
            const char* name;
            std::uint64_t value;
        } rows[] = {
            {"in", lane.in},
            {"out", lane.out},
            {"corrupted", lane.noise.Counts().corrupted},
            {"dropped", lane.noise.Counts().dropped},
            {"doubled", lane.noise.Counts().doubled},
            {"lost", lane.lost},
            {"overrun", lane.overrun},
            {"flight", lane.pacer.InFlight()},
            {"held", lane.receiver.Held()},
        };
        for (const auto& row : rows)
            text +=
                (direction == 0 ? " ab." : " ba.") + std::string(row.name) + "=" + std::to_string(row.value);
    }
    return text.substr(1);
}
