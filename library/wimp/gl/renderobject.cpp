#include "library/wimp/gl/renderobject.h"

#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/rendererwatch.h"
#include "library/wimp/gl/renderobjects.h"
#include "library/wimp/gl/renderwindow.h"

namespace {
constexpr int HoverTimer = 1;
constexpr int HoverMilliseconds = 1000;
constexpr int RoutedKeyFlags = KF_SHIFT | KF_CTRL | KF_ALT;

// A pointer on the stack that becomes null when its object goes.
struct TObjectWatch
{
    explicit TObjectWatch(TRenderObject* object);
    ~TObjectWatch();
    TObjectWatch(const TObjectWatch&) = delete;
    TObjectWatch& operator=(const TObjectWatch&) = delete;

    TRenderObject* Object;
    TObjectWatch* Next;
};

// A message being routed. Others are routed within it: a view that is given the focus hears of that, and the
// one that loses it.
struct TRoute
{
    TRoute(TRenderer& renderer, const TMessage& message);
    ~TRoute();
    TRoute(const TRoute&) = delete;
    TRoute& operator=(const TRoute&) = delete;

    TRendererWatch Renderer;
    // The keys that were down when the message was sent. SetFocus leaves them.
    int KeyFlags;
    bool IsRepeat;
    TRoute* Outer;
};

struct TTickEntry
{
    TRenderObject* Object;
    // Null for the one that the object finds.
    TRenderer* View;
};

struct TRouting
{
    TRenderObject* HoverObject = nullptr;
    TRenderObject* FocusObject = nullptr;
    TRenderObject* CaptureObject = nullptr;
    TRenderObject* OverlayObject = nullptr;
    // The views that these belong to; null for all.
    TRenderer* FocusView = nullptr;
    TRenderer* CaptureView = nullptr;
    TRenderer* OverlayView = nullptr;
    TVector2 Pointer = TVector2(0, 0);
    TVector2 LastPointer = TVector2(0, 0);
    TRenderWindow* FocusWindow = nullptr;
    int KeyFlags = 0;
    TRoute* Route = nullptr;
    vector<TTickEntry> Ticks;
    TObjectWatch* Watches = nullptr;
};

// Never destroyed: objects may go after everything else.
TRouting& GetRouting()
{
    static TRouting& routing = *new TRouting;
    return routing;
}

TObjectWatch::TObjectWatch(TRenderObject* object) : Object(object), Next(GetRouting().Watches)
{
    GetRouting().Watches = this;
}

TObjectWatch::~TObjectWatch()
{
    GetRouting().Watches = Next;
}

TRoute::TRoute(TRenderer& renderer, const TMessage& message)
    : Renderer(&renderer), KeyFlags(message.KeyFlags & RoutedKeyFlags), IsRepeat(message.IsRepeat),
      Outer(GetRouting().Route)
{
    GetRouting().Route = this;
}

TRoute::~TRoute()
{
    GetRouting().Route = Outer;
}

// The keys that objects hear of beside characters.
bool IsNavigationKey(int key)
{
    switch (key) {
    case KEY_LEFT:
    case KEY_RIGHT:
    case KEY_UP:
    case KEY_DOWN:
    case KEY_HOME:
    case KEY_END:
    case KEY_PAGEUP:
    case KEY_PAGEDOWN:
    case KEY_DELETE:
    case KEY_BACKSPACE:
    case KEY_ESCAPE:
    case KEY_RETURN:
    case KEY_TAB:
        return true;
    default:
        return false;
    }
}

int GetKeyFlag(int key)
{
    if (key == KEY_SHIFT)
        return KF_SHIFT;
    return key == KEY_CTRL ? KF_CTRL : 0;
}

TTickEntry* FindTick(const TRenderObject* object)
{
    for (TTickEntry& entry : GetRouting().Ticks)
        if (entry.Object == object)
            return &entry;
    return nullptr;
}

void StopHoverTimer(TRenderer& renderer)
{
    if (renderer.GetWindow() != nullptr)
        renderer.GetWindow()->StopTimer(HoverTimer);
}
} // namespace

TRenderObject::~TRenderObject()
{
    TRouting& routing = GetRouting();
    if (routing.FocusObject == this)
        routing.FocusObject = FindInputHome(Parent);
    TRenderObject** const pointers[] = {&routing.HoverObject, &routing.CaptureObject, &routing.OverlayObject};
    for (TRenderObject** pointer : pointers)
        if (*pointer == this)
            *pointer = nullptr;
    for (TObjectWatch* watch = routing.Watches; watch != nullptr; watch = watch->Next)
        if (watch->Object == this)
            watch->Object = nullptr;
    RemoveTick(this);
    if (Container != nullptr)
        Container->RemoveObject(this);
}

