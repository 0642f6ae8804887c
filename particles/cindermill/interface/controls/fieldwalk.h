#pragma once

class TRenderObject;
class TTextEdit;

// Gives the focus to the field that follows, or comes before, in the order of the tree, round and round among
// the fields of the nearest panel above; without a panel, of all under the uppermost parent. The input of the
// field that loses the focus ends. Fields that take no text are passed over.
void WalkFields(TTextEdit& from, bool backwards);
// The field that WalkFields would go to; null without another.
TTextEdit* FindNextField(TTextEdit& from, bool backwards);
