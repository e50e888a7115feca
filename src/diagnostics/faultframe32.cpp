#include "faultframe.h"

#ifndef _WIN64

#include "faultguard.h"

#include <intrin.h>

namespace {

struct FaultFrame;

using FrameHandler = EXCEPTION_DISPOSITION(__cdecl*)(EXCEPTION_RECORD*, FaultFrame*, CONTEXT*, void*);

// The system reads the first two fields; the frame must lie on the thread's stack.
struct FaultFrame {
    DWORD previous;
    FrameHandler handler;
    FaultState* fault;
    void* landing[5];
};

constexpr DWORD chain = 0; // offset of the chain's head in the thread's block, segment fs

// C++ exceptions pass without the system's help, so the chain is put right by a destructor.
class Registration {
  public:
    explicit Registration(FaultFrame& frame) : previous_(__readfsdword(chain)) {
        frame.previous = previous_;
        __writefsdword(chain, reinterpret_cast<DWORD>(&frame));
    }
    ~Registration() { __writefsdword(chain, previous_); }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

  private:
    DWORD previous_;
};

// The system's unwinder keeps no register but the frame pointer.
void UnwindTo(FaultFrame* frame, EXCEPTION_RECORD* record) {
    asm volatile("pushl $0\n\t"
                 "pushl %1\n\t"
                 "pushl $0\n\t"
                 "pushl %0\n\t"
                 "call _RtlUnwind@16"
                 : "+a"(frame), "+d"(record)
                 :
                 : "ebx", "ecx", "esi", "edi", "memory", "cc");
}

[[noreturn, gnu::noinline]] void Land(FaultFrame* frame) {
    __builtin_longjmp(frame->landing, 1);
}

EXCEPTION_DISPOSITION __cdecl OnFault(EXCEPTION_RECORD* record, FaultFrame* frame, CONTEXT* context, void*) {
    if (!IsSearch(*record) || !IsTranslatedCode(record->ExceptionCode))
        return ExceptionContinueSearch;
    frame->fault->Take(*record, *context);
    UnwindTo(frame, record);
    Land(frame);
}

} // namespace

extern "C" [[gnu::noinline]] RunEnd RunUnderFaultHandler(void (*work)(void*), void* argument,
                                                         FaultState* fault) {
    FaultFrame frame = {0, OnFault, fault, {}};
    const Registration registration(frame);
    if (__builtin_setjmp(frame.landing))
        return RunEnd::Faulted;
    work(argument);
    return RunEnd::Returned;
}

#endif