TRenderObject* TRenderObject::HitTest(const TVector2& point)
{
    return Contains(point - Origin) ? this : nullptr;
}

// The point is relative to the object.
bool TRenderObject::Contains(const TVector2& point)
{
    TVector2 min;
    TVector2 max;
    GetBounds(min, max);
    for (int i = 0; i < 2; ++i)
        if (!(point[i] >= min[i] && point[i] < max[i]))
            return false;
    return true;
}

bool TRenderObject::Event(const TRenderEvent& event)
{
    return Parent != nullptr && Parent->Event(event);
}

void TRenderObject::SetOrigin(const TVector2& origin)
{
    Origin = origin;
    if (Parent != nullptr)
        Parent->TouchBounds();
}

TVector2 TRenderObject::GetAbsolutePosition() const
{
    TVector2 position(0, 0);
    for (const TRenderObject* object = this; object != nullptr; object = object->Parent)
        position += object->Origin;
    return position;
}

void TRenderObject::TouchBounds()
{
    for (TRenderObject* object = this; object != nullptr; object = object->Parent)
        object->ForgetBounds();
}

const TRenderObject* TRenderObject::GetTop() const
{
    const TRenderObject* top = this;
    while (top->Parent != nullptr)
        top = top->Parent;
    return top;
}

bool TRenderObject::IsIn(const TRenderObject& object) const
{
    const TRenderObject* above = this;
    while (above != nullptr && above != &object)
        above = above->Parent;
    return above != nullptr;
}

TRenderObject* TRenderObject::FindInputHome(TRenderObject* object)
{
    while (object != nullptr && !object->IsInputHome())
        object = object->Parent;
    return object;
}

void TRenderObject::LoseInput()
{
    const TRouting& routing = GetRouting();
    if (routing.CaptureObject != nullptr && routing.CaptureObject->IsIn(*this))
        ReleaseCapture();
    if (routing.OverlayObject != nullptr && routing.OverlayObject->IsIn(*this))
        SetOverlay(nullptr);
    if (routing.FocusObject != nullptr && routing.FocusObject->IsIn(*this))
        SetFocus(FindInputHome(Parent));
    LoseHover();
}

// The pointer rests on something else now, which will hear of it with the next move.
void TRenderObject::LoseHover()
{
    TRenderObject* hover = GetRouting().HoverObject;
    if (hover == nullptr || !hover->IsIn(*this))
        return;
    GetRouting().HoverObject = nullptr;
    Send(hover, RE_LEAVE);
}

bool TRenderObject::Route(TRenderer& renderer, TRenderObject& root, const TMessage& message)
{
    const TRoute route(renderer, message);
    return Dispatch(renderer, root, message);
}

bool TRenderObject::Dispatch(TRenderer& renderer, TRenderObject& root, const TMessage& message)
{
    switch (message.Type) {
    case MT_MOUSEMOVE:
        return RouteMove(renderer, root, message);
    case MT_MOUSELEAVE:
        RouteLeave(renderer);
        return false;
    case MT_LEFTDOWN:
        return RouteButton(renderer, root, message, RE_LEFTDOWN);
    case MT_LEFTUP:
        return RouteButton(renderer, root, message, RE_LEFTUP);
    case MT_WHEEL:
        return SendToFocus(renderer, root, RE_WHEEL, message.Delta);
    case MT_TIMER:
        if (message.Timer != HoverTimer)
            return false;
        StopHoverTimer(renderer);
        Send(GetRouting().HoverObject, RE_HOVER);
        return true;
    case MT_FOCUSLOST:
        RouteFocusLost(renderer, root);
        return false;
    case MT_FOCUSGAINED:
        RouteFocusGained(renderer, root);
        return false;
    case MT_KEYDOWN:
        return RouteKeyDown(renderer, root, message.Key);
    case MT_KEYUP:
        RouteKeyUp(message.Key);
        return false;
    case MT_CHAR:
        return SendToFocus(renderer, root, RE_CHARACTER, static_cast<int>(message.Character));
    default:
        return false;
    }
}

TRenderObject* TRenderObject::FindOverlay(const TRenderer& renderer, const TRenderObject& root)
{
    const TRouting& routing = GetRouting();
    TRenderObject* overlay = routing.OverlayObject;
    if (overlay == nullptr || (routing.OverlayView != nullptr && routing.OverlayView != &renderer))
        return nullptr;
    return overlay->Parent == nullptr || overlay->GetTop() == root.GetTop() ? overlay : nullptr;
}

// What of the overlay is at a world position, or null.
TRenderObject* TRenderObject::FindOverlayTarget(TRenderer& renderer, TRenderObject& root,
                                                const TVector2& point)
{
    TRenderObject* overlay = FindOverlay(renderer, root);
    if (overlay == nullptr)
        return nullptr;
    return overlay->HitTest(point - overlay->GetAbsolutePosition() + overlay->Origin);
}

