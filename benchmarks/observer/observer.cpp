// SPDX-License-Identifier: MIT

#include <QCoreApplication>
#include <QEvent>
#include <QGenericPlugin>
#include <QWidget>

#include <cstdio>
#include <ctime>

#include <sys/prctl.h>

namespace {

double processorTime()
{
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/**
 * Says on the standard output when a widget has been painted for the first time: what the program
 * had of the processor by then, in milliseconds. Of every widget, or of those of one class.
 */
class Observer : public QObject
{
    Q_OBJECT

public:
    explicit Observer(const QByteArray &className)
        : m_className(className)
    {
        QCoreApplication::instance()->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Paint || !watched->isWidgetType()
            || (!m_className.isEmpty() && !watched->inherits(m_className)))
            return false;
        QCoreApplication::instance()->removeEventFilter(this);
        QMetaObject::invokeMethod(this, &Observer::tell, Qt::QueuedConnection);
        return false;
    }

private:
    // Queued: the window is painted to its end then.
    void tell()
    {
        std::printf("painted %f\n", processorTime());
        std::fflush(stdout);
    }

    const QByteArray m_className;
};

} // namespace

/** Loaded by the toolkit into a program that is to be measured, which knows nothing of it. */
class ObserverPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "observer.json")

public:
    QObject *create(const QString &, const QString &) override
    {
        // The client keeps its memory to itself, which would keep its size from an ordinary user.
        prctl(PR_SET_DUMPABLE, 1);
        return new Observer(qgetenv("KAVLOR_OBSERVED"));
    }
};

#include "observer.moc"
