#pragma once

#include "library/containers/owner.h"
#include "library/wimp/controls/button.h"
#include "library/wimp/controls/checkbox.h"
#include "library/wimp/controls/edit.h"
#include "library/wimp/controls/gridlayout.h"
#include "library/wimp/controls/label.h"
#include "library/wimp/controls/numberedit.h"
#include "library/wimp/controls/pageframe.h"
#include "library/wimp/dialog.h"
#include "particles/cindermill/graph/engine/boundssampler.h"
#include "particles/cindermill/graph/operations/nodepropertiesop.h"

class TDocument;
class TNodeTypeLibrary;
class TToolNode;

// The Node Properties dialog: a node's name, and of a render node its priority and its bounding box, which
// can be sampled from the particles that live now, or recorded over those of all frames to come. OK makes one
// operation of all that was changed.
class TNodePropertiesDialog : public TDialog
{
public:
    // All stay the caller's and outlive the dialog.
    TNodePropertiesDialog(TDocument& document, TToolNode& node, const TNodeTypeLibrary& library);
    ~TNodePropertiesDialog() override;

    // Waits for the answer.
    void Run(TWindow* owner);
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

private:
    // The fields, in a window of their own that is scrolled on a small screen.
    class TFields : public TWindow
    {
    public:
        explicit TFields(TNodePropertiesDialog& dialog) : Dialog(dialog) {}
        bool Create();
        void OnCommand(TWimpControl* control, intptr_t, int) override { Dialog.OnUsed(control); }

    private:
        TNodePropertiesDialog& Dialog;
    };

    // One of the six numbers of the box: the minimum's three, then the maximum's.
    struct TSide
    {
        TLabel Label;
        TNumberEdit Edit;
        float Value = 0;
        bool Changed = false;
    };
    static constexpr int NumSides = 6;

    bool OnInit() override;
    void OnIdle() override;
    bool CreateFields();
    bool CreateNameFields();
    bool CreateRenderFields();
    bool CreateBoxFields();
    bool CreateButtons();
    void Layout();
    void LayoutRenderFields();
    void ShowProperties();
    // A person has used the control.
    void OnUsed(TWimpControl* control);
    void OnSideUsed(const TWimpControl* control);
    void EnableSides();
    void ShowSide(TSide& side, float value);
    // Why the name in the field is not taken, or null.
    const char* GetNameFault() const;
    bool IsOtherTypesName(const char* name) const;
    void GetTypedName(TString& name) const;
    void Accept();
    void TakeBox(TNodeProperties& properties) const;

    // The sampler of a node that can be sampled, or null; what speaks against it was shown.
    TOwner<TBoundsSampler> MakeSampler();
    // How many particles were taken in, or -1 after a fault, which was shown.
    int Grow(TBoundsSampler& sampler);
    void ShowBounds(const TBounds& bounds);
    void Sample();
    void BeginRecord();
    void RecordFrame();
    // Switched off by a person.
    void EndRecord();
    void StopRecord();
    void NoteRecord(const char* what);

    TDocument& Document;
    TToolNode& Node;
    const TNodeTypeLibrary& Library;
    const bool IsRender;
    TFields Fields;
    TPageFrame Frame;
    TGridLayout Grid;
    TLabel NameLabel;
    TEdit NameEdit;
    TLabel NameNote;
    TLabel PriorityLabel;
    TNumberEdit PriorityEdit;
    TLabel PriorityNote;
    TCheckBox DynamicBox;
    TCheckBox StaticBox;
    TSide Sides[NumSides];
    TButton SampleButton;
    TButton RecordButton;
    TLabel RecordNote;
    TButton OkButton;
    TButton CancelButton;
    bool NameChanged = false;
    bool PriorityChanged = false;
    bool DynamicChanged = false;
    bool StaticChanged = false;
    // What OK makes of it all.
    TNodeProperties Result;
    // While a box is recorded.
    TOwner<TBoundsSampler> Recorder;
    int RecordedFrames = 0;
    float RecordedTime = 0;
    // The tick count of the last frame, and whether the person was told that no further one comes.
    uint32_t RecordedTick = 0;
    bool RecordWaits = false;
};
