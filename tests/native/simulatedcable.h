// A paced, noisy cable between two transfers that each run on a thread of their own, of which only one runs
// at a time: the clock moves when both wait, so that a transfer of minutes takes milliseconds and each run of
// a seed is the same.
#pragma once

#include "simulatedline.h"

#include <array>
#include <condition_variable>
#include <mutex>
#include <random>

struct Noise {
    unsigned seed = 1;
    double corrupt = 0; // chance of each byte
    double drop = 0;
    double twice = 0;
};

class SimulatedCable {
  public:
    explicit SimulatedCable(Noise noise, int bytesPerMillisecond = 12);

    // Plugs both ends in.
    void Connect(WorkerLine& first, WorkerLine& second);

    // Runs both to their ends, the first one first. What they throw comes out here.
    void Run(const std::function<void()>& first, const std::function<void()>& second);

  private:
    friend class WorkerLine;
    friend struct LineServices;

    struct Side {
        WorkerLine* line = nullptr;
        bool done = false;
        bool sleeps = false; // waits for the time alone
        DWORD wake = 0;
        uint64_t lineFree = 0; // microseconds, when the last byte out is on the line
    };

    void Wait(int side, DWORD milliseconds);
    void Sleep(int side, DWORD milliseconds);
    void Drain(int side);
    void Carry(int side, const std::string& bytes);

    void Block(int side, DWORD milliseconds, bool sleeps);
    bool CanRun(int side) const;
    void PassTurn();
    void Finish(int side);

    Noise noise_;
    uint64_t byteTime_; // microseconds
    std::mt19937 random_;
    std::array<Side, 2> sides_;
    std::mutex lock_; // guards turn_
    std::condition_variable turnChanged_;
    int turn_ = 0;
};
