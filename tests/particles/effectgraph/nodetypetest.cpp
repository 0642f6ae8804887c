#include "particles/effectgraph/parsing.h"

#include "library/containers/strtoid.h"
#include "particles/effectgraph/nodetypelibrary.h"
#include "particles/effectgraph/polytypeparameter.h"

#include <filesystem>

using TFloats = std::vector<float>;

TEST(NodeTypeFile, AllSections)
{
    const TLoaded loaded(
        "<?xml version=\"1.0\"?>\n<node><name>Wind</name><description>Blows.</description>"
        "<type>PROCESS</type><bypassable/><lasthint/><colour>Cyan</colour>"
        "<parameters><Bool><name>On</name></Bool></parameters>"
        "<inputs><Vector3 required=true><name>Velocity</name></Vector3></inputs>"
        "<outputs><Vector3><name>Velocity</name><Description>d</Description></Vector3></outputs>"
        "<code><classname>TWind</classname><displayclass>TBox</displayclass>"
        "<interface>A, B,C</interface></code></node>");
    ASSERT_TRUE(loaded.Ok) << loaded.Error();
    const TNodeType& type = *loaded.Type;
    EXPECT_EQ(Text(type.Name), "Wind");
    EXPECT_EQ(Text(type.Description), "Blows.");
    EXPECT_EQ(type.Category, TU_PROCESS);
    EXPECT_EQ(type.Colour, 3);
    EXPECT_EQ(type.Flags, 9u);
    EXPECT_EQ(type.NumOwnParameters, 1);
    EXPECT_TRUE(type.IsInputRequired(0));
    ASSERT_EQ(type.GetNumOutputs(), 1);
    const TOutputPort& output = type.GetOutput(0);
    EXPECT_EQ(output.Type, TY_VECTOR3);
    EXPECT_EQ(output.DefaultType, TY_VECTOR3);
    EXPECT_EQ(output.ResolvedType, TY_VECTOR3);
    EXPECT_EQ(output.ValidTypes, 4u);
    EXPECT_EQ(output.LinkInput, -1);
    EXPECT_EQ(Text(output.Description), "d");
    EXPECT_EQ(type.GetTiedOutput(0), 0);
    EXPECT_EQ(type.FindInputNamedLikeOutput(0), 0);
    EXPECT_EQ(Text(type.ClassName), "TWind");
    EXPECT_EQ(Text(type.DisplayClass), "TBox");
    ASSERT_EQ(type.Interfaces.size(), 3);
    EXPECT_EQ(Text(type.Interfaces[1]), " B");
}

struct THeadFault
{
    const char* File;
    const char* Message;
};

TEST(NodeTypeFile, FaultsOfTheRoot)
{
    const THeadFault table[] = {
        {"", "Node type file missing node tag"},
        {"<other/>", "Node type file missing node tag"},
        {"<node/>", "Node type file missing name tag"},
        {"<node></node>", "Node type file missing name tag"},
        {"<node><name>x", "Node type file missing name tag"},
        {"<node><name>x</name></node>", "Node type file missing description/type tags"},
        {"<node><name>x</name><description>y<b></node>", "Error file reading description tag"},
        {"<node><name>x</name><description>y</description></node>", "Node type file missing type tag"},
        {"<node><name>x</name><type>fast</type></node>", "Unknown node type fast"},
        {"<node><name>x</name><type/></node>", "Unknown node type "},
        {"<node><name>x</name><type>emitter</type></node>",
         "Node type file missing bypassable/processhint/lasthint/colour tags"},
        {"<node><name>x</name><type>emitter</type><colour>pink</colour></node>",
         "Unknown colour pink in node type file"},
        {"<node><name>x</name><type>emitter</type><colour>red</colour></node>",
         "Node type file missing parameter/inputs/outputs/code section(s)"},
        {"<node><name>x</name><type>emitter</type><colour>red</colour><code/></node>",
         "Node type file missing classname tag in code section"},
        {"<node><name>x</name><type>emitter</type><colour>red</colour><code><displayclass>x</displayclass></"
         "code></node>",
         "Node type file missing classname tag in code section"},
        {"<node><name>x</name><type>emitter</type><colour>red</colour><inputs><Scalar>",
         "Parameter missing name tag"},
        {"<node><name>x</name><type>emitter</type><colour>red</colour><inputs><Scalar><name>x</name>",
         "Node type file missing parameter/inputs/outputs/code section(s)"},
    };
    for (const THeadFault& fault : table) {
        const TLoaded loaded(fault.File);
        EXPECT_FALSE(loaded.Ok);
        EXPECT_EQ(loaded.Error(), fault.Message) << fault.File;
    }
}

