#pragma once

class TRenderObject;
class TTextEdit;

// Gives the focus to the field that follows an object, or comes before it, in the order of the tree, round
// and round among the fields of the nearest panel above; without a panel, of all under the uppermost parent.
// The input of a field that loses the focus ends; so does that of a field without another. Fields that take
// no text are passed over.
void WalkFields(TRenderObject& from, bool backwards);
// The field that WalkFields would go to; null without another.
TTextEdit* FindNextField(TRenderObject& from, bool backwards);
