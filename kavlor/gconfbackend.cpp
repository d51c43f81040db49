// SPDX-License-Identifier: MIT

#include "gconfbackend.h"

#include "qgconfloader.h"
#include "timeconstants.h"

#include <QDeadlineTimer>
#include <QDebug>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QString>
#include <QThread>

#include <memory>

// What is used of GConf and GLib, declared here because neither is needed to build the program.
struct GError;
struct GConfValue
{
    int type; // the rest of it is GConf's own
};
struct GSList
{
    void *data;
    GSList *next;
};

namespace {

Q_LOGGING_CATEGORY(gconfLog, "kavlor.gconf")

enum ValueType { StringValue = 1, IntValue = 2, BoolValue = 4, ListValue = 6 };

bool available = false;

// The function of that name, looked up once. Without it the call does nothing and returns zero.
template <typename Result, typename... Arguments>
class Function
{
public:
    explicit constexpr Function(const char *name)
        : m_name(name)
    {
    }

    Result operator()(Arguments... arguments)
    {
        if (!m_function)
            m_function = reinterpret_cast<Result (*)(Arguments...)>(qgconf_resolve_me(m_name));
        return m_function ? m_function(arguments...) : Result();
    }

private:
    const char *m_name;
    Result (*m_function)(Arguments...) = nullptr;
};

Function<GConfClient *> gconf_client_get_default("gconf_client_get_default");
Function<GConfValue *, GConfClient *, const char *, GError **> gconf_client_get("gconf_client_get");
Function<char *, GConfClient *, const char *, GError **> gconf_client_get_string(
    "gconf_client_get_string");
Function<int, GConfClient *, const char *, GError **> gconf_client_get_int("gconf_client_get_int");
Function<int, GConfClient *, const char *, GError **> gconf_client_get_bool(
    "gconf_client_get_bool");
Function<GSList *, const GConfValue *> gconf_value_get_list("gconf_value_get_list");
Function<char *, const GConfValue *> gconf_value_to_string("gconf_value_to_string");
Function<void, GConfValue *> gconf_value_free("gconf_value_free");
Function<void, GError *> g_error_free("g_error_free");
Function<void, void *> g_free("g_free");
Function<void, void *> g_object_unref("g_object_unref");

// An error that GLib reports through a pointer; freed when it goes.
class ErrorGuard
{
public:
    ErrorGuard() = default;
    ~ErrorGuard()
    {
        if (m_error)
            g_error_free(m_error);
    }
    Q_DISABLE_COPY_MOVE(ErrorGuard)

    GError **out()
    {
        return &m_error;
    }
    bool isSet() const
    {
        return m_error;
    }

private:
    GError *m_error = nullptr;
};

QVariant takeString(char *text)
{
    if (!text)
        return {};
    const QString string = QString::fromUtf8(text);
    g_free(text);
    return string;
}

QVariant firstOf(const GConfValue *list)
{
    const GSList *first = gconf_value_get_list(list);
    return first ? takeString(gconf_value_to_string(static_cast<GConfValue *>(first->data)))
                 : QVariant();
}

QVariant typedValue(GConfClient *client, const QByteArray &key, const GConfValue *value)
{
    ErrorGuard error;
    QVariant result;
    switch (value->type) {
    case StringValue:
        result = takeString(gconf_client_get_string(client, key.constData(), error.out()));
        break;
    case IntValue:
        result = gconf_client_get_int(client, key.constData(), error.out());
        break;
    case BoolValue:
        result = gconf_client_get_bool(client, key.constData(), error.out()) != 0;
        break;
    case ListValue:
        return firstOf(value);
    default:
        break;
    }
    return error.isSet() ? QVariant() : result;
}

bool isSupported(int type)
{
    return type == StringValue || type == IntValue || type == BoolValue || type == ListValue;
}

// What became of a read; nothing was found unless it says so.
struct Reading
{
    enum Outcome { NotFound, Null, Found };

    Outcome outcome = NotFound;
    int type = 0;
    QVariant value;
};

Reading read(GConfClient *client, const QByteArray &key)
{
    // Over a key that is no path GConf ends the program instead of reporting an error.
    if (!key.startsWith('/'))
        return {};
    ErrorGuard error;
    GConfValue *value = gconf_client_get(client, key.constData(), error.out());
    if (error.isSet())
        return {};
    if (!value)
        return {Reading::Null, 0, QVariant()};
    const Reading reading{Reading::Found, value->type, typedValue(client, key, value)};
    gconf_value_free(value);
    return reading;
}

} // namespace

CGConfBackend::CGConfBackend()
    : m_patience(timeConstants().gconfWait)
{
    qgconf_loadLibGConf();
}

CGConfBackend::~CGConfBackend()
{
    available = false;
    if (isStuck())
        return; // its thread still uses the library; both end with the process
    if (m_client)
        g_object_unref(m_client);
    qgconf_unloadLibGConf();
}

CGConfBackend *CGConfBackend::instance()
{
    static CGConfBackend backend;
    if (!available)
        backend.open();
    return available ? &backend : nullptr;
}

void CGConfBackend::open()
{
    if (!qgconf_resolve_me("gconf_client_get_default"))
        return;
    const auto client = std::make_shared<GConfClient *>(nullptr);
    if (carryOut([client] { *client = gconf_client_get_default(); }))
        m_client = *client;
    available = m_client;
}

QVariant CGConfBackend::value(const QString &key)
{
    if (!m_client) {
        qCWarning(gconfLog, "Warning: CGConfBackend::value gclient not initialized yet");
        return {};
    }
    const auto reading = std::make_shared<Reading>();
    const bool answered = carryOut([reading, client = m_client, localKey = key.toLocal8Bit()] {
        *reading = read(client, localKey);
    });
    if (answered)
        m_patience = timeConstants().gconfWait;
    if (!answered || reading->outcome == Reading::NotFound) {
        qCWarning(gconfLog) << "Warning: CGConfBackend::value unable to find key:" << key;
        return {};
    }
    if (reading->outcome == Reading::Null) {
        qCWarning(gconfLog) << "Warning: CGConfBackend::value got a NULL value for key:" << key;
        return {};
    }
    if (!isSupported(reading->type))
        qCWarning(gconfLog, "CGConfBackend::value: the type %d is not yet supported.",
                  reading->type);
    return reading->value;
}

// Calls the library from a thread of its own, since a server that hangs holds a call up for 25 s.
// Returns false when the call has not ended in time; it then goes on, and nothing else is called
// until it has ended. Opening and the read after it share one time.
bool CGConfBackend::carryOut(const std::function<void()> &call)
{
    if (isStuck())
        return false;
    QThread *thread = QThread::create(call);
    QElapsedTimer timer;
    timer.start();
    thread->start();
    if (thread->wait(QDeadlineTimer(m_patience))) {
        delete thread;
        m_patience = qMax<qint64>(0, m_patience - timer.elapsed());
        return true;
    }
    m_stuck = thread;
    m_patience = timeConstants().gconfWait;
    return false;
}

bool CGConfBackend::isStuck()
{
    if (!m_stuck)
        return false;
    if (!m_stuck->isFinished())
        return true;
    m_stuck->wait();
    delete m_stuck;
    m_stuck = nullptr;
    return false;
}
