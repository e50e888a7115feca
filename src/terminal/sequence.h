// Control sequences, as ANSI and VT100 share them: the scan for their end, their parameters, and what each
// final does. The codes are those of ECMA-48 and of DEC's terminals, with deviations of our own that the rows
// name.
#pragma once

#include "core/comctl.h"

#include <span>

// Collected bytes, the introducer included, must stay below this; a longer sequence is dropped.
inline constexpr int SequenceLimit = 20;
static_assert(SequenceLimit < EscapeSize);

struct FinalRow {
    char final;
    const char* mnemonic;
    const char* parameters; // with what stands in for an absent one
    const char* meaning;
    void (*act)(COMCTL& record); // null: ignored
};

std::span<const FinalRow> SequenceFinals();

// The bytes up to and including the final; or up to a control character, which ends a sequence as well; 0 if
// there is no end yet, or if a control character comes first.
int ScanForFinal(const char* bytes, int count);

// Collects a control sequence up to its end and runs it. Steps over the bytes that it used. False: the object
// is gone.
bool CollectSequence(COMCTL& record, const char*& bytes, int& count);

// Runs the sequence that the record holds. False: the object is gone.
bool RunSequence(COMCTL& record);

// The number at a place in the list, or the fallback if there is none. Numbers end at 31 bits.
int SequenceParam(const COMCTL& record, int index, int fallback);

// The text behind the introducer, final included.
const char* SequenceText(const COMCTL& record);

// Appends bytes to the open sequence; the caller has seen that they fit.
void AppendToSequence(COMCTL& record, const char*& bytes, int& count, int take);

// Begins a sequence with its introducer.
void OpenSequence(COMCTL& record, char introducer);

// Collects until the sequence holds so many bytes. False: more have to come.
bool CollectUntil(COMCTL& record, const char*& bytes, int& count, int length);

// Prints what stands before the next introducer, and steps behind that. False: there is none, all is printed.
bool PrintUpTo(COMCTL& record, const char*& bytes, int& count, const char* introducer);
