#include "particles/effectgraph/parsing.h"

#include "library/maths/matrix43.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/valueparameters.h"

// What a chunk file holds must be known.
static const bool Registered = (RegisterEffectGraphClasses(), true);

using TFloats = std::vector<float>;

TEST(TNodeParameter, EachKindHasItsTagAndClass)
{
    const char* tags[] = {"Scalar",        "Scale",    "Vector3", "Quaternion", "Colour", "Transform",
                          "TextureCoords", "Polytype", "Bool",    "Enum",       "Int",    "Texture",
                          "Ramp",          "PolyRamp", "Group",   "Animation"};
    const char* classes[] = {"TNodeScalarParameter",     "TNodeScaleParameter",    "TNodeVector3Parameter",
                             "TNodeQuaternionParameter", "TNodeColourParameter",   "TNodeTransformParameter",
                             "TNodeTexCoordParameter",   "TNodePolytypeParameter", "TNodeBoolParameter",
                             "TNodeEnumParameter",       "TNodeIntParameter",      "TNodeTextureParameter",
                             "TNodeRampParameter",       "TNodePolyRampParameter", "TNodeGroupParameter",
                             "TNodeAnimationParameter"};
    for (int kind = 0; kind < PK_NUMKINDS; ++kind) {
        const std::unique_ptr<TNodeParameter> parameter(CreateNodeParameter(kind));
        EXPECT_EQ(parameter->Type, kind);
        EXPECT_STREQ(GetParameterTag(kind), tags[kind]);
        const int id = FindClassByNameID(parameter->GetClassId());
        EXPECT_STREQ(GetClassName(id), classes[kind]);
        EXPECT_TRUE(IsClassA(id, TNodeParameter::ClassId()));
        EXPECT_EQ(parameter->GetVersion(), kind == PK_RAMP || kind == PK_POLYRAMP ? 2 : 1);
        EXPECT_EQ(parameter->ChunkIdx, -1);
    }
    EXPECT_EQ(AssertionOf([] { CreateNodeParameter(16); }), "0");
    EXPECT_EQ(AssertionOf([] { CreateNodeParameter(-1); }), "0");
}

TEST(TNodeParameter, AbstractClassesMakeNoObjects)
{
    EXPECT_EQ(CreateClass(TNodeParameter::ClassId()), nullptr);
    EXPECT_EQ(CreateClass(TNodeValueParameter::ClassId()), nullptr);
}

TEST(TNodeParameter, ListenersAreCalledInOrderAndTwiceIfAddedTwice)
{
    TNodeIntParameter parameter;
    static std::vector<int> calls;
    calls.clear();
    int a = 1;
    int b = 2;
    const TNodeParameter::TCallback cb = [](TNodeParameter*, void* data) {
        calls.push_back(*static_cast<int*>(data));
    };
    parameter.AddCallback(cb, &b);
    parameter.AddCallback(cb, &a);
    parameter.AddCallback(cb, &b);
    parameter.SetValue(5);
    EXPECT_EQ(calls, (std::vector<int>{2, 1, 2}));
    int c = 0;
    EXPECT_EQ(AssertionOf([&] { parameter.RemoveCallback(cb, &c); }), "0");
}

TEST(ParseParameter, EndOfTheListIsNullWithSuccess)
{
    const TParsed parsed("<unknown><name>x</name></unknown>");
    EXPECT_TRUE(parsed.Ok);
    EXPECT_EQ(parsed.Result, nullptr);
}

TEST(ParseParameter, InputsKnowOnlyTheFirstEightTags)
{
    EXPECT_EQ(TParsed(Element("Bool", ""), true).Result, nullptr);
    EXPECT_NE(TParsed(Element("Bool", ""), false).Result, nullptr);
    EXPECT_EQ(TParsed(Element("Bool", "") + Element("Scale", ""), true).Result->Type, TY_SCALE);
}

TEST(ParseParameter, TagNamesCompareWithoutCase)
{
    EXPECT_EQ(TParsed(Element("tEXTUREcoords", "")).Result->Type, TY_TEXCOORDS);
}

