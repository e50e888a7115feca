#include "measure.h"

#include <windows.h>

#include <cstdio>

double Now() {
    LARGE_INTEGER ticks, frequency;
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(ticks.QuadPart) / static_cast<double>(frequency.QuadPart);
}

void InputMeter::Take(const char* bytes, int count) {
    for (int i = 0; i < count; ++i)
        wrong_ |= static_cast<unsigned char>(bytes[i]) != ((position_ + i) & 0xFF);
    position_ += count;
    if (Done())
        end_ = Now();
}

int InputMeter::Report() const {
    if (wrong_ || position_ != total_) {
        std::fprintf(stderr, "input: %lld of %lld bytes%s\n", position_, total_,
                     wrong_ ? ", some wrong" : "");
        return 1;
    }
    std::printf("MBps %.3f\n", static_cast<double>(total_) / 1e6 / (end_ - start_));
    return 0;
}
