#include "particles/cindermill/graph/vertexstream.h"

void TVertexStream::Init(void* data, int count, int stride, const vector<TElement>& elements)
{
    Data = data;
    Count = count;
    Stride = stride;
    Size = count * stride;
    Elements = elements;
}
