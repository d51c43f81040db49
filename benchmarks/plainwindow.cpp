// SPDX-License-Identifier: MIT

// The least that a program of the toolkit can be that shows the picture of the start-up window: its
// background and logo, which are given, and its lines of text.

#include <QApplication>
#include <QLabel>
#include <QPixmap>
#include <QVBoxLayout>

int main(int argc, char *argv[])
{
    const QApplication app(argc, argv);
    QLabel window;
    window.setPixmap(QPixmap(QApplication::arguments().value(1)));
    window.setScaledContents(true);
    QVBoxLayout lines(&window);
    QLabel logo;
    logo.setPixmap(QPixmap(QApplication::arguments().value(2)));
    lines.addWidget(&logo, 0, Qt::AlignCenter);
    QFont font = QApplication::font();
    font.setBold(true);
    for (const char *text : {"kavlor 0.1 beta", "requesting terms data", "Sell your photos"}) {
        font.setPointSize(font.pointSize() + 4);
        auto *line = new QLabel(QString::fromLatin1(text));
        line->setFont(font);
        lines.addWidget(line, 0, Qt::AlignCenter);
    }
    window.resize(800, 424);
    window.show();
    return QApplication::exec();
}
