#include "modemline.h"

#include "core/ascii.h"

#include <cstdarg>
#include <cstdio>

namespace {

constexpr int breakMark = 0xDD;
constexpr int pauseMark = 0xDE;
constexpr DWORD pauseLength = 1000; // ms
constexpr int cancelCount = 10;

} // namespace

int ModemLine::ReadLine(int tenths) {
    const int c = xfGetChar(transfer_, static_cast<DWORD>(tenths) * 100);
    if (c >= 0)
        return c;
    return xfPortIsOpen(transfer_) ? ReadTimeout : NoCarrier;
}

void ModemLine::Purge() {
    xfClearInput(transfer_);
}

void ModemLine::PutRaw(int c) {
    outbuf_[cbOut_++] = static_cast<unsigned char>(c);
    if (cbOut_ == outbuf_.size())
        WriteOut();
}

void ModemLine::WriteOut() {
    if (cbOut_)
        xfWrite(transfer_, outbuf_.data(), static_cast<DWORD>(cbOut_));
    cbOut_ = 0;
}

void ModemLine::WriteFlush() {
    WriteOut();
    xfFlushOutput(transfer_);
}

void ModemLine::SendString(const char* szText) {
    for (; *szText; ++szText) {
        const int c = static_cast<unsigned char>(*szText);
        if (c == pauseMark)
            xfDelay(transfer_, pauseLength);
        else if (c != breakMark)
            PutRaw(c);
    }
    WriteFlush();
}

void ModemLine::Cancel() {
    const std::string cancels(cancelCount, ascii::CAN);
    SendString(cancels.c_str());
}

void ModemLine::Log(const char* szFormat, ...) {
    char text[1024];
    va_list arguments;
    va_start(arguments, szFormat);
    std::vsnprintf(text, sizeof text, szFormat, arguments);
    va_end(arguments);
    LogTransfer(transfer_, text);
}

void ModemLine::ShowStatus(const char* szText) {
    if (*szText)
        Log("%s", szText);
    xfSetMessage(transfer_, szText);
}
