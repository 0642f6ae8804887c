#include "particles/cindermill/interface/particles/animationpathdisplay.h"

#include "particles/cindermill/interface/particles/wires.h"
#include "particles/cindermill/main/animation/animation.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/simpleparameters.h"

static constexpr int NumPoints = 100;

static const TNodeAnimationParameter* FindAnimation(const TEffectNode& node)
{
    return node.GetNodeType()->FindParameterOf<TNodeAnimationParameter>("Animation", PK_ANIMATION);
}

void TAnimationPathDisplay::Init(TEffectNode* node)
{
    TNodeDisplay::Init(node);
    ASSERT_TEXT(FindAnimation(*node) != nullptr, "Param != 0");
}

// The node itself tells the artist of a file that is missing or broken.
bool TAnimationPathDisplay::Tick()
{
    const TNodeAnimationParameter* parameter = FindAnimation(*Node);
    const TString& name = parameter != nullptr ? parameter->GetFileName() : TString();
    TResourceLocator& locator = TCindermillApp::Get().GetResourceLocator();
    const bool isNew = FileName.Compare(name, true) != 0;
    if (!isNew && Round == locator.GetRound())
        return false;
    const TAnimation* before = Animation;
    FileName = name;
    Round = locator.GetRound();
    if (isNew)
        FindAnew();
    else
        FindAgain();
    return Animation != before;
}

void TAnimationPathDisplay::FindAnew()
{
    TString path;
    Animation = nullptr;
    Found = TCindermillApp::Get().GetResourceLocator().Find(FileName, path) != FR_NOTFOUND;
    if (Found)
        Animation = GetAnimation(path);
}

// The name may lead to a file at last, or to another one. Nobody is asked or told again on account of a
// display.
void TAnimationPathDisplay::FindAgain()
{
    TString path;
    if (!TCindermillApp::Get().GetResourceLocator().FindKnown(FileName, path))
        return;
    const bool isKnownBad = Found && Animation == nullptr;
    Animation = isKnownBad ? FindLoadedAnimation(path) : GetAnimation(path);
    Found = true;
}

void TAnimationPathDisplay::Render(const TSceneView&)
{
    if (Animation == nullptr)
        return;
    TWires wires(GetColour(), TMatrix43(), TWires::WK_STRIP);
    for (int i = 0; i < NumPoints; ++i) {
        const float time = static_cast<float>(double(i) * Animation->GetLength() / NumPoints);
        TPortValue place;
        Animation->Evaluate(time, AT_POSITION, place.GetFloats());
        wires.Point(TVector3(place[0], place[1], place[2]));
    }
}
