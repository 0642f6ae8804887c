#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/vector.h"
#include "library/maths/vector2.h"
#include "library/wimp/gl/accessibletraits.h"
#include "library/wimp/gl/windowmessage.h"

class TRenderObject;
class TRenderObjects;
class TRenderer;
class TRenderWindow;

// What an object hears of. From 10 on they are notifications among objects.
enum TRenderEventCode
{
    RE_LEFTDOWN = 0,
    RE_LEFTUP = 1,
    RE_WHEEL = 2,
    RE_ENTER = 3,
    RE_LEAVE = 4,
    RE_MOVE = 5,
    RE_HOVER = 6,
    RE_CHARACTER = 7,
    RE_KEY = 8,
    RE_FOCUSLOST = 9,
    RE_REDRAW = 10,
    RE_VALUECHANGED = 15,
    RE_NODEREFRESH = 17,
    RE_NODEDRAG = 26,
    RE_PORTDRAG = 27,
    RE_RELAYOUT = 28,
    // To the overlay: the left button went down anywhere but on it. Consumed, nothing else hears of it.
    RE_PRESSEDOUTSIDE = 29
};

struct TRenderEvent
{
    TRenderObject* Source = nullptr;
    int Code = RE_MOVE;
    // The pointer, in the space of the object that the event was first sent to.
    TVector2 Point = TVector2(0, 0);
    // The wheel's delta, a character, a TKey, or what a notification tells besides.
    int Detail = 0;
};

// Anything that is drawn in a graph view and hears of input there. Its position, Origin, is relative to its
// parent's. The routing state (hover, focus, capture, overlay) is one for the program and never points at an
// object that has gone. Focus, capture and overlay belong to the view that they began in: other views of the
// same objects neither draw the overlay nor send the focus their keys.
class TRenderObject : public TRegistered<TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TRenderObject";
    TRenderObject() = default;
    ~TRenderObject() override;
    TRenderObject(const TRenderObject&) = delete;
    TRenderObject& operator=(const TRenderObject&) = delete;

    virtual void Render(TRenderer& renderer) = 0;
    // Relative to the object's own position.
    virtual void GetBounds(TVector2& min, TVector2& max) = 0;
    // The object under the point, which is in the parent's space, or null.
    virtual TRenderObject* HitTest(const TVector2& point);
    // Whether the event was consumed. Passed on to the parent unless an object takes it.
    virtual bool Event(const TRenderEvent& event);
    virtual void Tick(TRenderer* renderer) { (void)renderer; }

    TRenderObject* GetParent() const { return Parent; }
    void SetParent(TRenderObject* parent) { Parent = parent; }
    const TVector2& GetOrigin() const { return Origin; }
    // Marks the parents' bounds out of date.
    void SetOrigin(const TVector2& origin);
    // The sum of the origins up through the parents, this one's included.
    TVector2 GetAbsolutePosition() const;
    // To be called when the object's bounds have changed.
    void TouchBounds();
    // The uppermost parent; the object itself without one.
    const TRenderObject* GetTop() const;
    // Whether this is the object or stands somewhere below it.
    bool IsIn(const TRenderObject& object) const;
    // A view that shows the object; null for none.
    virtual TRenderer* FindView() const { return Parent != nullptr ? Parent->FindView() : nullptr; }
    // Whether the object takes over what one below it loses by going: the focus.
    virtual bool IsInputHome() const { return false; }
    // Whether the Tab key stays among the controls below the object.
    virtual bool IsFieldPanel() const { return false; }
    // What the object tells tools for those who cannot see it; false for what is no control by itself.
    virtual bool Describe(TAccessibleTraits& traits)
    {
        (void)traits;
        return false;
    }
    // What a control below the object is called, where nothing is written on it.
    virtual void NamePart(const TRenderObject& part, TString& name) const
    {
        (void)part;
        (void)name;
    }
    // As a click on the control does. False for one that cannot be clicked. The object may be gone then.
    virtual bool Activate() { return false; }
    // As a person who types a value and ends with Return. False for a text that is none.
    virtual bool EnterValue(const char* text)
    {
        (void)text;
        return false;
    }
    // The keys go to the control, by the Tab key or by name.
    virtual void TakeKeys(TRenderer* renderer) { SetFocus(this, renderer); }
    // For an object that is hidden, which leaving its container does by itself: what has the focus in it
    // gives it to the nearest home above, if there is one, in the view that had it; a capture in it ends, an
    // overlay goes, and the pointer leaves it. The keyboard stays with the window that has it.
    void LoseInput();

    // Hands a window's message to the objects under the root; true if one consumed it. The renderer must be
    // that of the window.
    static bool Route(TRenderer& renderer, TRenderObject& root, const TMessage& message);
    // The focused object gets keys and characters; null for none. The renderer is that of the view that gets
    // the keyboard along; without one the keyboard stays with the window that has it, and the focus with the
    // view that had it, if the new object is shown there too.
    static void SetFocus(TRenderObject* object, TRenderer* renderer = nullptr);
    // In the view whose message is being routed; outside of that, in all views.
    static void SetCapture(TRenderObject* object);
    static void ReleaseCapture();
    // Drawn above everything in the view of the renderer, and hit there before everything; null for none. Of
    // presses elsewhere, in any view, it hears first. Without a renderer it is in all views of its tree. It
    // ends by itself when the object or the view goes, or the object is hidden.
    static void SetOverlay(TRenderObject* object, TRenderer* renderer = nullptr);
    static TRenderObject* GetHover();
    static TRenderObject* GetFocus();
    // The view that the focus belongs to; null for none, or for all that show it.
    static TRenderer* GetFocusView();
    static TRenderObject* GetCapture();
    static TRenderObject* GetOverlay();
    // The overlay if it is to be seen in the view, which shows the root; otherwise null.
    static TRenderObject* FindOverlay(const TRenderer& renderer, const TRenderObject& root);
    // The renderer of the view whose message is being routed; null for none, or once it has gone.
    static TRenderer* GetRenderer();
    // World positions of the pointer, of the last and the last but one move.
    static TVector2 GetPointer();
    static TVector2 GetLastPointer();
    // TKeyFlag bits: of Shift and Ctrl, what the key messages have told; of all, those of the message being
    // routed.
    static int GetKeyFlags();
    // Whether the message being routed comes from a key that is held.
    static bool IsKeyRepeat();
    // The renderer and its window are about to go.
    static void ForgetRenderer(const TRenderer* renderer);

    // In the view whose message is being routed; outside of that, in the one that FindView tells.
    static void AddTick(TRenderObject* object);
    static void RemoveTick(TRenderObject* object);
    static bool HasTicks();
    // Once per idle pass. Objects may remove themselves meanwhile. The renderer is for those that have no
    // view of their own.
    static void RunTicks(TRenderer* renderer);

