#include "gconfbackend.h"

#include "qgconfloader.h"

#include <QDebug>
#include <QString>

// What is used of GConf and GLib, declared here because neither is needed to build the program.
struct GError;
struct GConfValue
{
    int type; // more follows that only GConf reads
};
struct GSList
{
    void *data;
    GSList *next;
};

namespace {

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
        qWarning("CGConfBackend::value: the type %d is not yet supported.", value->type);
        return {};
    }
    return error.isSet() ? QVariant() : result;
}

} // namespace

CGConfBackend::CGConfBackend()
{
    qgconf_loadLibGConf();
    m_client = gconf_client_get_default();
    available = m_client;
}

CGConfBackend::~CGConfBackend()
{
    if (m_client)
        g_object_unref(m_client);
    available = false;
    qgconf_unloadLibGConf();
}

CGConfBackend *CGConfBackend::instance()
{
    static CGConfBackend backend;
    return available ? &backend : nullptr;
}

QVariant CGConfBackend::value(const QString &key) const
{
    if (!m_client) {
        qWarning("Warning: CGConfBackend::value gclient not initialized yet");
        return {};
    }
    const QByteArray localKey = key.toLocal8Bit();
    ErrorGuard error;
    // Over a key that is no path GConf ends the program instead of reporting an error.
    const bool isPath = localKey.startsWith('/');
    GConfValue *value =
        isPath ? gconf_client_get(m_client, localKey.constData(), error.out()) : nullptr;
    if (!isPath || error.isSet()) {
        qWarning() << "Warning: CGConfBackend::value unable to find key:" << key;
        return {};
    }
    if (!value) {
        qWarning() << "Warning: CGConfBackend::value got a NULL value for key:" << key;
        return {};
    }
    const QVariant result = typedValue(m_client, localKey, value);
    gconf_value_free(value);
    return result;
}
