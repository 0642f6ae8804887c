#pragma once

#include "library/containers/ownerlist.h"
#include "library/system/thread.h"
#include "particles/cindermill/main/recoveryfile.h"

// Writes and removes recovery files in the order in which it is told, on a thread of its own: what the disc
// takes its time for holds nobody up.
class TRecoveryWriter
{
public:
    // How a write ended.
    struct TOutcome
    {
        TString File;
        // Why there is no new file; empty if it is on the disc.
        TString Fault;
    };

    TRecoveryWriter() = default;
    ~TRecoveryWriter() { Finish(); }

    // Takes the bytes of an effect file. The old file stays until the new one is whole.
    void Write(const char* file, vector<uint8_t>& effect, const TRecoveryNote& note);
    // Also what is still to be written under the name.
    void Remove(const char* file);
    // Waits until all is done.
    void Finish();
    // The same for so many milliseconds at the most.
    bool Finish(int milliseconds);
    // Of the writes that have ended, the first that nobody has taken yet.
    bool TakeOutcome(TOutcome& outcome);

private:
    struct TJob
    {
        TString File;
        bool IsRemoval = false;
        vector<uint8_t> Effect;
        TRecoveryNote Note;
    };

    void Add(TJob* job);
    static void Work(void* writer);
    TJob* TakeJob();
    static void Do(TJob& job, TString& fault);

    // Guards what stands below it.
    TCriticalSection Section;
    TOwnerList<TJob> Jobs;
    vector<TOutcome> Outcomes;
    bool IsWorking = false;

    // Of the work that runs, or ran last.
    TOwner<TEvent> Done;
    TThread Thread;
};
