// A flag that is up for the length of a block, and afterwards as it was before: blocks may stand in each
// other.
#pragma once

#include <utility>

class Raised {
  public:
    explicit Raised(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
    ~Raised() { flag_ = before_; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

  private:
    bool& flag_;
    bool before_;
};