TEST(NodeTypeFile, FileThatIsNotThereIsAPlainError)
{
    const TLoaded loaded("", "/nowhere/a.xml");
    EXPECT_FALSE(loaded.Ok);
    EXPECT_EQ(loaded.Error(), "Could not open node file /nowhere/a.xml for reading\n");
    EXPECT_EQ(loaded.Line, -1);
}

TEST(NodeTypeFile, ClosingTagsThatDoNotMatchAreAnErrorOfATypeThatLoadsAllTheSame)
{
    const TLoaded loaded(NodeFile("<outputs><Scalar><name>o</name></x></Scalar></outputs>"));
    EXPECT_TRUE(loaded.Ok);
    EXPECT_TRUE(loaded.Messages.empty());
    EXPECT_EQ(loaded.TagFaults,
              std::vector<std::string>{"The closing tag \"x\" does not match \"Scalar\" of line 0"});
    EXPECT_TRUE(TLoaded(NodeFile("<!-- <x>old</x> -->")).TagFaults.empty());
}

TEST(NodeTypeFile, AZeroByteIsTheOnlyErrorOfItsFile)
{
    const TLoaded loaded("<node>\n" + NodeFile("", "process", std::string("N\0M", 3)));
    EXPECT_FALSE(loaded.Ok);
    EXPECT_EQ(loaded.Error(), "The file holds a zero byte");
    EXPECT_EQ(loaded.Line, 1);
}

TEST(NodeTypeFile, ErrorsTellTheLine)
{
    const TLoaded loaded(
        "<node>\n<name>x</name>\n<type>emitter</type>\n<colour>red</colour>\n<inputs>\n<Scalar>\n"
        "</Scalar></inputs></node>");
    EXPECT_EQ(loaded.Error(), "Parameter missing name tag");
    EXPECT_EQ(loaded.Line, 5);
}

TEST(NodeTypeFile, FlagWithoutColourEndsWithAnError)
{
    const char* missing = "Node type file missing bypassable/processhint/lasthint/colour tags";
    EXPECT_EQ(TLoaded("<node><name>x</name><type>emitter</type><bypassable/></node>").Error(), missing);
    EXPECT_EQ(TLoaded("<node><name>x</name><type>emitter</type><lasthint/></node>").Error(), missing);
    // Only a tag that closes itself is a flag; this one holds the colour off.
    EXPECT_EQ(
        TLoaded(
            "<node><name>x</name><type>emitter</type><bypassable></bypassable><colour>red</colour></node>")
            .Error(),
        missing);
}

TEST(NodeTypeFile, FlagsOutOfOrderAreIgnored)
{
    const TLoaded loaded("<node><name>x</name><type>emitter</type><processhint/><bypassable/><lasthint/>"
                         "<processhint/><colour>red</colour><code><classname>T</classname></code></node>");
    EXPECT_TRUE(loaded.Ok);
    EXPECT_EQ(loaded.Type->Flags, static_cast<uint32_t>(FL_PROCESSHINT | FL_LASTHINT));
}

