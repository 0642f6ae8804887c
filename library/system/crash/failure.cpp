#include "library/system/crash/failure.h"

#include <algorithm>

namespace {

// In the order of the kinds.
constexpr const char* KindNames[] = {"an Unknown exception type", "an Access Violation",
                                     "a Stack Overflow",          "an In Page Error",
                                     "a Datatype Misalignment",   "a No Memory",
                                     "a Array Bounds Exceeded",   "a Breakpoint",
                                     "an Illegal Instruction",    "a Float Divide by Zero",
                                     "a Float Inexact Result",    "a Float Invalid Operation",
                                     "a Float Overflow",          "a Float Underflow",
                                     "an Integer Divide by Zero", "an Integer Overflow"};
static_assert(sizeof(KindNames) / sizeof(KindNames[0]) == NumFailureKinds);

TFailureKind GetArithmeticKind(int code)
{
    switch (code) {
    case FPE_INTDIV:
        return FK_INTEGERDIVIDE;
    case FPE_INTOVF:
        return FK_INTEGEROVERFLOW;
    case FPE_FLTDIV:
        return FK_FLOATDIVIDE;
    case FPE_FLTOVF:
        return FK_FLOATOVERFLOW;
    case FPE_FLTUND:
        return FK_FLOATUNDERFLOW;
    case FPE_FLTRES:
        return FK_FLOATINEXACT;
    case FPE_FLTINV:
        return FK_FLOATINVALID;
    case FPE_FLTSUB:
        return FK_ARRAYBOUNDS;
    default:
        return FK_UNKNOWN;
    }
}

} // namespace

const char* GetFailureName(TFailureKind kind)
{
    return KindNames[kind];
}

TFailureKind GetFailureKind(const siginfo_t& info)
{
    switch (info.si_signo) {
    case SIGSEGV:
        return FK_ACCESSVIOLATION;
    case SIGBUS:
        return info.si_code == BUS_ADRALN ? FK_MISALIGNMENT : FK_INPAGEERROR;
    case SIGILL:
        return FK_ILLEGALINSTRUCTION;
    case SIGTRAP:
        return FK_BREAKPOINT;
    case SIGFPE:
        return GetArithmeticKind(info.si_code);
    default:
        return FK_UNKNOWN;
    }
}

// The access went below the stack while the pointer stood at its lower end or below. A pointer into nowhere
// that happens to be near a stack that is hardly used is no overflow.
bool IsStackOverflow(const TFailure& failure, const TMemoryMap& map)
{
    constexpr uintptr_t Beside = 64 * 1024;
    if (!failure.HasAccess)
        return false;
    const uintptr_t pointer = failure.Thread.GetStackPointer();
    const TMapping* stack = map.FindStack(pointer);
    return stack != nullptr && pointer < stack->Begin + Beside && failure.Access.Address < stack->Begin &&
           failure.Access.Address >= std::max(pointer, Beside) - Beside;
}
