#pragma once

#include "library/containers/string.h"

class TDocument;
class TEffectNode;
class TEffectSchedule;

// Finds out why a preview shows nothing.
class TPreviewDiagnosis
{
public:
    // Once in an idle pass. What is drawn is one group, or with -1 all of them.
    void Tick(TDocument& document, int onlyGroup);
    // What a person is told, in lines; empty as long as there is something to see, or was a moment ago.
    const TString& GetText() const { return Text; }

private:
    // What of a running effect is alive, and what of it is drawn.
    struct TCensus
    {
        int NumAlive = 0;
        int NumDrawn = 0;
        int NumStages = 0;
        int NumBypassed = 0;
        // With particles and no stage; -1 for none.
        int StagelessGroup = -1;
    };

    void TellStopped(TDocument& document);
    void TellRunning(TDocument& document, int onlyGroup);
    void TellNothingAlive(TDocument& document);
    static bool HasStage(const TEffectSchedule& schedule, int group);
    void Count(TDocument& document, int onlyGroup, TCensus& census);

    TString Text;
    unsigned NumStarts = 0;
    // Whether anything was ever born since the start.
    bool Emitted = false;
    // The effect's time when something was drawn last.
    float LastSeen = 0;
};
