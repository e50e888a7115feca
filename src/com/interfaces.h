// For headers whose classes derive from the system's interfaces.
#pragma once

#include <unknwn.h>

// Those have no virtual destructor, and need none: only Unknown destroys an object, as the class that it is.
// That nobody else does so by an interface is still checked (-Wdelete-non-virtual-dtor).
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
