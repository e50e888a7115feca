#include "ring.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

constexpr DWORD stopCheckEvery = 200; // ms

} // namespace

CRingBuffer::CRingBuffer(int cbSize, HANDLE hStop)
    : hDataEvent_(AutoResetEvent()), hStop_(hStop), hRoomEvent_(AutoResetEvent()) {
    Resize(cbSize);
}

int CRingBuffer::Count() {
    std::scoped_lock guard(lock_);
    return cbCount_;
}

int CRingBuffer::Free() {
    std::scoped_lock guard(lock_);
    return cbSize_ - cbCount_;
}

bool CRingBuffer::Write(const void* lpBytes, int cbBytes) {
    std::scoped_lock guard(lock_);
    return WriteLocked(static_cast<const char*>(lpBytes), cbBytes);
}

bool CRingBuffer::WriteWaiting(const void* lpBytes, int cbBytes) {
    std::unique_lock guard(lock_);
    for (;;) {
        if (cbBytes < 0 || cbBytes > cbSize_)
            return false;
        if (WriteLocked(static_cast<const char*>(lpBytes), cbBytes))
            return true;
        ++nRoomWaiters_;
        guard.unlock();
        const HANDLE handles[] = {hStop_, hRoomEvent_.get()};
        const DWORD woken = WaitForMultipleObjects(2, handles, FALSE, stopCheckEvery);
        guard.lock();
        --nRoomWaiters_;
        if (woken == WAIT_OBJECT_0 || woken == WAIT_FAILED)
            return false;
    }
}

bool CRingBuffer::WriteLocked(const char* bytes, int cbBytes) {
    if (cbBytes < 0 || cbBytes > cbSize_ - cbCount_)
        return false;
    if (!cbBytes)
        return true;
    const int tail = (iHead_ + cbCount_) % cbSize_;
    const int toEnd = std::min(cbBytes, cbSize_ - tail);
    std::memcpy(lpBuffer_.get() + tail, bytes, static_cast<size_t>(toEnd));
    std::memcpy(lpBuffer_.get(), bytes + toEnd, static_cast<size_t>(cbBytes - toEnd));
    const bool wasEmpty = !cbCount_;
    cbCount_ += cbBytes;
    if (wasEmpty)
        SetEvent(hDataEvent_.get());
    return true;
}

int CRingBuffer::Take(void* lpBytes, int cbBytes) {
    std::scoped_lock guard(lock_);
    const int count = TakeLocked(lpBytes, cbBytes);
    if (count && cbCount_)
        SetEvent(hDataEvent_.get());
    return count;
}

int CRingBuffer::TakeOn(void* lpBytes, int cbBytes) {
    std::scoped_lock guard(lock_);
    return TakeLocked(lpBytes, cbBytes);
}

void CRingBuffer::SignalHeld() {
    std::scoped_lock guard(lock_);
    if (cbCount_)
        SetEvent(hDataEvent_.get());
}

int CRingBuffer::TakeLocked(void* lpBytes, int cbBytes) {
    const int count = std::min({cbBytes, cbCount_, cbSize_ - iHead_});
    if (count <= 0)
        return 0;
    std::memcpy(lpBytes, lpBuffer_.get() + iHead_, static_cast<size_t>(count));
    iHead_ = (iHead_ + count) % cbSize_;
    cbCount_ -= count;
    SignalRoom();
    return count;
}

void CRingBuffer::SignalRoom() {
    if (nRoomWaiters_)
        SetEvent(hRoomEvent_.get());
}

void CRingBuffer::Purge() {
    std::scoped_lock guard(lock_);
    iHead_ = 0;
    cbCount_ = 0;
    SignalRoom();
}

void CRingBuffer::Resize(int cbSize) {
    std::scoped_lock guard(lock_);
    iHead_ = 0;
    cbCount_ = 0;
    cbSize_ = std::max(cbSize, 0);
    lpBuffer_.reset(new (std::nothrow) char[static_cast<size_t>(cbSize_)]);
    if (!lpBuffer_)
        cbSize_ = 0;
    SignalRoom();
}
