#include "turnteller.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtGui/QGuiApplication>

#include <algorithm>
#include <cstdlib>
#include <cstring>

static constexpr const char* PropertyName = "_CINDERMILL_TEST_TURNS";

static xcb_atom_t GetAtom(xcb_connection_t* connection, const char* name)
{
    const xcb_intern_atom_cookie_t cookie =
        xcb_intern_atom(connection, 0, static_cast<uint16_t>(strlen(name)), name);
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(connection, cookie, nullptr);
    const xcb_atom_t atom = reply == nullptr ? xcb_atom_t(XCB_ATOM_NONE) : reply->atom;
    free(reply);
    return atom;
}

TTurnTeller::TTurnTeller()
{
    const auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (native == nullptr)
        return;
    Connection = native->connection();
    Name = GetAtom(Connection, PropertyName);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(Connection)).data->root;
    Window = xcb_generate_id(Connection);
    xcb_create_window(Connection, 0, Window, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_change_property(Connection, XCB_PROP_MODE_REPLACE, root, Name, XCB_ATOM_WINDOW, 32, 1, &Window);
    xcb_flush(Connection);
    qGuiApp->installNativeEventFilter(this);
    QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
    QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, this, &TTurnTeller::OnTurn);
    QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &TTurnTeller::OnWait);
}

bool TTurnTeller::nativeEventFilter(const QByteArray& type, void* message, qintptr*)
{
    if (type != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_client_message_event_t*>(message);
    if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE || event->window != Window || event->type != Name)
        return false;
    Questions.push_back(TQuestion{event->data.data32[0], event->data.data32[1], event->data.data32[2]});
    return true;
}

void TTurnTeller::OnTurn()
{
    for (TQuestion& question : Questions)
        if (question.Turns-- == 0)
            Answer(question);
    const auto isAnswered = [](const TQuestion& question) { return question.Turns == UINT32_MAX; };
    Questions.erase(std::remove_if(Questions.begin(), Questions.end(), isAnswered), Questions.end());
}

// A loop that would wait turns on while somebody asks.
void TTurnTeller::OnWait()
{
    if (!Questions.empty())
        QAbstractEventDispatcher::instance()->wakeUp();
}

void TTurnTeller::Answer(const TQuestion& question)
{
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = question.Asker;
    message.type = Name;
    message.data.data32[0] = question.Number;
    xcb_send_event(Connection, 0, question.Asker, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(Connection);
}

QObject* TTurnTellerPlugin::create(const QString&, const QString&)
{
    return new TTurnTeller;
}
