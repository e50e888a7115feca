// The record of what the service was asked.
#include "record.h"

#include "exchange.h"
#include "faults.h"
#include "service.h"

#include <algorithm>
#include <cstring>

namespace {

struct Book {
    std::mutex lock;
    std::string text;
};

Book& TheBook() {
    static auto* book = new Book;
    return *book;
}

} // namespace

void Record(const std::string& function, const std::string& arguments) {
    Book& book = TheBook();
    const std::lock_guard guard(book.lock);
    book.text += PlainName(function) + arguments + "\n";
}

DWORD WINAPI ExchangeRecord(char* szText, DWORD size) {
    Book& book = TheBook();
    const std::lock_guard guard(book.lock);
    const auto length = static_cast<DWORD>(book.text.size());
    if (szText && size) {
        const DWORD count = std::min(length, size - 1);
        std::memcpy(szText, book.text.data(), count);
        szText[count] = 0;
    }
    return length;
}

void WINAPI ExchangeClearRecord() {
    Book& book = TheBook();
    const std::lock_guard guard(book.lock);
    book.text.clear();
}
