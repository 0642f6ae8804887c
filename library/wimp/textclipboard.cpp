#include "library/wimp/textclipboard.h"

#include "library/containers/string.h"
#include "library/wimp/windowpeer.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

namespace {

TString& GetOwnText()
{
    static TString text;
    return text;
}

bool HasWindowSystem()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

} // namespace

void SetClipboardText(const char* text)
{
    if (HasWindowSystem())
        QGuiApplication::clipboard()->setText(ToQt(text));
    else
        GetOwnText() = text;
}

bool GetClipboardText(TString& text)
{
    if (HasWindowSystem())
        text = QGuiApplication::clipboard()->text().toUtf8().constData();
    else
        text = GetOwnText();
    return !text.IsEmpty();
}
