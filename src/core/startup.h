// What the module sets up when a process takes it in, and takes down when the process lets it go.
#pragma once

void ShutDownTarnCommObjects();
