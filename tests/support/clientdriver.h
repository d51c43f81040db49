// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <QJsonObject>
#include <QLocalServer>
#include <QObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

class QLocalSocket;

/**
 * Starts the client's real binary and works it from outside, by clicks and keys.
 *
 * Every operation waits until the widget it names is there, visible and enabled, up to a time far
 * beyond what it should take, and returns false with error() telling what was missing. The program
 * is ended with this object at the latest.
 */
class ClientDriver : public QObject
{
    Q_OBJECT

public:
    explicit ClientDriver(QObject *parent = nullptr);
    ~ClientDriver() override;

    /** A variable for the program's environment, to be set before start(); it speaks English. */
    void setEnvironment(const QString &name, const QString &value);
    /** The home folder of the program; unless set, a temporary one that outlives a restart. */
    void setHome(const QString &folder);
    /** The program to start; unless set, the client as it was built. */
    void setProgram(const QString &path);
    QString home() const;
    /** What the program is started with from now on. */
    void setArguments(const QStringList &arguments);
    /**
     * Starts the program a second time beside the running one, with @p arguments, and waits for
     * its end; its exit code, or -1. What it wrote follows in output().
     */
    int startAgain(const QStringList &arguments);

    bool start();
    bool isRunning() const;
    qint64 processId() const;
    /** Waits for the program to end by itself; its exit code, or -1. */
    int waitForEnd();
    /** Closes the window as a member would and waits for the end. */
    bool close();
    void kill();

    bool waitFor(const QString &name);
    bool isThere(const QString &name);
    bool click(const QString &name);
    /** Two clicks as fast as they come. */
    bool clickTwice(const QString &name);
    bool clickTab(const QString &tabs, int tab);
    /** Clicks into @p name and replaces its text. */
    bool type(const QString &name, const QString &text);
    bool key(const QString &name, Qt::Key key);
    bool clickCell(const QString &table, int row, int column);
    /** Waits until a cell shows a photo. */
    bool waitForPhoto(const QString &table, int row, int column);
    /** The picture that a painted cell consists of; null when there is none. */
    QImage paintedCell(const QString &table, int row, int column);
    /** The text shown by @p name; null when it is not there. */
    QString text(const QString &name);
    bool waitForText(const QString &name, const QString &part);
    int rows(const QString &table);
    /** Chooses @p path in the open file dialog. */
    bool chooseFile(const QString &path);
    /** Waits for a message box, closes it and returns its text; null when none came. */
    QString closeBox();
    bool resize(int width, int height);
    /** Waits for a message box and leaves it open. */
    bool waitForBox();
    /** Whether others may look into the program's memory, as a core dump does. */
    bool isDumpable();
    /** Saves what the window shows, with the dialog that is open over it. */
    bool picture(const QString &path);

    QString error() const;
    /** What the program wrote. */
    QByteArray output();

private:
    QJsonObject ask(const QJsonObject &question);
    bool until(const QJsonObject &command);
    QProcessEnvironment environmentOfTheProgram() const;
    static QJsonObject cellCommand(const char *action, const QString &table, int row, int column);

    QTemporaryDir m_ownHome;
    QString m_home;
    QString m_program;
    QStringList m_arguments;
    QProcessEnvironment m_environment;
    QProcess m_process;
    QLocalServer m_server;
    QLocalSocket *m_socket = nullptr;
    QString m_error;
    QByteArray m_output;
};
