// SPDX-License-Identifier: MIT

// The least that a program of the toolkit can be: one window with the picture given.

#include <QApplication>
#include <QLabel>
#include <QPixmap>

int main(int argc, char *argv[])
{
    const QApplication app(argc, argv);
    QLabel window;
    window.setPixmap(QPixmap(QApplication::arguments().value(1)));
    window.setScaledContents(true);
    window.resize(800, 424);
    window.show();
    return QApplication::exec();
}
