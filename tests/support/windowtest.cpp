#include "support/windowtest.h"

#include "library/wimp/wimp.h"

#include <QtCore/QAbstractNativeEventFilter>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QMenu>

#include <algorithm>
#include <cstdlib>

#include <xcb/xcb.h>

namespace {

// A message to this program itself by way of the window system. Once it is back, all has been read that the
// window system had told before.
class TEcho : public QAbstractNativeEventFilter
{
public:
    TEcho()
    {
        QGuiApplication::instance()->installNativeEventFilter(this);
        const auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
        Connection = native == nullptr ? nullptr : native->connection();
        if (Connection == nullptr)
            return;
        Window = xcb_generate_id(Connection);
        xcb_create_window(Connection, 0, Window,
                          xcb_setup_roots_iterator(xcb_get_setup(Connection)).data->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_client_message_event_t message = {};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = Window;
        message.type = XCB_ATOM_INTEGER;
        xcb_send_event(Connection, 0, Window, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(Connection);
    }
    ~TEcho() override
    {
        if (Connection != nullptr)
            xcb_destroy_window(Connection, Window);
    }
    TEcho(const TEcho&) = delete;
    TEcho& operator=(const TEcho&) = delete;

    // At once on a system that knows no such messages.
    bool IsBack() const { return Back || Connection == nullptr; }
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override
    {
        if (type != "xcb_generic_event_t")
            return false;
        const auto* event = static_cast<const xcb_client_message_event_t*>(message);
        if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE || event->window != Window)
            return false;
        Back = true;
        return true;
    }

private:
    xcb_connection_t* Connection = nullptr;
    xcb_window_t Window = 0;
    bool Back = false;
};

// What stands in place of what was awaited would wait for ever.
void LeaveLoops()
{
    if (QWidget* popup = QApplication::activePopupWidget())
        popup->close();
    else if (QWidget* dialog = QApplication::activeModalWidget())
        dialog->close();
}

} // namespace

std::string TWindowTest::BeforeStart;

const std::string& TWindowTest::GetSettingsFolder()
{
    static const TTempFolder Folder;
    return Folder.GetFolder();
}

TWindowTest::~TWindowTest()
{
    EXPECT_TRUE(Awaited.empty()) << "something that was awaited never came";
    for (QTimer* timer : Awaited)
        delete timer;
}

void TWindowTest::SetUpTestSuite()
{
    static int count = 1;
    static char program[] = "test";
    static char* arguments[] = {program, nullptr};
    // Asked for first, so that it is there as long as what may still write into it at the end.
    const std::string& settings = GetSettingsFolder();
    if (!TWimp::Get().IsInited()) {
        BeforeStart = AssertionOf([] { TWimp::Get().GetInstance(); });
        // By another name than the plain one, so that it can be told whether the window system has taken it
        // over.
        setenv("LC_ALL", "C.UTF-8", 1);
        // The window system keeps what its dialogs remember where whoever runs the tests has it too.
        setenv("XDG_CONFIG_HOME", settings.c_str(), 1);
    }
    ASSERT_TRUE(TWimp::Get().Init(count, arguments));
}

void TWindowTest::Once(const std::function<bool()>& condition, const std::function<void()>& work)
{
    constexpr int Interval = 5;
    QTimer* timer = new QTimer;
    Awaited.push_back(timer);
    const QDeadlineTimer end(Patience * 1000);
    QObject::connect(timer, &QTimer::timeout, timer, [this, timer, end, condition, work] {
        if (!condition()) {
            if (end.hasExpired())
                LeaveLoops();
            return;
        }
        timer->stop();
        timer->deleteLater();
        Awaited.erase(std::find(Awaited.begin(), Awaited.end(), timer));
        // The timer may go, and what it holds with it, while the work turns a loop.
        const std::function<void()> kept = work;
        kept();
    });
    timer->start(Interval);
}

void TWindowTest::Meet(const std::function<void(QDialog&)>& work)
{
    Meet(nullptr, work);
}

void TWindowTest::Meet(const char* name, const std::function<void(QDialog&)>& work)
{
    const auto find = [name] {
        QDialog* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        const bool isIt = dialog != nullptr && dialog->isVisible() &&
                          (name == nullptr || dialog->objectName() == QLatin1String(name));
        return isIt ? dialog : nullptr;
    };
    Once([find] { return find() != nullptr; }, [find, work] { work(*find()); });
}

void TWindowTest::MeetMenu(const std::function<void(QMenu&)>& work)
{
    const auto find = [] {
        QMenu* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        return menu != nullptr && menu->isVisible() ? menu : nullptr;
    };
    Once([find] { return find() != nullptr; }, [find, work] { work(*find()); });
}

namespace {

xcb_connection_t* GetConnection()
{
    const auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return native == nullptr ? nullptr : native->connection();
}

xcb_window_t GetRootWindow(xcb_connection_t* connection)
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

xcb_atom_t GetWorkAreaAtom(xcb_connection_t* connection)
{
    static const char Name[] = "_NET_WORKAREA";
    const auto cookie = xcb_intern_atom(connection, 0, sizeof(Name) - 1, Name);
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(connection, cookie, nullptr);
    const xcb_atom_t atom = reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    free(reply);
    return atom;
}

} // namespace

TWorkArea::TWorkArea(const QRect& area)
{
    xcb_connection_t* connection = GetConnection();
    if (connection == nullptr)
        return;
    const uint32_t values[] = {static_cast<uint32_t>(area.x()), static_cast<uint32_t>(area.y()),
                               static_cast<uint32_t>(area.width()), static_cast<uint32_t>(area.height())};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, GetRootWindow(connection),
                        GetWorkAreaAtom(connection), XCB_ATOM_CARDINAL, 32, 4, values);
    xcb_flush(connection);
    Settle();
}

