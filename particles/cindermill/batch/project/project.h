#pragma once

#include "particles/cindermill/batch/findings/findingreport.h"

#include <cstdint>

class TErrorList;

// What an effect may take of the console.
enum TBudget
{
    // Of one group: rows of the working set, buffers, kilobytes, bytes of a particle's record.
    BG_ROWS,
    BG_INPUTBUFFERS,
    BG_OUTPUTBUFFERS,
    BG_PROGRAMKB,
    BG_WORKSPACEKB,
    BG_PARTICLEBYTES,
    // Of the whole effect.
    BG_FILEBYTES,
    BG_PARTICLES,
    BG_NUMBUDGETS
};

// The key of a budget in the project file: "rows".
const char* GetBudgetName(TBudget budget);

struct TProjectPolicies
{
    bool FailurePreventsExport = false;
    bool MustHaveBoundingBox = false;
    bool NoMixedBoundingBoxes = false;
};

// What a team agrees on for all its effects, as its project file tells it. Without a file nothing is limited,
// allowed or judged otherwise than usual.
class TProject : public TFindingJudge
{
public:
    static constexpr int64_t NoLimit = -1;

    // Errors name the file and the line; the project is of no use then.
    bool Load(const char* path, TErrorList& errors);
    bool IsLoaded() const { return !Path.IsEmpty(); }
    // As it was given.
    const TString& GetPath() const { return Path; }

    const TProjectPolicies& GetPolicies() const { return Policies; }
    // NoLimit where the project gives none.
    int64_t GetLimit(TBudget budget) const { return Limits[budget]; }
    // Where the file's own folder is not named, empty for none.
    const TString& GetNodeTypes() const { return NodeTypes; }
    const TString& GetResources() const { return Resources; }

    // What the project says of such findings, or the usual.
    TFindingSeverity GetSeverity(const char* id, TFindingSeverity usual) const;
    // Gives the finding the severity that the project has for it, and the reason where it allows it.
    void Judge(TFinding& finding) const override;

private:
    friend class TProjectReader;

    struct TSeverity
    {
        TString Id;
        TFindingSeverity Severity;
    };
    // A finding that is known and stays. Without a node it is one of the whole file.
    struct TAllowance
    {
        TString Id;
        TString File;
        TString Node;
        int Group = -1;
        bool HasPlace = false;
        float X = 0.0f;
        float Y = 0.0f;
        TString Reason;
    };
    static bool Covers(const TAllowance& allowance, const TFinding& finding);

    TString Path;
    TProjectPolicies Policies;
    int64_t Limits[BG_NUMBUDGETS] = {NoLimit, NoLimit, NoLimit, NoLimit, NoLimit, NoLimit, NoLimit, NoLimit};
    vector<TSeverity> Severities;
    vector<TAllowance> Allowances;
    TString NodeTypes;
    TString Resources;
};
