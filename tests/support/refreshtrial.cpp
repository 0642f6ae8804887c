#include "support/refreshtrial.h"
#include "support/randomgraph.h"
#include "support/testresources.h"

#include "library/system/message.h"
#include "particles/cindermill/main/settingsstore.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/simpleparameters.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>

namespace {

using TParameters = vector<TNodeParameter*>;

// Answers the questions of a trial and keeps the messages.
class TForms
{
public:
    explicit TForms(bool answer)
    {
        Answer = answer;
        Questions.clear();
        Messages.clear();
        SetMessageForms([](const char* text) { Messages.push_back(text); },
                        [](const char* text) {
                            Questions.push_back(text);
                            return Answer;
                        });
    }
    ~TForms() { SetMessageForms(nullptr, nullptr); }
    TForms(const TForms&) = delete;
    TForms& operator=(const TForms&) = delete;

    static bool Answer;
    static std::vector<std::string> Questions;
    static std::vector<std::string> Messages;
};

bool TForms::Answer = false;
std::vector<std::string> TForms::Questions;
std::vector<std::string> TForms::Messages;

std::string RefreshQuestion(int stale)
{
    return std::to_string(stale) + " node types need refreshing. Refresh now?";
}

std::string BytesOf(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

// One run of the program over the changed files.
std::unique_ptr<TCindermillApp> StartApp(const std::string& folder)
{
    const std::string settings = folder + "/settings.ini";
    auto app = std::make_unique<TCindermillApp>(OpenSettingsFile(settings.c_str()));
    if (!app->InitHeadless())
        return nullptr;
    app->GetResourceLocator().AddSearchDirectory((folder + "/resources").c_str());
    // A type that cannot be read is missing; that, too, happens to libraries.
    TErrorList errors;
    app->LoadNodeTypes((folder + "/types").c_str(), errors);
    return app;
}

std::string Join(const float* values, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i) {
        char number[32];
        std::snprintf(number, sizeof(number), " %a", static_cast<double>(values[i]));
        text += number;
    }
    return text;
}

std::string ValueOf(const TNodeParameter& parameter)
{
    switch (parameter.Type) {
    case PK_BOOL:
        return static_cast<const TNodeBoolParameter&>(parameter).Get() ? "true" : "false";
    case PK_INT:
        return std::to_string(static_cast<const TNodeIntParameter&>(parameter).Get());
    case PK_TEXTURE:
        return static_cast<const TNodeTextureParameter&>(parameter).GetFileName().Print();
    case PK_GROUP:
        return static_cast<const TNodeGroupParameter&>(parameter).Get() ? "open" : "closed";
    case PK_ANIMATION: {
        const auto& animation = static_cast<const TNodeAnimationParameter&>(parameter);
        return std::string(animation.GetFileName().Print()) + (animation.UsesPosition() ? " p" : "") +
               (animation.UsesRotation() ? " r" : "") + (animation.UsesScale() ? " s" : "");
    }
    default: {
        float values[MaxValueFloats] = {};
        parameter.GetValue(values);
        return Join(values, GetTypeFloats(parameter.Type));
    }
    }
}

std::string CurveOf(const TNodeRampParameter& ramp, int dimension)
{
    std::string text;
    for (const TRampPoint& point : ramp.GetCurve(dimension)) {
        const float values[] = {point.X, point.Y};
        text += Join(values, 2);
    }
    return text;
}

// The entry of the name and the number, or of one of them; positions are the library's to tell.
bool IsEnumKept(const TNodeEnumParameter& before, const TNodeEnumParameter& after)
{
    if (before.GetIndex() >= before.GetValues().size() || after.GetValues().empty())
        return true;
    const TNodeEnumParameter::TEntry& chosen = before.GetValues()[before.GetIndex()];
    // How much an entry is the chosen one: both, one of the two, or none.
    const auto likeness = [&](const TNodeEnumParameter::TEntry& entry) {
        return (entry.Name.Compare(chosen.Name) == 0 ? 1 : 0) + (entry.Number == chosen.Number ? 1 : 0);
    };
    int best = 0;
    for (const TNodeEnumParameter::TEntry& entry : after.GetValues())
        best = std::max(best, likeness(entry));
    return likeness(after.GetValues()[after.GetIndex()]) == best;
}

bool IsPolytypeKept(const TNodePolytypeParameter& before, const TNodePolytypeParameter& after)
{
    for (int type = 0; type < TY_POLYTYPE; ++type)
        if (before.IsTypeValid(type) && after.IsTypeValid(type) &&
            ValueOf(*before.GetValueParameter(type)) != ValueOf(*after.GetValueParameter(type)))
            return false;
    return !after.IsTypeValid(before.GetDefaultType()) || after.GetDefaultType() == before.GetDefaultType();
}

bool IsRampKept(const TNodeRampParameter& before, const TNodeRampParameter& after)
{
    const bool same = before.GetDimensions() == after.GetDimensions();
    for (int i = 0; i < before.GetDimensions() && i < after.GetDimensions(); ++i)
        if (CurveOf(before, i) != CurveOf(after, i) || (same && before.GetLocks()[i] != after.GetLocks()[i]))
            return false;
    return before.IsLinear() == after.IsLinear();
}

bool IsValueKept(const TNodeParameter& before, const TNodeParameter& after)
{
    switch (before.Type) {
    case PK_ENUM:
        return IsEnumKept(static_cast<const TNodeEnumParameter&>(before),
                          static_cast<const TNodeEnumParameter&>(after));
    case TY_POLYTYPE:
        return IsPolytypeKept(static_cast<const TNodePolytypeParameter&>(before),
                              static_cast<const TNodePolytypeParameter&>(after));
    case PK_RAMP:
    case PK_POLYRAMP:
        return IsRampKept(static_cast<const TNodeRampParameter&>(before),
                          static_cast<const TNodeRampParameter&>(after));
    default:
        return ValueOf(before) == ValueOf(after);
    }
}

// The only one of the name, and of the kind unless that is -1; null if there is none or several.
const TNodeParameter* FindOnly(const TParameters& parameters, const TString& name, int kind)
{
    const TNodeParameter* found = nullptr;
    for (const TNodeParameter* parameter : parameters) {
        if (parameter->Name.Compare(name) != 0 || (kind != -1 && parameter->Type != kind))
            continue;
        if (found != nullptr)
            return nullptr;
        found = parameter;
    }
    return found;
}

// The first parameter with another value than before, "" for none. Groups are gone through.
std::string FindLostValue(const TParameters& before, const TParameters& after, bool areInputs, int& kept)
{
    for (const TNodeParameter* parameter : after) {
        const int kind = areInputs ? -1 : parameter->Type;
        const TNodeParameter* old = FindOnly(before, parameter->Name, kind);
        if (old == nullptr || FindOnly(after, parameter->Name, kind) == nullptr ||
            old->Type != parameter->Type)
            continue;
        ++kept;
        if (!IsValueKept(*old, *parameter))
            return parameter->Name.Print();
        if (parameter->Type != PK_GROUP)
            continue;
        const std::string lost =
            FindLostValue(static_cast<const TNodeGroupParameter*>(old)->GetChildren(),
                          static_cast<const TNodeGroupParameter*>(parameter)->GetChildren(), false, kept);
        if (!lost.empty())
            return parameter->Name.Print() + ("." + lost);
    }
    return "";
}

std::string DifferenceOf(const TNodeParameter& copy, const TNodeParameter& told);

std::string DifferenceOf(const TParameters& copy, const TParameters& told)
{
    if (copy.size() != told.size())
        return "number";
    for (int i = 0; i < copy.size(); ++i) {
        const std::string difference = DifferenceOf(*copy[i], *told[i]);
        if (!difference.empty())
            return "\"" + std::string(told[i]->Name.Print()) + "\" " + difference;
    }
    return "";
}

std::string EnumDifferenceOf(const TNodeEnumParameter& copy, const TNodeEnumParameter& told)
{
    if (copy.GetValues().size() != told.GetValues().size())
        return "number of entries";
    for (int i = 0; i < copy.GetValues().size(); ++i)
        if (copy.GetValues()[i].Name.Compare(told.GetValues()[i].Name) != 0 ||
            copy.GetValues()[i].Number != told.GetValues()[i].Number)
            return "entries";
    return "";
}

std::string PolytypeDifferenceOf(const TNodePolytypeParameter& copy, const TNodePolytypeParameter& told)
{
    if (copy.GetLinkInput().Compare(told.GetLinkInput()) != 0)
        return "linkinput";
    if (copy.GetLinkOutput().Compare(told.GetLinkOutput()) != 0)
        return "linkoutput";
    return copy.GetValidTypes() != told.GetValidTypes() ? "valid types" : "";
}

std::string RampDifferenceOf(const TNodeRampParameter& copy, const TNodeRampParameter& told)
{
    if (copy.GetDimensions() != told.GetDimensions() || copy.GetRampType() != told.GetRampType())
        return "ramp type";
    if (copy.GetLabels().Compare(told.GetLabels()) != 0)
        return "labels";
    if (copy.Type != PK_POLYRAMP)
        return "";
    return static_cast<const TNodePolyRampParameter&>(copy).GetOutput().Compare(
               static_cast<const TNodePolyRampParameter&>(told).GetOutput()) != 0
               ? "output"
               : "";
}

// What a copy has otherwise than the library tells, values apart.
std::string DifferenceOf(const TNodeParameter& copy, const TNodeParameter& told)
{
    if (copy.Name.Compare(told.Name) != 0)
        return "name";
    if (copy.Type != told.Type)
        return "kind";
    if (copy.Description.Compare(told.Description) != 0)
        return "description";
    if (copy.Required != told.Required)
        return "required";
    switch (copy.Type) {
    case PK_ENUM:
        return EnumDifferenceOf(static_cast<const TNodeEnumParameter&>(copy),
                                static_cast<const TNodeEnumParameter&>(told));
    case TY_POLYTYPE:
        return PolytypeDifferenceOf(static_cast<const TNodePolytypeParameter&>(copy),
                                    static_cast<const TNodePolytypeParameter&>(told));
    case PK_RAMP:
    case PK_POLYRAMP:
        return RampDifferenceOf(static_cast<const TNodeRampParameter&>(copy),
                                static_cast<const TNodeRampParameter&>(told));
    case PK_GROUP:
        return DifferenceOf(static_cast<const TNodeGroupParameter&>(copy).GetChildren(),
                            static_cast<const TNodeGroupParameter&>(told).GetChildren());
    default:
        return "";
    }
}

std::string OutputDifferenceOf(const TNodeType& copy, const TNodeType& told)
{
    for (int i = 0; i < copy.GetNumOutputs(); ++i) {
        const TOutputPort& a = copy.GetOutput(i);
        const TOutputPort& b = told.GetOutput(i);
        if (a.Name.Compare(b.Name) != 0 || a.Description.Compare(b.Description) != 0 || a.Type != b.Type ||
            a.ValidTypes != b.ValidTypes || a.LinkInput != b.LinkInput || a.LinkOutput != b.LinkOutput)
            return "output \"" + std::string(b.Name.Print()) + "\"";
    }
    return "";
}

std::string TypeDifferenceOf(const TNodeType& copy, const TNodeType& told)
{
    if (copy.Description.Compare(told.Description) != 0 || copy.Category != told.Category ||
        copy.Colour != told.Colour || (copy.Flags & FL_TYPEMASK) != (told.Flags & FL_TYPEMASK))
        return "description, category, colour or flags";
    if (copy.ClassName.Compare(told.ClassName) != 0 || copy.DisplayClass.Compare(told.DisplayClass) != 0 ||
        copy.Interfaces.size() != told.Interfaces.size() || copy.GetNumOutputs() != told.GetNumOutputs() ||
        copy.NumOwnParameters != told.NumOwnParameters)
        return "classes, or number of interfaces, outputs or own parameters";
    std::string difference = DifferenceOf(copy.Parameters, told.Parameters);
    if (!difference.empty())
        return "parameters: " + difference;
    difference = DifferenceOf(copy.Inputs, told.Inputs);
    return difference.empty() ? OutputDifferenceOf(copy, told) : "inputs: " + difference;
}

int FindOnlyOutput(const TNodeType& type, const TString& name)
{
    int found = -1;
    for (int i = 0; i < type.GetNumOutputs(); ++i) {
        if (type.GetOutput(i).Name.Compare(name) != 0)
            continue;
        if (found != -1)
            return -1;
        found = i;
    }
    return found;
}

// A port that bears its name alone before and after; -1 for none.
int FindSamePort(const TNodeType& before, const TNodeType& after, int port, bool isInput)
{
    if (!isInput) {
        const TString& name = before.GetOutput(port).Name;
        return FindOnlyOutput(before, name) == -1 ? -1 : FindOnlyOutput(after, name);
    }
    const TString& name = before.GetInput(port)->Name;
    return FindOnly(before.Inputs, name, -1) == nullptr || FindOnly(after.Inputs, name, -1) == nullptr
               ? -1
               : after.FindInput(name);
}

// A wire between ports that are there before and after, and that is not there after; "" for none. The nodes
// of both graphs stand in the same order.
std::string FindLostWire(const TEffectGraph& before, const TEffectGraph& after, int& kept)
{
    std::map<const TEffectNode*, int> places;
    for (int i = 0; i < before.GetNumNodes(); ++i)
        places[before.GetNode(i)] = i;
    for (int i = 0; i < before.GetNumEdges(); ++i) {
        const TEffectEdge& edge = *before.GetEdge(i);
        const TEffectNode* source = after.GetNode(places[edge.GetSrcNode()]);
        const TEffectNode* target = after.GetNode(places[edge.GetDstNode()]);
        const TNodeType& sourceType = *edge.GetSrcNode()->GetNodeType();
        const TNodeType& targetType = *edge.GetDstNode()->GetNodeType();
        const int output = FindSamePort(sourceType, *source->GetNodeType(), edge.GetSrcPort(), false);
        const int input = FindSamePort(targetType, *target->GetNodeType(), edge.GetDstPort(), true);
        if (output == -1 || input == -1)
            continue;
        ++kept;
        const TEffectEdge* now = target->GetInput(input);
        if (now == nullptr || now->GetSrcNode() != source || now->GetSrcPort() != output)
            return std::string(sourceType.Name.Print()) + " to " + targetType.Name.Print();
    }
    return "";
}

void AppendValues(const TParameters& parameters, std::string& state)
{
    for (const TNodeParameter* parameter : parameters) {
        state += std::string(" ") + parameter->Name.Print() + ":";
        if (parameter->Type == PK_ENUM)
            state += std::to_string(static_cast<const TNodeEnumParameter*>(parameter)->GetIndex());
        else if (parameter->Type == TY_POLYTYPE) {
            const auto* polytype = static_cast<const TNodePolytypeParameter*>(parameter);
            for (int type = 0; type < TY_POLYTYPE; ++type)
                if (polytype->IsTypeValid(type))
                    state += ValueOf(*polytype->GetValueParameter(type));
        } else if (parameter->Type == PK_RAMP || parameter->Type == PK_POLYRAMP) {
            const auto* ramp = static_cast<const TNodeRampParameter*>(parameter);
            state += ramp->IsLinear() ? "linear" : "";
            for (int i = 0; i < ramp->GetDimensions(); ++i)
                state += CurveOf(*ramp, i) + " " + std::to_string(ramp->GetLocks()[i]);
        } else
            state += ValueOf(*parameter);
        if (parameter->Type == PK_GROUP)
            AppendValues(static_cast<const TNodeGroupParameter*>(parameter)->GetChildren(), state);
    }
}

// All that an artist has set, but for the types chosen for polytypes: the undo of such a choice writes the
// type that was in force, which need not be the one chosen before. The nodes live on while the history has
// them, wherever in the graph they stand.
std::string StateOf(const TEffectGraph& graph)
{
    std::map<const TEffectNode*, std::string> nodes;
    std::map<const TEffectNode*, std::set<std::string>> wiresOf;
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        const TNodeType& type = *graph.GetNode(i)->GetNodeType();
        std::string& state = nodes[graph.GetNode(i)];
        state = type.Name.Print() + (" " + std::to_string(type.Flags));
        AppendValues(type.Parameters, state);
        AppendValues(type.Inputs, state);
    }
    for (int i = 0; i < graph.GetNumEdges(); ++i) {
        const TEffectEdge& edge = *graph.GetEdge(i);
        const void* source = edge.GetSrcNode();
        char text[64];
        std::snprintf(text, sizeof(text), " %d from %p %d", edge.GetDstPort(), source, edge.GetSrcPort());
        wiresOf[edge.GetDstNode()].insert(text);
    }
    std::string state;
    for (const auto& [node, text] : nodes) {
        state += text;
        for (const std::string& wire : wiresOf[node])
            state += wire;
        state += "\n";
    }
    return state;
}

