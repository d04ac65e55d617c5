#include <QApplication>
#include <QTimer>

// What any Qt Widgets program takes to reach its event loop, to compare ours with.
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QTimer::singleShot(0, &application, &QCoreApplication::quit);
    return QApplication::exec();
}
