// The exchange as a whole: a new start, and what is in use.
#include "exchange.h"

#include "calls.h"
#include "lines.h"
#include "messages.h"
#include "plant.h"
#include "requests.h"
#include "worker.h"

void WINAPI ExchangeReset() {
    StopWorker();
    ClearFaults();
    ExchangeClearRecord();
    const std::lock_guard guard(ExchangeLock());
    Calls().Clear();
    OpenLines().Clear();
    ClearMessages();
    ForgetKeptWaiting();
    ThePlant() = {};
}

void WINAPI ExchangeGetHoldings(ExchangeHoldings* holdings) {
    const std::lock_guard guard(ExchangeLock());
    *holdings = {Applications().Count(), OpenLines().Count(), Calls().Count()};
}
