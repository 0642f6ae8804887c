#include "particles/cindermill/interface/options/nodepropertiesdialog.h"

#include "library/containers/assertion.h"
#include "library/system/clock.h"
#include "library/system/message.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/options/option.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/nodetypelibrary.h"

namespace {

constexpr int DialogId = 120;
constexpr int NameId = 1002;
constexpr int PriorityId = 1031;
constexpr int DynamicId = 1030;
constexpr int StaticId = 1035;
constexpr int SideIds[] = {1041, 1043, 1045, 1047, 1049, 1051};
constexpr int SampleId = 1055;
constexpr int RecordId = 1056;
// The names of what only shows.
constexpr int FrameId = 1009;
constexpr const char* NameNoteName = "namenote";
constexpr const char* RecordNoteName = "recordnote";

constexpr const char* SideTexts[] = {"Static BB min x:", "y:", "z:", "max:", "y:", "z:"};
constexpr const char* SpokenSides[] = {"Static bounding box, least x",    "Static bounding box, least y",
                                       "Static bounding box, least z",    "Static bounding box, greatest x",
                                       "Static bounding box, greatest y", "Static bounding box, greatest z"};

constexpr int DialogWidth = 460;
constexpr int DialogHeight = 60;
constexpr int Columns = 7;
constexpr float MaxPriority = 255;
constexpr float MaxSide = 1000000;
// Longer texts do not go into a file.
constexpr int MaxNameBytes = 4095;
// A preview without a frame for so many milliseconds is paused.
constexpr uint32_t PauseTime = 500;

const char* GetText(TSampleFault fault)
{
    switch (fault) {
    case SF_NOTRUNNING:
        return "The particle effect needs to be running before a static bounding box can be sampled";
    case SF_NOTSCHEDULED:
        return "Could not find node in schedule";
    case SF_NOINPUT:
        return "Could not find a suitably named input in the render node to sample positions from. Looking "
               "for \"Transform\" or \"Position\"";
    case SF_NOTCONNECTED:
        return "Position field of render node is not connected";
    case SF_NONE:
        break;
    }
    return nullptr;
}

// Both are so worded.
const char* GetText(TSampleReach reach)
{
    switch (reach) {
    case SR_NOSCALE:
        return "Could not scale attribute - reverting to sampling from particle centre positions";
    case SR_NOVELOCITY:
        return "Could not velocity attribute - reverting to sampling from particle centre positions";
    case SR_KNOWN:
        break;
    }
    return nullptr;
}

constexpr const char* NoParticles = "No particles in buffer to sample";

bool AreSame(const TNodeProperties& a, const TNodeProperties& b)
{
    return a.Name.Compare(b.Name, true) == 0 && a.Priority == b.Priority &&
           a.DynamicBounds == b.DynamicBounds && a.StaticBounds == b.StaticBounds &&
           a.BoundsMin == b.BoundsMin && a.BoundsMax == b.BoundsMax;
}

} // namespace

bool TNodePropertiesDialog::TFields::Create()
{
    static TWindowClass windowClass("nodeproperties", 0, ButtonColour);
    TWindowParams params;
    params.Class = &windowClass;
    params.Owner = &Dialog;
    return TWindow::Create(params);
}

TNodePropertiesDialog::TNodePropertiesDialog(TDocument& document, TToolNode& node,
                                             const TNodeTypeLibrary& library)
    : TDialog("Node Properties", DialogWidth, DialogHeight), Document(document), Node(node), Library(library),
      IsRender(node.GetNodeType()->Category == TU_RENDER), Fields(*this),
      Result(GetNodeProperties(*node.GetNodeType()))
{
}

TNodePropertiesDialog::~TNodePropertiesDialog() = default;

void TNodePropertiesDialog::Run(TWindow* owner)
{
    if (DoModal(DialogId, owner) != DR_OK)
        return;
    if (!AreSame(Result, GetNodeProperties(*Node.GetNodeType())))
        Document.ApplyOperation(new TNodePropertiesOp(&Node, Result));
}