TEST(ParseParameter, RequiredIsReadForInputsWithoutQuotes)
{
    const auto required = [](const char* attribute, bool isInput) {
        return TParsed(std::string("<Scalar ") + attribute + "><name>x</name></Scalar>", isInput)
            .Result->Required;
    };
    EXPECT_TRUE(required("required=true", true));
    EXPECT_TRUE(required("required=TRUE", true));
    EXPECT_FALSE(required("required=false", true));
    EXPECT_FALSE(required("required=\"true\"", true));
    EXPECT_FALSE(required("", true));
    EXPECT_FALSE(required("required=true", false));
}

TEST(ParseParameter, CommonPart)
{
    const TParsed parsed(
        "<Int><name>A</name><Description> text </Description><defaultvalue>3</defaultvalue></Int>");
    EXPECT_EQ(Text(parsed.Result->Name), "A");
    EXPECT_EQ(Text(parsed.Result->Description), " text ");
    EXPECT_EQ(parsed.As<TNodeIntParameter>().Get(), 3);
    EXPECT_FALSE(parsed.Result->Required);
}

TEST(ParseParameter, ValueTagsMayStandAheadOfTheName)
{
    EXPECT_EQ(
        TParsed("<Int><defaultvalue>-7</defaultvalue><name>A</name></Int>").As<TNodeIntParameter>().Get(),
        -7);
}

TEST(ParseParameter, EmptyElementHasNoName)
{
    const TParsed parsed("<Scalar/>", true);
    EXPECT_FALSE(parsed.Ok);
    EXPECT_EQ(parsed.Error, "Parameter missing name tag");
}

TEST(ParseParameter, FaultsOfTheCommonPart)
{
    EXPECT_EQ(TParsed("<Scalar></Scalar>").Error, "Parameter missing name tag");
    EXPECT_EQ(TParsed("<Scalar><name>x<name></Scalar>").Error, "Parameter missing name tag end");
    EXPECT_EQ(TParsed("<Scalar><name>x</name><Description>x<b></Scalar>").Error,
              "Parameter missing description tag end");
    EXPECT_EQ(TParsed("<Scalar><name>" + std::string(4096, 'x') + "</name></Scalar>").Error,
              "Text longer than 4095 characters in node type file");
    EXPECT_TRUE(TParsed("<Scalar><name>" + std::string(4095, 'x') + "</name></Scalar>").Ok);
}

// A list whose file ends where `element` ends.
static std::string ErrorOfTruncated(const std::string& element)
{
    const TTempFolder folder;
    const std::string path = folder.Path("a.xml");
    WriteBytes(path, "<list>" + element);
    TXmlFile xml;
    TErrorList errors;
    xml.OpenRead(path.c_str());
    xml.FindTag("list");
    TNodeParameter* parameter = nullptr;
    TNodeTypeFile file(xml, errors, "a.xml");
    ParseParameter(file, parameter, false);
    delete parameter;
    xml.Close();
    return errors.empty() ? "" : Text((*errors.begin())->GetMessage());
}

