// One cable: two ends, two directions, and what the control commands do to it.
#pragma once

#include "fifo.h"
#include "noise.h"
#include "pacing.h"
#include "pty.h"
#include "signals.h"
#include "transcript.h"

#include <array>
#include <memory>
#include <string>

// The state that a cable starts in and returns to on reset.
struct WireSettings {
    long baud = 0;    // bits per second, 0 is unpaced
    long latency = 0; // ms each way
    NoiseSettings noise;
    std::size_t fifo = 0; // bytes, 0 is none
};

// Ends and directions are numbered: 0 is end a and the direction from a to b.
class Wire {
  public:
    // `suffix` tells the cables of one folder apart: links a<suffix> and b<suffix>. Throws std::system_error.
    Wire(const std::filesystem::path& folder, const std::string& suffix, unsigned number,
         const WireSettings& settings);
    ~Wire();
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    // Moves bytes as far as they go. Returns when it wants to be called again without an event.
    Nanoseconds Pump();

    // -1 while the end is hung up.
    int Master(int end) const;
    void SetReadable(int end) { ends_[Index(end)].readable = true; }

    void SetBaud(int direction, long baud) { lanes_[Index(direction)].pacer.SetBaud(baud); }
    void SetLatency(int direction, long latency) { lanes_[Index(direction)].pacer.SetLatency(latency); }
    void SetNoise(int direction, const NoiseSettings& noise) { lanes_[Index(direction)].noise.Set(noise); }
    const NoiseSettings& NoiseOf(int direction) const { return lanes_[Index(direction)].noise.Settings(); }
    void SetFifo(int end, std::size_t bytes) { lanes_[Index(!end)].receiver.SetCapacity(bytes); }
    void SetCut(bool cut) { cut_ = cut; }
    // False when the end was so already.
    bool HangUp(int end);
    bool Restore(int end);
    void Reset();

    Signals& Lines() { return signals_; }
    Transcript& Record() { return transcript_; }
    std::string Stats() const;

  private:
    struct End {
        std::unique_ptr<Pty> pty;
        bool readable = true; // until a read says otherwise; the loop's events are edges
    };

    // One direction: source, noise, pacing, receiver.
    struct Lane {
        explicit Lane(std::uint64_t stream) : noise(stream) {}
        Noise noise;
        Pacer pacer;
        Receiver receiver;
        std::uint64_t in = 0; // bytes
        std::uint64_t out = 0;
        std::uint64_t lost = 0; // while cut, or for want of a far end
        std::uint64_t overrun = 0;
    };

    static std::size_t Index(int number) { return static_cast<std::size_t>(number); }
    std::filesystem::path LinkOf(int end) const;
    void Apply(const WireSettings& settings);
    bool TakeIn(int direction, Nanoseconds now);
    bool Deliver(int direction, Nanoseconds now);
    Nanoseconds NextCall(int direction, Nanoseconds now) const;

    std::filesystem::path folder_;
    std::string suffix_;
    WireSettings start_;
    Signals signals_;
    Transcript transcript_;
    std::array<End, 2> ends_;
    std::array<Lane, 2> lanes_;
    bool cut_ = false;
};
