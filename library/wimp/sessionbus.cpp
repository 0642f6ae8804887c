#include "library/wimp/sessionbus.h"

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>

bool IsThereASessionBus()
{
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
           QFile::exists(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + "/bus");
}
