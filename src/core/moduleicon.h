// The module's icon. Macros, as the resource compiler reads this too.
#pragma once

#define ModuleIcon 100
