#include "window/programfixture.h"
#include "window/ramphand.h"

#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/interface/controls/textureparametercontrols.h"
#include "particles/cindermill/interface/graph/nodelayout.h"
#include "particles/effectgraph/export/efxlisting.h"

#include <sstream>

namespace {

// The dialogs of the two textures have the same title.
const char* const TextureTitle = "^Select texture to load$";

std::vector<std::string> List(const std::string& path)
{
    std::vector<std::string> lines;
    TString fault;
    const auto keep = [](const char* line, void* data) {
        static_cast<std::vector<std::string>*>(data)->push_back(line);
    };
    EXPECT_TRUE(ListEfx(path.c_str(), keep, &lines, fault)) << Text(fault);
    return lines;
}

// The words of a row of a command's data, "16: 3f800000 00000000 | 1 0".
std::vector<uint32_t> ReadWords(const std::string& line)
{
    std::istringstream text(line.substr(line.find(':') + 1, line.find('|') - line.find(':') - 1));
    std::vector<uint32_t> words;
    for (std::string word; text >> word;)
        words.push_back(static_cast<uint32_t>(std::stoul(word, nullptr, 16)));
    return words;
}

float ToFloat(uint32_t word)
{
    float value = 0;
    memcpy(&value, &word, sizeof(value));
    return value;
}

// Two exported files, group by group and command by command, are the same but for the samples of curves,
// which may differ by so much. How many of these do.
std::vector<int> CompareExports(const std::string& path, const std::string& otherPath, float tolerance)
{
    // Of the data of an IdShaper: what stands before the samples.
    constexpr size_t HeaderWords = 3;
    const std::vector<std::string> lines = List(path);
    const std::vector<std::string> others = List(otherPath);
    EXPECT_EQ(lines.size(), others.size());
    std::vector<int> different;
    bool isShaper = false;
    for (size_t i = 0; i < lines.size() && i < others.size(); ++i) {
        const size_t start = lines[i].find_first_not_of(' ');
        if (start != std::string::npos && lines[i][start] == '#') {
            isShaper = lines[i].find("IdShaper") != std::string::npos;
            if (isShaper)
                different.push_back(0);
        }
        if (lines[i] == others[i])
            continue;
        if (!isShaper || lines[i].find('|') == std::string::npos ||
            others[i].find('|') == std::string::npos) {
            EXPECT_EQ(lines[i], others[i]) << "line " << i;
            continue;
        }
        const bool isFirst = lines[i].compare(start, 2, "0:") == 0;
        const std::vector<uint32_t> words = ReadWords(lines[i]);
        const std::vector<uint32_t> otherWords = ReadWords(others[i]);
        EXPECT_EQ(words.size(), otherWords.size());
        for (size_t k = 0; k < words.size() && k < otherWords.size(); ++k) {
            if (isFirst && k < HeaderWords)
                EXPECT_EQ(words[k], otherWords[k]) << "line " << i;
            else
                EXPECT_NEAR(ToFloat(words[k]), ToFloat(otherWords[k]), tolerance) << "line " << i;
            different.back() += words[k] != otherWords[k];
        }
    }
    return different;
}

// A number that reads back as the same float.
std::string Digits(float value)
{
    char text[32];
    snprintf(text, sizeof(text), "%.9g", double(value));
    return text;
}

// The campfire of the samples, built from nothing. Its values are typed as they stand in the sample.
class ProgramCampfire : public Program
{
protected:
    // By its left side. Away from the edges: a wire that lingers there scrolls the view.
    TToolNode* Add(const char* type, int left, int row)
    {
        const TNodeType* declared = Workshop->GetApp().GetNodeTypes().FindType(type);
        const int width = static_cast<int>(MeasureNode(*declared)[0]);
        return Workshop->Add(type, left + width / 2, 50 + 105 * row);
    }
    void Wire(TToolNode* source, const char* output, TToolNode* destination, const char* input)
    {
        Workshop->Connect(source, output, destination, input);
    }
    struct TEntry
    {
        const char* Name;
        const char* Text;
        int Field = 0;
    };
    // Types the numbers of a node into its panel.
    void Enter(TToolNode* node, const std::vector<TEntry>& entries)
    {
        TPanelHand panel(Screen, *Workshop, node);
        {
            const THandFlow flow(Screen);
            for (const TEntry& entry : entries)
                panel.Enter(entry.Name, entry.Text, entry.Field);
        }
        panel.Close();
    }
    // A point of the curve that is alone in the plot, or the anchor that is added there first.
    void EnterPoint(TRampHand& ramp, int component, int point, const TRampPoint& wanted, bool add = false)
    {
        const vector<TRampPoint>& now = ramp.Parameter().GetCurve(component);
        const bool isEnd = point == 0 || point == now.size() - 1;
        if (!add && now[point] == wanted)
            return;
        const THandFlow flow(Screen);
        if (add)
            ASSERT_EQ(ramp.Insert(component, wanted.X), point);
        else
            ramp.Select(component, point);
        ramp.Enter(component, point, isEnd && !add ? nullptr : Digits(wanted.X).c_str(),
                   Digits(wanted.Y).c_str());
    }
    // The anchors of the sample's curve, which are enough where the ramp is linear.
    void EnterAnchors(TRampHand& ramp, int component, const TRampCurve& wanted)
    {
        const int last = wanted.GetNumPoints() - 1;
        const int lastNow = ramp.Parameter().GetCurve(component).size() - 1;
        EnterPoint(ramp, component, 0, wanted.GetPoint(0));
        EnterPoint(ramp, component, lastNow, wanted.GetPoint(last));
        for (int i = 3; i < last; i += 3)
            EnterPoint(ramp, component, i, wanted.GetPoint(i), i >= lastNow);
    }
    // All points of a curve of two segments. The handles at the ends come before the anchor between, under
    // which they would lie.
    void EnterPoints(TRampHand& ramp, int component, const TRampCurve& wanted)
    {
        ASSERT_EQ(wanted.GetNumPoints(), 7);
        EnterPoint(ramp, component, 0, wanted.GetPoint(0));
        EnterPoint(ramp, component, 3, wanted.GetPoint(6));
        EnterPoint(ramp, component, 1, wanted.GetPoint(1));
        EnterPoint(ramp, component, 2, wanted.GetPoint(5));
        EnterPoint(ramp, component, 3, wanted.GetPoint(3), true);
        EnterPoint(ramp, component, 2, wanted.GetPoint(2));
        EnterPoint(ramp, component, 4, wanted.GetPoint(4));
    }
    TRampCurve GetSampleCurve(const TToolNode* node, int component) const
    {
        const int index = FindIndex(node);
        const TNodeType* type = Sample->GetGraph()->GetNode(index)->GetNodeType();
        const auto* ramp = dynamic_cast<const TNodeRampParameter*>(type->FindParameter("Value"));
        TRampCurve curve;
        curve.SetPoints(ramp->GetCurve(component));
        return curve;
    }
    // Both hold their nodes in the order of their birth.
    int FindIndex(const TToolNode* node) const
    {
        int i = 0;
        while (Workshop->GetDocument().GetGraph()->GetNode(i) != node)
            ++i;
        return i;
    }
    void EnterColours(TToolNode* node, const char* life)
    {
        TPanelHand panel(Screen, *Workshop, node);
        panel.Enter("Life", life);
        TRampHand ramp(panel, "Value");
        ramp.ToggleLinear();
        for (int i = 1; i < 4; ++i)
            ramp.ToggleComponent(i);
        for (int i = 0; i < 4; ++i) {
            EnterAnchors(ramp, i, GetSampleCurve(node, i));
            ramp.ToggleComponent(i);
            if (i < 3)
                ramp.ToggleComponent(i + 1);
        }
        panel.Close();
    }
    // Width and height have the same curve: one follows the other.
    void EnterSizes(TToolNode* node, const char* life, bool linear)
    {
        TPanelHand panel(Screen, *Workshop, node);
        panel.Enter("Life", life);
        TRampHand ramp(panel, "Value");
        ramp.ToggleLock({-1, 0, -1, -1});
        if (linear) {
            ramp.ToggleLinear();
            EnterAnchors(ramp, 0, GetSampleCurve(node, 0));
        } else {
            EnterPoints(ramp, 0, GetSampleCurve(node, 0));
        }
        panel.Close();
    }
    void ChooseTexture(TProgram& program, TToolNode* stage, const char* leaf)
    {
        TPanelHand panel(Screen, *Workshop, stage);
        panel.Click(panel.Find<TNodeTextureParameterControls>("Texture").GetButton());
        ASSERT_TRUE(program.AnswerChooser(TextureTitle, SourcePath(std::string("samples/textures/") + leaf)));
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
        panel.Apply(new TTextureParamOp(&panel.Param<TNodeTextureParameter>("Texture"), leaf));
        panel.Close();
    }

