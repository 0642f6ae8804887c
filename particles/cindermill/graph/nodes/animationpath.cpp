#include "particles/cindermill/graph/nodes/animationpath.h"

#include "particles/cindermill/main/animation/animation.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/xmltext.h"

TAnimationPath::~TAnimationPath()
{
    if (Parameter != nullptr)
        Parameter->RemoveCallback(&OnChanged, this);
}

bool TAnimationPath::Init(TErrorList& errors)
{
    Parameter = RequireParameter<TNodeAnimationParameter>("Animation", PK_ANIMATION, errors);
    if (Parameter == nullptr)
        return false;
    Parameter->AddCallback(&OnChanged, this);
    TString error;
    if (LoadAnimation(error))
        return true;
    errors.Add(new TError("%s", error.Print()));
    return false;
}

bool TAnimationPath::LoadAnimation(TString& error)
{
    const TString& name = Parameter->GetFileName();
    if (name.IsEmpty()) {
        error = "No animation specified in Animation Path node";
        return false;
    }
    TString path;
    if (!GetServices().FindResource(name, path)) {
        error.Format("Could not resolve path for animation %s", QuoteText(name).Print());
        return false;
    }
    const TAnimation* animation = GetAnimation(path);
    if (animation == nullptr) {
        error.Format("Could not load animation %s", QuoteText(name).Print());
        return false;
    }
    Animation = animation;
    return true;
}

void TAnimationPath::OnChanged(TNodeParameter*, void* data)
{
    TAnimationPath& path = *static_cast<TAnimationPath*>(data);
    TString text;
    if (path.LoadAnimation(text))
        return;
    text.Format("Could not load animation %s", QuoteText(path.Parameter->GetFileName()).Print());
    path.GetServices().Warn(text);
}

void TAnimationPath::BeginRun()
{
    Tracks = 0;
    if (Parameter->UsesPosition())
        Tracks |= AT_POSITION;
    if (Parameter->UsesRotation())
        Tracks |= AT_ROTATION;
    if (Parameter->UsesScale())
        Tracks |= AT_SCALE;
}

void TAnimationPath::Execute(int index, float)
{
    const float t = LoadScalar(0, index);
    TPortValue transform;
    Animation->Evaluate(t, Tracks, transform.GetFloats());
    Store(0, index, transform);
}
