// The lines, locations and rules of a program that sets up nothing by itself, from a file. README.md tells
// its words.
#pragma once

// Reads the file that the environment names in TARN_EXCHANGE, if any; once from one reset to the next. Under
// the exchange's lock.
void ReadExchangeFileOnce();
