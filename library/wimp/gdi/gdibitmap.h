#pragma once

#include "library/containers/owner.h"

#include <cstdint>

class QIcon;
class QImage;

// The numbers of the program's own pictures.
enum TPicture
{
    // Icons of windows.
    PI_GRAPH = 101,
    PI_PROGRAM = 117,
    // Of entries that begin with something.
    PI_NEW = 102,
    PI_OPEN = 103,
    // For nodes: what opens and closes a panel, and a bypass box clear and set.
    PI_EXPAND = 104,
    PI_COLLAPSE = 105,
    PI_BYPASSCLEAR = 107,
    PI_BYPASSSET = 108,
    // For buttons.
    PI_STEP = 130,
    PI_PAUSE = 131,
    PI_PLAY = 132,
    // Mouse pointers.
    PI_DRAG = 140,
    PI_DROP = 141
};

// A picture of the program's own, or one drawn from pixels.
class TGDIBitmap
{
public:
    TGDIBitmap();
    ~TGDIBitmap();

    // From the program's own pictures, by number. False if there is none.
    bool Load(int id);
    // Rows from the top of blue, green, red. Asserts "bpp == 24".
    bool Create(int width, int height, int bpp, const uint8_t* pixels);

    int GetWidth() const;
    int GetHeight() const;
    int GetRowBytes() const;
    const QImage& GetImage() const { return *Image; }

private:
    TOwner<QImage> Image;
};

// For the framework: a picture in all sizes that it was drawn in; empty if there is none.
QIcon LoadPictureIcon(int id);
// The same in the colours that the desktop's theme has in the place of the picture's.
QIcon LoadThemeIcon(int id);
