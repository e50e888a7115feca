#include "diagnostics/faultguard.h"

#include "diagnostics/SEHException.h"
#include "logfiles.h"

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>

namespace {

constexpr unsigned invalidHandle = 0xC0000008;
constexpr unsigned outsideTheTable = 0xC0000420;

volatile int one = 1;
volatile int zero = 0;
volatile int sink = 0;
int* volatile nowhere = nullptr;

void ReadNull() {
    sink = *nowhere;
}

void WriteNull() {
    *nowhere = 1;
}

const char readOnly[] = "constant";

void WriteReadOnly() {
    *const_cast<volatile char*>(readOnly) = 'x';
}

void DivideByZero() {
    sink = one / zero;
}

void RaiseInvalidHandle() {
    RaiseException(invalidHandle, 0, 0, nullptr);
}

void RaiseNonContinuable() {
    RaiseException(STATUS_NONCONTINUABLE_EXCEPTION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}

void RaiseOutsideTheTable() {
    RaiseException(outsideTheTable, 0, 0, nullptr);
}

void RaiseWarning() {
    RaiseException(EXCEPTION_BREAKPOINT, 0, 0, nullptr);
}

void CallNull() {
    void (*volatile function)() = nullptr;
    function();
}

template <class Function>
Function FromRunTimeLibrary(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryA("msvcrt.dll"), name)));
}

void FaultInsideSystemLibrary() {
    const auto length = FromRunTimeLibrary<size_t(__cdecl*)(const char*)>("strlen");
    sink = static_cast<int>(length(reinterpret_cast<const char*>(nowhere)));
}

void FaultUnderSystemLibrary() {
    using Compare = int(__cdecl*)(const void*, const void*);
    const auto sort = FromRunTimeLibrary<void(__cdecl*)(void*, size_t, size_t, Compare)>("qsort");
    int numbers[] = {3, 1, 2};
    sort(numbers, std::size(numbers), sizeof numbers[0], [](const void*, const void*) -> int {
        ReadNull();
        return 0;
    });
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winfinite-recursion"
[[gnu::noinline]] int Overflow(int depth) {
    volatile char room[1024];
    room[0] = static_cast<char>(depth);
    return Overflow(depth + 1) + room[0];
}
#pragma GCC diagnostic pop

void OverflowStack() {
    sink = Overflow(0);
}

// The code that arrived, 0 for none.
template <class Callable>
unsigned CodeOf(Callable callable) {
    try {
        CallTranslated(callable);
        return 0;
    } catch (const CSEHException& exception) {
        return exception.GetSeCode();
    }
}

struct FaultCase {
    const char* name;
    void (*fault)();
    unsigned code;
};

const FaultCase faultCases[] = {
    {"ReadOfNull", ReadNull, EXCEPTION_ACCESS_VIOLATION},
    {"WriteToNull", WriteNull, EXCEPTION_ACCESS_VIOLATION},
    {"WriteToConstant", WriteReadOnly, EXCEPTION_ACCESS_VIOLATION},
    {"CallOfNull", CallNull, EXCEPTION_ACCESS_VIOLATION},
    {"IntegerDivision", DivideByZero, EXCEPTION_INT_DIVIDE_BY_ZERO},
    {"Raised", RaiseInvalidHandle, invalidHandle},
    {"RaisedNonContinuable", RaiseNonContinuable, STATUS_NONCONTINUABLE_EXCEPTION},
    {"RaisedOutsideTheTable", RaiseOutsideTheTable, outsideTheTable},
    {"RaisedWarning", RaiseWarning, EXCEPTION_BREAKPOINT},
    {"InsideSystemLibrary", FaultInsideSystemLibrary, EXCEPTION_ACCESS_VIOLATION},
    {"UnderSystemLibrary", FaultUnderSystemLibrary, EXCEPTION_ACCESS_VIOLATION},
};

// Stands behind all frames: sees what no guard took, and lets the thread go on.
class LastFilter {
  public:
    LastFilter() : before_(SetUnhandledExceptionFilter(Filter)) { lastCode = 0; }
    ~LastFilter() { SetUnhandledExceptionFilter(before_); }
    LastFilter(const LastFilter&) = delete;
    LastFilter& operator=(const LastFilter&) = delete;

    inline static std::atomic<unsigned> lastCode{0};

  private:
    static LONG CALLBACK Filter(EXCEPTION_POINTERS* exception) {
        lastCode = exception->ExceptionRecord->ExceptionCode;
        return EXCEPTION_CONTINUE_EXECUTION;
    }

    LPTOP_LEVEL_EXCEPTION_FILTER before_;
};

} // namespace

