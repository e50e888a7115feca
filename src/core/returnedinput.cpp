#include "returnedinput.h"

#include <algorithm>
#include <cstring>

void GiveBackInput(COMCTL& record, const void* lpBytes, size_t cbBytes) {
    std::scoped_lock guard(record.ReturnedLock);
    auto& returned = record.ReturnedInput;
    const auto* bytes = static_cast<const char*>(lpBytes);
    returned.insert(returned.end(), bytes, bytes + cbBytes);
    record.cbReturnedInput = static_cast<int>(returned.size());
}

int TakeReturnedInput(COMCTL& record, void* lpBuffer, int cbWanted) {
    std::scoped_lock guard(record.ReturnedLock);
    auto& returned = record.ReturnedInput;
    const auto count = std::min(static_cast<size_t>(cbWanted), returned.size());
    std::copy_n(returned.begin(), count, static_cast<char*>(lpBuffer));
    returned.erase(returned.begin(), returned.begin() + static_cast<std::ptrdiff_t>(count));
    record.cbReturnedInput = static_cast<int>(returned.size());
    return static_cast<int>(count);
}

void DropReturnedInput(COMCTL& record) {
    std::scoped_lock guard(record.ReturnedLock);
    record.ReturnedInput.clear();
    record.cbReturnedInput = 0;
}
