#pragma once

#include "library/wimp/gl/renderobject.h"

// A render object made of others, drawn in order; the last is topmost. Never owns them.
class TRenderObjects : public TRenderObject
{
public:
    ~TRenderObjects() override;
    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;

    // To the end of the list: drawn last, over the others. An object leaves the container that it was in.
    void AddObject(TRenderObject* object);
    // To the front of the list: drawn first, under the others.
    void AddObjectFront(TRenderObject* object);
    void RemoveObject(TRenderObject* object);
    bool HasObject(const TRenderObject* object) const;
    // In the picture, the front is drawn last, over the others.
    void MoveToFront(TRenderObject* object);
    void MoveToBack(TRenderObject* object);
    const vector<TRenderObject*>& GetObjects() const { return Objects; }

protected:
    void ForgetBounds() override { BoundsCurrent = false; }

    vector<TRenderObject*> Objects;

private:
    void Adopt(TRenderObject* object);
    vector<TRenderObject*>::iterator Find(TRenderObject* object);

    TVector2 BoundsMin = TVector2(0, 0);
    TVector2 BoundsMax = TVector2(0, 0);
    bool BoundsCurrent = false;
};
