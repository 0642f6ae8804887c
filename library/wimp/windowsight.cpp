#include "library/wimp/windowsight.h"

#include "library/containers/vector.h"

#include <QtCore/QAbstractNativeEventFilter>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QWidget>

#include <cstdlib>
#include <xcb/xcb.h>

namespace {

// Hears what the X server tells of the windows that are watched.
class TSightFilter : public QAbstractNativeEventFilter
{
public:
    void SetCovered(xcb_window_t window, bool covered)
    {
        xcb_window_t* const found = Covered.find(window);
        if (!covered && found != Covered.end())
            Covered.erase(found);
        else if (covered && found == Covered.end())
            Covered.push_back(window);
    }
    bool IsCovered(xcb_window_t window) const { return Covered.index_of(window) != -1; }

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override
    {
        const auto* event = static_cast<const xcb_visibility_notify_event_t*>(message);
        if (type == "xcb_generic_event_t" && (event->response_type & 0x7F) == XCB_VISIBILITY_NOTIFY)
            SetCovered(event->window, event->state == XCB_VISIBILITY_FULLY_OBSCURED);
        return false;
    }

private:
    vector<xcb_window_t> Covered;
};

TSightFilter& GetFilter()
{
    static TSightFilter& filter = *new TSightFilter;
    return filter;
}

xcb_window_t GetName(const QWidget& window)
{
    return static_cast<xcb_window_t>(window.internalWinId());
}

} // namespace

void WatchSight(const QWidget& window)
{
    const auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* connection = native == nullptr ? nullptr : native->connection();
    const xcb_window_t name = GetName(window);
    if (connection == nullptr || name == XCB_WINDOW_NONE)
        return;
    const auto cookie = xcb_get_window_attributes(connection, name);
    xcb_get_window_attributes_reply_t* attributes =
        xcb_get_window_attributes_reply(connection, cookie, nullptr);
    if (attributes == nullptr)
        return;
    // Besides what the toolkit wants to hear.
    const uint32_t mask = attributes->your_event_mask | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    free(attributes);
    xcb_change_window_attributes(connection, name, XCB_CW_EVENT_MASK, &mask);
    qGuiApp->installNativeEventFilter(&GetFilter());
    // The name may have been that of a window that has gone.
    GetFilter().SetCovered(name, false);
}

bool IsCovered(const QWidget& window)
{
    return GetFilter().IsCovered(GetName(window));
}