// The part of two texts where they begin to differ.
std::string FirstDifference(const std::string& before, const std::string& after)
{
    constexpr size_t around = 60;
    size_t at = 0;
    while (at < before.size() && at < after.size() && before[at] == after[at])
        ++at;
    const size_t from = at > around ? at - around : 0;
    return ":\n  " + before.substr(from, 2 * around) + "\n  became\n  " + after.substr(from, 2 * around);
}

void TakeDefaultTypes(const TEffectGraph& from, TEffectGraph& to)
{
    for (int i = 0; i < from.GetNumNodes() && i < to.GetNumNodes(); ++i) {
        const TNodeType& source = *from.GetNode(i)->GetNodeType();
        TNodeType& type = *to.GetNode(i)->GetNodeType();
        for (int port = 0; port < source.GetNumOutputs() && port < type.GetNumOutputs(); ++port)
            if (source.GetOutput(port).Type == TY_POLYTYPE)
                type.GetOutput(port).DefaultType = source.GetOutput(port).DefaultType;
    }
}

} // namespace

TRefreshTrial::TRefreshTrial(const std::string& folder, const TChangedLibrary& library, TDice& dice)
    : Folder(folder), Library(library), Dice(dice)
{
}

bool TRefreshTrial::Fail(const std::string& what)
{
    Fault = what;
    return false;
}

