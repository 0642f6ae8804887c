#include "docwindowfixture.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMdiSubWindow>

namespace {

void Send(TWindow& window, QEvent::Type type, const QPoint& at, Qt::MouseButton button,
          Qt::MouseButtons buttons, Qt::KeyboardModifiers keys)
{
    QWidget* widget = window.GetHandle();
    QMouseEvent event(type, at, widget->mapToGlobal(QPointF(at)), button, buttons, keys);
    QApplication::sendEvent(widget, &event);
}

} // namespace

DocWindows::DocWindows() : App(&Host) {}

DocWindows::~DocWindows()
{
    const vector<TDocument*> documents = App.Get().GetDocuments();
    for (TDocument* document : documents) {
        document->SetModified(false);
        App.Get().CloseDocument(document);
    }
}

void DocWindows::SetUp()
{
    Menu.AddPopup("Window");
    static TWindowClass windowClass("test_mainwindow");
    TWindowParams params;
    params.Class = &windowClass;
    params.Title = "Test";
    params.Width = 1400;
    params.Height = 1000;
    ASSERT_TRUE(Frame.CreateFrame(params, Menu));
    Frame.Show();
    Host.Frame = &Frame;
    Settle();
}

TDocument* DocWindows::NewDocument()
{
    if (!App.Get().NewDocument())
        return nullptr;
    Settle();
    const vector<TDocument*>& documents = App.Get().GetDocuments();
    return documents[documents.size() - 1];
}

TDocument* DocWindows::LoadDocument(const std::string& path)
{
    if (!App.Get().OpenDocument(path.c_str()))
        return nullptr;
    Settle();
    const vector<TDocument*>& documents = App.Get().GetDocuments();
    return documents[documents.size() - 1];
}

std::string DocWindows::TitleOf(const TWindow& window)
{
    const QWidget* widget = window.GetHandle();
    if (const QWidget* frame = qobject_cast<QMdiSubWindow*>(widget->parentWidget()))
        widget = frame;
    return widget->windowTitle().toStdString();
}

TToolNode* DocWindows::AddNode(TDocument& document, const char* type, int x, int y)
{
    TAddGraphNodeOp* op = new TAddGraphNodeOp(document, App.Type(type), 0, 0);
    TToolNode* node = op->GetNode();
    document.ApplyOperation(op);
    vector<TToolNode*> nodes;
    nodes.push_back(node);
    document.ApplyOperation(new TMoveGraphNodeOp(nodes, x - node->GetX(), y - node->GetY()));
    return node;
}

QPoint DocWindows::PixelOf(TGraphWindow& graph, const TVector2& point)
{
    const TGraphView view = graph.GetView();
    return QPoint(static_cast<int>((point[0] + view.GetOffset()[0]) * view.GetScale()[0] + 0.5f),
                  static_cast<int>((point[1] + view.GetOffset()[1]) * view.GetScale()[1] + 0.5f));
}

QPoint DocWindows::MiddleOf(TDocument& document, const TToolNode* node)
{
    TVector2 min;
    TVector2 max;
    WindowsOf(document).GetScene().FindNode(node)->GetRectangle(min, max);
    return PixelOf(GraphOf(document), (min + max) * 0.5f);
}

void DocWindows::SetView(TGraphWindow& graph, float offsetX, float offsetY, float scale)
{
    graph.SetView(TGraphView(TVector2(offsetX, offsetY), TVector2(scale, scale)));
}

void DocWindows::Press(TWindow& window, const QPoint& at, Qt::MouseButton button, Qt::KeyboardModifiers keys,
                       Qt::MouseButtons others)
{
    Send(window, QEvent::MouseButtonPress, at, button, others | button, keys);
}

void DocWindows::Release(TWindow& window, const QPoint& at, Qt::MouseButton button,
                         Qt::KeyboardModifiers keys, Qt::MouseButtons others)
{
    Send(window, QEvent::MouseButtonRelease, at, button, others, keys);
}

void DocWindows::Move(TWindow& window, const QPoint& at, Qt::MouseButtons buttons, Qt::KeyboardModifiers keys)
{
    Send(window, QEvent::MouseMove, at, Qt::NoButton, buttons, keys);
}

void DocWindows::Drag(TWindow& window, const QPoint& from, const QPoint& to, Qt::MouseButton button,
                      Qt::KeyboardModifiers keys)
{
    Press(window, from, button, keys);
    Move(window, (from + to) / 2, button, keys);
    Move(window, to, button, keys);
    Release(window, to, button, keys);
}

void DocWindows::Wheel(TWindow& window, const QPoint& at, int delta)
{
    QWidget* widget = window.GetHandle();
    QWheelEvent event(QPointF(at), widget->mapToGlobal(QPointF(at)), QPoint(), QPoint(0, delta), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

void DocWindows::Key(TWindow& window, int key, Qt::KeyboardModifiers keys)
{
    QTest::keyClick(window.GetHandle(), static_cast<Qt::Key>(key), keys);
}

void DocWindows::HoldKey(TWindow& window, int key, int times, Qt::KeyboardModifiers keys)
{
    for (int i = 0; i < times; ++i) {
        QKeyEvent event(QEvent::KeyPress, key, keys, QString(), i > 0);
        QApplication::sendEvent(window.GetHandle(), &event);
    }
    QKeyEvent event(QEvent::KeyRelease, key, keys);
    QApplication::sendEvent(window.GetHandle(), &event);
}

void DocWindows::Space(bool isRepeat)
{
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " ", isRepeat);
    QApplication::sendEvent(QApplication::focusWidget(), &event);
}

void DocWindows::Type(TWindow& window, int key, const QString& text, Qt::KeyboardModifiers keys)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, keys, text);
        QApplication::sendEvent(window.GetHandle(), &event);
    }
}

QPoint DocWindows::InWindow(const TWindow& from, const QPoint& at, const TWindow& to)
{
    int x = at.x();
    int y = at.y();
    from.ClientToScreen(x, y);
    to.ScreenToClient(x, y);
    return QPoint(x, y);
}
