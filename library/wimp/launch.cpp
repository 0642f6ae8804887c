#include "library/wimp/launch.h"

#include <QtGui/QGuiApplication>
#include <QtWidgets/QWidget>

#include <cstdlib>
#include <cstring>
#include <xcb/xcb.h>

namespace {

// What is sent to it is heard by the desktop. There is none without an X server.
class TRootWindow
{
public:
    TRootWindow()
    {
        const auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
        Connection = native == nullptr ? nullptr : native->connection();
        if (Connection != nullptr)
            Window = xcb_setup_roots_iterator(xcb_get_setup(Connection)).data->root;
    }

    xcb_connection_t* GetConnection() const { return Connection; }
    xcb_window_t GetWindow() const { return Window; }

    xcb_atom_t GetAtom(const char* name) const
    {
        const auto cookie = xcb_intern_atom(Connection, 0, static_cast<uint16_t>(strlen(name)), name);
        xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(Connection, cookie, nullptr);
        const xcb_atom_t atom = reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
        free(reply);
        return atom;
    }

    void Send(xcb_client_message_event_t& message, uint32_t mask) const
    {
        message.response_type = XCB_CLIENT_MESSAGE;
        xcb_send_event(Connection, 0, Window, mask, reinterpret_cast<const char*>(&message));
    }

private:
    xcb_connection_t* Connection = nullptr;
    xcb_window_t Window = XCB_WINDOW_NONE;
};

// Text goes in pieces, of which the first has a type of its own; a 0 ends it.
void SendText(const TRootWindow& root, xcb_window_t sender, const QByteArray& text)
{
    xcb_client_message_event_t message = {};
    constexpr int piece = sizeof(message.data.data8);
    message.window = sender;
    message.format = 8;
    message.type = root.GetAtom("_NET_STARTUP_INFO_BEGIN");
    const xcb_atom_t further = root.GetAtom("_NET_STARTUP_INFO");
    for (qsizetype at = 0; at <= text.size(); at += piece) {
        memset(message.data.data8, 0, piece);
        memcpy(message.data.data8, text.data() + at,
               static_cast<size_t>(qMin<qsizetype>(piece, text.size() - at)));
        root.Send(message, XCB_EVENT_MASK_PROPERTY_CHANGE);
        message.type = further;
    }
}

bool IsOnWayland()
{
    return QGuiApplication::platformName().startsWith("wayland");
}

} // namespace

void TLaunch::TellDone() const
{
    const TRootWindow root;
    if (Id.IsEmpty() || root.GetConnection() == nullptr)
        return;
    QByteArray text = "remove: ID=";
    for (const char* letter = Id.Print(); *letter != 0; ++letter) {
        if (strchr(" \"\\", *letter) != nullptr)
            text += '\\';
        text += *letter;
    }
    // The window is there to tell one sender's pieces from another's.
    const xcb_window_t sender = xcb_generate_id(root.GetConnection());
    xcb_create_window(root.GetConnection(), 0, sender, root.GetWindow(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    SendText(root, sender, text);
    xcb_destroy_window(root.GetConnection(), sender);
    xcb_flush(root.GetConnection());
}

void TLaunch::Activate(QWidget& frame) const
{
    // The window system takes the id from there with its next wish for the front.
    if (!Id.IsEmpty() && IsOnWayland())
        qputenv("XDG_ACTIVATION_TOKEN", Id.Print());
    const TRootWindow root;
    uint32_t time = 0;
    if (GetTime(time) && root.GetConnection() != nullptr) {
        constexpr uint32_t program = 1;
        xcb_client_message_event_t message = {};
        message.window = static_cast<xcb_window_t>(frame.winId());
        message.format = 32;
        message.type = root.GetAtom("_NET_ACTIVE_WINDOW");
        message.data.data32[0] = program;
        message.data.data32[1] = time;
        root.Send(message, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
        xcb_flush(root.GetConnection());
    }
    frame.activateWindow();
}

// It stands at the id's end.
bool TLaunch::GetTime(uint32_t& time) const
{
    const QByteArray id(Id.Print());
    const QByteArray mark = "_TIME";
    const qsizetype at = id.lastIndexOf(mark);
    bool isNumber = false;
    if (at >= 0)
        time = id.mid(at + mark.size()).toUInt(&isNumber);
    return isNumber;
}
