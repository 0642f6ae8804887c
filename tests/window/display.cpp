#include "window/display.h"

#include "support/testsupport.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <poll.h>

#include <xcb/xcb.h>

namespace {

struct TFree
{
    void operator()(void* memory) const { free(memory); }
};

template <class T>
std::unique_ptr<T, TFree> Own(T* reply)
{
    return std::unique_ptr<T, TFree>(reply);
}

int TypeOf(const xcb_generic_event_t& event)
{
    return event.response_type & 0x7F;
}

} // namespace

TDisplay::~TDisplay()
{
    if (Connection != nullptr)
        xcb_disconnect(Connection);
}

bool TDisplay::Open(const std::string& name)
{
    Connection = xcb_connect(name.c_str(), nullptr);
    if (xcb_connection_has_error(Connection) != 0)
        return false;
    TurnsName = GetAtom("_CINDERMILL_TEST_TURNS");
    ExtentsName = GetAtom("_NET_FRAME_EXTENTS");
    ExtentsRequest = GetAtom("_NET_REQUEST_FRAME_EXTENTS");
    Root = xcb_setup_roots_iterator(xcb_get_setup(Connection)).data->root;
    Window = xcb_generate_id(Connection);
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(Connection, XCB_COPY_FROM_PARENT, Window, Root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    return xcb_flush(Connection) > 0;
}

uint32_t TDisplay::GetAtom(const char* name) const
{
    const auto cookie = xcb_intern_atom(Connection, 0, static_cast<uint16_t>(strlen(name)), name);
    const auto reply = Own(xcb_intern_atom_reply(Connection, cookie, nullptr));
    return reply == nullptr ? 0 : reply->atom;
}

void TDisplay::Send(uint32_t window, uint32_t type, const std::vector<uint32_t>& words, uint32_t mask)
{
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = mask == 0 ? window : Window;
    message.type = type;
    for (size_t i = 0; i < words.size(); ++i)
        message.data.data32[i] = words[i];
    xcb_send_event(Connection, 0, window, mask, reinterpret_cast<const char*>(&message));
    xcb_flush(Connection);
}

bool TDisplay::AwaitEvent(const std::function<bool(const void* event)>& isWanted)
{
    constexpr int Milliseconds = 100;
    bool found = false;
    const auto look = [&] {
        while (const auto event = Own(xcb_poll_for_event(Connection)))
            found = found || isWanted(event.get());
        return found || xcb_connection_has_error(Connection) != 0;
    };
    const auto pause = [&] {
        pollfd input = {xcb_get_file_descriptor(Connection), POLLIN, 0};
        poll(&input, 1, Milliseconds);
    };
    return WaitFor(look, pause) && found;
}

// It answers questions in the order in which all else comes to it.
bool TDisplay::AwaitManager()
{
    Send(Root, ExtentsRequest, {}, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    return AwaitEvent([this](const void* event) {
        const auto& change = *static_cast<const xcb_property_notify_event_t*>(event);
        return TypeOf(*static_cast<const xcb_generic_event_t*>(event)) == XCB_PROPERTY_NOTIFY &&
               change.window == Window && change.atom == ExtentsName;
    });
}

// The window through which the program can be asked; 0 if none runs.
uint32_t TDisplay::FindTeller() const
{
    const auto cookie = xcb_get_property(Connection, 0, Root, TurnsName, XCB_ATOM_WINDOW, 0, 1);
    const auto property = Own(xcb_get_property_reply(Connection, cookie, nullptr));
    if (property == nullptr || xcb_get_property_value_length(property.get()) != sizeof(uint32_t))
        return 0;
    const uint32_t teller = *static_cast<const uint32_t*>(xcb_get_property_value(property.get()));
    // Its end is told as well. That of a program that has ended is no window any more.
    const uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    const auto select = xcb_change_window_attributes_checked(Connection, teller, XCB_CW_EVENT_MASK, &events);
    return Own(xcb_request_check(Connection, select)) == nullptr ? teller : 0;
}

bool TDisplay::AwaitProgram(int turns)
{
    const uint32_t teller = FindTeller();
    if (teller == 0)
        return true;
    const uint32_t number = ++NumQuestions;
    Send(teller, TurnsName, {number, static_cast<uint32_t>(turns), Window}, 0);
    return AwaitEvent([&](const void* event) {
        const int type = TypeOf(*static_cast<const xcb_generic_event_t*>(event));
        if (type == XCB_DESTROY_NOTIFY)
            return static_cast<const xcb_destroy_notify_event_t*>(event)->window == teller;
        const auto& message = *static_cast<const xcb_client_message_event_t*>(event);
        return type == XCB_CLIENT_MESSAGE && message.type == TurnsName && message.data.data32[0] == number;
    });
}

std::string TDisplay::ReadClipboard()
{
    constexpr uint32_t MostWords = 4096;
    const uint32_t property = GetAtom("_CINDERMILL_TEST_TEXT");
    xcb_convert_selection(Connection, Window, GetAtom("CLIPBOARD"), GetAtom("UTF8_STRING"), property,
                          XCB_CURRENT_TIME);
    xcb_flush(Connection);
    uint32_t told = XCB_NONE;
    AwaitEvent([&](const void* event) {
        if (TypeOf(*static_cast<const xcb_generic_event_t*>(event)) != XCB_SELECTION_NOTIFY)
            return false;
        told = static_cast<const xcb_selection_notify_event_t*>(event)->property;
        return true;
    });
    if (told == XCB_NONE)
        return "";
    const auto cookie = xcb_get_property(Connection, 1, Window, property, XCB_ATOM_ANY, 0, MostWords);
    const auto text = Own(xcb_get_property_reply(Connection, cookie, nullptr));
    if (text == nullptr)
        return "";
    const size_t length = static_cast<size_t>(xcb_get_property_value_length(text.get()));
    return std::string(static_cast<const char*>(xcb_get_property_value(text.get())), length);
}

TPicture TDisplay::Grab(const TRectangle& part) const
{
    TPicture picture;
    const auto cookie =
        xcb_get_image(Connection, XCB_IMAGE_FORMAT_Z_PIXMAP, Root, static_cast<int16_t>(part.X),
                      static_cast<int16_t>(part.Y), static_cast<uint16_t>(part.Width),
                      static_cast<uint16_t>(part.Height), ~0u);
    const auto image = Own(xcb_get_image_reply(Connection, cookie, nullptr));
    const size_t count = static_cast<size_t>(part.Width) * part.Height;
    // A screen of 24 bits has a word for each pixel.
    if (image == nullptr ||
        static_cast<size_t>(xcb_get_image_data_length(image.get())) != count * sizeof(uint32_t))
        return picture;
    picture.Width = part.Width;
    picture.Height = part.Height;
    picture.Pixels.resize(count);
    memcpy(picture.Pixels.data(), xcb_get_image_data(image.get()), count * sizeof(uint32_t));
    for (uint32_t& pixel : picture.Pixels)
        pixel &= 0xFFFFFF;
    return picture;
}
