#pragma once

#include "library/containers/vector.h"

class TEffectNode;
class TEffectSchedule;
class TReplayReport;
struct TReplayPlace;
struct TTiedNode;

// Names the node that each difference seems to come from: from the node that writes a value the way goes back
// over the values that differ too. One difference at a time, so that others may work in between.
class TDifferenceSources
{
public:
    // Refers to both. Neither may change until all differences have their node.
    TDifferenceSources(const TEffectSchedule& schedule, TReplayReport& report);
    bool IsDone() const;
    // Of the next difference.
    void FindNext();

private:
    // What the way back asks of each attribute, by its place in one list for all groups.
    struct TValue
    {
        int Group = 0;
        int Attribute = 0;
        // The first frame in which it differs.
        int FirstFrame = 0;
        // The last node that writes it, one that is told to differ ahead of others; else the first that has
        // it.
        const TEffectNode* Node = nullptr;
        bool IsSuspect = false;
        // Which of the tied nodes write it: a part of Writers.
        int FirstWriter = 0;
        int NumWriters = 0;
        // The last search that has been here.
        int SeenBy = -1;
    };

    void ListValues();
    void ListWriters(int group);
    void ListDifferences();
    int FindValue(int group, int attrib) const;
    const TEffectNode* FindSource(const TReplayPlace& place);
    void AddStep(int value, int frame);
    void AddSupplier(const TValue& value, int frame);
    void AddInputs(const TValue& value, int frame);

    const TEffectSchedule& Schedule;
    TReplayReport& Report;
    // By group, where its values begin.
    vector<int> FirstValues;
    vector<TValue> Values;
    vector<const TTiedNode*> Writers;
    // The way of the search that goes on.
    vector<int> Steps;
    int Next = 0;
};

// All of them.
void FindDifferenceSources(const TEffectSchedule& schedule, TReplayReport& report);
