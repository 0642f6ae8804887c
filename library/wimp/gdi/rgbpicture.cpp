#include "library/wimp/gdi/rgbpicture.h"

#include <QBuffer>
#include <QImage>

#include <cstring>

TRgbPicture::TRgbPicture(int width, int height) : Width(width), Height(height)
{
    ASSERT(width > 0 && height > 0 && width <= INT32_MAX / 3 / height);
    Pixels.resize(width * height * 3);
    std::memset(Pixels.data(), 0, static_cast<size_t>(Pixels.size()));
}

void TRgbPicture::Fill(uint32_t colour)
{
    for (int i = 0; i < Pixels.size(); ++i)
        Pixels.data()[i] = static_cast<uint8_t>(colour >> (16 - i % 3 * 8));
}

void TRgbPicture::Put(const TRgbPicture& other, int x, int y)
{
    ASSERT(x >= 0 && y >= 0 && x + other.Width <= Width && y + other.Height <= Height);
    const size_t rowBytes = static_cast<size_t>(other.Width) * 3;
    for (int row = 0; row < other.Height; ++row)
        std::memcpy(Pixels.data() +
                        (static_cast<size_t>(y + row) * static_cast<size_t>(Width) + static_cast<size_t>(x)) *
                            3,
                    other.Pixels.data() + static_cast<size_t>(row) * rowBytes, rowBytes);
}

bool TRgbPicture::EncodePng(vector<uint8_t>& bytes) const
{
    const QImage image(Pixels.data(), Width, Height, Width * 3, QImage::Format_RGB888);
    QBuffer buffer;
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG"))
        return false;
    const QByteArray& data = buffer.data();
    bytes.clear();
    bytes.resize(static_cast<int>(data.size()));
    std::memcpy(bytes.data(), data.constData(), static_cast<size_t>(data.size()));
    return true;
}
