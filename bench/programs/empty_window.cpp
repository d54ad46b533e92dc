// The least that a program with a window and a toolbar can be. The window opens the toolkit's own way.

#include <QApplication>
#include <QMainWindow>
#include <QToolBar>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QMainWindow window;
    window.addToolBar(QStringLiteral("Tools"))->addAction(QStringLiteral("Nothing"));
    window.resize(640, 400);
    window.show();
    return QApplication::exec();
}