TEST(NodeTypeFile, SectionsMayBeLeftOutOrEmptyButNotExchanged)
{
    EXPECT_TRUE(TLoaded(NodeFile("")).Ok);
    EXPECT_TRUE(TLoaded(NodeFile("<parameters/><inputs/><outputs/>")).Ok);
    const TLoaded loaded(NodeFile("<outputs><Scalar><name>o</name></Scalar></outputs>"
                                  "<inputs><Scalar><name>i</name></Scalar></inputs>"));
    EXPECT_TRUE(loaded.Ok);
    EXPECT_EQ(loaded.Type->GetNumOutputs(), 1);
    EXPECT_EQ(loaded.Type->GetNumInputs(), 0);
}

TEST(NodeTypeFile, InterfaceWithoutDisplayClass)
{
    const TLoaded loaded("<node><name>x</name><type>emitter</type><colour>red</colour>"
                         "<code><classname>T</classname><interface>I</interface></code></node>");
    EXPECT_TRUE(loaded.Type->DisplayClass.IsEmpty());
    EXPECT_EQ(loaded.Type->Interfaces.size(), 1);
}

TEST(NodeTypeFile, FaultsOfOutputs)
{
    const THeadFault table[] = {
        {"<Scalar/>", "Output port missing name tag in node type file"},
        {"<Scalar></Scalar>", "Output port missing name tag in node type file"},
        {"<Scalar><name>x<b></Scalar>", "Output port missing name tag end in node type file"},
        {"<Scalar><name>x</name><Description>x<b></Scalar>",
         "Output port missing description tag end in node type file"},
        {"<Polytype><name>p</name></Polytype>",
         "Polytype output p missing linkinput, linkoutput or validtypes tags"},
        {"<Polytype><name>p</name><linkinput>q</linkinput><validtypes><Scalar/></validtypes></Polytype>",
         "Polytype input link q not found in list of input ports"},
        {"<Polytype><name>p</name><linkoutput>P</linkoutput><validtypes><Scalar/></validtypes></Polytype>",
         "Polytype output from port p cannot be to the same port!"},
        {"<Polytype><name>p</name><validtypes/></Polytype>", "Polytype output port p has no valid types"},
        {"<Polytype><name>p</name><validtypes><texcoord/></validtypes></Polytype>",
         "Polytype output port p has no valid types"},
        {"<Polytype><name>p</name><linkoutput>q</linkoutput><validtypes><Scalar/></validtypes></Polytype>",
         "Polytype output p output link q not found"},
    };
    for (const THeadFault& fault : table)
        EXPECT_EQ(TLoaded(NodeFile(std::string("<outputs>") + fault.File + "</outputs>")).Error(),
                  fault.Message)
            << fault.File;
    const std::string head = "<node><name>x</name><type>effect</type><colour>red</colour><outputs>";
    EXPECT_EQ(TLoaded(head + "<Scalar><name>x").Error(),
              "Failed to read output port name tag in node type file");
    EXPECT_EQ(TLoaded(head + "<Scalar><name>x</name><Description>x").Error(),
              "Failed to read output port description tag in node type file");
    EXPECT_EQ(TLoaded(head + "<Scalar><name>x</name>").Error(),
              "Output port missing end tag in node type file");
}

// Not when the other links are looked up, after the section.
TEST(NodeTypeFile, AnOutputLinkedToItselfFailsAheadOfWhatFollowsIt)
{
    for (const char* following : {"<Scalar/>", "<Polytype><name>q</name></Polytype>"}) {
        const TLoaded loaded(NodeFile("<outputs>\n" + PolytypeOutput("p", {"Scalar"}, "", "P") + "\n" +
                                      following + "</outputs>"));
        EXPECT_FALSE(loaded.Ok);
        EXPECT_EQ(loaded.Error(), "Polytype output from port p cannot be to the same port!");
        EXPECT_EQ(loaded.Line, 1);
    }
}

