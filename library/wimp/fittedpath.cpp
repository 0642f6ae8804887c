#include "library/wimp/fittedpath.h"

#include <QtGui/QFontMetrics>

QString FitPath(const QString& text, int width, const QFontMetrics& metrics)
{
    if (metrics.horizontalAdvance(text) <= width)
        return text;
    const qsizetype nameAt = text.lastIndexOf(QLatin1Char('/'));
    if (nameAt == -1)
        return metrics.elidedText(text, Qt::ElideRight, width);
    // With the slash, which tells that it is a name.
    const QString name = text.sliced(nameAt);
    const int room = width - metrics.horizontalAdvance(name);
    const int least = metrics.horizontalAdvance(QStringLiteral("/..."));
    if (room < least)
        return metrics.elidedText(name, Qt::ElideMiddle, width);
    return metrics.elidedText(text.first(nameAt), Qt::ElideMiddle, room) + name;
}
