#include "particles/cindermill/graph/vertexstream.h"

#include "library/wimp/gl/glcontext.h"

#include <GL/glew.h>

namespace {

bool SoftwareVertices = false;

// Buffers of streams that have gone. A stream may go while no context is current, and the last ones at the
// process's end, so the names wait in a list that never goes.
vector<unsigned>& GetUnusedBuffers()
{
    static vector<unsigned>& buffers = *new vector<unsigned>;
    return buffers;
}

void DeleteUnusedBuffers()
{
    vector<unsigned>& unused = GetUnusedBuffers();
    if (unused.empty())
        return;
    glDeleteBuffers(unused.size(), unused.data());
    unused.clear();
}

} // namespace

TVertexStream::~TVertexStream()
{
    if (BufferId != -1)
        GetUnusedBuffers().push_back(static_cast<unsigned>(BufferId));
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
    if (SoftwareVertices || !IsGlReady())
        return;
    DeleteUnusedBuffers();
    if (BufferId == -1) {
        unsigned name = 0;
        glGenBuffers(1, &name);
        BufferId = static_cast<int>(name);
    }
    glBindBuffer(GL_ARRAY_BUFFER, static_cast<unsigned>(BufferId));
    glBufferData(GL_ARRAY_BUFFER, Size, Data, GL_DYNAMIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

const uint8_t* TVertexStream::BindBuffer()
{
    if (BufferId == -1)
        Upload();
    if (SoftwareVertices || BufferId == -1) {
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        return static_cast<const uint8_t*>(Data);
    }
    glBindBuffer(GL_ARRAY_BUFFER, static_cast<unsigned>(BufferId));
    return nullptr;
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
