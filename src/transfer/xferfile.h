// Files by plain system calls, each under the guard against faults with a label of its own.
#pragma once

#include "core/handle.h"

#include <array>

FileHandle FopenRead(const char* szName);
FileHandle FCreate(const char* szName);
FileHandle FopenAppend(const char* szName); // stands at the end
void Fclose(FileHandle& file);

// The count done; the count asked for when the call fails, kept so, see the tests. 0 after a fault.
DWORD Fwrite(const FileHandle& file, const void* lpBytes, DWORD cbBytes);
DWORD Fread(const FileHandle& file, void* lpBytes, DWORD cbBytes);

int FGetc(const FileHandle& file); // 0 to 255, or -1

// What a reader of single characters has taken from its file ahead of them, so that not each costs a call of
// the system. One for each file, and nothing else may read or seek in that file.
struct ReadAhead {
    std::array<unsigned char, 4096> bytes;
    DWORD next = 0;
    DWORD count = 0;
};

int FGetc(const FileHandle& file, ReadAhead& ahead); // 0 to 255, or -1

// A line without its end (CR; every LF is dropped), at most cbLine-1 characters of it; null when there is
// none at the end of the file.
char* Fgets(const FileHandle& file, char* szLine, int cbLine);

DWORD Fseek(const FileHandle& file, LONG position, DWORD method); // the new position, all ones for a failure
DWORD Fsize(const FileHandle& file);                              // bytes, low half; all ones for none
