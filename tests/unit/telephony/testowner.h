// The owner of a CTapiApp, which records what it hears and on which thread; and the exchange's tests as a
// whole.
#pragma once

#include "core/handle.h"
#include "core/thread.h"
#include "modem/TapiApp.h"
#include "support/every.h"
#include "support/host.h"
#include "telephony/exchange.h"
#include "unit/diagnostics/logtest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class TestOwner final : public CTapiOwner {
  public:
    using Handler = std::function<void(const std::string& event)>;

    void OnDisconnected() override {
        comm.reset();
        Hear("disconnected");
    }
    void OnIdle() override {
        comm.reset();
        Hear("idle");
    }
    void OnAnswered(HANDLE hComm) override {
        comm.reset(hComm);
        Hear("answered");
    }
    void OnNotify(int code) override { Hear("notify " + std::to_string(code)); }
    bool WantsCall() const override { return wantsCall; }

    // Runs inside the event, after it was recorded.
    void OnEventDo(Handler handler) { handler_ = std::move(handler); }
    const std::vector<std::string>& Events() const { return events_; }
    int Count(const std::string& event) const {
        return static_cast<int>(std::count(events_.begin(), events_.end(), event));
    }
    bool AllOnThread(DWORD thread) const {
        return std::all_of(threads_.begin(), threads_.end(), [&](DWORD id) { return id == thread; });
    }
    void Forget() { events_.clear(); }

    FileHandle comm;
    bool wantsCall = true;

  private:
    void Hear(const std::string& event) {
        events_.push_back(event);
        threads_.push_back(GetCurrentThreadId());
        if (const Handler handler = handler_)
            handler(event);
    }

    std::vector<std::string> events_;
    std::vector<DWORD> threads_;
    Handler handler_;
};

inline LONG TapiError(DWORD error) {
    return static_cast<LONG>(error);
}

// A log without a file yet, an exchange with two data lines and a voice line between them. Afterwards nothing
// of the service is held, and every thread has ended by itself.
class TapiTest : public LogTest {
  protected:
    static constexpr DWORD dataLine = 0, voiceLine = 1, otherLine = 2;

    void SetUp() override {
        LogTest::SetUp();
        ExchangeReset();
        ExchangeAddLine("Alpha Modem", "Provider A", LINEMEDIAMODE_DATAMODEM, "100", "COM5");
        ExchangeAddLine("Desk Set", "Provider V", LINEMEDIAMODE_INTERACTIVEVOICE, "101", nullptr);
        ExchangeAddLine("Beta Modem", "Provider B", LINEMEDIAMODE_DATAMODEM | LINEMEDIAMODE_G3FAX, "102",
                        "COM6");
        terminated_ = TerminatedThreadCount();
    }
    void TearDown() override {
        owner.OnEventDo({});
        app.reset();
        owner.comm.reset();
        ExchangeHoldings held = {};
        ExchangeGetHoldings(&held);
        EXPECT_EQ(held.applications, 0U);
        EXPECT_EQ(held.lines, 0U);
        EXPECT_EQ(held.calls, 0U);
        EXPECT_EQ(TerminatedThreadCount(), terminated_ + expectedTerminations);
        ExchangeReset();
        LogTest::TearDown();
    }

    CTapiApp& Start(const TapiLimits& limits = {}) {
        app = std::make_unique<CTapiApp>(owner, limits);
        return *app;
    }

    static ExchangeHoldings Held() {
        ExchangeHoldings held = {};
        ExchangeGetHoldings(&held);
        return held;
    }

    static std::string Record() {
        std::string text(ExchangeRecord(nullptr, 0) + 1, '\0');
        text.resize(
            std::min<size_t>(ExchangeRecord(text.data(), static_cast<DWORD>(text.size())), text.size() - 1));
        return text;
    }
    // How often it stands in a text.
    static int Times(const std::string& text, const std::string& part) {
        int times = 0;
        for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
            ++times;
        return times;
    }
    static int Asked(const std::string& part) { return Times(Record(), part); }
    static int Logged(const std::string& part) { return Times(logfiles::Messages(), part); }

    // What the telephony thread releases by itself is released a little later. Serves no messages meanwhile.
    static bool HoldsNothing() {
        for (const host::Clock clock; clock.Gone() < 5000; Sleep(1))
            if (const ExchangeHoldings held = Held(); !held.lines && !held.calls)
                return true;
        return false;
    }

    bool PumpUntilHeard(const std::string& event, int times = 1) {
        return host::PumpUntil([&] { return owner.Count(event) >= times; });
    }
    // The line waits for calls, and the service knows it.
    void StartAnswering() {
        Start();
        ASSERT_TRUE(app->SetAnswer(true, dataLine));
    }
    void AnswerACall() {
        StartAnswering();
        ASSERT_NE(ExchangeRing(dataLine), 0U);
        ASSERT_TRUE(PumpUntilHeard("answered"));
    }

    TestOwner owner;
    std::unique_ptr<CTapiApp> app;
    int expectedTerminations = 0;

  private:
    int terminated_ = 0;
};
