// The clock, and the checking of bulk input.
#pragma once

// Monotone, in seconds.
double Now();

// Takes bulk input whose bytes count up from 0; its clock starts here.
class InputMeter {
  public:
    explicit InputMeter(long long total) : total_(total), start_(Now()) {}

    void Take(const char* bytes, int count);
    bool Done() const { return position_ >= total_; }

    // Prints the rate and returns the program's result: 1 if a byte was wrong or is missing.
    int Report() const;

  private:
    long long total_;
    double start_;
    long long position_ = 0;
    double end_ = 0;
    bool wrong_ = false;
};
