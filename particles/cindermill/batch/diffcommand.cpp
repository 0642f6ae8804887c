#include "particles/cindermill/batch/diffcommand.h"

#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/graph/text/effectdifference.h"

#include <cstdio>
#include <cstring>

namespace {

void AddWord(TTextBuffer& text, const TString& word)
{
    text << (word.IsEmpty() ? "nothing" : word.Print());
}

// One line for each: what happened, to what, and from what to what.
void WriteText(const TEffectDifferences& differences, TTextBuffer& text)
{
    for (int i = 0; i < differences.size(); ++i) {
        const TDifference& difference = differences[i];
        text << GetDifferenceName(difference.Kind);
        if (!difference.Key.IsEmpty())
            text << (difference.Kind == DK_RETYPED ? " type " : " node ") << difference.Key;
        if (difference.Kind == DK_ADDED || difference.Kind == DK_REMOVED)
            text << " " << difference.ClassName;
        if (!difference.What.IsEmpty())
            text << (difference.Key.IsEmpty() ? " " : ": ") << difference.What;
        if (!difference.Before.IsEmpty() || !difference.After.IsEmpty()) {
            text << ": ";
            AddWord(text, difference.Before);
            text << " -> ";
            AddWord(text, difference.After);
        }
        text << "\n";
    }
}

// Null for what is not there.
void AddMember(TTextBuffer& text, const char* name, const TString& value)
{
    text << ", \"" << name << "\": ";
    if (value.IsEmpty())
        text << "null";
    else
        text.AddJson(value.Print());
}

void WriteJson(const TEffectDifferences& differences, const char* before, const char* after,
               TTextBuffer& text)
{
    text << "{\n  \"version\": 1,\n  \"command\": \"diff\",\n  \"before\": ";
    text.AddJson(before) << ",\n  \"after\": ";
    text.AddJson(after) << ",\n  \"differences\": [";
    for (int i = 0; i < differences.size(); ++i) {
        const TDifference& difference = differences[i];
        text << (i > 0 ? "," : "") << "\n    {\"kind\": \"" << GetDifferenceName(difference.Kind) << "\"";
        AddMember(text, difference.Kind == DK_RETYPED ? "type" : "node", difference.Key);
        AddMember(text, "class", difference.ClassName);
        AddMember(text, "what", difference.What);
        AddMember(text, "from", difference.Before);
        AddMember(text, "to", difference.After);
        text << "}";
    }
    text << (differences.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

// False for a format that there is not.
bool TakeFormat(TArguments& arguments, bool& isJson)
{
    if (!arguments.TakeIf("--format"))
        return true;
    isJson = arguments.TakeIf("json");
    return isJson || arguments.TakeIf("text");
}

} // namespace

TDiffCommand::TDiffCommand() : TBatchCommand("diff", "BEFORE AFTER [--format text|json]") {}

// The status is that of other programs which compare: 1 where there is a difference.
int TDiffCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    bool isJson = false;
    const bool isFormat = TakeFormat(arguments, isJson);
    const char* before = arguments.Take();
    const char* after = arguments.Take();
    if (!isFormat || after == nullptr || !TakeFormat(arguments, isJson) || !arguments.IsEmpty())
        return ReportUsage("diff takes two files");
    TDocument first(session.GetApp());
    TDocument second(session.GetApp());
    if (!session.LoadFile(first, before) || !session.LoadFile(second, after))
        return StatusErrors;
    const TEffectText firstText(*first.GetGraph());
    const TEffectText secondText(*second.GetGraph());
    const TEffectDifferences differences(firstText, secondText);
    TTextBuffer text;
    if (isJson)
        WriteJson(differences, before, after, text);
    else
        WriteText(differences, text);
    std::fputs(text.Print(), stdout);
    return differences.empty() ? StatusDone : StatusErrors;
}
