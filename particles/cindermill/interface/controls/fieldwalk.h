#pragma once

class TRenderObject;

// Gives the focus to the control that follows an object, or comes before it, in the order of the tree, round
// and round among the controls of the nearest panel above; without a panel, of all under the uppermost
// parent. The input of a field that loses the focus ends; so does that of a field without another. Controls
// that take no keys are passed over.
void WalkFields(TRenderObject& from, bool backwards);
// The control that WalkFields would go to; null without another.
TRenderObject* FindNextField(TRenderObject& from, bool backwards);
