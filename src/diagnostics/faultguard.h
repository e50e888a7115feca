// CallTranslated: runs code so that a processor or system fault in it arrives as a CSEHException.
//
// The guard is a frame of the system's own exception handling on the calling thread's stack. So it sees only
// faults of that thread; what code further inside handles by itself (the system's pointer probes do) never
// arrives; guards nest; a thread without one is not touched; and nothing stays registered afterwards. The
// fault may lie inside a system DLL: the system unwinds its frames, then the exception is thrown from here.
//
// Destructors of C++ frames between the fault and the guard do not run: the compiler does not expect a plain
// instruction to throw. A guard must not reach over a window procedure that the system calls back.
// A stack overflow arrives where the system has stack left to look for a handler; 64-bit Wine has not.
//
// Translated are the system's own codes of warning and error severity, in the table of exceptiontext.h or
// not. Passed on are information (debugger output), and codes with the customer bit: the exceptions of
// language run-times, this compiler's C++ exceptions among them.
#pragma once

#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

// The part that is no template: runs work(argument).
void RunTranslated(void (*work)(void*), void* argument);

bool IsTranslatedCode(unsigned nCode);

template <class Callable>
auto CallTranslated(Callable&& callable) {
    using Body = std::remove_reference_t<Callable>;
    using Result = std::invoke_result_t<Body&>;
    Body* body = std::addressof(callable);
    if constexpr (std::is_void_v<Result>) {
        RunTranslated([](void* argument) { (**static_cast<Body**>(argument))(); }, &body);
    } else {
        struct Call {
            Body* body;
            std::optional<Result> result;
        } call = {body, {}};
        RunTranslated(
            [](void* argument) {
                auto& self = *static_cast<Call*>(argument);
                self.result.emplace((*self.body)());
            },
            &call);
        return std::move(*call.result);
    }
}
