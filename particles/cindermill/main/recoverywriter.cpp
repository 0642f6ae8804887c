#include "particles/cindermill/main/recoverywriter.h"

#include "library/system/file.h"
#include "library/system/statefolder.h"

// A file that comes or goes again makes what was to be written before it pointless.
void TRecoveryWriter::Add(TJob* job)
{
    {
        const TLock lock(Section);
        for (int i = Jobs.size() - 1; i >= 0; --i)
            if (Jobs[i]->File == job->File)
                Jobs.erase(i);
        Jobs.push_back(job);
        if (IsWorking)
            return;
        IsWorking = true;
    }
    Thread.Join();
    Done.Reset(new TEvent);
    if (!Thread.Start(&TRecoveryWriter::Work, this))
        Work(this);
}

void TRecoveryWriter::Write(const char* file, vector<uint8_t>& effect, const TRecoveryNote& note)
{
    TJob* job = new TJob;
    job->File = file;
    job->Effect.swap(effect);
    job->Note = note;
    Add(job);
}

void TRecoveryWriter::Remove(const char* file)
{
    TJob* job = new TJob;
    job->File = file;
    job->IsRemoval = true;
    Add(job);
}

// Null, with the end of the work, where there is nothing left to do.
TRecoveryWriter::TJob* TRecoveryWriter::TakeJob()
{
    const TLock lock(Section);
    if (!Jobs.empty())
        return Jobs.Release(0);
    IsWorking = false;
    return nullptr;
}

void TRecoveryWriter::Work(void* writer)
{
    TRecoveryWriter& self = *static_cast<TRecoveryWriter*>(writer);
    TEvent& done = *self.Done;
    while (TJob* taken = self.TakeJob()) {
        const TOwner<TJob> job(taken);
        TOutcome outcome;
        outcome.File = job->File;
        Do(*job, outcome.Fault);
        if (job->IsRemoval)
            continue;
        const TLock lock(self.Section);
        self.Outcomes.push_back(outcome);
    }
    done.Set();
}

void TRecoveryWriter::Do(TJob& job, TString& fault)
{
    if (job.IsRemoval) {
        RemoveFile(job.File);
        return;
    }
    AddRecoveryNote(job.Effect, job.Note);
    TFile file;
    bool written = file.OpenWrite(job.File);
    if (written) {
        written = file.Write(job.Effect.data(), job.Effect.size());
        written = file.Close() && written;
    }
    if (!written)
        fault = file.GetFault();
}

void TRecoveryWriter::Finish()
{
    Thread.Join();
}

bool TRecoveryWriter::Finish(int milliseconds)
{
    return Done == nullptr || Done->Wait(milliseconds);
}

bool TRecoveryWriter::TakeOutcome(TOutcome& outcome)
{
    const TLock lock(Section);
    if (Outcomes.empty())
        return false;
    outcome = Outcomes[0];
    Outcomes.erase(Outcomes.begin());
    return true;
}