// The object that hears of the pointer at a world position, or null.
TRenderObject* TRenderObject::FindTarget(TRenderer& renderer, TRenderObject& root, const TVector2& point)
{
    const TRouting& routing = GetRouting();
    TRenderObject* capture = routing.CaptureObject;
    if (capture != nullptr && (routing.CaptureView == nullptr || routing.CaptureView == &renderer) &&
        capture->Contains(point - capture->GetAbsolutePosition()))
        return capture;
    TRenderObject* overlay = FindOverlayTarget(renderer, root, point);
    return overlay != nullptr ? overlay : root.HitTest(point);
}

bool TRenderObject::TellParent(int code, int detail, const TVector2& point)
{
    if (Parent == nullptr)
        return false;
    TRenderEvent event;
    event.Source = this;
    event.Code = code;
    event.Point = point;
    event.Detail = detail;
    return Parent->Event(event);
}

bool TRenderObject::Send(TRenderObject* object, int code, int detail)
{
    if (object == nullptr)
        return false;
    TRenderEvent event;
    event.Source = object;
    event.Code = code;
    event.Point = GetRouting().Pointer - object->GetAbsolutePosition();
    event.Detail = detail;
    return object->Event(event);
}

// What is typed into one view never reaches what has the focus in another.
bool TRenderObject::SendToFocus(TRenderer& renderer, TRenderObject& root, int code, int detail)
{
    const TRouting& routing = GetRouting();
    TRenderObject* focus = routing.FocusObject;
    if (focus == nullptr || focus->GetTop() != root.GetTop() ||
        (routing.FocusView != nullptr && routing.FocusView != &renderer))
        return false;
    return Send(focus, code, detail);
}

bool TRenderObject::RouteMove(TRenderer& renderer, TRenderObject& root, const TMessage& message)
{
    TRouting& routing = GetRouting();
    routing.LastPointer = routing.Pointer;
    routing.Pointer = renderer.PixelToWorld(message.X, message.Y);
    TObjectWatch target(FindTarget(renderer, root, routing.Pointer));
    if (target.Object == nullptr) {
        StopHoverTimer(renderer);
    } else if (renderer.GetWindow() != nullptr) {
        renderer.GetWindow()->StartTimer(HoverTimer, HoverMilliseconds);
    }
    if (target.Object == routing.HoverObject)
        return Send(target.Object, RE_MOVE);
    Send(routing.HoverObject, RE_LEAVE);
    const bool consumed = Send(target.Object, RE_ENTER);
    routing.HoverObject = target.Object;
    return consumed;
}

void TRenderObject::RouteLeave(TRenderer& renderer)
{
    StopHoverTimer(renderer);
    TRouting& routing = GetRouting();
    if (routing.CaptureObject != nullptr)
        return;
    Send(routing.HoverObject, RE_LEAVE);
    routing.HoverObject = nullptr;
}

bool TRenderObject::RouteButton(TRenderer& renderer, TRenderObject& root, const TMessage& message, int code)
{
    StopHoverTimer(renderer);
    TRouting& routing = GetRouting();
    routing.LastPointer = routing.Pointer;
    routing.Pointer = renderer.PixelToWorld(message.X, message.Y);
    if (code == RE_LEFTDOWN && routing.OverlayObject != nullptr &&
        FindOverlayTarget(renderer, root, routing.Pointer) == nullptr &&
        Send(routing.OverlayObject, RE_PRESSEDOUTSIDE))
        return true;
    return Send(FindTarget(renderer, root, routing.Pointer), code);
}

bool TRenderObject::RouteKeyDown(TRenderer& renderer, TRenderObject& root, int key)
{
    GetRouting().KeyFlags |= GetKeyFlag(key);
    return IsNavigationKey(key) && SendToFocus(renderer, root, RE_KEY, key);
}

void TRenderObject::RouteKeyUp(int key)
{
    GetRouting().KeyFlags &= ~GetKeyFlag(key);
}

void TRenderObject::RouteFocusLost(TRenderer& renderer, TRenderObject& root)
{
    TRouting& routing = GetRouting();
    // A window that loses the focus to the one that SetFocus has just chosen has no say any more.
    if (routing.FocusWindow != nullptr && routing.FocusWindow != renderer.GetWindow())
        return;
    routing.KeyFlags = 0;
    SendToFocus(renderer, root, RE_FOCUSLOST, 0);
    routing.FocusWindow = nullptr;
}

void TRenderObject::RouteFocusGained(TRenderer& renderer, TRenderObject& root)
{
    TRouting& routing = GetRouting();
    if (routing.FocusObject != nullptr && routing.FocusObject->GetTop() == root.GetTop() &&
        (routing.FocusView == nullptr || routing.FocusView == &renderer))
        routing.FocusWindow = renderer.GetWindow();
}

