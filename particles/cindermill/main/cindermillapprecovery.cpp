// Effects that a program left autosaved when it ended: the question about them, and their way back.

#include "library/system/clock.h"
#include "library/system/message.h"
#include "library/system/path.h"
#include "library/system/statefolder.h"
#include "particles/cindermill/main/apphost.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

namespace {

// The time stands first, so that the paths stand below each other.
TString GetLine(const TLostEffect& effect)
{
    TString line;
    FormatLocalTime(effect.Note.Time, line);
    line += "   ";
    line += GetEffectName(effect.Note.Path);
    if (effect.IsOlder)
        line += "   (the file was written later)";
    return line;
}

} // namespace

void TCindermillApp::StartAutosave(const char* folder)
{
    Autosave.Start(folder);
    TRecoveryStore& store = Autosave.GetStore();
    vector<TLostEffect> lost;
    vector<TDamagedEffect> damaged;
    store.FindLost(lost, damaged);
    for (const TDamagedEffect& effect : damaged)
        TellDamaged(effect);
    if (lost.empty())
        return;
    vector<TString> lines;
    for (const TLostEffect& effect : lost)
        lines.push_back(GetLine(effect));
    switch (Host->AskRecovery(lines)) {
    case RA_RESTORE:
        Restore(lost);
        return;
    case RA_DISCARD:
        for (const TLostEffect& effect : lost)
            RemoveFile(effect.File);
        break;
    case RA_LATER:
        break;
    }
    store.GiveUpLost();
}

// The files go on as those of the documents, in folders that are this program's now.
void TCindermillApp::Restore(const vector<TLostEffect>& lost)
{
    for (const TLostEffect& effect : lost) {
        TString fault;
        TDocument* document = MakeDocument(effect.Note.Path.Print(), &effect, fault);
        if (document != nullptr) {
            // What was written to it since, by whomever, must not go without a question.
            if (effect.Note.FileSize >= 0)
                document->SetStamp(effect.Note.FileSize, effect.Note.FileHash);
        } else if (!fault.IsEmpty()) {
            TDamagedEffect damaged;
            damaged.Fault = fault;
            Autosave.GetStore().SetAside(effect.File, damaged);
            TellDamaged(damaged);
        }
    }
}

void TCindermillApp::TellDamaged(const TDamagedEffect& damaged)
{
    if (damaged.IsUnread)
        ShowMessage(
            "An autosaved effect cannot be read: %s. It stays as %s, and is looked for at the next start.",
            damaged.Fault.Print(), GetShownPath(damaged.File).Print());
    else
        ShowMessage("An autosaved effect is damaged and cannot be restored: %s. It is kept as %s.",
                    damaged.Fault.Print(), GetShownPath(damaged.File).Print());
}

void TCindermillApp::OnEnding()
{
    Autosave.SaveModified(Documents);
    Autosave.WaitForDisc();
}

// What was typed and not entered is work, too.
void TCindermillApp::EndUnasked()
{
    if (Host != nullptr)
        Host->EndInput();
    OnEnding();
}
