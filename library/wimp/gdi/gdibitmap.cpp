#include "library/wimp/gdi/gdibitmap.h"

#include "library/containers/assertion.h"
#include "library/wimp/gdi/themecolour.h"

#include <QtGui/QIcon>
#include <QtGui/QImage>
#include <QtGui/QPixmap>

#include <string.h>

// The resources of a static library are linked only if something asks for them.
static void LinkPictures()
{
    Q_INIT_RESOURCE(pictures);
}

static QString PicturePath(int id, const char* size)
{
    return QStringLiteral(":/pictures/%1%2.png").arg(id).arg(QLatin1String(size));
}

TGDIBitmap::TGDIBitmap() : Image(new QImage) {}

TGDIBitmap::~TGDIBitmap() = default;

bool TGDIBitmap::Load(int id)
{
    LinkPictures();
    return Image->load(PicturePath(id, ""));
}

bool TGDIBitmap::Create(int width, int height, int bpp, const uint8_t* pixels)
{
    ASSERT_TEXT(bpp == 24, "bpp == 24");
    QImage image(width, height, QImage::Format_BGR888);
    if (image.isNull())
        return false;
    const size_t row = static_cast<size_t>(width) * 3;
    for (int y = 0; y < height; ++y)
        memcpy(image.scanLine(y), pixels + row * static_cast<size_t>(y), row);
    *Image = image;
    return true;
}

int TGDIBitmap::GetWidth() const
{
    return Image->width();
}

int TGDIBitmap::GetHeight() const
{
    return Image->height();
}

int TGDIBitmap::GetRowBytes() const
{
    return static_cast<int>(Image->bytesPerLine());
}

static QImage ToTheme(const QImage& picture)
{
    QImage image = picture.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            const TGDIColour colour = GetThemeColour(pixel & 0xFFFFFF);
            image.setPixel(x, y, (pixel & 0xFF000000) | colour);
        }
    return image;
}

static QIcon LoadIcon(int id, bool inTheme)
{
    static constexpr const char* Sizes[] = {"",    "-16", "-24", "-32", "-40",
                                            "-48", "-56", "-64", "-96", "-128"};
    LinkPictures();
    QIcon icon;
    for (const char* size : Sizes) {
        const QImage picture(PicturePath(id, size));
        if (!picture.isNull())
            icon.addPixmap(QPixmap::fromImage(inTheme ? ToTheme(picture) : picture));
    }
    return icon;
}

QIcon LoadPictureIcon(int id)
{
    return LoadIcon(id, false);
}

QIcon LoadThemeIcon(int id)
{
    return LoadIcon(id, IsDarkTheme());
}
