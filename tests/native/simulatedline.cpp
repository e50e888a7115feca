#include "simulatedline.h"

#include "platform.h"
#include "simulatedcable.h"

#include <algorithm>

namespace {

constexpr DWORD aDay = 24 * 60 * 60 * 1000; // ms

} // namespace

WorkerLine::WorkerLine() : lastDue_(GetTickCount()) {}

void WorkerLine::Say(const std::string& bytes, DWORD afterMilliseconds) {
    const DWORD due = std::max(lastDue_, GetTickCount() + afterMilliseconds);
    lastDue_ = due;
    for (const char byte : bytes)
        input_.push_back({due, static_cast<unsigned char>(byte)});
}

size_t WorkerLine::Unread() const {
    return static_cast<size_t>(
        std::ranges::count_if(input_, [](const Byte& byte) { return byte.due <= GetTickCount(); }));
}

bool WorkerLine::Due() const {
    return !input_.empty() && input_.front().due <= GetTickCount();
}

void WorkerLine::CountWait(DWORD milliseconds) {
    waited += milliseconds;
    if (waited > (patience ? patience : aDay))
        throw WaitedTooLong();
}

void WorkerLine::WaitFor(TRANSFER& transfer, DWORD milliseconds) {
    const DWORD start = GetTickCount();
    const DWORD end = start + milliseconds;
    if (onWait)
        onWait();
    while (!Due() && GetTickCount() < end && !(xfGetAbort(transfer) && !transfer.bFinishing)) {
        // In steps of a pump, so that an abort or a closed port shows as soon as it would; on a cable nothing
        // but the far end and those two can end the wait.
        const bool atOnce = cable_ && !abortAt && !closeAt;
        const DWORD step = atOnce ? end - GetTickCount() : std::min<DWORD>(50, end - GetTickCount());
        if (cable_)
            cable_->Wait(side_, step);
        else if (!input_.empty() && input_.front().due < GetTickCount() + step)
            platform::SetTick(input_.front().due);
        else
            platform::AdvanceTick(step);
        if (!xfPortIsOpen(transfer))
            break;
    }
    CountWait(GetTickCount() - start);
}

struct LineServices {
    static void Wait(TRANSFER& transfer, DWORD milliseconds) { Of(transfer).WaitFor(transfer, milliseconds); }

    static WorkerLine& Of(TRANSFER& transfer) {
        WorkerLine& line = *transfer.lpLine;
        if (line.abortAt && GetTickCount() >= line.abortAt) {
            line.abortAt = 0;
            xfSetAbort(transfer, 1);
        }
        return line;
    }

    static bool IsOpen(TRANSFER& transfer) {
        const WorkerLine& line = Of(transfer);
        return !line.closeAt || GetTickCount() < line.closeAt;
    }

    // False on a closed port, which asks for the end.
    static bool Ready(TRANSFER& transfer) {
        if (IsOpen(transfer))
            return true;
        xfSetAbort(transfer, 1);
        return false;
    }

    static DWORD Write(TRANSFER& transfer, const std::string& bytes) {
        if (!Ready(transfer))
            return 0;
        WorkerLine& line = Of(transfer);
        line.sent += bytes;
        if (line.cable_)
            line.cable_->Carry(line.side_, bytes);
        if (line.onWrite)
            line.onWrite(bytes);
        return static_cast<DWORD>(bytes.size());
    }

    static int Take(TRANSFER& transfer) {
        WorkerLine& line = Of(transfer);
        if (!line.Due())
            return -1;
        const int c = line.input_.front().value;
        line.input_.pop_front();
        return c;
    }

    static int Get(TRANSFER& transfer, DWORD milliseconds) {
        int c = Take(transfer);
        if (c >= 0 || !Ready(transfer))
            return c;
        Wait(transfer, milliseconds);
        c = Take(transfer);
        if (c < 0 && Ready(transfer) && !xfGetAbort(transfer))
            LogTransfer(transfer, "Receive timeout.");
        return c;
    }

    static void Delay(TRANSFER& transfer, DWORD milliseconds) {
        WorkerLine& line = Of(transfer);
        const DWORD end = GetTickCount() + milliseconds;
        while (GetTickCount() < end && !xfGetAbort(transfer) && Ready(transfer)) {
            const DWORD step = std::min<DWORD>(50, end - GetTickCount());
            if (line.cable_)
                line.cable_->Sleep(line.side_, step);
            else
                platform::AdvanceTick(step);
            line.CountWait(step);
        }
    }

    static void Flush(TRANSFER& transfer) {
        if (!Ready(transfer))
            return;
        WorkerLine& line = Of(transfer);
        ++line.flushes;
        if (line.cable_)
            line.cable_->Drain(line.side_);
    }

    static void Clear(TRANSFER& transfer) {
        WorkerLine& line = Of(transfer);
        ++line.purges;
        while (line.Due())
            line.input_.pop_front();
    }
};

DWORD xfInQueue(TRANSFER& transfer) {
    return LineServices::IsOpen(transfer) ? static_cast<DWORD>(transfer.lpLine->Unread()) : 0;
}

DWORD xfOutQueue(TRANSFER&) {
    return 0;
}

bool xfDataWaiting(TRANSFER& transfer) {
    return xfInQueue(transfer) > 0;
}

DWORD xfPutChar(TRANSFER& transfer, int c) {
    return LineServices::Write(transfer, std::string(1, static_cast<char>(c)));
}

DWORD xfWrite(TRANSFER& transfer, const void* lpBytes, DWORD cbBytes) {
    return LineServices::Write(transfer, std::string(static_cast<const char*>(lpBytes), cbBytes));
}

int xfGetChar(TRANSFER& transfer, DWORD milliseconds) {
    return LineServices::Get(transfer, milliseconds);
}

bool xfWaitForInput(TRANSFER& transfer, DWORD milliseconds) {
    if (LineServices::Ready(transfer) && !xfDataWaiting(transfer))
        LineServices::Wait(transfer, milliseconds);
    return xfDataWaiting(transfer);
}

void xfDelay(TRANSFER& transfer, DWORD milliseconds) {
    LineServices::Delay(transfer, milliseconds);
}

void xfFlushOutput(TRANSFER& transfer) {
    LineServices::Flush(transfer);
}

void xfClearOutput(TRANSFER&) {}

void xfClearInput(TRANSFER& transfer) {
    LineServices::Clear(transfer);
}

void xfSendBreak(TRANSFER&, bool) {}

bool xfPortIsOpen(TRANSFER& transfer) {
    return LineServices::IsOpen(transfer);
}