class FaultGuardFaults : public testing::TestWithParam<FaultCase> {};

TEST_P(FaultGuardFaults, ArriveWithTheirCode) {
    EXPECT_EQ(CodeOf(GetParam().fault), GetParam().code);
}

TEST_P(FaultGuardFaults, ArriveAgainAndAgain) {
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(CodeOf(GetParam().fault), GetParam().code) << "time " << i;
}

INSTANTIATE_TEST_SUITE_P(All, FaultGuardFaults, testing::ValuesIn(faultCases),
                         [](const testing::TestParamInfo<FaultCase>& info) { return info.param.name; });

TEST(FaultGuard, StackOverflowArrivesAgainAndAgain) {
#ifdef _WIN64
    GTEST_SKIP() << "64-bit Wine leaves one page of stack, and its own search for a handler runs out of it";
#endif
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(CodeOf(OverflowStack), unsigned{EXCEPTION_STACK_OVERFLOW}) << "time " << i;
}

TEST(FaultGuard, ReturnsWhatTheCallableReturns) {
    EXPECT_EQ(CallTranslated([] { return 42; }), 42);
    EXPECT_EQ(*CallTranslated([] { return std::make_unique<int>(7); }), 7);
    EXPECT_EQ(CallTranslated([] { return std::string(1000, 'x'); }), std::string(1000, 'x'));
    bool called = false;
    CallTranslated([&] { called = true; });
    EXPECT_TRUE(called);
}

TEST(FaultGuard, LocalsOfTheCallerSurviveAFault) {
    int a = 1;
    int b = 2;
    std::string text = "kept";
    try {
        CallTranslated([&] {
            a += 10;
            text += " and changed";
            ReadNull();
            b = 99;
        });
        FAIL() << "no fault";
    } catch (const CSEHException&) {
        EXPECT_EQ(a, 11);
        EXPECT_EQ(b, 2);
        EXPECT_EQ(text, "kept and changed");
    }
}

TEST(FaultGuard, ExceptionTellsKindAndAddressOfTheAccess) {
    try {
        CallTranslated(WriteReadOnly);
        FAIL() << "no fault";
    } catch (const CSEHException& exception) {
        const EXCEPTION_RECORD& record = *exception.GetExcPointers()->ExceptionRecord;
        ASSERT_EQ(record.NumberParameters, 2u);
        EXPECT_EQ(record.ExceptionInformation[0], 1u);
        EXPECT_EQ(record.ExceptionInformation[1], reinterpret_cast<ULONG_PTR>(readOnly));
    }
}

TEST(FaultGuard, StateOfTheFaultLivesAsLongAsTheException) {
    std::exception_ptr kept;
    try {
        CallTranslated(ReadNull);
    } catch (...) {
        kept = std::current_exception();
    }
    for (int i = 0; i < 10; ++i)
        CodeOf(DivideByZero); // writes over the stack that the guard used
    try {
        std::rethrow_exception(kept);
    } catch (const CSEHException& exception) {
        EXPECT_EQ(exception.GetExcPointers()->ExceptionRecord->ExceptionCode,
                  DWORD{EXCEPTION_ACCESS_VIOLATION});
        EXPECT_NE(exception.GetExcPointers()->ExceptionRecord->ExceptionAddress, nullptr);
    }
}

TEST(FaultGuard, InnermostGuardTakesTheFault) {
    unsigned inner = 0;
    const unsigned outer = CodeOf([&] {
        inner = CodeOf(ReadNull);
        DivideByZero();
    });
    EXPECT_EQ(inner, unsigned{EXCEPTION_ACCESS_VIOLATION});
    EXPECT_EQ(outer, unsigned{EXCEPTION_INT_DIVIDE_BY_ZERO});
}

