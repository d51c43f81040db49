// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QSocketNotifier>

/**
 * Turns SIGTERM and SIGINT into a Qt signal.
 *
 * Made by main() before any thread starts: the signals are blocked, in every thread to come too,
 * and read from a descriptor instead.
 */
class TerminationSignal : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignal(QObject *parent = nullptr);
    ~TerminationSignal() override;

signals:
    void received();

private:
    QSocketNotifier m_notifier;
};
