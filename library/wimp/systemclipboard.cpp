#include "library/wimp/systemclipboard.h"

#include "library/containers/append.h"
#include "library/containers/string.h"
#include "library/wimp/windowpeer.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QMimeData>
#include <QtCore/QPointer>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

#include <cstring>

namespace {

// Less than the window system waits at most, and more than an answer takes.
constexpr int SlowMilliseconds = 2000;

// The bytes as they are, where they are offered; what is asked for as plain text comes converted.
constexpr const char* Utf8Text = "text/plain;charset=utf-8";
constexpr const char* PlainText = "text/plain";

// Null without a window system.
QClipboard* GetClipboard()
{
    return TSystemClipboard::IsThere() ? QGuiApplication::clipboard() : nullptr;
}

bool HasFormat(const QMimeData& data, const char* type)
{
    return data.hasFormat(QString::fromLatin1(type));
}

} // namespace

// What the clipboard was given, which is the clipboard's own, and how its present owner answers.
class TSystemClipboardData
{
public:
    TSystemClipboardData()
    {
        if (QClipboard* clipboard = GetClipboard())
            QObject::connect(clipboard, &QClipboard::dataChanged, &Context, [this] { IsSlow = false; });
    }

    // What a question brings; null where nobody answers.
    template <class TQuestion>
    bool Ask(TQuestion&& question)
    {
        QClipboard* clipboard = GetClipboard();
        if (clipboard == nullptr)
            return false;
        QElapsedTimer time;
        time.start();
        const QMimeData* data = clipboard->mimeData();
        const bool answer = data != nullptr && question(*data);
        IsSlow = time.elapsed() > SlowMilliseconds;
        return answer;
    }

    QObject Context;
    QPointer<QMimeData> Own;
    bool IsSlow = false;
};

bool TSystemClipboard::IsThere()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

TSystemClipboard::TSystemClipboard() : Data(new TSystemClipboardData) {}

TSystemClipboard::~TSystemClipboard() = default;

void TSystemClipboard::Put(const char* type, const vector<uint8_t>& bytes, const char* text)
{
    QClipboard* clipboard = GetClipboard();
    if (clipboard == nullptr)
        return;
    QMimeData* data = new QMimeData;
    if (!bytes.empty())
        data->setData(QString::fromLatin1(type),
                      QByteArray(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    if (*text != '\0')
        data->setText(ToQt(text));
    Data->Own = data;
    clipboard->setMimeData(data);
}

bool TSystemClipboard::IsOwn() const
{
    const QClipboard* clipboard = GetClipboard();
    return clipboard != nullptr && Data->Own != nullptr && clipboard->mimeData() == Data->Own;
}

bool TSystemClipboard::IsEmpty()
{
    return !Data->Ask([](const QMimeData& data) { return !data.formats().isEmpty(); });
}

bool TSystemClipboard::HasType(const char* type)
{
    return Data->Ask([&](const QMimeData& data) { return HasFormat(data, type); });
}

bool TSystemClipboard::HasText()
{
    return Data->Ask(
        [](const QMimeData& data) { return HasFormat(data, Utf8Text) || HasFormat(data, PlainText); });
}

bool TSystemClipboard::GetBytes(const char* type, int limit, vector<uint8_t>& bytes)
{
    bytes.clear();
    return Data->Ask([&](const QMimeData& data) {
        const QByteArray found = data.data(QString::fromLatin1(type));
        if (found.isEmpty() || found.size() > limit)
            return false;
        const int size = static_cast<int>(found.size());
        std::memcpy(Extend(bytes, size), found.constData(), static_cast<size_t>(size));
        return true;
    });
}

bool TSystemClipboard::GetText(int limit, TString& text)
{
    text = nullptr;
    return Data->Ask([&](const QMimeData& data) {
        const char* type = HasFormat(data, Utf8Text) ? Utf8Text : PlainText;
        QByteArray found = data.data(QString::fromLatin1(type));
        if (found.size() > limit)
            return false;
        // Some end their texts with it; within one, a text would seem to end there.
        if (found.endsWith('\0'))
            found.chop(1);
        if (found.isEmpty() || found.contains('\0'))
            return false;
        // What is no UTF-8 is made so.
        found = QString::fromUtf8(found).toUtf8();
        text = found.constData();
        return true;
    });
}

bool TSystemClipboard::IsSlow() const
{
    return Data->IsSlow;
}