TEST(ParseParameter, FaultsOfTextsThatTheFileCutsOff)
{
    const std::string name = "<name>x</name>";
    EXPECT_EQ(ErrorOfTruncated("<Scalar><name>x"), "Failed to read parameter name tag");
    EXPECT_EQ(ErrorOfTruncated("<Scalar>" + name + "<Description>x"),
              "Failed to read parameter description tag");
    EXPECT_EQ(ErrorOfTruncated("<Scalar>" + name + "<defaultvalue>1"), "Failed to get defaultvalue text");
    EXPECT_EQ(ErrorOfTruncated("<Scalar>" + name + "<defaultvalue>1<"),
              "Parameter missing defaultvalue end tag");
    EXPECT_EQ(ErrorOfTruncated("<Vector3>" + name + "<defaultvalue>1,2,3"),
              "Failed to get defaultvalue text");
    EXPECT_EQ(ErrorOfTruncated("<Vector3>" + name + "<defaultvalue>1,2,3<"),
              "Parameter missing defaultvalue end tag");
    EXPECT_EQ(ErrorOfTruncated("<Transform>" + name + "<defaultposition>1"),
              "Failed to get defaultposition text");
    EXPECT_EQ(ErrorOfTruncated("<Transform>" + name + "<defaultposition>1,2,3<"),
              "Parameter missing defaultposition end tag");
    EXPECT_EQ(
        ErrorOfTruncated("<Transform>" + name + "<defaultposition>1,2,3</defaultposition><defaultrotation>1"),
        "Failed to get defaultrotation text");
    EXPECT_EQ(ErrorOfTruncated("<Bool>" + name + "<defaultvalue>1"), "Failed to get defaultvalue text");
    EXPECT_EQ(ErrorOfTruncated("<Int>" + name + "<defaultvalue>1<"),
              "Parameter missing defaultvalue end tag");
    EXPECT_EQ(ErrorOfTruncated("<Enum>" + name + "<value>1"), "Failed to get value text");
    EXPECT_EQ(ErrorOfTruncated("<Enum>" + name + "<value>1<"), "Parameter missing value end tag");
    EXPECT_EQ(ErrorOfTruncated("<Enum>" + name + "<value>1</value><defaultvalue>1"),
              "Failed to get defaultvalue text");
    EXPECT_EQ(ErrorOfTruncated("<Enum>" + name + "<value>1</value><defaultvalue>1<"),
              "Parameter missing defaultvalue end tag");
    EXPECT_EQ(ErrorOfTruncated("<Polytype>" + name + "<validtypes><scalar><defaultvalue>1"),
              "Failed to get default text");
    EXPECT_EQ(ErrorOfTruncated("<Ramp>" + name + "<type>scalar"), "Failed to get type text");
    EXPECT_EQ(ErrorOfTruncated("<Ramp>" + name + "<type>scalar<"), "Parameter missing type end tag");
    EXPECT_EQ(ErrorOfTruncated("<PolyRamp>" + name + "<defaultvalues>{0,0}"),
              "Failed to get defaultvalue text");
    EXPECT_EQ(ErrorOfTruncated("<PolyRamp>" + name + "<defaultvalues>{0,0}<"),
              "Parameter missing defaultvalues end tag");
    EXPECT_EQ(ErrorOfTruncated("<PolyRamp>" + name + "<output>x"), "Failed to get output text");
    EXPECT_EQ(ErrorOfTruncated("<PolyRamp>" + name + "<output>x<"), "Parameter missing output end tag");
}

TEST(ParseParameter, DefaultsOfValueKinds)
{
    EXPECT_EQ(FloatsOf(*TParsed(Element("Scalar", "")).Result), TFloats({0}));
    EXPECT_EQ(FloatsOf(*TParsed(Element("Scalar", Default(" 1.5 "))).Result), TFloats({1.5f}));
    EXPECT_EQ(FloatsOf(*TParsed(Element("Scale", Default("1,2"))).Result), TFloats({1, 2}));
    EXPECT_EQ(FloatsOf(*TParsed(Element("Vector3", "")).Result), TFloats({0, 0, 0}));
    EXPECT_EQ(FloatsOf(*TParsed(Element("Vector3", Default("1,-2,.5"))).Result), TFloats({1, -2, 0.5f}));
    EXPECT_EQ(FloatsOf(*TParsed(Element("Quaternion", Default("1,2,3,"))).Result), TFloats({1, 2, 3}));
    EXPECT_EQ(FloatsOf(*TParsed(Element("Colour", "")).Result), TFloats({1, 1, 1, 1}));
    EXPECT_EQ(FloatsOf(*TParsed(Element("Colour", Default("1,2,3,4"))).Result), TFloats({1, 2, 3, 4}));
    EXPECT_EQ(FloatsOf(*TParsed(Element("TextureCoords", Default("5,5,5,5"))).Result), TFloats({0, 0, 1, 1}));
}