bool TNodePropertiesDialog::OnInit()
{
    if (!Frame.Create(this, GetControlName(FrameId)) || !Fields.Create() || !CreateFields() ||
        !CreateButtons())
        return false;
    ShowProperties();
    Layout();
    NameEdit.SetFocus();
    NameEdit.SelectAll();
    return true;
}

bool TNodePropertiesDialog::CreateFields()
{
    return CreateNameFields() && (!IsRender || (CreateRenderFields() && CreateBoxFields()));
}

bool TNodePropertiesDialog::CreateNameFields()
{
    if (!NameLabel.Create(&Fields, "Name:", "label") ||
        !NameEdit.Create(&Fields, NameId, GetControlName(NameId)) ||
        !NameNote.Create(&Fields, "", NameNoteName))
        return false;
    NameLabel.Names(NameEdit);
    return true;
}

bool TNodePropertiesDialog::CreateRenderFields()
{
    if (!PriorityLabel.Create(&Fields, "Render priority:", "label") ||
        !PriorityEdit.Create(&Fields, PriorityId, GetControlName(PriorityId)) ||
        !PriorityNote.Create(&Fields, "Lower priortiy nodes render first", "prioritynote") ||
        !DynamicBox.Create(&Fields, DynamicId, "Dynamic Bounding Box", GetControlName(DynamicId)) ||
        !StaticBox.Create(&Fields, StaticId, "Static Bounding Box", GetControlName(StaticId)))
        return false;
    PriorityLabel.Names(PriorityEdit);
    PriorityEdit.SetRange(0, MaxPriority);
    return true;
}

bool TNodePropertiesDialog::CreateBoxFields()
{
    constexpr int StepDecimals = 1;
    for (int i = 0; i < NumSides; ++i) {
        if (!Sides[i].Label.Create(&Fields, SideTexts[i], "label") ||
            !Sides[i].Edit.Create(&Fields, SideIds[i], GetControlName(SideIds[i])))
            return false;
        Sides[i].Edit.SetSpokenName(SpokenSides[i]);
        Sides[i].Edit.SetDecimals(StepDecimals);
        Sides[i].Edit.SetRange(-MaxSide, MaxSide);
    }
    return SampleButton.Create(&Fields, SampleId, "Sample", GetControlName(SampleId)) &&
           RecordButton.Create(&Fields, RecordId, "Record", GetControlName(RecordId)) &&
           RecordNote.Create(&Fields, "", RecordNoteName);
}

bool TNodePropertiesDialog::CreateButtons()
{
    if (!OkButton.Create(this, DR_OK, "OK", GetControlName(DR_OK)) ||
        !CancelButton.Create(this, DR_CANCEL, "Cancel", GetControlName(DR_CANCEL)))
        return false;
    OkButton.TakeReturn(true);
    CancelButton.TakeReturn(false);
    return true;
}

void TNodePropertiesDialog::Layout()
{
    Grid.Add(NameLabel, 0, 0);
    Grid.Add(NameEdit, 0, 1, Columns - 1);
    Grid.Add(NameNote, 1, 1, Columns - 1);
    if (IsRender)
        LayoutRenderFields();
    Grid.StretchColumn(Columns - 1);
    Grid.Fill(Fields);
    Frame.AddPage(Fields);
    TGridLayout buttons;
    buttons.StretchColumn(0);
    buttons.Add(OkButton, 0, 1);
    buttons.Add(CancelButton, 0, 2);
    TGridLayout all;
    all.Add(Frame, 0, 0);
    all.Add(buttons, 1, 0);
    all.StretchRow(0);
    all.Fill(*this);
}

void TNodePropertiesDialog::LayoutRenderFields()
{
    constexpr int AxisColumns = 3;
    Grid.Add(PriorityLabel, 2, 0);
    Grid.Add(PriorityEdit, 2, 1);
    Grid.Add(PriorityNote, 2, 2, Columns - 2);
    Grid.Add(DynamicBox, 3, 0, Columns);
    Grid.Add(StaticBox, 4, 0, Columns);
    for (int i = 0; i < NumSides; ++i) {
        const int row = 5 + i / AxisColumns;
        const int column = 2 * (i % AxisColumns);
        Grid.Add(Sides[i].Label, row, column);
        Grid.Add(Sides[i].Edit, row, column + 1);
    }
    TGridLayout buttons;
    buttons.Add(SampleButton, 0, 0);
    buttons.Add(RecordButton, 0, 1);
    buttons.Add(RecordNote, 0, 2);
    buttons.StretchColumn(2);
    Grid.Add(buttons, 7, 1, Columns - 1);
}

