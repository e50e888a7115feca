#include "faultframe.h"

#ifdef _WIN64

#include "faultguard.h"

// RunUnderFaultHandler, with OnFault as the handler of its frame. The third argument stays in its home slot
// on the caller's side of the frame, where OnFault finds it. FaultLanding is where a faulted run goes on,
// with the result in rax.
asm(R"(
    .text
    .p2align 4
    .globl RunUnderFaultHandler
    .def RunUnderFaultHandler; .scl 2; .type 32; .endef
    .seh_proc RunUnderFaultHandler
RunUnderFaultHandler:
    subq $40, %rsp
    .seh_stackalloc 40
    .seh_endprologue
    movq %r8, 64(%rsp)
    movq %rcx, %rax
    movq %rdx, %rcx
    callq *%rax
    xorl %eax, %eax
    .globl FaultLanding
FaultLanding:
    addq $40, %rsp
    ret
    .seh_handler OnFault, @except, @unwind
    .seh_endproc
)");

namespace {

constexpr size_t faultSlot = 64; // bytes from the frame's stack pointer to the third argument's home slot

} // namespace

extern "C" {

extern const char FaultLanding[];

[[gnu::used]] EXCEPTION_DISPOSITION OnFault(EXCEPTION_RECORD* record, void* frame, CONTEXT* context, void*) {
    if (!IsSearch(*record) || !IsTranslatedCode(record->ExceptionCode))
        return ExceptionContinueSearch;
    auto* fault = *reinterpret_cast<FaultState**>(static_cast<char*>(frame) + faultSlot);
    fault->Take(*record, *context);

    CONTEXT scratch;
    RtlUnwindEx(frame, const_cast<char*>(FaultLanding), record,
                reinterpret_cast<void*>(static_cast<ULONG_PTR>(RunEnd::Faulted)), &scratch, nullptr);
    return ExceptionContinueSearch; // not reached: the unwinder goes on at the landing
}

} // extern "C"

#endif
