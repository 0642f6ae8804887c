#include "library/wimp/sessionbus.h"

#include <QtCore/QFile>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

const char* const AddressVariable = "DBUS_SESSION_BUS_ADDRESS";
// Of a kind that nobody knows, so that whoever connects to it fails at once.
const char* const NoAddress = "disabled:";
constexpr int AnswerMilliseconds = 2000;

QString GetDefaultPath()
{
    return qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus");
}

// What stands behind the key in an address; none where it has no such key.
QByteArray GetPart(const QByteArray& address, const QByteArray& key)
{
    for (const QByteArray& part : address.split(','))
        if (part.startsWith(key))
            return QByteArray::fromPercentEncoding(part.mid(key.size()));
    return QByteArray();
}

// The name of the bus's socket as the system takes it; none for a bus that is reached in another way.
QByteArray GetSocketName()
{
    if (!qEnvironmentVariableIsSet(AddressVariable))
        return QFile::encodeName(GetDefaultPath());
    const QByteArray transport = "unix:";
    const QByteArray address = qgetenv(AddressVariable).split(';').constFirst();
    if (!address.startsWith(transport))
        return QByteArray();
    const QByteArray abstract = GetPart(address.mid(transport.size()), "abstract=");
    if (!abstract.isEmpty())
        return '\0' + abstract;
    return GetPart(address.mid(transport.size()), "path=");
}

// A question for the ways to log in always has an answer.
bool IsAnswered(int handle)
{
    const char question[] = "\0AUTH\r\n";
    const size_t length = sizeof(question) - 1;
    if (send(handle, question, length, MSG_NOSIGNAL) != static_cast<ssize_t>(length))
        return false;
    pollfd answer = {handle, POLLIN, 0};
    // Whoever is interrupted has not waited.
    return poll(&answer, 1, AnswerMilliseconds) != 0;
}

// Whose program is stopped still takes connections, until too many wait. What is not there at all is no
// matter: there everybody fails at once.
bool IsMute(const QByteArray& name)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (name.isEmpty() || static_cast<size_t>(name.size()) >= sizeof(address.sun_path))
        return false;
    memcpy(address.sun_path, name.constData(), static_cast<size_t>(name.size()));
    const size_t length = offsetof(sockaddr_un, sun_path) + static_cast<size_t>(name.size());
    const int handle = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (handle < 0)
        return false;
    const bool isConnected =
        connect(handle, reinterpret_cast<const sockaddr*>(&address), static_cast<socklen_t>(length)) == 0;
    const bool result = isConnected ? !IsAnswered(handle) : errno == EAGAIN;
    close(handle);
    return result;
}

} // namespace

bool IsThereASessionBus()
{
    return qEnvironmentVariableIsSet(AddressVariable) ? qgetenv(AddressVariable) != NoAddress
                                                      : QFile::exists(GetDefaultPath());
}

bool LeaveMuteSessionBus()
{
    if (!IsThereASessionBus() || !IsMute(GetSocketName()))
        return false;
    qputenv(AddressVariable, NoAddress);
    return true;
}
