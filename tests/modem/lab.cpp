#include "lab.h"

#include <algorithm>

Lab::Lab(const std::vector<std::string>& numbers) {
    for (const std::string& number : numbers)
        modems_.push_back(std::make_unique<Modem>(exchange_, exchange_.AddLine(number)));
}

// What one does may concern the others: until a round in which nothing happens.
Nanoseconds Lab::Advance(Nanoseconds now) {
    Nanoseconds next = kNever;
    unsigned before = 0;
    do {
        before = exchange_.Changes();
        next = exchange_.Advance(now);
        for (const auto& modem : modems_)
            next = std::min(next, modem->Advance(now));
    } while (exchange_.Changes() != before);
    return next;
}
