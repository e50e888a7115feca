// Nothing is logged while it lives.
#pragma once

class LogSilence {
  public:
    explicit LogSilence(int& count) : count_(count) { ++count_; }
    ~LogSilence() { --count_; }
    LogSilence(const LogSilence&) = delete;
    LogSilence& operator=(const LogSilence&) = delete;

  private:
    int& count_;
};
