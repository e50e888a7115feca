// The record of a cable: what reached each end and when, one line per up to 16 bytes.
//
//     12.345 a>b 48 65 6c 6c 6f                                   |Hello|
//     13.002 # cut
//
// Times are milliseconds since the transcript began.
#pragma once

#include "byte_queue.h"
#include "clock.h"

#include <cstdio>
#include <memory>
#include <string>

class Transcript {
  public:
    // False when the file can't be written. A file of that name is replaced.
    bool Open(const std::string& path, Nanoseconds now);
    void Close() { file_.reset(); }
    bool IsOpen() const { return file_ != nullptr; }

    void Data(const char* direction, Bytes bytes, Nanoseconds now);
    void Note(const std::string& text, Nanoseconds now);
    void Flush();

  private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void Stamp(Nanoseconds now);
    void Line(const char* direction, Bytes bytes, Nanoseconds now);

    std::unique_ptr<std::FILE, Closer> file_;
    Nanoseconds start_ = 0;
};
