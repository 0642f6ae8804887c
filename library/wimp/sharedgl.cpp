#include "library/wimp/sharedgl.h"

#include "library/containers/vector.h"
#include "library/wimp/gl/framebuffers.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/window.h"
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

bool CanShow(int width, int height)
{
    const int most = GetMaxTextureSide();
    return width > 0 && height > 0 && width <= most && height <= most;
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
void ShowFrame(QWidget& widget, int width, int height)
{
    static vector<uint8_t> pixels;
    constexpr int dotSize = 4;
    const int numBytes = width * height * dotSize;
    if (pixels.size() < numBytes)
        pixels.resize(numBytes);
    GetBuffers().Read(width, height, pixels.data());
    QImage image(pixels.data(), width, height, width * dotSize, QImage::Format_RGB32);
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

unsigned UseSharedFrameBuffer(int width, int height)
{
    return CanShow(width, height) ? GetBuffers().Use(width, height) : 0;
}

void PaintShared(TWindowPeer& peer)
{
    QWidget& widget = *peer.GetWidget();
    const QPointer<QWidget> self(&widget);
    int width = 0;
    int height = 0;
    if (peer.GetWindow() != nullptr)
        peer.GetWindow()->GetDotSize(width, height);
    if (!CanShow(width, height) || !MakeSharedGlCurrent()) {
        QPainter(&widget).fillRect(widget.rect(), Qt::black);
        return;
    }
    {
        const TGlStateScope scope;
        peer.Paint();
    }
    if (self != nullptr && MakeSharedGlCurrent())
        ShowFrame(widget, width, height);
}
