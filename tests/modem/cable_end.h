// The modem's end of a virtual cable: the tty behind which the computer is, and the signals of both.
#pragma once

#include "cable.h"
#include "event_loop.h"
#include "modem.h"
#include "signal_state.h"
#include "transcript.h"

#include <filesystem>
#include <memory>

class CableEnd {
  public:
    // `folder` is that of a running tarnline. Throws std::runtime_error or std::system_error.
    CableEnd(EventLoop& loop, const std::filesystem::path& folder, std::size_t number);
    ~CableEnd() { Close(); }
    CableEnd(const CableEnd&) = delete;
    CableEnd& operator=(const CableEnd&) = delete;

    // From the computer: DTR and bytes, as many as the modem takes. True if more is there.
    bool Read(Modem& modem, Transcript& transcript, Nanoseconds now);
    // To the computer: signals first, as what is said about a call comes after the call.
    void Write(Modem& modem, Transcript& transcript, Nanoseconds now);

  private:
    struct Unmap {
        void operator()(const tarn_line_state* state) const;
    };

    void Open();
    void Reopen();
    void Close();
    void ShowSignals(const Modem& modem);

    EventLoop& loop_;
    std::filesystem::path control_;
    std::filesystem::path path_;
    std::string inward_;
    std::string outward_;
    Cable cable_;
    std::unique_ptr<const tarn_line_state, Unmap> state_;
    UniqueFd tty_;
    bool readable_ = true;
};
