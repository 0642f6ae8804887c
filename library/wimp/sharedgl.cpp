#include "library/wimp/sharedgl.h"

#include "library/containers/vector.h"
#include "library/wimp/gl/framebuffers.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/windowpeer.h"

#include <QtGui/QImage>
#include <QtGui/QOffscreenSurface>
#include <QtGui/QOpenGLContext>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>

namespace {

TFrameBuffers& GetBuffers()
{
    static TFrameBuffers buffers;
    return buffers;
}

// A context is current for a surface. Goes with the application.
QOffscreenSurface& GetSurface()
{
    static QPointer<QOffscreenSurface> surface;
    if (surface == nullptr) {
        surface = new QOffscreenSurface(nullptr, qApp);
        surface->setFormat(GetGlFormat());
        surface->create();
    }
    return *surface;
}

bool CanShow(const QSize& dots)
{
    const int most = GetMaxTextureSide();
    return !dots.isEmpty() && dots.width() <= most && dots.height() <= most;
}

// Where the widget begins on the screen's dots. The window system gives it the dots from there on.
QPointF GetFirstDot(const QWidget& widget)
{
    const double dots = widget.devicePixelRatio();
    const QPointF start = widget.mapTo(widget.window(), QPointF(0, 0));
    const QPointF first(qRound(start.x() * dots) / dots, qRound(start.y() * dots) / dots);
    return first - start;
}

// Only one window is painted at a time: all are read into one picture.
void ShowFrame(QWidget& widget, const QSize& size)
{
    static vector<uint8_t> pixels;
    constexpr int dotSize = 4;
    const int numBytes = size.width() * size.height() * dotSize;
    if (pixels.size() < numBytes)
        pixels.resize(numBytes);
    GetBuffers().Read(size.width(), size.height(), pixels.data());
    QImage image(pixels.data(), size.width(), size.height(), size.width() * dotSize, QImage::Format_RGB32);
    image.setDevicePixelRatio(widget.devicePixelRatio());
    QPainter painter(&widget);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(GetFirstDot(widget), image);
}

} // namespace

bool IsGlShared()
{
    static const bool isShared =
        HasWorkingGl() && DoesProcessorDraw() && qEnvironmentVariableIntValue("QT_WIDGETS_RHI") == 0;
    return isShared;
}

bool MakeSharedGlCurrent()
{
    QOpenGLContext* context = QOpenGLContext::globalShareContext();
    return context != nullptr && context->makeCurrent(&GetSurface());
}

unsigned UseSharedFrameBuffer(const QSize& dots)
{
    return CanShow(dots) ? GetBuffers().Use(dots.width(), dots.height()) : 0;
}

void PaintShared(TWindowPeer& peer)
{
    QWidget& widget = *peer.GetWidget();
    const QPointer<QWidget> self(&widget);
    const QSize size = widget.size() * widget.devicePixelRatio();
    if (!CanShow(size) || !MakeSharedGlCurrent()) {
        QPainter(&widget).fillRect(widget.rect(), Qt::black);
        return;
    }
    {
        const TGlStateScope scope;
        peer.Paint();
    }
    if (self != nullptr && MakeSharedGlCurrent())
        ShowFrame(widget, size);
}
