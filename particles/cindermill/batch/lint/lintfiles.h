#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

class TEffectGraph;
class TEffectNode;
class TLintReport;
class TResourceLocator;
struct TFileReference;

// Textures and animations: whether they are there, can be read, and where they lie. What was read once is
// known for all effects of a lint.
class TLintFiles
{
public:
    // The locator stays the caller's.
    explicit TLintFiles(TResourceLocator& locator) : Locator(locator) {}
    void Tell(const TEffectGraph& graph, TLintReport& report);
    // Of the last effect: whether some animation cannot be had, so that its engine cannot be made.
    bool LacksAnimation() const { return AnimationFault; }

private:
    // A file that an effect names.
    struct TUse
    {
        const TEffectNode* Node;
        TString Name;
        bool IsAnimation;
        int Count;
    };
    struct TPicture
    {
        TString Path;
        bool Readable;
        int Width;
        int Height;
    };

    void AddUse(const TFileReference& reference, TLintReport& report);
    void TellUse(const TUse& use, TLintReport& report);
    void TellAnimation(const TUse& use, const TString& path, TLintReport& report);
    void TellPicture(const TUse& use, const TString& path, TLintReport& report);
    void TellOutside(const TUse& use, const TString& path, TLintReport& report) const;
    const TPicture& GetPicture(const TString& path);
    void Fail(const TUse& use) { AnimationFault = AnimationFault || use.IsAnimation; }

    TResourceLocator& Locator;
    vector<TUse> Uses;
    vector<TPicture> Pictures;
    bool AnimationFault = false;
};
