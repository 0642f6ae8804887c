#include "library/containers/assertion.h"
#include "library/wimp/gl/glcontext.h"
#include "particles/cindermill/graph/qdxfragmentprogram.h"
#include "particles/cindermill/graph/qdxshader.h"
#include "particles/cindermill/graph/qdxvertexprogram.h"
#include "particles/cindermill/graph/vertexstream.h"

#include <GL/glew.h>

#include <climits>
#include <cstring>

namespace {

// Streams advance per item where the driver can do so by itself.
bool CanDrawInstances()
{
    return !TVertexStream::HasSoftwareVertices() && GLEW_ARB_instanced_arrays && GLEW_ARB_draw_instanced;
}

// The same four floats for all vertices. The first attribute must be an array for anything to be drawn, so it
// is one whose item never changes.
void PointAtValue(unsigned attribute, const float* value)
{
    if (attribute != 0) {
        glDisableVertexAttribArray(attribute);
        glVertexAttrib4fv(attribute, value);
        return;
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, 0, value);
    glVertexAttribDivisorARB(0, INT_MAX);
}

void PointAtStream(unsigned attribute, const TQdxShader::TStreamSlot& slot, int firstItem, bool perVertex)
{
    TVertexStream& stream = *slot.Buffer;
    const TVertexStream::TElement& element = stream.GetElementAt(slot.Offset);
    const size_t item =
        perVertex ? 0 : static_cast<size_t>(firstItem) * static_cast<size_t>(stream.GetStride());
    const uint8_t* base = stream.BindBuffer();
    glEnableVertexAttribArray(attribute);
    glVertexAttribPointer(attribute, element.Size, static_cast<GLenum>(element.Type), element.Normalised,
                          stream.GetStride(), base + item + static_cast<size_t>(slot.Offset));
    glVertexAttribDivisorARB(attribute, perVertex ? 0 : 1);
}

// What the driver would read for each vertex, one after the other.
void ExpandStream(const TQdxShader::TStreamSlot& slot, int firstItem, int numItems, bool perVertex,
                  int perItem, vector<float>& result)
{
    const TVertexStream& stream = *slot.Buffer;
    const int size = stream.GetElementAt(slot.Offset).Size;
    const uint8_t* data = static_cast<const uint8_t*>(stream.GetData()) + slot.Offset;
    result.resize(numItems * perItem * size);
    float* out = result.data();
    for (int i = 0; i < numItems; ++i) {
        for (int v = 0; v < perItem; ++v) {
            const size_t item = static_cast<size_t>(perVertex ? v : firstItem + i);
            memcpy(out, data + item * static_cast<size_t>(stream.GetStride()),
                   static_cast<size_t>(size) * sizeof(float));
            out += size;
        }
    }
}

void ExpandValue(const float* value, int numVertices, vector<float>& result)
{
    result.resize(4 * numVertices);
    for (int i = 0; i < 4 * numVertices; ++i)
        result.data()[i] = value[i % 4];
}

} // namespace

void TQdxShader::SetConstant(int index, const float* value)
{
    if (IsFragmentProgram()) {
        SetFragmentConstant(index, value);
        return;
    }
    if (index < 0 || index >= Constants.size())
        return;
    const vector<uint16_t>& slots = Constants[index].Slots;
    for (int i = 0; i < slots.size(); ++i)
        VertexProgram->SetConstant(slots[i], value + 4 * i);
}

void TQdxShader::SetVertexValue(int attribute, const float* value, int count)
{
    ASSERT(attribute >= 0 && attribute < NumVertexStreams);
    TStreamSlot slot;
    for (int i = 0; i < count; ++i)
        slot.Value[i] = value[i];
    VertexStreams[attribute] = slot;
}

bool TQdxShader::Bind()
{
    if (!IsGlReady())
        return false;
    if (IsFragmentProgram())
        return FragmentProgram->Bind(Textures);
    if (!VertexProgram->Bind())
        return false;
    // Another shader of the same instructions may have left its own.
    for (const TDefaultConstant& constant : DefaultConstants)
        VertexProgram->SetConstant(static_cast<int>(constant.Slot), constant.Value);
    return true;
}

void TQdxShader::Unbind()
{
    ResetTextures();
    for (TStreamSlot& slot : VertexStreams)
        slot = TStreamSlot();
    if (IsGlReady())
        glDisable(IsFragmentProgram() ? GL_FRAGMENT_PROGRAM_ARB : GL_VERTEX_PROGRAM_ARB);
}

void TQdxShader::Draw(int primitive, int first, int count, uint16_t perVertex, int perItem)
{
    ASSERT_TEXT(!IsFragmentProgram(), "!IsFragmentProgram()");
    if (count <= 0 || perItem <= 0 || !IsGlReady())
        return;
    if (CanDrawInstances())
        DrawInstances(primitive, first / perItem, count / perItem, perVertex, perItem);
    else
        DrawExpanded(primitive, first / perItem, count / perItem, perVertex, perItem);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void TQdxShader::DrawInstances(int primitive, int firstItem, int numItems, uint16_t perVertex, int perItem)
{
    for (unsigned a = 0; a < NumVertexStreams; ++a) {
        if (VertexStreams[a].Buffer != nullptr)
            PointAtStream(a, VertexStreams[a], firstItem, (perVertex >> a & 1) != 0);
        else
            PointAtValue(a, VertexStreams[a].Value);
    }
    glDrawArraysInstancedARB(static_cast<GLenum>(primitive), 0, perItem, numItems);
    for (unsigned a = 0; a < NumVertexStreams; ++a) {
        glVertexAttribDivisorARB(a, 0);
        glDisableVertexAttribArray(a);
    }
}

void TQdxShader::DrawExpanded(int primitive, int firstItem, int numItems, uint16_t perVertex, int perItem)
{
    vector<float> arrays[NumVertexStreams];
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    for (unsigned a = 0; a < NumVertexStreams; ++a) {
        const TStreamSlot& slot = VertexStreams[a];
        if (slot.Buffer == nullptr && a != 0) {
            glDisableVertexAttribArray(a);
            glVertexAttrib4fv(a, slot.Value);
            continue;
        }
        int size = 4;
        if (slot.Buffer != nullptr) {
            ExpandStream(slot, firstItem, numItems, (perVertex >> a & 1) != 0, perItem, arrays[a]);
            size = slot.Buffer->GetElementAt(slot.Offset).Size;
        } else {
            ExpandValue(slot.Value, numItems * perItem, arrays[a]);
        }
        glEnableVertexAttribArray(a);
        glVertexAttribPointer(a, size, GL_FLOAT, GL_FALSE, 0, arrays[a].data());
    }
    glDrawArrays(static_cast<GLenum>(primitive), 0, numItems * perItem);
    for (unsigned a = 0; a < NumVertexStreams; ++a)
        glDisableVertexAttribArray(a);
}