TEST(NodeTypeFile, AnInputMayFollowAnyPortOfItsTypeAndNoOther)
{
    const auto error = [](const std::string& inputs, const std::string& outputs) {
        const TLoaded loaded(NodeFile("<inputs>" + inputs + "</inputs>" +
                                      (outputs.empty() ? outputs : "<outputs>" + outputs + "</outputs>")));
        return loaded.Ok ? "" : loaded.Error();
    };
    const std::string scalar = "<Scalar><name>s</name></Scalar>";
    EXPECT_EQ(error(PolytypeInput("p", {"scalar"}, "S") + scalar, ""), "");
    EXPECT_EQ(error(PolytypeInput("p", {"scalar"}, "", "S"), scalar), "");
    EXPECT_EQ(error(PolytypeInput("p", {"scalar"}, "gone") + scalar, scalar),
              "Polytype input p input link gone not found");
    EXPECT_EQ(error(PolytypeInput("p", {"scalar"}, "s", "gone") + scalar, scalar),
              "Polytype input p output link gone not found");
    // The sides are kept apart, and outputs may be missing altogether.
    EXPECT_EQ(error(PolytypeInput("p", {"scalar"}, "s"), scalar), "Polytype input p input link s not found");
    EXPECT_EQ(error(PolytypeInput("p", {"scalar"}, "", "s") + scalar, ""),
              "Polytype input p output link s not found");
}

TEST(NodeTypeFile, PolytypeOutputWithOnlyValidTypes)
{
    const TLoaded loaded(
        NodeFile("<outputs>" + PolytypeOutput("p", {"Scale", "Colour", "Scalar"}) + "</outputs>"));
    ASSERT_TRUE(loaded.Ok) << loaded.Error();
    const TOutputPort& output = loaded.Type->GetOutput(0);
    EXPECT_EQ(output.LinkInput, -1);
    EXPECT_EQ(output.LinkOutput, -1);
    EXPECT_EQ(output.ValidTypes, 0x12u);
    EXPECT_EQ(output.DefaultType, TY_SCALE);
    EXPECT_EQ(output.ResolvedType, -1);
    EXPECT_EQ(loaded.Type->GetOutputType(0), TY_SCALE);
}

TEST(NodeTypeFile, OutputLinkMayNameALaterPort)
{
    const TLoaded loaded(NodeFile("<inputs><Scalar><name>i</name></Scalar></inputs><outputs>" +
                                  PolytypeOutput("p", {"Scalar"}, "I", "Q") +
                                  PolytypeOutput("q", {"Scalar"}) + "</outputs>"));
    ASSERT_TRUE(loaded.Ok) << loaded.Error();
    EXPECT_EQ(loaded.Type->GetOutput(0).LinkInput, 0);
    EXPECT_EQ(loaded.Type->GetOutput(0).LinkOutput, 1);
}

static std::string EffectOutputs(const std::string& outputs)
{
    return NodeFile("<outputs><Scalar><name>Effect</name></Scalar>" + outputs + "</outputs>", "effect");
}

