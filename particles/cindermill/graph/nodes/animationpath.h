#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

class TAnimation;
class TNodeAnimationParameter;
class TNodeParameter;

// A transform that follows a key-framed animation. The console does not know it.
class TAnimationPath : public TRegistered<TAnimationPath, TExecLoop<TAnimationPath, 1, 1>>
{
public:
    static constexpr const char* RegisteredName = "TAnimationPath";
    ~TAnimationPath() override;
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;

protected:
    void BeginRun() override;

private:
    static void OnChanged(TNodeParameter* parameter, void* path);
    // Takes the parameter's file; on failure the animation stays as it was.
    bool LoadAnimation(TString& error);

    TNodeAnimationParameter* Parameter = nullptr;
    // The shared one of its file.
    const TAnimation* Animation = nullptr;
    // TAnimTracks that the present run uses.
    unsigned Tracks = 0;
};
