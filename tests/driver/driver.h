// SPDX-License-Identifier: MIT

#pragma once

#include <QJsonObject>
#include <QLocalSocket>
#include <QObject>

class QWidget;

/**
 * The part of a test that lives in the driven program.
 *
 * It connects to the test's local socket (KAVLOR_DRIVER_SOCKET) and takes one command a line, as
 * a JSON object; each is answered by one line with "ok" and, where it asks for something, "value".
 * Clicks and keys enter where those of the window system do, so that a modal window blocks them
 * as it would block a member's. They are acknowledged before they take effect, since they may open
 * a window that stays until the next command.
 */
class Driver : public QObject
{
    Q_OBJECT

public:
    explicit Driver(QObject *parent = nullptr);

private:
    void readCommands();
    void answer(const QJsonObject &command);
    QJsonObject run(const QJsonObject &command);

    QLocalSocket m_socket;
};
