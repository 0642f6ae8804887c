#include "particles/cindermill/interface/graph/wiredraft.h"

#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/graph/graphscene.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/interface/graph/wiring.h"
#include "particles/cindermill/main/document.h"

TWireDraft::TWireDraft(TGraphScene& scene) : Scene(scene), Rubber(scene)
{
    Rubber.SetHeld(true);
}

void TWireDraft::Begin(TPort& port)
{
    End();
    From = &port;
    TToolNode* node = port.GetNode()->GetToolNode();
    if (port.IsInput() && node->GetInput(port.GetIndex()) != nullptr) {
        Picked = static_cast<TToolEdge*>(node->GetInput(port.GetIndex()));
        From = &Scene.GetNode(Picked->GetSrcNode())->GetPort(false, Picked->GetSrcPort());
        TToolEdgeRenderer* renderer = Scene.FindEdge(Picked);
        if (renderer != nullptr)
            renderer->SetHidden(true);
    }
    MarkPorts(true);
    Scene.GetCanvas().AddObject(&Rubber);
    Scene.GetCanvas().MoveToFront(&Rubber);
}

void TWireDraft::Aim(const TVector2& point, TPort* port)
{
    if (AimedAt != nullptr)
        AimedAt->SetAimedAt(false);
    AimedAt = port != nullptr && port->IsMarked() ? port : nullptr;
    if (AimedAt != nullptr)
        AimedAt->SetAimedAt(true);
    TNodeObj* other = AimedAt != nullptr ? AimedAt->GetNode() : nullptr;
    const int otherPort = AimedAt != nullptr ? AimedAt->GetIndex() : 0;
    if (From->IsInput())
        Rubber.Init(other, otherPort, From->GetNode(), From->GetIndex());
    else
        Rubber.Init(From->GetNode(), From->GetIndex(), other, otherPort);
    Rubber.SetFreeEnd(point);
    Rubber.Layout();
}

void TWireDraft::End()
{
    if (!IsOn())
        return;
    MarkPorts(false);
    if (AimedAt != nullptr)
        AimedAt->SetAimedAt(false);
    if (Scene.GetCanvas().HasObject(&Rubber))
        Scene.GetCanvas().RemoveObject(&Rubber);
    Rubber.Unhook();
    TToolEdgeRenderer* renderer = Picked != nullptr ? Scene.FindEdge(Picked) : nullptr;
    if (renderer != nullptr)
        renderer->SetHidden(false);
    From = nullptr;
    Picked = nullptr;
    AimedAt = nullptr;
}

void TWireDraft::MarkPorts(bool on)
{
    for (TRenderObject* object : Scene.GetCanvas().GetObjects())
        if (object->GetClassId() == TNodeObj::NameID())
            static_cast<TNodeObj*>(object)->MarkPorts(*From, on, Picked);
}

void ConnectPorts(TDocument& document, const TWireEnds& ends)
{
    const TPort& output = ends.From->IsInput() ? *ends.To : *ends.From;
    const TPort& input = ends.From->IsInput() ? *ends.From : *ends.To;
    TToolNode* destination = input.GetNode()->GetToolNode();
    if (ends.Picked == nullptr)
        Wire(document, output.GetNode()->GetToolNode(), output.GetIndex(), destination, input.GetIndex());
    else
        MoveWire(document, ends.Picked, destination, input.GetIndex());
}

void TellWireRefusal(TGraphScene& scene, const TPort& from, const TPort& to)
{
    TString reason;
    const TPort& output = from.IsInput() ? to : from;
    const TPort& input = from.IsInput() ? from : to;
    if (from.IsInput() == to.IsInput())
        reason = from.IsInput() ? "Two inputs cannot be wired" : "Two outputs cannot be wired";
    else
        GetWireRefusal(output.GetNode()->GetToolNode(), output.GetIndex(), input.GetNode()->GetToolNode(),
                       input.GetIndex(), reason);
    scene.GetHost().TellStatus(reason.Print());
}