void TRenderObject::SetFocus(TRenderObject* object, TRenderer* renderer)
{
    TRouting& routing = GetRouting();
    TRenderWindow* window = renderer != nullptr ? renderer->GetWindow() : nullptr;
    const bool isSameView = renderer == nullptr || renderer == routing.FocusView;
    if (object == routing.FocusObject && isSameView &&
        (object == nullptr || window == nullptr || window->HasFocus()))
        return;
    // Stored before the old one is told, as what that does may take the new one away again.
    TRenderObject* before = routing.FocusObject;
    const bool staysInView = before != nullptr && object != nullptr && before->GetTop() == object->GetTop();
    if (renderer != nullptr || !staysInView)
        routing.FocusView = object != nullptr ? renderer : nullptr;
    routing.FocusObject = object;
    routing.KeyFlags = 0;
    Send(before, RE_FOCUSLOST);
    if (object == nullptr || routing.FocusObject != object || window == nullptr)
        return;
    const bool differs = window != routing.FocusWindow || !window->HasFocus();
    routing.FocusWindow = window;
    if (differs)
        window->TakeFocus();
}

void TRenderObject::SetCapture(TRenderObject* object)
{
    GetRouting().CaptureObject = object;
    GetRouting().CaptureView = GetRenderer();
}

void TRenderObject::ReleaseCapture()
{
    GetRouting().CaptureObject = nullptr;
}

void TRenderObject::SetOverlay(TRenderObject* object, TRenderer* renderer)
{
    GetRouting().OverlayObject = object;
    GetRouting().OverlayView = renderer;
}

TRenderObject* TRenderObject::GetHover()
{
    return GetRouting().HoverObject;
}

TRenderObject* TRenderObject::GetFocus()
{
    return GetRouting().FocusObject;
}

TRenderer* TRenderObject::GetFocusView()
{
    return GetRouting().FocusView;
}

TRenderObject* TRenderObject::GetCapture()
{
    return GetRouting().CaptureObject;
}

TRenderObject* TRenderObject::GetOverlay()
{
    return GetRouting().OverlayObject;
}

TRenderer* TRenderObject::GetRenderer()
{
    const TRoute* route = GetRouting().Route;
    return route != nullptr ? route->Renderer.Get() : nullptr;
}

TVector2 TRenderObject::GetPointer()
{
    return GetRouting().Pointer;
}

TVector2 TRenderObject::GetLastPointer()
{
    return GetRouting().LastPointer;
}

int TRenderObject::GetKeyFlags()
{
    const TRoute* route = GetRouting().Route;
    return GetRouting().KeyFlags | (route != nullptr ? route->KeyFlags : 0);
}

bool TRenderObject::IsKeyRepeat()
{
    const TRoute* route = GetRouting().Route;
    return route != nullptr && route->IsRepeat;
}

void TRenderObject::ForgetRenderer(const TRenderer* renderer)
{
    TRouting& routing = GetRouting();
    if (renderer->GetWindow() != nullptr && routing.FocusWindow == renderer->GetWindow())
        routing.FocusWindow = nullptr;
    for (TTickEntry& entry : routing.Ticks)
        if (entry.View == renderer)
            entry.View = nullptr;
    if (routing.OverlayView == renderer)
        SetOverlay(nullptr);
    if (routing.CaptureView == renderer) {
        ReleaseCapture();
        routing.CaptureView = nullptr;
    }
    if (routing.FocusView == renderer) {
        // What was typed there goes with the view: the object is not told.
        routing.FocusObject = FindInputHome(routing.FocusObject);
        routing.FocusView = nullptr;
    }
}

void TRenderObject::AddTick(TRenderObject* object)
{
    if (TTickEntry* entry = FindTick(object)) {
        if (GetRenderer() != nullptr)
            entry->View = GetRenderer();
        return;
    }
    GetRouting().Ticks.push_back(TTickEntry{object, GetRenderer()});
}

void TRenderObject::RemoveTick(TRenderObject* object)
{
    if (TTickEntry* entry = FindTick(object))
        GetRouting().Ticks.erase(entry);
}

bool TRenderObject::HasTicks()
{
    return !GetRouting().Ticks.empty();
}

void TRenderObject::RunTicks(TRenderer* renderer)
{
    const vector<TTickEntry> ticked = GetRouting().Ticks;
    for (const TTickEntry& entry : ticked) {
        // One object's tick may delete another, or a view.
        const TTickEntry* now = FindTick(entry.Object);
        if (now == nullptr)
            continue;
        TRenderer* view = now->View != nullptr ? now->View : entry.Object->FindView();
        entry.Object->Tick(view != nullptr ? view : renderer);
    }
}
