#pragma once

#include "library/containers/vector.h"

#include <cstdint>

// What windows of one context draw into, one after the other: those of one size share a frame buffer, as each
// of them draws all of its picture, which is read at once. The caller has made the context current. Nothing
// is freed in the end, when the context goes.
class TFrameBuffers
{
public:
    // The name of one of so many dots, with a depth buffer, which holds until the next use, as only a few
    // sizes are kept. It shows what was drawn last into one of its size, or anything.
    unsigned Use(int width, int height);
    // What it shows, the highest row first: blue, green, red and 255 for each dot.
    void Read(int width, int height, uint8_t* pixels);

private:
    struct TBuffer
    {
        int Width = 0;
        int Height = 0;
        unsigned Name = 0;
        unsigned Colour = 0;
        unsigned Depth = 0;
    };

    static void Make(TBuffer& buffer);
    static void Delete(const TBuffer& buffer);

    // The one that was used last comes last.
    vector<TBuffer> Buffers;
};

// What is drawn while one lives leaves no attributes behind for the next window.
class TGlStateScope
{
public:
    TGlStateScope();
    ~TGlStateScope();
    TGlStateScope(const TGlStateScope&) = delete;
    TGlStateScope& operator=(const TGlStateScope&) = delete;
};
