#include "library/wimp/gl/renderobjects.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/renderer.h"

namespace {
constexpr float Unbounded = 1e30f;
}

TRenderObjects::~TRenderObjects()
{
    // Told of it, objects may leave by themselves.
    for (int i = Objects.size() - 1; i >= 0; --i)
        if (i < Objects.size())
            Objects[i]->LoseInput();
    for (TRenderObject* object : Objects) {
        object->Container = nullptr;
        if (object->Parent == this)
            object->Parent = nullptr;
    }
}

void TRenderObjects::Render(TRenderer& renderer)
{
    TVector2 visibleMin;
    TVector2 visibleMax;
    renderer.GetVisibleRect(visibleMin, visibleMax);
    for (TRenderObject* object : Objects) {
        if (object == GetOverlay())
            continue;
        TVector2 min;
        TVector2 max;
        object->GetBounds(min, max);
        const TVector2 place = object->GetOrigin() + renderer.GetOrigin();
        min += place;
        max += place;
        if (max[0] < visibleMin[0] || max[1] < visibleMin[1] || min[0] > visibleMax[0] ||
            min[1] > visibleMax[1])
            continue;
        renderer.PushOrigin(object->GetOrigin());
        object->Render(renderer);
        renderer.PopOrigin();
    }
}

void TRenderObjects::GetBounds(TVector2& min, TVector2& max)
{
    if (!BoundsCurrent) {
        BoundsMin = TVector2(Unbounded, Unbounded);
        BoundsMax = TVector2(-Unbounded, -Unbounded);
        for (TRenderObject* object : Objects) {
            TVector2 low;
            TVector2 high;
            object->GetBounds(low, high);
            low += object->GetOrigin();
            high += object->GetOrigin();
            for (int i = 0; i < 2; ++i) {
                if (low[i] < BoundsMin[i])
                    BoundsMin[i] = low[i];
                if (high[i] > BoundsMax[i])
                    BoundsMax[i] = high[i];
            }
        }
        BoundsCurrent = true;
    }
    min = BoundsMin;
    max = BoundsMax;
}

TRenderObject* TRenderObjects::HitTest(const TVector2& point)
{
    const TVector2 inside = point - Origin;
    for (int i = Objects.size() - 1; i >= 0; --i)
        if (TRenderObject* hit = Objects[i]->HitTest(inside))
            return hit;
    return nullptr;
}

vector<TRenderObject*>::iterator TRenderObjects::Find(TRenderObject* object)
{
    vector<TRenderObject*>::iterator it = Objects.find(object);
    ASSERT_TEXT(it != Objects.end(), "it != Objects.end()");
    return it;
}

// To be done before the object is listed.
void TRenderObjects::Adopt(TRenderObject* object)
{
    ASSERT_TEXT(Objects.find(object) == Objects.end(), "Objects.find(object) == Objects.end()");
    if (object->Container != nullptr)
        object->Container->RemoveObject(object);
    object->Container = this;
    object->Parent = this;
    TouchBounds();
}

void TRenderObjects::AddObject(TRenderObject* object)
{
    Adopt(object);
    Objects.push_back(object);
}

void TRenderObjects::AddObjectFront(TRenderObject* object)
{
    Adopt(object);
    Objects.insert(Objects.begin(), object);
}

void TRenderObjects::RemoveObject(TRenderObject* object)
{
    Find(object);
    object->LoseInput();
    // Told of it, the object may have left by itself.
    if (!HasObject(object))
        return;
    Objects.erase(Find(object));
    object->Container = nullptr;
    if (object->Parent == this)
        object->Parent = nullptr;
    TouchBounds();
}

bool TRenderObjects::HasObject(const TRenderObject* object) const
{
    return Objects.index_of(const_cast<TRenderObject*>(object)) >= 0;
}

void TRenderObjects::MoveToFront(TRenderObject* object)
{
    Objects.erase(Find(object));
    Objects.push_back(object);
}

void TRenderObjects::MoveToBack(TRenderObject* object)
{
    Objects.erase(Find(object));
    Objects.insert(Objects.begin(), object);
}
