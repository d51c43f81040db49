// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QString>
#include <memory>

class QLocalServer;
class QLocalSocket;
class QLockFile;

/**
 * Sees to it that a member has one program at a time over one settings file: the first start hears
 * of every later one, which hands over what it was to open and ends.
 *
 * They meet at a socket in a folder that no other user can enter. Where there is no such folder,
 * or the first cannot be reached, every start is for itself.
 */
class OneInstance : public QObject
{
    Q_OBJECT

public:
    explicit OneInstance(const QString &settingsFile, QObject *parent = nullptr);
    ~OneInstance() override;

    /**
     * Hands @p mediaPath, which may be empty, to the program that runs already. False when none
     * does: this is the first one then, and the later ones turn to it.
     */
    bool handOver(const QString &mediaPath);
    /** From now on startedAgain() tells of later starts, also of those that have come before. */
    void hear();

signals:
    /** The member has started the program once more; @p mediaPath is empty when for nothing. */
    void startedAgain(QString mediaPath);

private:
    void answer();
    void read(QLocalSocket *socket);

    const QString m_name; // of the socket, with its folder; empty when there is no folder
    std::unique_ptr<QLockFile> m_lock;
    QLocalServer *m_server = nullptr;
};
