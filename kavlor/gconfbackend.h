// SPDX-License-Identifier: MIT

#pragma once

#include <QVariant>
#include <functional>

class QString;
class QThread;
struct GConfClient;

/**
 * Reads single values from the device's GConf database.
 *
 * The one object of the process is made by the first call of instance(), which loads the GConf
 * library, and lives until the program ends. GConf is bound at run time, function by function:
 * where the library is missing instance() is null and the program does without. A server that
 * hangs is given up after TimeConstants::gconfWait, and asked again only when it has answered.
 */
class CGConfBackend
{
public:
    /** The reader of this process, or null where there is no GConf. */
    static CGConfBackend *instance();

    /**
     * The value of @p key: a string, an int or a bool; of a list its first element as a string.
     * Invalid when nothing could be read, after a warning that tells why.
     */
    QVariant value(const QString &key);

private:
    CGConfBackend();
    ~CGConfBackend();
    Q_DISABLE_COPY_MOVE(CGConfBackend)

    void open();
    bool carryOut(const std::function<void()> &call);
    bool isStuck();

    GConfClient *m_client = nullptr;
    QThread *m_stuck = nullptr; // the call that was given up and has not ended
    qint64 m_patience;          // ms until the next call is given up
};
