#pragma once

class TVector4;

// Whether light lines are seen better before the colour than black ones.
bool IsDark(const TVector4& behind);
// The colour of a line, or one of its kind where it could hardly be told from what is behind. Alpha stays.
TVector4 GetLineColour(const TVector4& colour, const TVector4& behind);