TEST(FaultGuard, ExceptionOfTheInnerGuardPassesTheOuterOne) {
    EXPECT_EQ(CodeOf([] { CallTranslated(RaiseInvalidHandle); }), invalidHandle);
}

TEST(FaultGuard, FaultWhileAFaultIsHandledArrives) {
    unsigned second = 0;
    try {
        CallTranslated(ReadNull);
    } catch (const CSEHException&) {
        second = CodeOf(DivideByZero);
    }
    EXPECT_EQ(second, unsigned{EXCEPTION_INT_DIVIDE_BY_ZERO});
}

TEST(FaultGuard, LanguageExceptionsPassUntouched) {
    struct Witness {
        bool& gone;
        ~Witness() { gone = true; }
    };
    for (int i = 0; i < 100; ++i) {
        bool unwound = false;
        try {
            CallTranslated([&] {
                const Witness witness{unwound};
                throw std::runtime_error("mine");
            });
            FAIL() << "nothing thrown";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "mine");
        }
        ASSERT_TRUE(unwound);
    }
    EXPECT_EQ(CodeOf(ReadNull), unsigned{EXCEPTION_ACCESS_VIOLATION});
}

TEST(FaultGuard, FaultThatTheSystemHandlesItselfNeverArrives) {
    BOOL bad = FALSE;
    EXPECT_EQ(CodeOf([&] { bad = IsBadReadPtr(nowhere, 4); }), 0u);
    EXPECT_TRUE(bad);
}

TEST(FaultGuard, DebuggerOutputPasses) {
    const logfiles::DebuggerOutput output;
    EXPECT_EQ(CodeOf([] { OutputDebugStringA("text"); }), 0u);
    EXPECT_EQ(output.Text(), "text");
}

TEST(FaultGuard, CodesOfOtherLanguagesPass) {
    constexpr unsigned otherLanguage = 0xE06D7363;
    const LastFilter filter;
    unsigned arrived = 1;
    std::thread([&] { arrived = CodeOf([] { RaiseException(otherLanguage, 0, 0, nullptr); }); }).join();
    EXPECT_EQ(arrived, 0u);
    EXPECT_EQ(LastFilter::lastCode, otherLanguage);
}

TEST(FaultGuard, ThreadWithoutAGuardIsNotTouched) {
    const LastFilter filter;
    const unsigned here = CodeOf([] { std::thread(RaiseOutsideTheTable).join(); });
    EXPECT_EQ(here, 0u);
    EXPECT_EQ(LastFilter::lastCode, outsideTheTable);
}

TEST(FaultGuard, NothingStaysBehindAGuard) {
    CodeOf(ReadNull);
    const LastFilter filter;
    std::thread([] {
        CodeOf(ReadNull);
        RaiseOutsideTheTable();
    }).join();
    EXPECT_EQ(LastFilter::lastCode, outsideTheTable);
}

TEST(FaultGuard, ThreadsTakeTheirOwnFaults) {
    constexpr int rounds = 500;
    const auto count = [](void (*fault)(), unsigned code, std::atomic<int>& right) {
        for (int i = 0; i < rounds; ++i)
            right += CodeOf(fault) == code;
    };
    std::atomic<int> reads{0};
    std::atomic<int> divisions{0};
    std::thread first([&] { count(ReadNull, EXCEPTION_ACCESS_VIOLATION, reads); });
    std::thread second([&] { count(DivideByZero, EXCEPTION_INT_DIVIDE_BY_ZERO, divisions); });
    first.join();
    second.join();
    EXPECT_EQ(reads, rounds);
    EXPECT_EQ(divisions, rounds);
}

struct CodeCase {
    unsigned code;
    bool translated;
};

TEST(FaultGuard, TranslatesTheSystemsWarningsAndErrorsOnly) {
    constexpr CodeCase cases[] = {
        {0xC0000005, true},  {0x80000001, true},  {0xC0000420, true},  {0x20474343, false},
        {0x21474343, false}, {0x22474343, false}, {0xE06D7363, false}, {0x40010006, false},
        {0x406D1388, false}, {0, false},
    };
    for (const CodeCase& testCase : cases)
        EXPECT_EQ(IsTranslatedCode(testCase.code), testCase.translated) << std::hex << testCase.code;
}