protected:
    // A container whose bounds depend on its children forgets them.
    virtual void ForgetBounds() {}
    // Whether there is a parent and it took the event. It may take this object away.
    bool TellParent(int code, int detail = 0, const TVector2& point = TVector2(0, 0));

    TRenderObject* Parent = nullptr;
    TVector2 Origin = TVector2(0, 0);

private:
    friend class TRenderObjects;

    bool Contains(const TVector2& point);
    void LoseHover();
    static TRenderObject* FindInputHome(TRenderObject* object);
    static TRenderObject* FindOverlayTarget(TRenderer& renderer, TRenderObject& root, const TVector2& point);
    static TRenderObject* FindTarget(TRenderer& renderer, TRenderObject& root, const TVector2& point);
    static bool Send(TRenderObject* object, int code, int detail = 0);
    static bool SendToFocus(TRenderer& renderer, TRenderObject& root, int code, int detail);
    static bool RouteMove(TRenderer& renderer, TRenderObject& root, const TMessage& message);
    static void RouteLeave(TRenderer& renderer);
    static bool RouteButton(TRenderer& renderer, TRenderObject& root, const TMessage& message, int code);
    static bool RouteKeyDown(TRenderer& renderer, TRenderObject& root, int key);
    static void RouteKeyUp(int key);
    static void RouteFocusLost(TRenderer& renderer, TRenderObject& root);
    static void RouteFocusGained(TRenderer& renderer, TRenderObject& root);
    static bool Dispatch(TRenderer& renderer, TRenderObject& root, const TMessage& message);

    // The container that lists this object, so that neither outlives its entry in the other.
    TRenderObjects* Container = nullptr;
};
