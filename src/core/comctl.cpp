#include "comctl.h"

#include "portmonitor.h"
#include "portread.h"
#include "Tc-lkup.h"
#include "writer.h"

COMCTL::COMCTL() = default;
COMCTL::~COMCTL() = default;

std::mutex& TransferLock() {
    static std::mutex lock;
    return lock;
}
