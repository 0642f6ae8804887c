#include "library/wimp/gl/rendererwatch.h"

#include "library/containers/vector.h"

// Never destroyed: watches may go after everything else.
static vector<TRendererWatch*>& GetWatches()
{
    static vector<TRendererWatch*>& watches = *new vector<TRendererWatch*>;
    return watches;
}

TRendererWatch::TRendererWatch(TRenderer* renderer) : Renderer(renderer)
{
    GetWatches().push_back(this);
}

TRendererWatch::~TRendererWatch()
{
    vector<TRendererWatch*>& watches = GetWatches();
    watches.erase(watches.begin() + watches.index_of(this));
}

void TRendererWatch::Forget(const TRenderer* renderer)
{
    for (TRendererWatch* watch : GetWatches())
        if (watch->Renderer == renderer)
            watch->Renderer = nullptr;
}
