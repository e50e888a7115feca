// The modem's answers: words, and numbers for computers that asked for them.
#pragma once

#include "profile.h"

#include <string>

enum class Result { kOk, kConnect, kRing, kNoCarrier, kError, kNoDialTone, kBusy, kNoAnswer };

// What goes to the computer for a result. `rate` follows "CONNECT"; empty gives a plain one.
std::string ResultText(Result result, const std::string& rate, const Profile& profile);

// A line of information, as I and S? give it.
std::string InformationText(const std::string& text, const Profile& profile);
