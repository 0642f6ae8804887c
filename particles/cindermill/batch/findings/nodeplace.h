#pragma once

#include "particles/cindermill/batch/findings/finding.h"

class TEffectNode;

// What a finding tells of a node that stands in the group; -1 for one that stands in none.
void SetNodePlace(const TEffectNode& node, int group, TFindingPlace& place);