void TRefreshTrial::CountErrors(const char* what, const TErrorList& errors)
{
    TString text;
    if (!errors.empty())
        (*errors.begin())->GetText(text);
    std::string told = text.Print();
    std::erase(told, '\n');
    ++Counts[what + told];
}

bool TRefreshTrial::Run()
{
    const TForms forms(false);
    TLogCapture quiet([](const char*, void*) {}, nullptr);
    if (!std::filesystem::exists(Path("resources")) && !MakeTestResources(Path("resources")))
        return Fail("no resources");
    bool held = false;
    TString text;
    const auto work = [&] {
        held = Build();
        for (uint32_t left = 1 + Dice.Below(3); held && left > 0; --left)
            held = Round();
    };
    if (!RunGuarded(work, text))
        return Fail("the assertion \"" + std::string(text.Print()) + "\"");
    return held;
}

bool TRefreshTrial::Build()
{
    Library.Write(Path("types"));
    const std::unique_ptr<TCindermillApp> app = StartApp(Folder);
    if (app == nullptr)
        return Fail("no application");
    TDocument document(*app);
    if (!Samples.empty() && Dice.Chance(0.25)) {
        const std::string& sample = Samples[Dice.Below(static_cast<uint32_t>(Samples.size()))];
        Story += "From " + sample + "\n";
        if (!document.Load(sample.c_str()))
            return Fail("the sample does not load");
    } else
        document.New();
    TRandomGraph graph(*app, document, Dice);
    if (Dice.Chance(0.5))
        graph.AddSystem();
    graph.Build(static_cast<int>(Dice.Below(30)));
    LikeTypesOf(document);
    return Save(document, Path("effect.effect"));
}