TEST(NodeTypeFile, LaterOutputsOfAnEffectNodeAreUserTypes)
{
    const TLoaded loaded(EffectOutputs("<Colour><name>C</name><Description>d</Description></Colour>"
                                       "<Transform><name>T</name>" +
                                       Default("1,2,3,4,5,6") + "</Transform>" +
                                       PolytypeOutput("p", {"Scalar"}) + "<Scalar><name>S</name>" +
                                       Default("2") + "</Scalar>"));
    ASSERT_TRUE(loaded.Ok) << loaded.Error();
    ASSERT_EQ(loaded.Type->GetNumParameters(), 3);
    EXPECT_EQ(loaded.Type->NumOwnParameters, 0);
    EXPECT_EQ(Text(loaded.Type->GetParameter(0)->Description), "d");
    EXPECT_EQ(FloatsOf(*loaded.Type->GetParameter(0)), TFloats({0, 0, 0, 0}));
    EXPECT_EQ(FloatsOf(*loaded.Type->GetParameter(1)), TFloats({1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(FloatsOf(*loaded.Type->GetParameter(2)), TFloats({2}));
}

TEST(NodeTypeFile, ThePolytypeAheadOfAUserTypeIsTheEffect)
{
    const TLoaded loaded(NodeFile("<outputs>" + PolytypeOutput("Effect", {"Scalar"}) +
                                      "<Scale><name>S</name>" + Default("3,4") + "</Scale>" +
                                      PolytypeOutput("p", {"Scalar"}) + "</outputs>",
                                  "effect"));
    ASSERT_TRUE(loaded.Ok) << loaded.Error();
    ASSERT_EQ(loaded.Type->GetNumParameters(), 1);
    EXPECT_EQ(Text(loaded.Type->GetParameter(0)->Name), "S");
    EXPECT_EQ(FloatsOf(*loaded.Type->GetParameter(0)), TFloats({3, 4}));
}

TEST(NodeTypeFile, UserTypesNeedTheirNumberOfDefaults)
{
    const char* tags[] = {"Scale", "Vector3", "Quaternion", "Colour", "Transform", "TextureCoords"};
    const char* names[] = {"scale", "vector3", "quaternion", "colour", "transform", "texcoord"};
    const int counts[] = {2, 3, 3, 4, 6, 4};
    for (int i = 0; i < 6; ++i) {
        const std::string tag = tags[i];
        EXPECT_EQ(
            TLoaded(EffectOutputs("<" + tag + "><name>x</name>" + Default("1") + "</" + tag + ">")).Error(),
            std::string("Badly formatted default values for ") + names[i] + " user type. Expecting " +
                std::to_string(counts[i]) + " defaults, got 1");
    }
}

TEST(NodeTypeFile, OutputsOfOtherCategoriesMakeNoParameters)
{
    EXPECT_EQ(
        TLoaded(NodeFile("<outputs><Scalar><name>a</name></Scalar><Scalar><name>b</name></Scalar></outputs>"))
            .Type->GetNumParameters(),
        0);
}

TEST(NodeTypeFile, NumberOfPortsIsLimited)
{
    std::string ports;
    for (int i = 0; i <= 1024; ++i)
        ports += "<Scalar><name>a</name></Scalar>";
    const std::string message = "More than 1024 parameters, inputs or outputs in node type file";
    EXPECT_EQ(TLoaded(NodeFile("<inputs>" + ports + "</inputs>")).Error(), message);
    EXPECT_EQ(TLoaded(NodeFile("<outputs>" + ports + "</outputs>")).Error(), message);
}

TEST(TNodeType, FindsParametersByPath)
{
    const std::string leaf = "<Int><name>Leaf</name></Int>";
    const TLoaded loaded(NodeFile("<parameters><Int><name>G</name></Int><Group><name>g</name><parameters>" +
                                  leaf + "<Group><name>H</name><parameters>" + leaf +
                                  "</parameters></Group></parameters></Group></parameters>"));
    const TNodeType& type = *loaded.Type;
    EXPECT_EQ(type.FindParameter("g"), type.GetParameter(0));
    EXPECT_NE(type.FindParameter("G.leaf"), nullptr);
    EXPECT_NE(type.FindParameter("g.h.LEAF"), type.FindParameter("g.leaf"));
    EXPECT_EQ(type.FindParameter("g.h")->Type, PK_GROUP);
    EXPECT_EQ(type.FindParameter("h"), nullptr);
    EXPECT_EQ(type.FindParameter("g.leaf.x"), nullptr);
    EXPECT_EQ(type.FindParameter("g.x"), nullptr);
    EXPECT_EQ(type.FindParameter("leaf"), nullptr);
    EXPECT_NE(type.FindParameterOf<TNodeIntParameter>("g.leaf", PK_INT), nullptr);
    EXPECT_EQ(type.FindParameterOf<TNodeBoolParameter>("g.leaf", PK_BOOL), nullptr);
}

TEST(TNodeType, ListenersAreCheckedForDoubles)
{
    TNodeType type;
    int calls = 0;
    const TNodeType::TCallback cb = [](void* data) { ++*static_cast<int*>(data); };
    type.AddCallback(cb, &calls);
    EXPECT_EQ(AssertionOf([&] { type.AddCallback(cb, &calls); }), "it->CB != cb || it->Data != data");
    type.NotifyChanged();
    EXPECT_EQ(calls, 1);
    type.RemoveCallback(cb, &calls);
    EXPECT_EQ(AssertionOf([&] { type.RemoveCallback(cb, &calls); }), "0");
}

TEST(TNodeType, RenderPriorityIsTheTopByte)
{
    TNodeType type;
    type.Flags = FL_BYPASSED;
    type.SetRenderPriority(200);
    EXPECT_EQ(type.GetRenderPriority(), 200);
    type.SetRenderPriority(3);
    EXPECT_EQ(type.Flags, 0x03000002u);
    EXPECT_TRUE(type.IsBypassed());
}

TEST(TPortRef, TellsInputsFromOutputs)
{
    TTestGraph graph;
    TEffectNode* node = graph.Node("N", TU_PROCESS, {"a", "b"}, {"o"});
    const TPortRef input(node, 1);
    const TPortRef output(node, 2);
    EXPECT_EQ(input.GetInputIndex(), 1);
    EXPECT_EQ(output.GetOutputIndex(), 0);
    EXPECT_EQ(AssertionOf([&] { input.GetOutputIndex(); }), "!IsInput()");
    EXPECT_EQ(AssertionOf([&] { output.GetInputIndex(); }), "IsInput()");
}

static const char* const FullSections =
    "<parameters><Group><name>g</name><parameters><Int><name>i</name></Int></parameters></Group></parameters>"
    "<inputs><Polytype><name>in</name><validtypes><scalar/><colour/></validtypes></Polytype></inputs>"
    "<outputs><Polytype><name>out</name><linkinput>in</linkinput><validtypes><Scalar/><Colour/></"
    "validtypes></Polytype>"
    "<Vector3><name>v</name></Vector3></outputs>";

struct TSavedType
{
    explicit TSavedType(TNodeType* type)
    {
        TChunkFile out;
        type->AddToChunkFile(out);
        const std::string path = Folder.Path("c");
        Saved = out.Save(path.c_str());
        Bytes = ReadBytes(path);
        Loaded = In.Load(path.c_str());
        if (Loaded)
            Type = dynamic_cast<TNodeType*>(In.GetChunkAt(0));
    }
    TTempFolder Folder;
    TChunkFile In;
    std::string Bytes;
    bool Saved = false;
    bool Loaded = false;
    TNodeType* Type = nullptr;
};

TEST(TNodeType, SavesAndLoads)
{
    TLoaded loaded(NodeFile(FullSections));
    ASSERT_TRUE(loaded.Ok) << loaded.Error();
    loaded.Type->Interfaces.push_back("Interface");
    loaded.Type->BoundsMax = TVector3(1, 2, 3);
    loaded.Type->Flags = 0x12345678;
    const TSavedType saved(loaded.Type->Clone());
    ASSERT_TRUE(saved.Loaded);
    const TNodeType& type = *saved.Type;
    EXPECT_EQ(Text(type.Name), "N");
    EXPECT_EQ(type.Flags, 0x12345678u);
    EXPECT_EQ(type.BoundsMax[2], 3.0f);
    EXPECT_EQ(type.NumOwnParameters, 1);
    EXPECT_NE(type.FindParameter("g.i"), nullptr);
    EXPECT_EQ(type.GetInputType(0), TY_SCALAR);
    EXPECT_EQ(type.GetBasicInputType(0), TY_POLYTYPE);
    EXPECT_EQ(type.GetOutput(0).ValidTypes, 0x11u);
    EXPECT_EQ(type.GetOutput(0).LinkInput, 0);
    EXPECT_EQ(type.GetOutput(1).ResolvedType, -1);
    EXPECT_EQ(type.GetOutput(1).ValidTypes, 4u);
    EXPECT_EQ(type.GetOutputType(1), TY_VECTOR3);
    EXPECT_EQ(Text(type.Interfaces[0]), "Interface");
    const TSavedType again(type.Clone());
    EXPECT_EQ(again.Bytes, saved.Bytes);
}

static std::string Word(uint32_t word)
{
    return std::string(reinterpret_cast<const char*>(&word), 4);
}

static std::string TypeFile(uint32_t version, const std::string& body)
{
    return "CHNK" + Word(1) + Word(TNodeType::NameID()) + Word(static_cast<uint32_t>(body.size())) +
           Word(version) + body;
}

struct TOldType
{
    TOldType(uint32_t version, const std::string& body)
    {
        const std::string path = Folder.Path("c");
        WriteBytes(path, TypeFile(version, body));
        Loaded = File.Load(path.c_str());
        Type = dynamic_cast<TNodeType*>(File.GetChunkAt(0));
    }
    TTempFolder Folder;
    TChunkFile File;
    bool Loaded = false;
    TNodeType* Type = nullptr;
};

static const std::string EmptyText(4, '\0');

static std::string OldOutput(uint32_t code, uint32_t mask)
{
    return Word(code) + EmptyText + EmptyText + Word(mask);
}

TEST(TNodeType, ReadsVersion0)
{
    const TOldType old(0, EmptyText + EmptyText + Word(2) + Word(1) + std::string("\1\0\1", 3) + Word(0) +
                              Word(0) + Word(0) + EmptyText + EmptyText);
    ASSERT_TRUE(old.Loaded);
    EXPECT_EQ(old.Type->Flags, 5u);
    EXPECT_EQ(old.Type->Category, 2);
    EXPECT_EQ(old.Type->Interfaces.size(), 0);
    EXPECT_EQ(old.Type->NumOwnParameters, 0);
}

TEST(TNodeType, ReadsOldOutputCodes)
{
    std::string outputs = Word(9);
    for (uint32_t code = 0; code < 9; ++code)
        outputs += OldOutput(code, 0x83);
    const TOldType old(2, EmptyText + EmptyText + Word(2) + Word(1) + Word(0) + Word(0) + Word(0) + outputs +
                              EmptyText + EmptyText + Word(0));
    ASSERT_TRUE(old.Loaded);
    const int types[] = {0, 0, 1, 2, 3, 4, 5, 6, 0};
    for (int code = 0; code < 9; ++code) {
        const TOutputPort& output = old.Type->GetOutput(code);
        EXPECT_EQ(output.Type, types[code]);
        EXPECT_EQ(output.DefaultType, types[code]);
        EXPECT_EQ(output.ValidTypes, code == 7 ? 0x41u : 1u << types[code]);
        EXPECT_EQ(output.LinkOutput, -1);
    }
}

TEST(TNodeType, UnknownTypeIdsBecomeNoTypeAndCanBeSaved)
{
    const std::string output = Word(0x12345678) + EmptyText + EmptyText + Word(StrToID("Colour")) +
                               Word(0xFFFFFFFFu) + Word(0xFFFFFFFFu);
    const TOldType old(4, EmptyText + EmptyText + Word(2) + Word(1) + Word(0) + Word(0) + Word(0) + Word(1) +
                              output + EmptyText + EmptyText + Word(0) + Word(0));
    ASSERT_TRUE(old.Loaded);
    EXPECT_EQ(old.Type->GetOutput(0).Type, -1);
    EXPECT_EQ(old.Type->GetOutput(0).DefaultType, TY_COLOUR);
    EXPECT_EQ(old.Type->GetOutput(0).ValidTypes, 0u);
    EXPECT_TRUE(TSavedType(old.Type->Clone()).Saved);
}

TEST(TNodeType, CountsBeyondTheFileFailTheLoad)
{
    const std::string head = EmptyText + EmptyText + Word(2) + Word(1) + Word(0);
    EXPECT_FALSE(TOldType(4, head + Word(0x7FFFFFFFu)).Loaded);
    EXPECT_FALSE(TOldType(4, head + Word(0) + Word(0) + Word(0x0FFFFFFFu)).Loaded);
    EXPECT_FALSE(
        TOldType(2, head + Word(0) + Word(0) + Word(0) + EmptyText + EmptyText + Word(0xFFFFFFFFu)).Loaded);
}

struct TTypeTree
{
    void Add(const std::string& path, const std::string& text)
    {
        std::filesystem::create_directories(std::filesystem::path(Folder.Path(path)).parent_path());
        WriteBytes(Folder.Path(path), text);
    }
    std::vector<std::string> Load()
    {
        TErrorList errors;
        Library.Load(Folder.GetFolder().c_str(), errors);
        return TextsOf(errors);
    }
    TTempFolder Folder;
    TNodeTypeLibrary Library;
};

TEST(TNodeTypeLibrary, LoadsATree)
{
    TTypeTree tree;
    tree.Add("b.XML", NodeFile("", "process", "B"));
    tree.Add("a/x.xml", NodeFile("", "process", "X"));
    tree.Add("a/note.txt", "no");
    tree.Add(".hidden/y.xml", NodeFile("", "process", "Y"));
    tree.Add("c.xml", NodeFile("", "render", "b"));
    EXPECT_TRUE(tree.Load().empty());
    const TNodeTypeLibrary& library = tree.Library;
    EXPECT_EQ(library.GetNumTypes(), 3);
    ASSERT_EQ(library.GetNumRootItems(), 3);
    EXPECT_EQ(Text(library.GetRootItem(0).Name), "a");
    EXPECT_EQ(library.GetRootItem(0).TypeIndex, -1);
    ASSERT_EQ(library.GetRootItem(0).Children.size(), 1);
    EXPECT_EQ(Text(library.GetItem(library.GetRootItem(0).Children[0]).Name), "x.xml");
    EXPECT_EQ(Text(library.GetRootItem(1).Name), "b.XML");
    EXPECT_EQ(Text(library.GetType(library.GetRootItem(1).TypeIndex)->Name), "B");
    EXPECT_EQ(library.FindType("b")->Category, TU_PROCESS);
    EXPECT_EQ(library.FindType("none"), nullptr);
}

TEST(TNodeTypeLibrary, BadFilesDoNotStopTheLoad)
{
    TTypeTree tree;
    tree.Add("a.xml", "<node></node>");
    tree.Add("b.xml", NodeFile("", "process", "B"));
    const std::vector<std::string> errors = tree.Load();
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_NE(errors[0].find("/a.xml [0] : Node type file missing name tag"), std::string::npos) << errors[0];
    EXPECT_EQ(tree.Library.GetNumTypes(), 1);
    EXPECT_EQ(tree.Library.GetNumRootItems(), 1);
}

TEST(TNodeTypeLibrary, DirectoryWithoutFilesGivesOneError)
{
    TTypeTree tree;
    tree.Add("a.txt", "");
    EXPECT_EQ(tree.Load(), std::vector<std::string>{"No valid .xml node type files found under path " +
                                                    tree.Folder.GetFolder() + "\n"});
}

TEST(TNodeTypeLibrary, TheTypesOfTheToolLoad)
{
    const std::string path = SourcePath("NodeTypes");
    if (!std::filesystem::exists(path))
        GTEST_SKIP();
    TNodeTypeLibrary library;
    TErrorList errors;
    library.Load(path.c_str(), errors);
    EXPECT_EQ(TextsOf(errors), std::vector<std::string>());
    EXPECT_GT(library.GetNumTypes(), 0);
}

TEST(TNodeType, APortThatIsMissingIsNamedToTheArtist)
{
    TNodeType type;
    type.Name = "Swirl";
    EXPECT_EQ(AssertionOf([&] { type.GetInputType(0); }),
              "n>=0 && n<size() : The node type Swirl has no input 1");
    EXPECT_EQ(AssertionOf([&] { type.GetOutputType(2); }),
              "n>=0 && n<size() : The node type Swirl has no output 3");
}
