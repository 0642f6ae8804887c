#pragma once

#include "particles/cindermill/batch/arguments.h"
#include "particles/cindermill/batch/findings/findingreport.h"

class TBatchSession;

// The words of a command that tells findings: the options that all such commands have, those of its own, and
// the names of files. Options and names may stand in any order; behind "--" all are names.
class TFindingArguments
{
public:
    // An option of the command's own: a switch, or one with a word behind it.
    struct TOwnWord
    {
        const char* Word;
        bool* Switch;
        TString* Value;
    };

    explicit TFindingArguments(const char* command) : Command(command) {}
    void AddSwitch(const char* word, bool& value) { Own.push_back(TOwnWord{word, &value, nullptr}); }
    void AddValue(const char* word, TString& value) { Own.push_back(TOwnWord{word, nullptr, &value}); }

    // False with a sentence that tells what is wrong.
    bool Read(TArguments& arguments, TString& fault);
    bool IsText() const { return Format == FF_TEXT; }
    bool HasFailOn() const { return FailOnGiven; }
    const vector<TString>& GetNames() const { return Names; }
    // The effects that the names stand for, as ExpandEffectPaths has it.
    void GetFiles(vector<TString>& files) const;
    // Whether what is told of a file must name it: there are other files, or the one was not named itself.
    bool IsOfSeveral(const vector<TString>& files) const
    {
        return files.size() != 1 || files[0].Compare(Names[0], true) != 0;
    }
    void Prepare(TFindingReport& report, const TBatchSession& session) const;
    // Whether there are a sound project, if any, and the node types that the session's HasNodeTypes asks for.
    // What is wrong is told in the format that was asked for.
    bool CheckSetup(TBatchSession& session, bool areTypesNeeded = false) const;

private:
    bool TakeOption(const char* word, TArguments& arguments, TString& fault);
    bool TakeOwn(const char* word, TArguments& arguments, TString& fault);
    void TellSetup(const TBatchSession& session) const;

    const char* const Command;
    vector<TOwnWord> Own;
    vector<TString> Names;
    TFindingFormat Format = FF_TEXT;
    TFindingSeverity FailOn = FS_WARNING;
    bool FailOnGiven = false;
};

// What is wrong with the node types, where something is: told as text, and findings of their directory.
void TellNodeTypes(TBatchSession& session, TFindingReport& report);
// The same as findings alone, with the directory as a file that was looked at.
void AddNodeTypeFindings(const TBatchSession& session, TFindingReport& report);
