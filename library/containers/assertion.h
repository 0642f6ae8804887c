#pragma once

// Assertions. They are compiled into every build: what cannot happen stops the program where it happens.
//
// A failure that an artist's graph can provoke must not end the program. Whoever runs such work calls it
// through RunGuarded: inside, a failed assertion shows nothing, unwinds to the guard and comes back as its
// text. Code that can be unwound so must own what it holds through objects, never through bare pointers.

// Ends the failing code: reports the text, calls the hook, traps. Inside a guard it unwinds instead.
[[noreturn]] void AssertFail(const char* expr, const char* file, unsigned line);

// The same with "expr : message" as the expression.
[[noreturn]] void AssertFailMsg(const char* expr, const char* message, const char* file, unsigned line);

// The expression's own spelling is the text. Use it where the formatter cannot change that spelling.
#define ASSERT(cond) ((cond) ? (void)0 : AssertFail(#cond, __FILE__, __LINE__))

// The spelling, then an explanation that may be made with TempFormat.
#define ASSERT_MSG(cond, message) ((cond) ? (void)0 : AssertFailMsg(#cond, message, __FILE__, __LINE__))

// A text fixed apart from the condition. These texts are an interface: an artist reads them in the list of
// errors and sends them on, whoever gets them searches for them, and the tests hold them. So a text stays
// letter for letter when the code beside it changes, and may then spell code that there is no more: vector.h
// asserts "newval != 0" though nothing there is called newval.
#define ASSERT_TEXT(cond, text) ((cond) ? (void)0 : AssertFail(text, __FILE__, __LINE__))

// A fixed text with an explanation made at run time; the text shown is "text : message".
#define ASSERT_TEXT_MSG(cond, text, message)                                                                 \
    ((cond) ? (void)0 : AssertFailMsg(text, message, __FILE__, __LINE__))

// Called after a failure was reported and before the trap. May throw; must not return to go on.
using TAssertHook = void (*)(const char* expr, const char* file, unsigned line);
void SetAssertHook(TAssertHook hook);

// Hears of a failure before anything is shown, with the text that will be: showing it runs what may be
// broken.
using TAssertReport = void (*)(const char* text);
void SetAssertReport(TAssertReport report);

// Shows the failure to a person when the window system is up; without one the text goes to standard output.
using TAssertBox = void (*)(const char* title, const char* text);
void SetAssertBox(TAssertBox box);

class TString;

// What a failed assertion throws under a guard: the expression's text.
class TAssertionFailure
{
public:
    explicit TAssertionFailure(const char* expr);
    const char* GetText() const { return Text; }

private:
    char Text[256];
};

// Marks the calling thread as guarded for its lifetime. Guards nest.
class TAssertGuard
{
public:
    TAssertGuard();
    ~TAssertGuard();
    TAssertGuard(const TAssertGuard&) = delete;
    TAssertGuard& operator=(const TAssertGuard&) = delete;
    static bool IsActive();
};

// Puts the guards of the calling thread out of force for its lifetime: around a loop of the window system
// that runs inside guarded work, which nothing may unwind.
class TAssertPause
{
public:
    TAssertPause();
    ~TAssertPause();
    TAssertPause(const TAssertPause&) = delete;
    TAssertPause& operator=(const TAssertPause&) = delete;

private:
    int Depth;
};

// True while an assertion is unwinding: destructors must then clean up without asserting.
bool IsAssertUnwinding();

void StoreGuardText(TString& result, const char* text);

// Runs the work; false with the assertion's text when one failed.
template <class TWork>
bool RunGuarded(TWork&& work, TString& text)
{
    try {
        TAssertGuard guard;
        work();
        return true;
    } catch (const TAssertionFailure& failure) {
        StoreGuardText(text, failure.GetText());
        return false;
    }
}
