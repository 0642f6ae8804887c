#include "particles/cindermill/graph/shaders/vertexstream.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/device/graphicsdevice.h"

static bool SoftwareVertices = false;

TVertexStream::~TVertexStream()
{
    if (BufferId != -1)
        GetGraphicsDevice()->DeleteBuffer(static_cast<unsigned>(BufferId));
}

void TVertexStream::Init(void* data, int count, int stride, const vector<TElement>& elements)
{
    Data = data;
    Count = count;
    Stride = stride;
    Size = count * stride;
    Elements = elements;
}

void TVertexStream::Upload()
{
    if (SoftwareVertices || GetGraphicsDevice() == nullptr)
        return;
    unsigned name = BufferId == -1 ? 0 : static_cast<unsigned>(BufferId);
    GetGraphicsDevice()->UploadBuffer(name, Data, static_cast<size_t>(Size));
    BufferId = static_cast<int>(name);
}

TVertexStream::TPosition TVertexStream::GetPosition()
{
    if (BufferId == -1)
        Upload();
    if (SoftwareVertices || BufferId == -1)
        return TPosition{0, static_cast<const uint8_t*>(Data)};
    return TPosition{static_cast<unsigned>(BufferId), nullptr};
}

const TVertexStream::TElement& TVertexStream::GetElementAt(int offset) const
{
    const TElement* found = nullptr;
    for (const TElement& element : Elements)
        if (element.Offset == offset)
            found = &element;
    ASSERT(found != nullptr);
    return *found;
}

void TVertexStream::SetSoftwareVertices(bool software)
{
    SoftwareVertices = software;
}

bool TVertexStream::HasSoftwareVertices()
{
    return SoftwareVertices;
}
