// SPDX-License-Identifier: MIT

#include "driver.h"

#include "../support/widgettext.h"

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QApplication>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QSet>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTextEdit>
#include <QWindow>

#include <qpa/qwindowsysteminterface.h>

#include <sys/prctl.h>

namespace {

// The window that takes input now: the modal one, or else the only visible one.
QWidget *inputWindow()
{
    if (QWidget *modal = QApplication::activeModalWidget())
        return modal;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->isVisible() && window->windowType() != Qt::ToolTip)
            return window;
    }
    return nullptr;
}

// Something of that name that a member sees and can use now.
QWidget *find(const QString &name)
{
    QWidget *window = inputWindow();
    if (!window)
        return nullptr;
    if (window->objectName() == name)
        return window;
    const QList<QWidget *> found = window->findChildren<QWidget *>(name);
    for (QWidget *widget : found) {
        if (widget->isVisible() && widget->isEnabled())
            return widget;
    }
    return nullptr;
}

// Whether a click in the middle of the widget would really reach it.
bool isReachable(QWidget *widget, const QPoint &where)
{
    QWidget *hit = widget->window()->childAt(widget->mapTo(widget->window(), where));
    return hit && (hit == widget || widget->isAncestorOf(hit));
}

void clickAt(QWidget *widget, const QPoint &where)
{
    QWidget *window = widget->window();
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, widget->mapTo(window, where));
}

QJsonObject done(const QJsonValue &value = {})
{
    return {{QStringLiteral("ok"), true}, {QStringLiteral("value"), value}};
}

QJsonObject failed(const QString &why)
{
    return {{QStringLiteral("ok"), false}, {QStringLiteral("value"), why}};
}

// Runs once the answer is on its way, and outside of the socket's own slot.
template <typename Function>
QJsonObject soon(QObject *context, Function function)
{
    QMetaObject::invokeMethod(context, function, Qt::QueuedConnection);
    return done();
}

// The program's one window that is no dialog.
QWidget *mainWindow()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->isVisible() && window->windowType() == Qt::Window)
            return window;
    }
    return nullptr;
}

// The window with the dialog that is open over it, whole even on a screen of another size.
QPixmap picture()
{
    QWidget *window = mainWindow();
    if (!window)
        return {};
    QPixmap picture = window->grab();
    QWidget *dialog = QApplication::activeModalWidget();
    if (!dialog)
        return picture;
    QRect place(dialog->pos() - window->pos(), dialog->size());
    if (!window->rect().contains(place))
        place.moveCenter(window->rect().center());
    QPainter painter(&picture);
    painter.fillRect(place.adjusted(-2, -2, 2, 2), QColor(60, 60, 60));
    painter.drawPixmap(place, dialog->grab());
    return picture;
}

// Whether the cell shows more than plain areas and text, as a photo does.
bool showsPhoto(QTableView *table, const QModelIndex &cell)
{
    constexpr int manyColours = 256;
    const QImage image = table->viewport()->grab(table->visualRect(cell)).toImage();
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            colours.insert(image.pixel(x, y));
    }
    return colours.size() > manyColours;
}

QJsonObject cellCommand(Driver *driver, QTableView *table, const QJsonObject &command)
{
    const QModelIndex cell = table->model()
        ? table->model()->index(command.value(QLatin1String("row")).toInt(),
                                command.value(QLatin1String("column")).toInt())
        : QModelIndex();
    if (!cell.isValid())
        return failed(QStringLiteral("no such cell"));
    if (command.value(QLatin1String("do")) == QLatin1String("painted")) {
        const auto painted = table->model()->data(cell, Qt::DecorationRole).value<QPixmap>();
        return painted.save(command.value(QLatin1String("text")).toString())
            ? done()
            : failed(QStringLiteral("nothing painted"));
    }
    if (command.value(QLatin1String("do")) == QLatin1String("photo"))
        return showsPhoto(table, cell) ? done() : failed(QStringLiteral("no photo in the cell"));
    table->scrollTo(cell);
    return soon(driver, [table = QPointer<QTableView>(table), cell] {
        if (table)
            clickAt(table->viewport(), table->visualRect(cell).center());
    });
}

} // namespace

Driver::Driver(QObject *parent)
    : QObject(parent)
{
    connect(&m_socket, &QLocalSocket::readyRead, this, &Driver::readCommands);
    m_socket.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
    m_socket.connectToServer(qEnvironmentVariable("KAVLOR_DRIVER_SOCKET"));
}

void Driver::readCommands()
{
    while (m_socket.canReadLine()) {
        const QJsonObject command = QJsonDocument::fromJson(m_socket.readLine()).object();
        QMetaObject::invokeMethod(
            this, [this, command] { answer(command); }, Qt::QueuedConnection);
    }
}

