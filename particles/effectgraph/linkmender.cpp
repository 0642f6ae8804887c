#include "particles/effectgraph/linkmender.h"

#include "particles/effectgraph/error.h"
#include "particles/effectgraph/nodetypelibrary.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/xmltext.h"

// Part of a name that a line quotes.
constexpr int NameLimit = 100;

namespace {

constexpr const char* Input = "input";
constexpr const char* Output = "output";

// The library's input of that name, if it is a polytype too.
const TNodePolytypeParameter* FindPolytype(const TNodeTypeLibrary& library, const TNodeType& type,
                                           const TString& name)
{
    const TNodeType* wanted = library.FindType(type.Name);
    const int at = wanted != nullptr ? wanted->FindInput(name) : -1;
    if (at == -1 || wanted->GetBasicInputType(at) != TY_POLYTYPE)
        return nullptr;
    return static_cast<const TNodePolytypeParameter*>(wanted->GetInput(at));
}

TString GetLinkedInput(const TNodeType& type, int input)
{
    return input != -1 ? type.GetInput(input)->Name : TString();
}

TString GetLinkedOutput(const TNodeType& type, int output)
{
    return output != -1 ? type.GetOutput(output).Name : TString();
}

bool IsPort(int port, int count)
{
    return port >= -1 && port < count;
}

} // namespace

void TLinkMender::Tell(const TNodeType& type, const TString& port, const char* kind, const TString& followed)
{
    TString now("none");
    if (!followed.IsEmpty())
        now.Format("\"%s\"", QuoteText(followed, NameLimit).Print());
    Told.SetSource(&type, -1);
    Told.Add(new TError("Node \"%s\": \"%s\" follows an %s that does not exist; it follows %s now",
                        QuoteText(type.Name, NameLimit).Print(), QuoteText(port, NameLimit).Print(), kind,
                        now.Print()));
}

void TLinkMender::MendInput(const TNodeType& type, TNodePolytypeParameter& input)
{
    if (!input.GetLinkInput().IsEmpty() && type.FindInput(input.GetLinkInput()) == -1) {
        const TNodePolytypeParameter* wanted = FindPolytype(Library, type, input.Name);
        const bool helps = wanted != nullptr && type.FindInput(wanted->GetLinkInput()) != -1;
        input.SetLinkInput(helps ? wanted->GetLinkInput() : TString());
        Tell(type, input.Name, Input, input.GetLinkInput());
    }
    if (!input.GetLinkOutput().IsEmpty() && type.FindOutput(input.GetLinkOutput()) == -1) {
        const TNodePolytypeParameter* wanted = FindPolytype(Library, type, input.Name);
        const bool helps = wanted != nullptr && type.FindOutput(wanted->GetLinkOutput()) != -1;
        input.SetLinkOutput(helps ? wanted->GetLinkOutput() : TString());
        Tell(type, input.Name, Output, input.GetLinkOutput());
    }
}

void TLinkMender::MendOutput(const TNodeType& type, TOutputPort& output)
{
    const TNodeType* wanted = Library.FindType(type.Name);
    const int at = wanted != nullptr ? wanted->FindOutput(output.Name) : -1;
    if (!IsPort(output.LinkInput, type.GetNumInputs())) {
        const TString name = at != -1 ? GetLinkedInput(*wanted, wanted->GetOutput(at).LinkInput) : TString();
        output.LinkInput = name.IsEmpty() ? -1 : type.FindInput(name);
        Tell(type, output.Name, Input, GetLinkedInput(type, output.LinkInput));
    }
    if (!IsPort(output.LinkOutput, type.GetNumOutputs())) {
        const TString name =
            at != -1 ? GetLinkedOutput(*wanted, wanted->GetOutput(at).LinkOutput) : TString();
        output.LinkOutput = name.IsEmpty() ? -1 : type.FindOutput(name);
        Tell(type, output.Name, Output, GetLinkedOutput(type, output.LinkOutput));
    }
}

void TLinkMender::MendRamp(const TNodeType& type, TNodeRampParameter& ramp)
{
    if (!ramp.FreeLostLocks())
        return;
    Told.SetSource(&type, -1);
    Told.Add(new TError("Node \"%s\": \"%s\" has a curve locked to one that does not exist; it is free now",
                        QuoteText(type.Name, NameLimit).Print(), QuoteText(ramp.Name, NameLimit).Print()));
}
