#include "particles/cindermill/graph/engine/particlenode.h"

#include <climits>

void TParticleNode::InitPorts()
{
    InputPorts.resize(GetNodeType()->GetNumInputs());
    OutputPorts.resize(GetNodeType()->GetNumOutputs());
    Inputs = InputPorts.data();
    Outputs = OutputPorts.data();
}

void TParticleNode::ExecuteDown(int count, float dt)
{
    if (count <= 0)
        return;
    FindPorts();
    BeginRun();
    RunDown(count, [&](int index, int number) { ExecuteRange(index, -1, number, dt); });
}

void TParticleNode::ExecuteUp(int count, float dt)
{
    if (count <= 0)
        return;
    FindPorts();
    BeginRun();
    RunUp(count, [&](int index, int number) { ExecuteRange(index, 1, number, dt); });
}

void TParticleNode::BypassUp(int count)
{
    if (count <= 0)
        return;
    FindBypassPorts();
    // Staging would bring the inputs in before an output that may be the place of another input is written.
    if (PieceSize == INT_MAX)
        RunUp(count, [&](int index, int number) { BypassRange(index, number); });
    else
        TEffectExecNode::BypassUp(count);
}

void TParticleNode::BypassRange(int index, int count)
{
    for (int k = index; k < index + count; ++k) {
        for (int o = 0; o < NumOutputs; ++o) {
            const int input = Outputs[o].BypassInput;
            Store(o, k, input != -1 ? Load(input, k) : TPortValue());
        }
    }
}

int TParticleNode::CountAboveWrap(int count) const
{
    const int above = Buffer->GetBufferSize() - Buffer->GetFirstPosition();
    if (above < 0)
        return 0;
    return above < count ? above : count;
}

template <class TWork>
void TParticleNode::RunUp(int count, TWork&& work)
{
    const int above = CountAboveWrap(count);
    const int base = Buffer->GetFirstPosition();
    RunDense(base, 0, 1, above, work);
    RunDense(base - Buffer->GetBufferSize(), above, 1, count - above, work);
}

template <class TWork>
void TParticleNode::RunDown(int count, TWork&& work)
{
    const int above = CountAboveWrap(count);
    const int base = Buffer->GetFirstPosition();
    RunDense(base - Buffer->GetBufferSize(), count - 1, -1, count - above, work);
    RunDense(base, above - 1, -1, above, work);
}

template <class TWork>
void TParticleNode::RunDense(int base, int index, int step, int count, TWork&& work)
{
    for (int left = count; left > 0;) {
        const int piece = left < PieceSize ? left : PieceSize;
        StageInputs(base, index, step, piece);
        StageOutputs(base, index, step, piece);
        work(index, piece);
        WriteStaged(base, index, step, piece);
        index += step * piece;
        left -= piece;
    }
}

void TParticleNode::StageInputs(int base, int index, int step, int count)
{
    for (int i = 0; i < NumInputs; ++i) {
        TNodePort& p = Inputs[i];
        if (p.Access == PA_PLAIN) {
            p.UseAttribute(base);
            continue;
        }
        const int lowest = p.UseStaged(index, step, count);
        for (int k = index, left = count; left > 0; --left, k += step) {
            TPortValue value;
            if (p.Access == PW_CONVERTED)
                ConvertValue(p.From, p.To, p.AttributeAt(base + k), value.GetFloats());
            else
                value = ReadInput(i, k);
            p.Staged[k - lowest] = value;
        }
    }
}

void TParticleNode::StageOutputs(int base, int index, int step, int count)
{
    for (int o = 0; o < NumOutputs; ++o) {
        if (Outputs[o].Access == PA_PLAIN)
            Outputs[o].UseAttribute(base);
        else
            Outputs[o].UseStaged(index, step, count);
    }
}

void TParticleNode::WriteStaged(int base, int index, int step, int count)
{
    for (int o = 0; o < NumOutputs; ++o) {
        const TNodePort& p = Outputs[o];
        if (p.Access == PA_PLAIN)
            continue;
        for (int k = index, left = count; left > 0; --left, k += step) {
            if (p.Access == PW_CONVERTED)
                ConvertValue(p.From, p.To, p.At(k), p.AttributeAt(base + k));
            else
                SetOutput(o, k, p.At(k));
        }
    }
}

