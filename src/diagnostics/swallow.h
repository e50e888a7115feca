// For catch-all clauses that end an exception on purpose.
#pragma once

// szPlace says where it ended; the text goes nowhere.
void SwallowException(const char* szPlace) noexcept;