void TNodePropertiesDialog::ShowProperties()
{
    NameEdit.SetText(Result.Name.Print());
    if (!IsRender)
        return;
    PriorityEdit.SetValue(static_cast<float>(Result.Priority));
    DynamicBox.SetCheck(Result.DynamicBounds);
    StaticBox.SetCheck(Result.StaticBounds);
    for (int i = 0; i < NumSides; ++i)
        ShowSide(Sides[i], i < 3 ? Result.BoundsMin[i] : Result.BoundsMax[i - 3]);
    EnableSides();
}

void TNodePropertiesDialog::ShowSide(TSide& side, float value)
{
    side.Value = value;
    side.Edit.SetValue(value);
}

void TNodePropertiesDialog::EnableSides()
{
    for (TSide& side : Sides) {
        side.Edit.Enable(StaticBox.GetCheck());
        // What is recorded is not typed over.
        side.Edit.SetReadOnly(Recorder != nullptr);
    }
}

void TNodePropertiesDialog::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    if (control == &OkButton)
        Accept();
    else if (control == &CancelButton)
        End(DR_CANCEL);
    else
        TDialog::OnCommand(control, argument, code);
}

void TNodePropertiesDialog::OnUsed(TWimpControl* control)
{
    if (control == &NameEdit) {
        NameChanged = true;
        const char* fault = GetNameFault();
        NameNote.SetText(fault != nullptr ? fault : "");
    } else if (control == &PriorityEdit) {
        PriorityChanged = true;
    } else if (control == &DynamicBox) {
        DynamicChanged = true;
    } else if (control == &StaticBox) {
        StaticChanged = true;
        EnableSides();
    } else if (control == &SampleButton) {
        Sample();
    } else if (control == &RecordButton && Recorder == nullptr) {
        BeginRecord();
    } else if (control == &RecordButton) {
        EndRecord();
    } else {
        OnSideUsed(control);
    }
}

void TNodePropertiesDialog::OnSideUsed(const TWimpControl* control)
{
    for (TSide& side : Sides) {
        if (control != &side.Edit)
            continue;
        side.Value = side.Edit.GetValue();
        side.Changed = true;
    }
}

void TNodePropertiesDialog::GetTypedName(TString& name) const
{
    NameEdit.GetText(name);
}

// A file's next load would turn the node into a node of that type.
bool TNodePropertiesDialog::IsOtherTypesName(const char* name) const
{
    for (int i = 0; i < Library.GetNumTypes(); ++i) {
        const TNodeType& type = *Library.GetType(i);
        if (type.Name.Compare(name) == 0 && type.ClassName.Compare(Node.GetNodeType()->ClassName) != 0)
            return true;
    }
    return false;
}

const char* TNodePropertiesDialog::GetNameFault() const
{
    TString name;
    GetTypedName(name);
    if (name.Compare(Node.GetNodeType()->Name, true) == 0)
        return nullptr;
    if (name.IsEmpty())
        return "A node has a name: the old one stays";
    if (name.Length() > MaxNameBytes)
        return "The name is too long: the old one stays";
    if (IsOtherTypesName(name))
        return "Another type of node has this name: the old one stays";
    return nullptr;
}

void TNodePropertiesDialog::Accept()
{
    if (NameChanged && GetNameFault() == nullptr)
        GetTypedName(Result.Name);
    if (IsRender) {
        PriorityEdit.EndEdit();
        for (TSide& side : Sides)
            side.Edit.EndEdit();
        if (PriorityChanged)
            Result.Priority = static_cast<int>(PriorityEdit.GetValue());
        if (DynamicChanged)
            Result.DynamicBounds = DynamicBox.GetCheck();
        if (StaticChanged)
            Result.StaticBounds = StaticBox.GetCheck();
        TakeBox(Result);
    }
    End(DR_OK);
}