void TRefreshTrial::LikeTypesOf(TDocument& document)
{
    Liked.clear();
    for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i)
        Liked.push_back(document.GetGraph()->GetNode(i)->GetNodeType()->Name.Print());
}

bool TRefreshTrial::Round()
{
    for (uint32_t left = Dice.Chance(0.4) ? 1 : 1 + Dice.Below(8); left > 0; --left)
        Library.Change(Dice, Liked);
    Library.Write(Path("types"));
    Accepts = Dice.Chance(0.7);
    Story += "The library changes:\n" + Library.TakeStory();
    Story += Accepts ? "A refresh is accepted\n" : "A refresh is declined\n";

    const std::unique_ptr<TCindermillApp> app = StartApp(Folder);
    if (app == nullptr)
        return Fail("no application");
    TDocument before(*app);
    TDocument after(*app);
    std::string exported;
    if (!LoadChanged(before, after) || !CheckHistory(after, "after the load") || !CheckRuns(after, exported))
        return false;
    if (Dice.Chance(0.6)) {
        TRandomGraph graph(*app, after, Dice);
        const uint32_t edits = Dice.Below(15);
        Story += std::to_string(edits) + " edits\n";
        for (uint32_t left = edits; left > 0; --left)
            graph.Edit();
        if (!CheckHistory(after, "after edits"))
            return false;
    }
    LikeTypesOf(after);
    return CheckReopened(*app, after);
}

