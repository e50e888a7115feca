// All modems and the exchange between them.
#pragma once

#include "modem.h"

#include <memory>
#include <string>
#include <vector>

class Lab {
  public:
    explicit Lab(const std::vector<std::string>& numbers);

    std::size_t Size() const { return modems_.size(); }
    Modem& At(std::size_t index) { return *modems_[index]; }
    Exchange& Telephones() { return exchange_; }

    // Does all that is due and returns when the next is.
    Nanoseconds Advance(Nanoseconds now);

  private:
    Exchange exchange_;
    std::vector<std::unique_ptr<Modem>> modems_;
};
