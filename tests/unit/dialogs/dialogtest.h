// A user at a dialog that has the doubles behind it.
#pragma once

#include "dialoguser.h"
#include "doubles.h"

#include "modem/TapiApp.h"
#include "support/nocalls.h"

namespace dialogs {

class DialogTest : public testing::Test {
  protected:
    DialogTest() { doubles::Reset(); }
    ~DialogTest() override { doubles::Reset(); }

    host::NoCalls callOwner;
    CTapiApp tapi{callOwner};
    Window owner = MakeOwner();
};

} // namespace dialogs