void TParticleNode::FindFirstPorts(int numInputs, int numOutputs)
{
    // In the words of a vector, as an index into the node type's own lists of ports would fail.
    const bool hasInputs = numInputs <= InputPorts.size();
    ASSERT_TEXT_MSG(hasInputs && numOutputs <= OutputPorts.size(), "n>=0 && n<size()",
                    TempFormat("The node type %s has no %s %d", GetNodeType()->Name.Print(),
                               hasInputs ? "output" : "input",
                               (hasInputs ? OutputPorts.size() : InputPorts.size()) + 1));
    NumInputs = numInputs;
    NumOutputs = numOutputs;
    for (int i = 0; i < NumInputs; ++i)
        FindInputPort(i);
    for (int o = 0; o < NumOutputs; ++o)
        FindOutputPort(o);
    ChooseStaging();
}

void TParticleNode::FindBypassPorts()
{
    NumInputs = InputPorts.size();
    NumOutputs = OutputPorts.size();
    for (int i = 0; i < NumInputs; ++i)
        Inputs[i].UseOwn(TPortValue());
    for (int o = 0; o < NumOutputs; ++o) {
        const int input = GetNodeType()->FindInputNamedLikeOutput(o);
        Outputs[o].BypassInput = input;
        if (input != -1)
            FindInputPort(input);
        FindOutputPort(o);
    }
    ChooseStaging();
}

// A piece is as many particles as are staged at a time: its inputs come in ahead of the work on it, and its
// outputs go out behind it. Where an output is one value for all particles, the next particle may read what
// this one writes: then a piece is one particle.
void TParticleNode::ChooseStaging()
{
    bool stagesInputs = false;
    for (int i = 0; i < NumInputs; ++i)
        stagesInputs = stagesInputs || Inputs[i].Access != PA_PLAIN;
    bool stagesOutputs = false;
    bool isShared = false;
    for (int o = 0; o < NumOutputs; ++o) {
        stagesOutputs = stagesOutputs || Outputs[o].Access != PA_PLAIN;
        isShared = isShared || IsOutputShared(o);
    }
    // Two outputs may be one attribute, which has to end with the last one's value.
    for (int o = 0; stagesOutputs && o < NumOutputs; ++o)
        if (Outputs[o].Access == PA_PLAIN && !Outputs[o].IsOwn())
            Outputs[o].Access = PW_CONVERTED;
    PieceSize = INT_MAX;
    if (stagesInputs || stagesOutputs)
        PieceSize = isShared ? 1 : TNodePort::NumStaged;
}

bool TParticleNode::IsOutputShared(int port) const
{
    const int attrib = GetSchedule().GetTiedNodeOutput(Group, TiedNode, port);
    return attrib != -1 && !Buffer->IsPerParticle(GetSchedule().GetAttributeUsage(Group, attrib));
}

void TParticleNode::FindInputPort(int port)
{
    TNodePort& p = Inputs[port];
    p.To = GetNodeType()->GetInputType(port);
    const int attrib = GetSchedule().GetTiedNodeInput(Group, TiedNode, port);
    if (attrib != -1) {
        p.From = GetSchedule().GetAttributeType(Group, attrib);
        FindAttribute(p, attrib);
    } else {
        p.From = p.To;
        p.UseOwn(ReadInput(port, 0));
    }
    p.FromFloats = GetTypeFloats(p.From);
    // Nothing of the attribute comes through.
    if (p.Access == PA_PLAIN && p.Floats == 0)
        p.UseOwn(TPortValue());
}

void TParticleNode::FindOutputPort(int port)
{
    TNodePort& p = Outputs[port];
    p.From = GetNodeType()->GetOutputType(port);
    const int attrib = GetSchedule().GetTiedNodeOutput(Group, TiedNode, port);
    if (IsTracing()) {
        p.Access = PA_CHECKED;
    } else if (attrib != -1) {
        p.To = GetSchedule().GetAttributeType(Group, attrib);
        FindAttribute(p, attrib);
        if (p.Access == PA_PLAIN && p.Floats == 0)
            p.Access = PW_CONVERTED;
    } else {
        p.UseOwn(TPortValue());
    }
}

void TParticleNode::FindAttribute(TNodePort& port, int attrib)
{
    const int usage = GetSchedule().GetAttributeUsage(Group, attrib);
    const bool perParticle = Buffer->IsPerParticle(usage);
    port.Access = PA_CHECKED;
    port.Data = nullptr;
    // What reads a particle that is not there has to fail as the checked way does.
    if (perParticle && Buffer->GetNumParticles() == 0)
        return;
    const TParticleBuffer::TBlock& block = Buffer->GetBlock(usage);
    port.Data = block.Data + Buffer->GetAttribOffset(attrib);
    port.Stride = perParticle ? block.Stride : 0;
    port.Floats = GetPlainFloats(port.From, port.To);
    port.Zeros = GetTypeFloats(port.To) - port.Floats;
    port.Access = port.Floats >= 0 ? PA_PLAIN : PW_CONVERTED;
}
