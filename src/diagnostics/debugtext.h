// Texts for a debugger, or for a program that collects them. Any thread. Where nobody listens they cost next
// to nothing; a listener is noticed within a second.
#pragma once

void DebugText(const char* szText);
