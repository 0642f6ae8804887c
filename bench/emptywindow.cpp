#include <QtWidgets/QApplication>
#include <QtWidgets/QMainWindow>

// As little as a program of the toolkit can be: one empty window.
int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QMainWindow window;
    window.resize(1350, 950);
    window.show();
    return QApplication::exec();
}