TEST(ParseParameter, TransformTakesPositionThenRotation)
{
    const std::string position = "<defaultposition>1,2,3</defaultposition>";
    const std::string rotation = "<defaultrotation>4,5,6</defaultrotation>";
    EXPECT_EQ(FloatsOf(*TParsed(Element("Transform", position + rotation)).Result),
              TFloats({1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(FloatsOf(*TParsed(Element("Transform", position)).Result), TFloats({1, 2, 3, 0, 0, 0}));
    EXPECT_EQ(FloatsOf(*TParsed(Element("Transform", rotation)).Result), TFloats({0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(TParsed(Element("Transform", "<defaultposition>1</defaultposition>")).Error,
              "Badly formatted transform initial value : 1");
    EXPECT_EQ(TParsed(Element("Transform", position + "<defaultrotation/>")).Error,
              "Badly formatted transform initial value : ");
}

TEST(ParseParameter, WrongCountsOfFloats)
{
    EXPECT_EQ(TParsed(Element("Scale", Default("1"))).Error, "Badly formatted vector2 default value : 1\n");
    EXPECT_EQ(TParsed(Element("Vector3", Default("1,2"))).Error,
              "Badly formatted vector3 initial value : 1,2");
    EXPECT_EQ(TParsed(Element("Quaternion", Default("1,2,3,4"))).Error,
              "Badly formatted quaternion initial value : 1,2,3,4");
    EXPECT_EQ(TParsed(Element("Colour", Default("1,2,3"))).Error,
              "Badly formatted colour initial value : 1,2,3");
}

TEST(ParseParameter, LongTextsInMessagesAreCut)
{
    const TParsed parsed(Element("Scale", Default(std::string(3000, '7'))));
    EXPECT_FALSE(parsed.Ok);
    EXPECT_EQ(parsed.Error,
              "Badly formatted vector2 default value : " + std::string(800, '7') + "... (3000 characters)\n");
}

TEST(ParseParameter, BoolIsTrueForTrueAndOne)
{
    const auto value = [](const std::string& content) {
        return TParsed(Element("Bool", content)).As<TNodeBoolParameter>().Get();
    };
    EXPECT_TRUE(value(Default("TRUE")));
    EXPECT_TRUE(value(Default("1")));
    EXPECT_FALSE(value(Default("2")));
    EXPECT_FALSE(value(Default(" true")));
    EXPECT_FALSE(value("<defaultvalue/>"));
    EXPECT_FALSE(value(""));
}

TEST(ParseParameter, EnumEntries)
{
    const TParsed parsed(
        Element("Enum", "<value> A = 5</value><value>B</value><value/><value>C=-2</value>" + Default("C")));
    const TNodeEnumParameter& parameter = parsed.As<TNodeEnumParameter>();
    ASSERT_EQ(parameter.GetValues().size(), 4);
    EXPECT_EQ(Text(parameter.GetValues()[0].Name), "A");
    EXPECT_EQ(parameter.GetValues()[0].Number, 5);
    EXPECT_EQ(parameter.GetValues()[1].Number, 1);
    EXPECT_EQ(Text(parameter.GetValues()[2].Name), "");
    EXPECT_EQ(parameter.GetIndex(), 3);
    EXPECT_EQ(parameter.GetNumber(), -2);
}

TEST(ParseParameter, EnumWithoutDefaultTakesTheFirst)
{
    EXPECT_EQ(
        TParsed(Element("Enum", "<value>A=7</value><value>B</value>")).As<TNodeEnumParameter>().GetNumber(),
        7);
    EXPECT_EQ(TParsed(Element("Enum", "")).As<TNodeEnumParameter>().GetNumber(), 0);
}

TEST(ParseParameter, EnumDefaultMayStandAheadOfTheValues)
{
    EXPECT_EQ(TParsed(Element("Enum", Default("B") + "<value>A</value><value>B</value>"))
                  .As<TNodeEnumParameter>()
                  .GetIndex(),
              1);
}

TEST(ParseParameter, EnumDefaultOfOtherCaseIsNotFound)
{
    EXPECT_EQ(TParsed(Element("Enum", "<value>Abc</value>" + Default("abc"))).Error,
              "Default value for enum not found in values set: abc");
}

TEST(TNodeEnumParameter, PositionsOutsideTheListAreNotTakenOver)
{
    const TParsed parsed(Element("Enum", "<value>A=7</value><value>B=8</value>"));
    TNodeEnumParameter& parameter = parsed.As<TNodeEnumParameter>();
    parameter.SetValue(1);
    EXPECT_EQ(parameter.GetNumber(), 8);
    parameter.SetValue(2);
    parameter.SetValue(-1);
    EXPECT_EQ(parameter.GetIndex(), 1);
}

TEST(ParseParameter, GroupsNest)
{
    const std::string inner =
        Element("Group", Default("1") + "<parameters>" + Element("Int", Default("4")) + "</parameters>");
    const TParsed parsed(Element("Group", "<parameters>" + inner + Element("Bool", "") + "</parameters>"));
    const TNodeGroupParameter& group = parsed.As<TNodeGroupParameter>();
    EXPECT_FALSE(group.Get());
    ASSERT_EQ(group.GetChildren().size(), 2);
    const TNodeGroupParameter& child = dynamic_cast<TNodeGroupParameter&>(*group.GetChildren()[0]);
    EXPECT_TRUE(child.Get());
    EXPECT_EQ(child.GetChildren().size(), 1);
    vector<TNodeParameter*> owned;
    group.GetOwned(owned);
    EXPECT_EQ(owned.size(), 2);
}

TEST(ParseParameter, GroupFaults)
{
    EXPECT_EQ(TParsed(Element("Group", "")).Error, "Group parameter missing parameter tag");
    EXPECT_TRUE(TParsed(Element("Group", "<parameters/>")).Ok);
    EXPECT_EQ(TParsed(Element("Group", "<parameters><Int></Int></parameters>")).Error,
              "Parameter missing name tag");
    std::string nested = Element("Int", "");
    for (int i = 0; i < 64; ++i)
        nested = Element("Group", "<parameters>" + nested + "</parameters>");
    EXPECT_TRUE(TParsed(nested).Ok);
    EXPECT_EQ(TParsed(Element("Group", "<parameters>" + nested + "</parameters>")).Error,
              "Group parameters nested more than 64 deep");
}

TEST(ParseParameter, PolytypeValuesAndLinks)
{
    const TParsed parsed(Element(
        "Polytype", "<linkinput>A</linkinput><linkoutput>B</linkoutput><validtypes><scale/><vector3>" +
                        Default("1,2,3") + "</vector3><texcoord/></validtypes>"));
    const TNodePolytypeParameter& polytype = parsed.As<TNodePolytypeParameter>();
    EXPECT_EQ(polytype.GetValidTypes(), 0x46u);
    EXPECT_EQ(polytype.GetDefaultType(), TY_SCALE);
    EXPECT_EQ(polytype.GetCurrentType(), TY_SCALE);
    EXPECT_EQ(polytype.GetResolvedType(), -1);
    EXPECT_EQ(polytype.GetAllowedTypes(), 0xFFFFFFFFu);
    EXPECT_EQ(Text(polytype.GetLinkInput()), "A");
    EXPECT_EQ(Text(polytype.GetLinkOutput()), "B");
    EXPECT_EQ(FloatsOf(*polytype.GetValueParameter(TY_VECTOR3)), TFloats({1, 2, 3}));
    EXPECT_EQ(FloatsOf(*polytype.GetValueParameter(TY_TEXCOORDS)), TFloats({0, 0, 0, 0}));
    EXPECT_EQ(Text(polytype.GetValueParameter(TY_SCALE)->Name), "P");
}

TEST(ParseParameter, PolytypeTypesOutOfOrderAreSkipped)
{
    const TParsed parsed(Element("Polytype", "<validtypes><vector3/><scalar/><colour/></validtypes>"));
    EXPECT_EQ(parsed.As<TNodePolytypeParameter>().GetValidTypes(), 0x14u);
}

TEST(ParseParameter, PolytypeFaults)
{
    const std::string missing = "Polytype missing linkinput, linkoutput or validtypes tags";
    EXPECT_EQ(TParsed(Element("Polytype", "")).Error, missing);
    EXPECT_EQ(TParsed(Element("Polytype", "<linkoutput>x</linkoutput>")).Error, missing);
    EXPECT_EQ(TParsed(Element("Polytype", "<validtypes/>")).Error, "Polytype missing valid types");
    EXPECT_EQ(TParsed(Element("Polytype", "<validtypes><TextureCoords/></validtypes>")).Error,
              "Polytype missing valid types");
    EXPECT_EQ(TParsed(Element("Polytype", "<validtypes><scalar>" + Default("1,2") + "</scalar></validtypes>"))
                  .Error,
              "Badly formatted default value in polytype P parameter. Expecting 1 defauts, got 2");
    EXPECT_EQ(
        TParsed(Element("Polytype", "<validtypes><transform>" + Default("1") + "</transform></validtypes>"))
            .Error,
        "Badly formatted default value in polytype P parameter. Expecting 6 defauts, got 1");
}

TEST(TNodePolytypeParameter, ListingOnlyScalarHasNoOtherValue)
{
    const TParsed parsed(Element("Polytype", "<validtypes><scalar/></validtypes>"));
    const TNodePolytypeParameter& polytype = parsed.As<TNodePolytypeParameter>();
    EXPECT_EQ(polytype.GetValidTypes(), 1u);
    EXPECT_EQ(AssertionOf([&] { polytype.GetValueParameter(2); }), "IsTypeValid(i)");
    EXPECT_EQ(AssertionOf([&] { polytype.IsTypeValid(7); }), "type >= 0 && type <= TNodeType::TY_TEXCOORDS");
}

TEST(TNodePolytypeParameter, AllowedTypesNotifyOnChangeOnly)
{
    const TParsed parsed(Element("Polytype", "<validtypes><scalar/><scale/></validtypes>"));
    TNodePolytypeParameter& polytype = parsed.As<TNodePolytypeParameter>();
    int calls = 0;
    polytype.AddCallback([](TNodeParameter*, void* data) { ++*static_cast<int*>(data); }, &calls);
    polytype.SetAllowedTypes(2);
    polytype.SetAllowedTypes(2);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(polytype.GetCurrentType(), TY_SCALE);
    polytype.SetAllowedTypes(3);
    EXPECT_EQ(polytype.GetResolvedType(), -1);
    EXPECT_EQ(polytype.GetCurrentType(), TY_SCALAR);
    polytype.SetUserType(TY_SCALE);
    EXPECT_EQ(polytype.GetCurrentType(), TY_SCALE);
    polytype.SetUserType(TY_COLOUR);
    EXPECT_EQ(polytype.GetCurrentType(), TY_SCALE);
}

TEST(TNodePolytypeParameter, LinksToMissingPortsAssert)
{
    TTestGraph graph;
    TEffectNode* node = AddFromXml(
        graph, "<inputs>" + PolytypeInput("A", {"scalar"}) + PolytypeInput("B", {"scalar"}, "a", "o") +
                   "</inputs><outputs>" + PolytypeOutput("O", {"scalar"}) + "</outputs>");
    graph.ReplaceInput(node, 0, PolytypeInput("A", {"scalar"}, "X", "Y"));
    const auto* a = static_cast<TNodePolytypeParameter*>(node->GetNodeType()->GetInput(0));
    const auto* b = static_cast<TNodePolytypeParameter*>(node->GetNodeType()->GetInput(1));
    EXPECT_EQ(AssertionOf([&] { a->GetLinkInputIndex(node); }), "i < node->GetNodeType()->GetNumInputs()");
    EXPECT_EQ(AssertionOf([&] { a->GetLinkOutputIndex(node); }), "i < node->GetNodeType()->GetNumOutputs()");
    EXPECT_EQ(b->GetLinkInputIndex(node), 0);
    EXPECT_EQ(b->GetLinkOutputIndex(node), 0);
}

TEST(TNodeParameter, CopyValueNeedsTheSameValueKind)
{
    TNodeVector3Parameter from;
    const float value[] = {1, 2, 3};
    from.SetValue(value);
    TNodeVector3Parameter same;
    TNodeQuaternionParameter other;
    same.CopyValue(from);
    other.CopyValue(from);
    EXPECT_EQ(FloatsOf(same), TFloats({1, 2, 3}));
    EXPECT_EQ(FloatsOf(other), TFloats({0, 0, 0}));
    TNodeIntParameter number;
    number.SetValue(4);
    TNodeIntParameter copy;
    copy.CopyValue(number);
    EXPECT_EQ(copy.Get(), 0);
}

TEST(TNodeParameter, CopyValueIntoAPolytypeGoesToTheTypesPlace)
{
    const TParsed parsed(Element("Polytype", "<validtypes><scalar/><vector3/></validtypes>"));
    TNodePolytypeParameter& polytype = parsed.As<TNodePolytypeParameter>();
    TNodeVector3Parameter from;
    const float value[] = {1, 2, 3};
    from.SetValue(value);
    polytype.CopyValue(from);
    EXPECT_EQ(FloatsOf(*polytype.GetValueParameter(TY_VECTOR3)), TFloats({1, 2, 3}));
    polytype.CopyValue(TNodeColourParameter());
    const TParsed second(Element("Polytype", "<validtypes><vector3/><colour/></validtypes>"));
    second.Result->CopyValue(polytype);
    EXPECT_EQ(FloatsOf(*second.Result), TFloats({1, 2, 3}));
}

TEST(TNodeTransformParameter, MatrixTurnsByDegreesAndMoves)
{
    TNodeTransformParameter transform;
    const float value[] = {1, 2, 3, 0, 0, 90};
    transform.SetValue(value);
    TMatrix43 matrix;
    transform.GetMatrix(matrix);
    const TVector3 moved = matrix.TransformPoint(TVector3(1, 0, 0));
    EXPECT_NEAR(moved[0], 1, 1e-6);
    EXPECT_NEAR(moved[1], 1, 1e-6);
    EXPECT_NEAR(moved[2], 3, 1e-6);
}

static const char* const AllKinds[] = {
    "<Scalar><name>P</name><defaultvalue>1.5</defaultvalue></Scalar>",
    "<Scale><name>P</name><defaultvalue>1,2</defaultvalue></Scale>",
    "<Vector3><name>P</name><defaultvalue>1,2,3</defaultvalue></Vector3>",
    "<Quaternion><name>P</name><defaultvalue>1,2,3</defaultvalue></Quaternion>",
    "<Colour><name>P</name><defaultvalue>1,2,3,4</defaultvalue></Colour>",
    "<Transform><name>P</name><defaultposition>1,2,3</defaultposition></Transform>",
    "<TextureCoords><name>P</name></TextureCoords>",
    "<Polytype><name>P</name><linkinput>ABCD</linkinput><validtypes><scalar/><colour/></validtypes></"
    "Polytype>",
    "<Bool><name>P</name><defaultvalue>1</defaultvalue></Bool>",
    "<Enum><name>P</name><value>A=3</value><value>Long name</value><defaultvalue>Long "
    "name</defaultvalue></Enum>",
    "<Int><name>P</name><defaultvalue>-4</defaultvalue></Int>",
    "<Texture><name>P</name></Texture>",
    "<Ramp><name>P</name><type>scale=a;b</type><defaultvalues>{0,1},{2,3}</defaultvalues></Ramp>",
    "<PolyRamp><name>P</name><output>Out</output></PolyRamp>",
    "<Group><name>P</name><parameters><Int><name>Q</name></Int></parameters></Group>",
    "<Animation><name>P</name></Animation>",
};

class TEachKind : public testing::TestWithParam<int>
{
};

// Bytes of a parameter's chunks when it is saved.
static std::string BytesOf(const TNodeParameter& parameter)
{
    const TTempFolder folder;
    TChunkFile file;
    parameter.Clone()->AddToChunkFile(file);
    const std::string path = folder.Path("c");
    file.Save(path.c_str());
    return ReadBytes(path);
}

TEST_P(TEachKind, SavesLoadsAndClones)
{
    const TParsed parsed(AllKinds[GetParam()]);
    ASSERT_TRUE(parsed.Ok) << parsed.Error;
    parsed.Result->Required = true;
    parsed.Result->Description = "words";
    const TRoundTrip<TNodeParameter> trip(parsed.Result->Clone());
    ASSERT_NE(trip.Result, nullptr);
    EXPECT_EQ(trip.Result->Type, GetParam());
    EXPECT_EQ(Text(trip.Result->Name), "P");
    EXPECT_EQ(Text(trip.Result->Description), "words");
    EXPECT_TRUE(trip.Result->Required);
    EXPECT_EQ(BytesOf(*trip.Result), trip.Bytes);
    const std::unique_ptr<TNodeParameter> copy(trip.Result->Clone());
    EXPECT_EQ(copy->ChunkIdx, -1);
    EXPECT_EQ(BytesOf(*copy), trip.Bytes);
}

TEST_P(TEachKind, EntersAndLeavesAChunkFileWithAllThatItHolds)
{
    TParsed parsed(AllKinds[GetParam()]);
    vector<TNodeParameter*> owned;
    parsed.Result->GetOwned(owned);
    TChunkFile file;
    parsed.Result->AddToChunkFile(file);
    EXPECT_EQ(file.GetNumChunks(), 1 + owned.size());
    parsed.Result->RemoveFromChunkFile(file);
    EXPECT_EQ(file.GetNumChunks(), 0);
    EXPECT_EQ(parsed.Result->ChunkIdx, -1);
}

static std::string NameOfKind(const testing::TestParamInfo<int>& kind)
{
    return GetParameterTag(kind.param);
}

INSTANTIATE_TEST_SUITE_P(TNodeParameter, TEachKind, testing::Range(0, static_cast<int>(PK_NUMKINDS)),
                         NameOfKind);

static std::string Word(uint32_t word)
{
    return std::string(reinterpret_cast<const char*>(&word), 4);
}

// A chunk file of one chunk of the class.
static std::string OneChunk(const char* className, uint32_t version, const std::string& body)
{
    const uint32_t id = GetClassNameID(FindClassByName(className));
    return "CHNK" + Word(1) + Word(id) + Word(static_cast<uint32_t>(body.size())) + Word(version) + body;
}

TEST(TNodeParameter, Version0HasANumberThatIsDropped)
{
    const TTempFolder folder;
    const std::string path = folder.Path("c");
    const std::string name("a\0\0\0", 4);
    const std::string empty(4, '\0');
    WriteBytes(path,
               OneChunk("TNodeIntParameter", 0, name + empty + Word(77) + std::string(1, '\1') + Word(5)));
    TChunkFile file;
    ASSERT_TRUE(file.Load(path.c_str()));
    const TNodeIntParameter& parameter = dynamic_cast<TNodeIntParameter&>(*file.GetChunkAt(0));
    EXPECT_EQ(parameter.Get(), 5);
    EXPECT_TRUE(parameter.Required);
    EXPECT_EQ(parameter.Type, PK_INT);
}

TEST(TNodeParameter, ShortBodyOfAValueShowsInTheSizeCheck)
{
    const TTempFolder folder;
    const std::string path = folder.Path("c");
    const std::string empty(4, '\0');
    // The third component is read from what stands behind the body.
    WriteBytes(
        path, OneChunk("TNodeVector3Parameter", 1, empty + empty + std::string(1, '\0') + Word(0) + Word(0)) +
                  Word(0));
    TChunkFile file;
    EXPECT_NE(AssertionOf([&] { file.Load(path.c_str()); }).find("Inaccurate chunk size"), std::string::npos);
}

TEST(TNodeEnumParameter, CountBeyondTheFileFailsTheLoad)
{
    const TTempFolder folder;
    const std::string path = folder.Path("c");
    const std::string empty(4, '\0');
    WriteBytes(path, OneChunk("TNodeEnumParameter", 1,
                              empty + empty + std::string(1, '\0') + Word(0) + Word(0x40000000u)));
    TChunkFile file;
    EXPECT_FALSE(file.Load(path.c_str()));
}

TEST(TNodeRampParameter, OldVersionHasNoFlagsAndBadDimensionsAssert)
{
    const TTempFolder folder;
    const std::string path = folder.Path("c");
    const std::string empty(4, '\0');
    const std::string common = empty + empty + std::string(1, '\0');
    const std::string locks = Word(0xFFFFFFFFu) + Word(0xFFFFFFFFu) + Word(0xFFFFFFFFu) + Word(0xFFFFFFFFu);
    const float one = 1;
    const std::string point(reinterpret_cast<const char*>(&one), 4);
    WriteBytes(path, OneChunk("TNodeRampParameter", 1,
                              common + Word(1) + Word(0) + empty + Word(1) + point + point + locks));
    TChunkFile file;
    ASSERT_TRUE(file.Load(path.c_str()));
    const TNodeRampParameter& ramp = dynamic_cast<TNodeRampParameter&>(*file.GetChunkAt(0));
    EXPECT_FALSE(ramp.IsLinear());
    EXPECT_EQ(ramp.Evaluate(0, 0), 1.0f);
    WriteBytes(path, OneChunk("TNodeRampParameter", 2, common + Word(5) + Word(0)));
    TChunkFile bad;
    EXPECT_EQ(AssertionOf([&] { bad.Load(path.c_str()); }), "Dimensions > 0 && Dimensions <= 4");
}

TEST(TNodePolytypeParameter, ReadRefusesAValueOfTheWrongClass)
{
    const TTempFolder folder;
    const std::string path = folder.Path("c");
    const std::string empty(4, '\0');
    std::string body = empty + empty + std::string(1, '\0') + Word(0) + empty + empty;
    for (int i = 0; i < 7; ++i)
        body += Word(i == 0 ? 0 : 0xFFFFFFFFu);
    WriteBytes(path, OneChunk("TNodePolytypeParameter", 1, body));
    TChunkFile file;
    EXPECT_EQ(AssertionOf([&] { file.Load(path.c_str()); }),
              "0 : Incorrect type in chunkfile get ptr - expecting TNodeScalarParameter - got "
              "TNodePolytypeParameter");
}
