// Calls that were asked for and never answered. Under the exchange's lock.
#pragma once

// No late reply writes a handle any more.
void ForgetKeptWaiting();