// Of a pair that was changed the smaller is the minimum.
void TNodePropertiesDialog::TakeBox(TNodeProperties& properties) const
{
    for (int i = 0; i < 3; ++i) {
        const TSide& min = Sides[i];
        const TSide& max = Sides[i + 3];
        if (!min.Changed && !max.Changed)
            continue;
        properties.BoundsMin[i] = min.Value < max.Value ? min.Value : max.Value;
        properties.BoundsMax[i] = min.Value < max.Value ? max.Value : min.Value;
    }
}

TOwner<TBoundsSampler> TNodePropertiesDialog::MakeSampler()
{
    TOwner<TBoundsSampler> sampler;
    TString text;
    if (!RunGuarded([&] { sampler.Reset(new TBoundsSampler(Document.GetEngine(), Node)); }, text)) {
        ShowMessage("%s", text.Print());
        return TOwner<TBoundsSampler>();
    }
    if (sampler->GetFault() != SF_NONE) {
        ShowMessage("%s", GetText(sampler->GetFault()));
        return TOwner<TBoundsSampler>();
    }
    if (sampler->GetReach() != SR_KNOWN)
        ShowMessage("%s", GetText(sampler->GetReach()));
    return sampler;
}

int TNodePropertiesDialog::Grow(TBoundsSampler& sampler)
{
    int count = 0;
    TString text;
    if (RunGuarded([&] { count = sampler.Grow(); }, text))
        return count;
    ShowMessage("%s", text.Print());
    return -1;
}

void TNodePropertiesDialog::ShowBounds(const TBounds& bounds)
{
    for (int i = 0; i < NumSides; ++i) {
        ShowSide(Sides[i], i < 3 ? bounds.Min[i] : bounds.Max[i - 3]);
        Sides[i].Changed = true;
    }
}

void TNodePropertiesDialog::Sample()
{
    const TOwner<TBoundsSampler> sampler = MakeSampler();
    if (sampler == nullptr)
        return;
    const int count = Grow(*sampler);
    if (count > 0)
        ShowBounds(sampler->GetBounds());
    else if (count == 0)
        ShowMessage("%s", NoParticles);
}

void TNodePropertiesDialog::BeginRecord()
{
    Recorder = MakeSampler();
    if (Recorder == nullptr)
        return;
    RecordedFrames = 0;
    RecordButton.SetPressed(true);
    SampleButton.Enable(false);
    EnableSides();
    RecordFrame();
}

void TNodePropertiesDialog::RecordFrame()
{
    RecordedTime = Document.GetEngine().GetTime();
    RecordedTick = GetTickCount();
    RecordWaits = false;
    const int count = Grow(*Recorder);
    if (count < 0) {
        StopRecord();
        return;
    }
    ++RecordedFrames;
    if (Recorder->HasBounds())
        ShowBounds(Recorder->GetBounds());
    NoteRecord("Recording:");
}

void TNodePropertiesDialog::NoteRecord(const char* what)
{
    TString text;
    text.Format("%s %d %s%s", what, RecordedFrames, RecordedFrames == 1 ? "frame" : "frames",
                RecordWaits ? ", paused" : "");
    RecordNote.SetText(text.Print());
}

// The idle pass has run the preview by one frame, unless it is paused.
void TNodePropertiesDialog::OnIdle()
{
    if (Recorder == nullptr)
        return;
    if (!Document.GetEngine().IsInited()) {
        StopRecord();
        ShowMessage("%s", GetText(SF_NOTRUNNING));
    } else if (Document.GetEngine().GetTime() != RecordedTime) {
        RecordFrame();
    } else if (!RecordWaits && GetTickCount() - RecordedTick >= PauseTime) {
        RecordWaits = true;
        NoteRecord("Recording:");
    }
}

void TNodePropertiesDialog::EndRecord()
{
    const bool found = Recorder->HasBounds();
    StopRecord();
    if (!found)
        ShowMessage("%s", NoParticles);
}

void TNodePropertiesDialog::StopRecord()
{
    Recorder.Reset();
    RecordWaits = false;
    RecordButton.SetPressed(false);
    SampleButton.Enable(true);
    EnableSides();
    NoteRecord("Recorded");
}
