// A raster font with the PC's 256 characters, drawn from a scalable one: Wine brings none, and Windows' own
// is not to be had everywhere.
#pragma once

#include <windows.h>

#include <string>

// Writes it as a font file in the platform's format. False: the scalable font is not there, or the file can't
// be written.
bool WriteRasterFont(const std::string& path, const char* face, HFONT scalable);