TWorkArea::~TWorkArea()
{
    xcb_connection_t* connection = GetConnection();
    if (connection == nullptr)
        return;
    xcb_delete_property(connection, GetRootWindow(connection), GetWorkAreaAtom(connection));
    xcb_flush(connection);
    Settle();
}

bool WaitFor(const std::function<bool()>& condition)
{
    return WaitFor(condition, [] { TWimp::Get().Step(); });
}

// What is shown is placed, then painted: each round brings the answers to what the one before has asked. What
// was to be done a moment later, as the paint of many redraws, comes before the end of a moment that begins
// now.
void Settle(const std::function<void()>& turn)
{
    constexpr int Rounds = 3;
    constexpr int Moment = 10;
    for (int i = 0; i < Rounds; ++i) {
        const TEcho echo;
        QTimer moment;
        moment.setSingleShot(true);
        moment.setTimerType(Qt::PreciseTimer);
        moment.start(Moment);
        EXPECT_TRUE(WaitFor([&] { return echo.IsBack() && !moment.isActive(); }, turn));
    }
}

void Settle()
{
    Settle([] { TWimp::Get().Step(); });
}

bool TRecordingWindow::OnMessage(const TMessage& message)
{
    Messages.push_back(message);
    const bool consumed = std::find(Consumed.begin(), Consumed.end(), message.Type) != Consumed.end();
    if (Answer)
        Answer(message);
    return consumed;
}

void TRecordingWindow::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    const TCommand command = {control, argument, code};
    Commands.push_back(command);
    if (CloseByItself)
        TWindow::OnCommand(control, argument, code);
    if (AnswerCommand)
        AnswerCommand(command);
}

int TRecordingWindow::Count(TMessageType type) const
{
    return static_cast<int>(std::count_if(Messages.begin(), Messages.end(),
                                          [type](const TMessage& message) { return message.Type == type; }));
}

TMessage TRecordingWindow::Last(TMessageType type) const
{
    for (auto it = Messages.rbegin(); it != Messages.rend(); ++it)
        if (it->Type == type)
            return *it;
    return TMessage();
}

void ShowTopWindow(TWindow& window, const TWindowClass& windowClass, int width, int height)
{
    TWindowParams params;
    params.Class = &windowClass;
    params.Title = "Test";
    params.Kind = WK_TOP;
    params.X = 40;
    params.Y = 40;
    params.Width = width;
    params.Height = height;
    ASSERT_TRUE(window.Create(params));
    window.Show();
    window.BringToTop();
    Settle();
}
