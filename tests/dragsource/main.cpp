// A window out of which files are dragged: those of the command line, all at once. Its title tells whether
// what is under the pointer takes them, and then that whoever took them has done what it does with them.
// Ctrl+C copies the text of the first one, as the title tells.

#include <QtCore/QFile>
#include <QtCore/QMimeData>
#include <QtCore/QUrl>
#include <QtGui/QClipboard>
#include <QtGui/QDrag>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

class TDragSource : public QWidget
{
public:
    explicit TDragSource(const QStringList& files) : Files(files)
    {
        setWindowTitle(QStringLiteral("dragsource"));
        resize(200, 200);
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        QFile file(Files.value(0));
        if (!event->matches(QKeySequence::Copy) || !file.open(QIODevice::ReadOnly))
            return;
        QApplication::clipboard()->setText(QString::fromUtf8(file.readAll()));
        setWindowTitle(QStringLiteral("dragsource: copied"));
    }
    void mouseMoveEvent(QMouseEvent* event) override
    {
        if (!event->buttons().testFlag(Qt::LeftButton))
            return;
        QList<QUrl> urls;
        for (const QString& file : Files)
            urls.append(QUrl::fromLocalFile(file));
        QMimeData* carried = new QMimeData;
        carried->setUrls(urls);
        QDrag* drag = new QDrag(this);
        QObject::connect(drag, &QDrag::actionChanged, this, [this](Qt::DropAction action) {
            setWindowTitle(action == Qt::IgnoreAction ? QStringLiteral("dragsource")
                                                      : QStringLiteral("dragsource: taken"));
        });
        QObject::connect(drag, &QObject::destroyed, this,
                         [this] { setWindowTitle(QStringLiteral("dragsource: done")); });
        drag->setMimeData(carried);
        drag->exec(Qt::CopyAction | Qt::MoveAction);
    }

private:
    QStringList Files;
};

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    TDragSource source(QApplication::arguments().mid(1));
    source.show();
    return QApplication::exec();
}