bool TRefreshTrial::LoadChanged(TDocument& before, TDocument& after)
{
    const std::string path = Path("effect.effect");
    if (!before.BatchLoad(path.c_str()))
        return Fail("the file cannot be read: " + std::string(before.GetLoadError().Print()));
    const int stale = CountStale(before);
    TForms::Answer = Accepts;
    TForms::Questions.clear();
    if (!after.Load(path.c_str()))
        return Fail("the file is refused: " + std::string(after.GetLoadError().Print()));
    std::vector<std::string> expected;
    if (stale > 0)
        expected.push_back(RefreshQuestion(stale));
    if (TForms::Questions != expected)
        return Fail(std::to_string(stale) + " stale types, and the question was \"" +
                    (TForms::Questions.empty() ? "" : TForms::Questions.front()) + "\"");
    if (!CheckSound(after, "after the load"))
        return false;
    Refreshed = Accepts && stale > 0;
    if (after.IsModified() != Refreshed)
        return Fail("the star is wrong after the load");
    if (!Refreshed) {
        ++Counts[stale > 0 ? "refreshes declined" : "loads without a refresh"];
        return true;
    }
    ++Counts["refreshes accepted"];
    return CheckRefreshed(before, after);
}

bool TRefreshTrial::CheckRefreshed(TDocument& before, TDocument& after)
{
    TEffectGraph& graph = *after.GetGraph();
    const TNodeTypeLibrary& library = TCindermillApp::Get().GetNodeTypes();
    if (graph.GetNumNodes() != before.GetGraph()->GetNumNodes())
        return Fail("the refresh changed the number of nodes");
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        const TNodeType& old = *before.GetGraph()->GetNode(i)->GetNodeType();
        const TNodeType& type = *graph.GetNode(i)->GetNodeType();
        std::string lost = FindLostValue(old.Parameters, type.Parameters, false, Counts["values kept"]);
        if (lost.empty())
            lost = FindLostValue(old.Inputs, type.Inputs, true, Counts["values kept"]);
        if (!lost.empty())
            return Fail("\"" + std::string(type.Name.Print()) + "\" lost the value of \"" + lost + "\"");
        if (!old.NeedsRefresh(library))
            continue;
        ++Counts["types refreshed"];
        const std::string difference = TypeDifferenceOf(type, *library.FindType(type.Name));
        if (!difference.empty())
            return Fail("\"" + std::string(type.Name.Print()) +
                        "\" is otherwise than the library tells: " + difference);
        if (type.NeedsRefresh(library))
            return Fail("\"" + std::string(type.Name.Print()) + "\" is stale after the refresh");
    }
    const std::string wire = FindLostWire(*before.GetGraph(), graph, Counts["wires kept"]);
    return wire.empty() || Fail("a wire is lost from " + wire);
}

