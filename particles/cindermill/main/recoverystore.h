#pragma once

#include "library/containers/ownerlist.h"
#include "library/system/lockedfolder.h"
#include "particles/cindermill/main/recoveryfile.h"

// A recovery file of a program that has ended.
struct TLostEffect
{
    // Where it lies.
    TString File;
    TRecoveryNote Note;
    // The artist's own file was written later than this one.
    bool IsOlder = false;
};

// A recovery file that cannot be used.
struct TDamagedEffect
{
    // Where it lies now: put aside, so that nobody is asked about it again.
    TString File;
    TString Fault;
    // The system did not let it be read. It may be whole, and lies where it lay.
    bool IsUnread = false;
};

// Where recovery files lie. Each process that runs has a folder of its own in the store; those of processes
// that have ended can be taken over, by one process only, which has them until it gives them up or ends.
class TRecoveryStore
{
public:
    // How long files stay that were put aside.
    static constexpr int64_t DamagedSeconds = 30 * 24 * 3600;

    ~TRecoveryStore() { Close(); }

    void Open(const char* folder);
    bool IsOpen() const { return !Root.IsEmpty(); }
    // Whether the file's folder is still there: who cleans up may have taken it away.
    static bool CanHold(const char* file);
    // A new name for a recovery file of the document. False, with errno, if there can be none.
    bool MakeName(const char* documentPath, TString& file);
    // Takes the folders over that nobody has. What is in them and is no recovery file goes.
    void FindLost(vector<TLostEffect>& lost, vector<TDamagedEffect>& damaged);
    // Puts a recovery file aside that turned out to be damaged.
    void SetAside(const char* file, TDamagedEffect& damaged) const;
    // Leaves what was taken over for the next start.
    void GiveUpLost();
    // Takes the folders away that hold nothing any more; the others are left for the next start.
    void Close();

private:
    void TakeOver(TLockedFolder& folder, vector<TLostEffect>& lost, vector<TDamagedEffect>& damaged) const;
    void RemoveOldDamaged() const;
    TString GetDamagedFolder() const;

    TString Root;
    TLockedFolder Own;
    TOwnerList<TLockedFolder> Taken;
    int NumNames = 0;
};
