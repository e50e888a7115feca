// A thread's stay in COM. It must be left on the thread that entered it.
#pragma once

#include <objbase.h>

class ComApartment {
  public:
    ComApartment() : entered_(SUCCEEDED(CoInitialize(nullptr))) {}
    ~ComApartment() {
        if (entered_)
            CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

  private:
    bool entered_;
};
