#pragma once

class TRenderer;

// Remembers a view by its renderer, and forgets it when it goes.
class TRendererWatch
{
public:
    explicit TRendererWatch(TRenderer* renderer = nullptr);
    ~TRendererWatch();
    TRendererWatch(const TRendererWatch&) = delete;
    TRendererWatch& operator=(const TRendererWatch&) = delete;

    // Null once the renderer has gone.
    TRenderer* Get() const { return Renderer; }
    void Set(TRenderer* renderer) { Renderer = renderer; }
    // For the renderer that goes.
    static void Forget(const TRenderer* renderer);

private:
    TRenderer* Renderer;
};
