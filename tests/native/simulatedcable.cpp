#include "simulatedcable.h"

#include "platform.h"

#include <algorithm>
#include <exception>
#include <thread>

SimulatedCable::SimulatedCable(Noise noise, int bytesPerMillisecond)
    : noise_(noise), byteTime_(1000 / static_cast<uint64_t>(bytesPerMillisecond)), random_(noise.seed) {}

void SimulatedCable::Connect(WorkerLine& first, WorkerLine& second) {
    sides_[0].line = &first;
    sides_[1].line = &second;
    for (int side = 0; side < 2; ++side) {
        sides_[static_cast<size_t>(side)].line->cable_ = this;
        sides_[static_cast<size_t>(side)].line->side_ = side;
    }
}

void SimulatedCable::Run(const std::function<void()>& first, const std::function<void()>& second) {
    std::array<std::exception_ptr, 2> thrown;
    const auto party = [&](int side, const std::function<void()>& work) {
        {
            std::unique_lock guard(lock_);
            turnChanged_.wait(guard, [&] { return turn_ == side; });
        }
        try {
            work();
        } catch (...) {
            thrown[static_cast<size_t>(side)] = std::current_exception();
        }
        Finish(side);
    };
    {
        std::jthread other([&] { party(1, second); });
        party(0, first);
    }
    for (const std::exception_ptr& one : thrown)
        if (one)
            std::rethrow_exception(one);
}

void SimulatedCable::Carry(int side, const std::string& bytes) {
    Side& from = sides_[static_cast<size_t>(side)];
    WorkerLine& to = *sides_[static_cast<size_t>(1 - side)].line;
    std::uniform_real_distribution<double> chance(0, 1);
    const auto put = [&](unsigned char value) {
        to.input_.push_back({static_cast<DWORD>(from.lineFree / 1000), value});
    };
    from.lineFree = std::max(from.lineFree, static_cast<uint64_t>(GetTickCount()) * 1000);
    for (const char byte : bytes) {
        from.lineFree += byteTime_;
        auto value = static_cast<unsigned char>(byte);
        if (noise_.drop > 0 && chance(random_) < noise_.drop)
            continue;
        if (noise_.corrupt > 0 && chance(random_) < noise_.corrupt)
            value = static_cast<unsigned char>(value ^ (1 + random_() % 255));
        put(value);
        if (noise_.twice > 0 && chance(random_) < noise_.twice)
            put(value);
    }
}

void SimulatedCable::Wait(int side, DWORD milliseconds) {
    Block(side, milliseconds, false);
}

void SimulatedCable::Sleep(int side, DWORD milliseconds) {
    Block(side, milliseconds, true);
}

void SimulatedCable::Drain(int side) {
    const uint64_t free = sides_[static_cast<size_t>(side)].lineFree / 1000;
    if (free > GetTickCount())
        Sleep(side, static_cast<DWORD>(free) - GetTickCount());
}

void SimulatedCable::Block(int side, DWORD milliseconds, bool sleeps) {
    Side& self = sides_[static_cast<size_t>(side)];
    self.wake = GetTickCount() + milliseconds;
    self.sleeps = sleeps;
    std::unique_lock guard(lock_);
    PassTurn();
    turnChanged_.notify_all();
    turnChanged_.wait(guard, [&] { return turn_ == side; });
}

bool SimulatedCable::CanRun(int side) const {
    const Side& self = sides_[static_cast<size_t>(side)];
    return !self.done && (self.wake <= GetTickCount() || (!self.sleeps && self.line->Due()));
}

// To whoever can run now, or to whoever can run first, whose time it becomes.
void SimulatedCable::PassTurn() {
    for (;;) {
        for (const int side : {1 - turn_, turn_})
            if (CanRun(side)) {
                turn_ = side;
                return;
            }
        DWORD next = MAXDWORD;
        for (const Side& side : sides_) {
            if (side.done)
                continue;
            next = std::min(next, side.wake);
            if (!side.sleeps && !side.line->input_.empty())
                next = std::min(next, side.line->input_.front().due);
        }
        if (next == MAXDWORD)
            return; // both are done
        platform::SetTick(next);
    }
}

void SimulatedCable::Finish(int side) {
    std::scoped_lock guard(lock_);
    sides_[static_cast<size_t>(side)].done = true;
    PassTurn();
    turnChanged_.notify_all();
}