    std::unique_ptr<TWorkshop> Workshop;
    std::unique_ptr<TDocument> Sample;
};

} // namespace

TEST_F(ProgramCampfire, ACampfireIsBuiltFromNothingAndExportsWhatTheSampleDoes)
{
    TProgram program(Screen);
    Workshop = std::make_unique<TWorkshop>(Screen, program);
    StartWithNewDocument(program, *Workshop);
    if (HasFatalFailure())
        return;
    Sample = std::make_unique<TDocument>(Workshop->GetApp());
    ASSERT_TRUE(Sample->Load(SourcePath("samples/campfire.effect").c_str()));

    // The nodes, in the sample's order, which decides that of the export's groups and commands. Where they
    // stand does not count.
    Workshop->FoldPalette({"Effect", "Motion"});
    TToolNode* breeze = Add("Constant", 30, 0);
    Workshop->FoldPalette({"Maths", "Life"});
    TToolNode* fireTrigger = Add("Emitter", 165, 0);
    TToolNode* hearth = Add("Sphere Surface", 30, 1);
    TToolNode* fireCone = Add("Velocity Cone", 330, 0);
    TToolNode* flicker = Add("Turbulence", 535, 0);
    TToolNode* fireWind = Add("Wind", 240, 1);
    TToolNode* fireIntegrate = Add("Integrate", 400, 1);
    Workshop->FoldPalette({"Life"});
    TToolNode* fireAge = Add("Age", 565, 1);
    TToolNode* frames = Add("Animated Texture", 490, 2);
    TToolNode* fire = Add("Sprite Render Stage", 330, 2);
    TToolNode* fireSizes = Add("Scale Over Life", 30, 2);
    TToolNode* fireColours = Add("Colour Over Life", 180, 2);
    Workshop->FoldPalette({"Life"});
    TToolNode* smokeTrigger = Add("Emitter", 490, 3);
    TToolNode* plume = Add("Point Emitter", 30, 4);
    TToolNode* smokeCone = Add("Velocity Cone", 255, 4);
    TToolNode* smokeWind = Add("Wind", 460, 4);
    TToolNode* drag = Add("Damping", 30, 5);
    TToolNode* smokeIntegrate = Add("Integrate", 200, 5);
    Workshop->FoldPalette({"Life"});
    TToolNode* smokeAge = Add("Age", 370, 5);
    TToolNode* smoke = Add("Sprite Render Stage", 330, 3);
    TToolNode* smokeSizes = Add("Scale Over Life", 30, 3);
    TToolNode* smokeColours = Add("Colour Over Life", 180, 3);

    Wire(fireTrigger, "Count", hearth, "Emission Trigger");
    Wire(hearth, "Position", fireIntegrate, "Position");
    Wire(fireCone, "Velocity", flicker, "Velocity");
    Wire(flicker, "Velocity", fireWind, "Velocity");
    Wire(fireWind, "Velocity", fireIntegrate, "Velocity");
    Wire(breeze, "Result", fireWind, "Wind");
    Wire(fireIntegrate, "Position", fire, "Transform");
    Wire(fireAge, "Age", frames, "Time");
    Wire(frames, "UVs", fire, "UVs");
    Wire(fireAge, "Age", fireSizes, "Time");
    Wire(fireSizes, "Value", fire, "Scale");
    Wire(fireAge, "Age", fireColours, "Time");
    Wire(fireColours, "Value", fire, "Colour");
    Wire(smokeTrigger, "Count", plume, "Emission Trigger");
    Wire(plume, "Start Transform", smokeIntegrate, "Position");
    Wire(smokeCone, "Velocity", smokeWind, "Velocity");
    Wire(breeze, "Result", smokeWind, "Wind");
    Wire(smokeWind, "Velocity", drag, "Velocity");
    Wire(drag, "Velocity", smokeIntegrate, "Velocity");
    Wire(smokeIntegrate, "Position", smoke, "Transform");
    Wire(smokeAge, "Age", smokeSizes, "Time");
    Wire(smokeSizes, "Value", smoke, "Scale");
    Wire(smokeAge, "Age", smokeColours, "Time");
    Wire(smokeColours, "Value", smoke, "Colour");
    Screen.Save(program.GetMainRectangle(), Screenshot("campfire-wired"));

    Enter(breeze, {{"Value", "0.2", 0}, {"Value", "0.08", 1}, {"Value", "0.05", 2}});
    Enter(fireTrigger, {{"Rate", "60"}, {"Per frame max emission", "4"}});
    Enter(hearth, {{"Particle Count", "80"},
                   {"Translation", "0.12", 1},
                   {"Scale", "0.13", 0},
                   {"Scale", "0.03", 1},
                   {"Scale", "0.13", 2}});
    Enter(fireCone, {{"Cone Cosine", "0.985"}, {"Minimum Speed", "0.3"}, {"Maximum Speed", "0.95"}});
    Enter(flicker, {{"Strength", "1.2"}});
    Enter(fireWind, {{"Strength", "0.25"}});
    Enter(fireAge, {{"Max Age", "0.9"}});
    Enter(frames, {{"Time Range", "0.9"}});
    Enter(smokeTrigger, {{"Rate", "12"}, {"Per frame max emission", "2"}});
    Enter(plume, {{"Particle Count", "60"}, {"Transform", "0.6", 1}});
    Enter(smokeCone, {{"Cone Cosine", "0.94"}, {"Minimum Speed", "0.3"}, {"Maximum Speed", "0.48"}});
    Enter(drag, {{"Damping", "0.75"}});
    Enter(smokeAge, {{"Max Age", "2.9"}});
    // One ramp with all handles of the sample, the others with straight lines between its points.
    EnterSizes(fireSizes, "0.9", false);
    EnterColours(fireColours, "0.9");
    EnterSizes(smokeSizes, "2.9", true);
    EnterColours(smokeColours, "2.9");
    Screen.Save(program.GetMainRectangle(), Screenshot("campfire-values"));
    // The stage of a lower priority is drawn first. Names are not exported.
    Workshop->Rename(fire, "Flames", 10);
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    Workshop->Rename(smoke, "Smoke");
    ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    // With the second one the effect runs.
    ChooseTexture(program, fire, "fire.dds");
    ChooseTexture(program, smoke, "smoke.hvt");
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_TRUE(IsMoving(GetPreview()));
    Screen.Save(program.GetMainRectangle(), Screenshot("campfire-built"));

    TDocument& document = Workshop->GetDocument();
    const std::string saved = program.Path("campfire.effect");
    SaveTo(program, saved);
    ASSERT_TRUE(document.SaveAs(program.Path("expected.effect").c_str()));
    ASSERT_TRUE(AreSame(saved, program.Path("expected.effect")));
    const std::string exported = program.Path("campfire.efx");
    Export(program, exported);
    ASSERT_FALSE(HasFatalFailure());
    ASSERT_TRUE(document.EnsureSchedule());
    ASSERT_TRUE(document.Export(program.Path("expected.efx").c_str()));
    EXPECT_TRUE(AreSame(exported, program.Path("expected.efx")));

    // The sample's curves are straight by their handles and evaluated as cubic ones: the parameter of a time
    // is searched for, which a linear ramp need not do. So the last digits of the samples of the three ramps
    // made linear differ. All else is the same, to the bit: also the ramp whose handles were typed, though
    // its height follows its width, and the sample's has a curve of its own.
    ASSERT_TRUE(Sample->EnsureSchedule());
    ASSERT_TRUE(Sample->Export(program.Path("sample.efx").c_str()));
    constexpr float LastDigits = 1e-6f;
    const std::vector<int> different = CompareExports(exported, program.Path("sample.efx"), LastDigits);
    // Of the smoke, then of the fire: two of the size, four of the colour.
    ASSERT_EQ(different.size(), 12u);
    EXPECT_EQ(different[6], 0);
    EXPECT_EQ(different[7], 0);
    Exit(program);
}