void Driver::answer(const QJsonObject &command)
{
    m_socket.write(QJsonDocument(run(command)).toJson(QJsonDocument::Compact) + '\n');
    m_socket.flush();
}

QJsonObject Driver::run(const QJsonObject &command)
{
    const QString action = command.value(QLatin1String("do")).toString();
    const QString name = command.value(QLatin1String("name")).toString();
    const QString text = command.value(QLatin1String("text")).toString();

    if (action == QLatin1String("box")) {
        const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        return box ? done(box->text()) : failed(QStringLiteral("no message box"));
    }
    if (action == QLatin1String("closeBox")) {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || box->buttons().isEmpty())
            return failed(QStringLiteral("no message box"));
        return soon(this, [button = QPointer<QAbstractButton>(box->buttons().constFirst())] {
            if (button)
                clickAt(button, button->rect().center());
        });
    }
    if (action == QLatin1String("dumpable"))
        return done(::prctl(PR_GET_DUMPABLE));
    if (action == QLatin1String("picture")) {
        // Of a PNG, this is how little room it takes.
        const int quality = text.endsWith(QLatin1String(".jpg")) ? 80 : 10;
        return picture().save(text, nullptr, quality)
            ? done()
            : failed(QStringLiteral("not saved: ") + text);
    }
    if (action == QLatin1String("resize")) {
        inputWindow()->resize(command.value(QLatin1String("width")).toInt(),
                              command.value(QLatin1String("height")).toInt());
        return done();
    }
    if (action == QLatin1String("quit")) {
        // As a member does it, so that the program takes it for a member's doing.
        const QWindowList windows = QGuiApplication::topLevelWindows();
        for (QWindow *window : windows) {
            if (window->isVisible())
                QWindowSystemInterface::handleCloseEvent<
                    QWindowSystemInterface::AsynchronousDelivery>(window);
        }
        return done();
    }

    QWidget *widget = find(name);
    if (!widget)
        return failed(QStringLiteral("not there: ") + name);
    if (action == QLatin1String("find"))
        return done();
    if (action == QLatin1String("text"))
        return done(widgetText(widget));
    if (action == QLatin1String("rows")) {
        const auto *table = qobject_cast<QTableView *>(widget);
        return table && table->model() ? done(table->model()->rowCount())
                                       : failed(QStringLiteral("no rows: ") + name);
    }
    if (action == QLatin1String("cell") || action == QLatin1String("photo")
        || action == QLatin1String("painted")) {
        auto *table = qobject_cast<QTableView *>(widget);
        return table ? cellCommand(this, table, command) : failed(QStringLiteral("no table"));
    }
    if (action == QLatin1String("tab")) {
        auto *tabs = qobject_cast<QTabWidget *>(widget);
        const int tab = command.value(QLatin1String("row")).toInt();
        if (!tabs || tab >= tabs->count())
            return failed(QStringLiteral("no such tab: ") + name);
        return soon(this, [bar = QPointer<QTabBar>(tabs->tabBar()), tab] {
            if (bar)
                clickAt(bar, bar->tabRect(tab).center());
        });
    }
    if (action == QLatin1String("click") || action == QLatin1String("clickTwice")) {
        const QPoint middle = widget->rect().center();
        if (!isReachable(widget, middle))
            return failed(QStringLiteral("covered: ") + name);
        const int clicks = action == QLatin1String("click") ? 1 : 2;
        return soon(this,
                    [window = QPointer<QWidget>(widget->window()),
                     at = widget->mapTo(widget->window(), middle), clicks] {
                        // Where the button was, whatever is there by the second time.
                        for (int click = 0; click < clicks && window; ++click)
                            QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, at);
                    });
    }
    if (action == QLatin1String("type")) {
        // At once, not soon: keys let events in between, and the next command has to wait for all.
        QWindow *window = widget->window()->windowHandle();
        clickAt(widget, widget->rect().center());
        QTest::keyClick(window, Qt::Key_A, Qt::ControlModifier);
        for (const QChar letter : text)
            QTest::sendKeyEvent(QTest::Click, window, Qt::Key_unknown, QString(letter),
                                Qt::NoModifier);
        return done();
    }
    if (action == QLatin1String("key")) {
        return soon(this,
                    [window = widget->window(), key = command.value(QLatin1String("key")).toInt()] {
                        QTest::keyClick(window->windowHandle(), static_cast<Qt::Key>(key));
                    });
    }
    return failed(QStringLiteral("unknown: ") + action);
}
