// The owner of a CTapiApp that places and takes no call.
#pragma once

#include "modem/TapiApp.h"

namespace host {

class NoCalls final : public CTapiOwner {
  public:
    void OnDisconnected() override {}
    void OnIdle() override {}
    void OnAnswered(HANDLE) override {}
    void OnNotify(int) override {}
    bool WantsCall() const override { return true; }
};

} // namespace host
