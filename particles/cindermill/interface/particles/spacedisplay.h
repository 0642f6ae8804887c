#pragma once

#include "library/maths/matrix43.h"
#include "library/maths/vector4.h"
#include "particles/cindermill/graph/engine/portvalue.h"
#include "particles/cindermill/graph/operations/nodedisplay.h"

class TNodeParameter;

// The base of the displays: reads the ports that place the shape. A node's type may be brought up to date
// under its display, so parameters are looked up whenever they are needed.
class TSpaceDisplay : public TNodeDisplay
{
protected:
    // The parameter of an input port by its number, or null if it is none of the type.
    TNodeParameter* FindPort(int port, int type) const;
    bool IsConnected(int port) const;
    TPortValue ReadPort(int port) const;
    // The frame of a transform port, scaled by a Scale (x and z) or a Vector3 port unless that is connected.
    // False if there is nothing to draw, as the transform port is connected.
    bool GetFrame(int transformPort, int sizePort, TMatrix43& frame) const;
    // What the shapes are drawn in: faint, and plain to see while the node is selected.
    TVector4 GetColour() const;
};
