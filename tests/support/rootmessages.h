#pragma once

#include "support/testsupport.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>

// What a desktop hears: the messages that go to the root window of a display.
class TRootMessages
{
public:
    explicit TRootMessages(const char* display = nullptr) : Connection(xcb_connect(display, nullptr))
    {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(Connection)).data->root;
        const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(Connection, root, XCB_CW_EVENT_MASK, &events);
        Begin = GetAtom("_NET_STARTUP_INFO_BEGIN");
        Further = GetAtom("_NET_STARTUP_INFO");
        Front = GetAtom("_NET_ACTIVE_WINDOW");
    }
    ~TRootMessages() { xcb_disconnect(Connection); }
    TRootMessages(const TRootMessages&) = delete;
    TRootMessages& operator=(const TRootMessages&) = delete;

    // Waits for a text about starts.
    bool AwaitText(const std::string& text)
    {
        return WaitFor([&] { return Has(Texts, text); }, [] { usleep(10000); });
    }
    // Waits for a window that asks for the front as of the time.
    bool AwaitFront(uint32_t time)
    {
        return WaitFor([&] { return Has(Times, time); }, [] { usleep(10000); });
    }
    const std::vector<std::string>& GetTexts()
    {
        Listen();
        return Texts;
    }

private:
    template <class T>
    bool Has(const std::vector<T>& list, const T& wanted)
    {
        Listen();
        return std::find(list.begin(), list.end(), wanted) != list.end();
    }
    xcb_atom_t GetAtom(const char* name)
    {
        const auto cookie = xcb_intern_atom(Connection, 0, static_cast<uint16_t>(strlen(name)), name);
        xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(Connection, cookie, nullptr);
        const xcb_atom_t atom = reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
        free(reply);
        return atom;
    }
    void Listen()
    {
        while (xcb_generic_event_t* event = xcb_poll_for_event(Connection)) {
            if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE)
                Take(*reinterpret_cast<const xcb_client_message_event_t*>(event));
            free(event);
        }
    }
    // A text comes in pieces and ends with a 0.
    void Take(const xcb_client_message_event_t& message)
    {
        if (message.type == Front && message.format == 32)
            Times.push_back(message.data.data32[1]);
        if (message.format != 8 || (message.type != Begin && message.type != Further))
            return;
        if (message.type == Begin)
            Piece.clear();
        const char* data = reinterpret_cast<const char*>(message.data.data8);
        const size_t length = strnlen(data, sizeof(message.data.data8));
        Piece.append(data, length);
        if (length < sizeof(message.data.data8))
            Texts.push_back(Piece);
    }

    xcb_connection_t* Connection;
    xcb_atom_t Begin;
    xcb_atom_t Further;
    xcb_atom_t Front;
    std::string Piece;
    std::vector<std::string> Texts;
    std::vector<uint32_t> Times;
};
