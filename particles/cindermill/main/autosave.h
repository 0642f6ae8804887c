#pragma once

#include "particles/cindermill/main/recoverystore.h"
#include "particles/cindermill/main/recoverywriter.h"

class TDocument;

// Keeps a recovery file of each document that has changes which its own file does not have. It goes when the
// document is saved or closed on purpose; what is left of it when the process has ended is found at the next
// start.
class TAutosave
{
public:
    // How long a change may be in no file, in milliseconds.
    static constexpr uint32_t Interval = 120000;

    // Until then nothing is written.
    void Start(const char* folder);
    TRecoveryStore& GetStore() { return Store; }

    // At a moment when nobody is in the middle of anything. May show a message.
    void OnIdle(const vector<TDocument*>& documents);
    // The same while a dialog or a menu waits: nothing is shown. Of several documents that are due one is
    // saved, so that nobody waits for them all.
    void SaveDue(const vector<TDocument*>& documents);
    // All modified documents but those in the middle of a step; returns while the disc still writes.
    void SaveModified(const vector<TDocument*>& documents);
    // Waits for the disc, for so many milliseconds at the most, or until it is done. Failures go to the log.
    bool WaitForDisc(int milliseconds) { return Writer.Finish(milliseconds); }
    void WaitForDisc();
    // The document was written to its own file.
    void OnSaved(const TDocument& document);
    // The document goes, and what it holds is not wanted any more.
    void OnClosed(const TDocument& document);
    // The document came from the recovery file.
    void OnRestored(const TDocument& document, const char* file);
    // The program ends as its user wants it, and needs none of the files.
    void End();

private:
    struct TEntry
    {
        const TDocument* Document = nullptr;
        // The recovery file's name, once there is one.
        TString File;
        // The document's count of edits when it was last written anywhere.
        unsigned Edits = 0;
        // Why the last attempt failed; empty if it did not.
        TString Fault;
        bool IsFaultTold = false;
        bool IsWaiting = false;
        // The first change that is in no file.
        uint32_t Since = 0;
    };

    TEntry& GetEntry(const TDocument& document);
    static bool IsChanged(const TEntry& entry);
    void Save(TDocument& document, TEntry& entry);
    void Drop(TEntry& entry);
    void SettleOutcomes();
    void TellFaults();

    TRecoveryStore Store;
    // Dies before the store, whose folder it writes to.
    TRecoveryWriter Writer;
    TOwnerList<TEntry> Entries;
};