bool TRefreshTrial::CheckReopened(TCindermillApp& app, TDocument& document)
{
    const std::string path = Path("effect.effect");
    const std::string copy = Path("copy.effect");
    if (!CheckSound(document, "before the save") || !Save(document, path))
        return false;
    const std::string bytes = BytesOf(path);
    const int stale = CountStale(document);
    if (Refreshed && stale != 0)
        return Fail("types are stale after the refresh and edits");
    TForms::Answer = false;
    TForms::Questions.clear();
    TDocument again(app);
    if (!again.Load(path.c_str()))
        return Fail("the saved file is refused: " + std::string(again.GetLoadError().Print()));
    if (TForms::Questions.size() != (stale > 0 ? 1u : 0u))
        return Fail("the saved file asks for another refresh");
    if (!Save(again, copy))
        return false;
    if (BytesOf(copy) != bytes) {
        // Resolving starts from no types at a load and from those of before the edit in a session. What it
        // comes to may differ while several types remain; nothing else may.
        TakeDefaultTypes(*document.GetGraph(), *again.GetGraph());
        if (!Save(again, copy))
            return false;
        if (BytesOf(copy) != bytes)
            return Fail("the saved file, loaded and saved again, has other bytes");
        ++Counts["loads that settled other default types"];
    }
    TDocument untouched(app);
    if (!untouched.BatchLoad(path.c_str()) || !Save(untouched, copy) || BytesOf(copy) != bytes)
        return Fail("the saved file, loaded by a batch run and saved again, has other bytes");
    std::string exported;
    std::string exportedAgain;
    if (!CheckRuns(document, exported) || !CheckRuns(again, exportedAgain))
        return false;
    if (exported != exportedAgain)
        return Fail("the saved file, loaded again, is exported with other bytes");
    return CheckHistory(again, "after the saved file was loaded");
}

