#include "library/wimp/desktopactivation.h"

#include "library/wimp/modal.h"
#include "library/wimp/sessionbus.h"
#include "library/wimp/wimp.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QTimer>
#include <QUrl>

namespace {
constexpr const char* Interface = "org.freedesktop.Application";
constexpr const char* Introspection = R"(<interface name="org.freedesktop.Application">
  <method name="Activate"><arg type="a{sv}" name="platform_data" direction="in"/></method>
  <method name="Open">
    <arg type="as" name="uris" direction="in"/><arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
  <method name="ActivateAction">
    <arg type="s" name="action_name" direction="in"/><arg type="av" name="parameter" direction="in"/>
    <arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
</interface>
)";

QString GetPath(const char* name)
{
    return "/" + QString::fromUtf8(name).replace('.', '/').replace('-', '_');
}

// What the desktop knows the click by; none if it tells nothing.
TLaunch GetLaunch(const QVariant& platformData)
{
    const bool isX = QGuiApplication::platformName() == "xcb";
    const QVariantMap data = qdbus_cast<QVariantMap>(platformData);
    const QString id = data.value(isX ? "desktop-startup-id" : "activation-token").toString();
    return TLaunch(TString(id.toUtf8().constData()));
}

bool IsBusy()
{
    return TNestedLoopScope::IsActive() || TEventScope::IsActive() || TWimp::Get().GetMouseDrag() != nullptr;
}
} // namespace

class TDesktopActivation::TBusObject : public QDBusVirtualObject
{
public:
    TBusObject(const char* name, TActivationHost& host)
        : Host(host), Name(QString::fromUtf8(name)), Path(GetPath(name))
    {
        Wait.setSingleShot(true);
        QObject::connect(&Wait, &QTimer::timeout, [this] { Deliver(); });
    }

    ~TBusObject() override
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        bus.unregisterService(Name);
        bus.unregisterObject(Path);
    }

    // The object is there before the name, so that whoever waits for the name finds it.
    bool Register()
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        return bus.isConnected() && bus.registerVirtualObject(Path, this) && bus.registerService(Name);
    }

    QString introspect(const QString&) const override { return Introspection; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        if (message.interface() != Interface)
            return false;
        const QList<QVariant> arguments = message.arguments();
        if (message.member() == "Open" && !arguments.empty())
            Take(arguments[0].toStringList());
        else if (message.member() != "Activate")
            return false;
        Launch = arguments.empty() ? TLaunch() : GetLaunch(arguments.back());
        Launch.TellDone();
        bus.send(message.createReply());
        Wait.start(0);
        return true;
    }

private:
    void Take(const QStringList& urls)
    {
        for (const QString& text : urls) {
            const QUrl url(text);
            if (url.isLocalFile())
                Files.push_back(TString(QFile::encodeName(url.toLocalFile()).constData()));
        }
    }

    // What comes while a dialog is answered waits for its end.
    void Deliver()
    {
        constexpr int again = 50;
        if (IsBusy()) {
            Wait.start(again);
            return;
        }
        vector<TString> files;
        files.swap(Files);
        Host.OnActivation(files, Launch);
    }

    TActivationHost& Host;
    QString Name;
    QString Path;
    QTimer Wait;
    vector<TString> Files;
    // The last one.
    TLaunch Launch;
};

TDesktopActivation::~TDesktopActivation()
{
    delete Object;
}

bool TDesktopActivation::Start(const char* name, TActivationHost& host)
{
    if (!IsThereASessionBus())
        return false;
    Object = new TBusObject(name, host);
    return Object->Register();
}
