#pragma once

// This header shows the window system: only the framework includes it.

#include <QtCore/QString>

class QFontMetrics;

// A text that names a file, as wide as there is room at most: the folder is cut in its middle, so that the
// file's name stays, with what stands behind it. Only where that alone has no room, it is cut in its middle
// too.
QString FitPath(const QString& text, int width, const QFontMetrics& metrics);