bool TRefreshTrial::CheckSound(TDocument& document, const char* where)
{
    return document.CheckLoaded(false) ||
           Fail(std::string("the checks fail ") + where + ": " + document.GetLoadError().Print());
}

bool TRefreshTrial::Walk(TDocument& document, bool (TDocument::*canStep)() const, void (TDocument::*step)(),
                         const char* where)
{
    // To check after every step would take longer than all else.
    constexpr int between = 8;
    for (int steps = 1; (document.*canStep)(); ++steps) {
        (document.*step)();
        if (steps % between == 0 && !CheckSound(document, where))
            return false;
    }
    return CheckSound(document, where);
}

// To both ends of the history, and back to where it stood.
bool TRefreshTrial::CheckHistory(TDocument& document, const char* where)
{
    TForms::Messages.clear();
    int tail = 0;
    for (; document.CanRedo(); ++tail)
        document.Redo();
    const std::string whole = StateOf(*document.GetGraph());
    if (!Walk(document, &TDocument::CanUndo, &TDocument::Undo, where) ||
        !Walk(document, &TDocument::CanRedo, &TDocument::Redo, where))
        return false;
    const std::string now = StateOf(*document.GetGraph());
    if (now != whole)
        return Fail(std::string("undo and redo of everything change the effect ") + where +
                    (Refreshed ? ", refreshed" : "") + FirstDifference(whole, now));
    for (; tail > 0; --tail)
        document.Undo();
    for (const std::string& message : TForms::Messages)
        if (message.find("undo history") != std::string::npos)
            return Fail(std::string("undo and redo ") + where + " tell \"" + message + "\"");
    return CheckSound(document, where);
}

bool TRefreshTrial::CheckRuns(TDocument& document, std::string& exported)
{
    TErrorList errors;
    if (!document.CreateSchedule(errors)) {
        CountErrors("schedule: ", errors);
        return !errors.empty() || Fail("no schedule, and no error tells why");
    }
    bool runs = document.InitEngineWithoutRender(errors);
    for (int frame = 0; runs && frame < 3; ++frame)
        runs = document.UpdateEngine(0.02f, errors);
    if (!runs && errors.empty())
        return Fail("the engine does not run, and no error tells why");
    if (runs)
        ++Counts["ran"];
    else
        CountErrors("engine: ", errors);
    const std::string path = Path("exported.efx");
    TErrorList exportErrors;
    if (document.BatchExport(path.c_str(), exportErrors) == BR_DONE) {
        ++Counts["exported"];
        exported = BytesOf(path);
        return true;
    }
    CountErrors("export: ", exportErrors);
    return !exportErrors.empty() || Fail("no export, and no error tells why");
}

bool TRefreshTrial::Save(TDocument& document, const std::string& path)
{
    return document.SaveAs(path.c_str()) || Fail("the document cannot be saved");
}

int TRefreshTrial::CountStale(TDocument& document) const
{
    int count = 0;
    for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i)
        if (document.GetGraph()->GetNode(i)->GetNodeType()->NeedsRefresh(
                TCindermillApp::Get().GetNodeTypes()))
            ++count;
    return count;
}
