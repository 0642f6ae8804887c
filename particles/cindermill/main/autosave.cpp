#include "particles/cindermill/main/autosave.h"

#include "library/system/clock.h"
#include "library/system/message.h"
#include "library/system/systemerror.h"
#include "particles/cindermill/main/document.h"

#include <errno.h>

void TAutosave::Start(const char* folder)
{
    Store.Open(folder);
}

TAutosave::TEntry& TAutosave::GetEntry(const TDocument& document)
{
    for (TEntry* entry : Entries)
        if (entry->Document == &document)
            return *entry;
    TEntry* entry = new TEntry;
    entry->Document = &document;
    Entries.push_back(entry);
    return *entry;
}

bool TAutosave::IsChanged(const TEntry& entry)
{
    return !entry.Fault.IsEmpty() || entry.Document->GetNumEdits() != entry.Edits;
}

void TAutosave::OnIdle(const vector<TDocument*>& documents)
{
    if (!Store.IsOpen())
        return;
    SaveDue(documents);
    TellFaults();
}

void TAutosave::SaveDue(const vector<TDocument*>& documents)
{
    if (!Store.IsOpen())
        return;
    SettleOutcomes();
    const uint32_t now = GetTickCount();
    for (TDocument* document : documents) {
        TEntry& entry = GetEntry(*document);
        if (!IsChanged(entry)) {
            entry.IsWaiting = false;
        } else if (!entry.IsWaiting) {
            entry.IsWaiting = true;
            entry.Since = now;
        } else if (now - entry.Since >= Interval && !document->IsInStep()) {
            Save(*document, entry);
            entry.IsWaiting = false;
            return;
        }
    }
}

void TAutosave::SaveModified(const vector<TDocument*>& documents)
{
    if (!Store.IsOpen())
        return;
    // What could not be written is still to be written.
    SettleOutcomes();
    for (TDocument* document : documents) {
        TEntry& entry = GetEntry(*document);
        if (IsChanged(entry) && !document->IsInStep())
            Save(*document, entry);
    }
}

// A document whose changes were all undone is what its own file holds.
void TAutosave::Save(TDocument& document, TEntry& entry)
{
    entry.Edits = document.GetNumEdits();
    entry.Fault = nullptr;
    if (!document.IsModified()) {
        Drop(entry);
        return;
    }
    TRecoveryNote note;
    note.Path = document.GetPath();
    note.Time = GetWallTime();
    document.GetStamp().GetContent(note.FileSize, note.FileHash);
    document.GetFormerStates(note.Former);
    vector<uint8_t> effect;
    if (!TRecoveryStore::CanHold(entry.File))
        entry.File = nullptr;
    if (entry.File.IsEmpty() && !Store.MakeName(note.Path, entry.File))
        entry.Fault = GetSystemErrorText(errno);
    else if (!document.GetImage(effect, GetRecoveryNoteSize(note)))
        entry.Fault = "It cannot be written as it is";
    else
        Writer.Write(entry.File, effect, note);
}

void TAutosave::Drop(TEntry& entry)
{
    if (!entry.File.IsEmpty())
        Writer.Remove(entry.File);
    entry.File = nullptr;
}

void TAutosave::OnSaved(const TDocument& document)
{
    if (!Store.IsOpen())
        return;
    TEntry& entry = GetEntry(document);
    Drop(entry);
    entry.Edits = document.GetNumEdits();
    entry.Fault = nullptr;
    entry.IsFaultTold = entry.IsWaiting = false;
}

void TAutosave::OnClosed(const TDocument& document)
{
    for (int i = 0; i < Entries.size(); ++i) {
        if (Entries[i]->Document != &document)
            continue;
        Drop(*Entries[i]);
        Entries.erase(i);
        return;
    }
}

void TAutosave::OnRestored(const TDocument& document, const char* file)
{
    TEntry& entry = GetEntry(document);
    entry.File = file;
    entry.Edits = document.GetNumEdits();
}

void TAutosave::WaitForDisc()
{
    Writer.Finish();
    SettleOutcomes();
    for (const TEntry* entry : Entries)
        if (!entry->Fault.IsEmpty())
            DebugPrintf("%s could not be autosaved: %s\n", GetEffectName(entry->Document->GetPath()).Print(),
                        entry->Fault.Print());
}

void TAutosave::End()
{
    for (TEntry* entry : Entries)
        Drop(*entry);
    Entries.clear();
    Writer.Finish();
    Store.Close();
}

void TAutosave::SettleOutcomes()
{
    TRecoveryWriter::TOutcome outcome;
    while (Writer.TakeOutcome(outcome))
        for (TEntry* entry : Entries) {
            if (!(entry->File == outcome.File))
                continue;
            entry->Fault = outcome.Fault;
            entry->IsFaultTold = entry->IsFaultTold && !outcome.Fault.IsEmpty();
        }
}

// Once until it works again: an artist who knows can do without it being said every two minutes. The message
// runs the loop, and must find nothing half done.
void TAutosave::TellFaults()
{
    for (TEntry* entry : Entries) {
        if (entry->Fault.IsEmpty() || entry->IsFaultTold)
            continue;
        entry->IsFaultTold = true;
        const TString name = GetEffectName(entry->Document->GetPath());
        const TString fault = entry->Fault;
        ShowMessage("%s could not be autosaved: %s. It is tried again every two minutes.", name.Print(),
                    fault.Print());
        return;
    }
}
