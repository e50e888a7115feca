// Strings and variants of the platform, as far as the stored form needs them.
#pragma once

namespace automation {

// Strings that were made and not freed.
int Strings();

} // namespace automation
