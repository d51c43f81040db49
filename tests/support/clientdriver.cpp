// SPDX-License-Identifier: MIT

#include "clientdriver.h"

#include "patience.h"
#include "testpaths.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLocalSocket>
#include <QTest>
#include <QUuid>

namespace {

constexpr int pollInterval = 20; // ms

QJsonObject command(const char *action, const QString &name = {}, const QString &text = {})
{
    return {{QStringLiteral("do"), QLatin1String(action)},
            {QStringLiteral("name"), name},
            {QStringLiteral("text"), text}};
}

bool isOk(const QJsonObject &answer)
{
    return answer.value(QLatin1String("ok")).toBool();
}

} // namespace

ClientDriver::ClientDriver(QObject *parent)
    : QObject(parent)
    , m_home(m_ownHome.path())
    , m_program(QStringLiteral(KAVLOR_CLIENT))
    , m_environment(QProcessEnvironment::systemEnvironment())
{
    // Abstract: a path inside the temporary folder may be too long for a socket.
    m_server.setSocketOptions(QLocalServer::AbstractNamespaceOption);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    // English, whatever the desktop speaks to whoever runs the tests or the tour.
    setEnvironment(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    setEnvironment(QStringLiteral("LANGUAGE"), QString());
}

ClientDriver::~ClientDriver()
{
    kill();
}

void ClientDriver::setEnvironment(const QString &name, const QString &value)
{
    m_environment.insert(name, value);
}

void ClientDriver::setHome(const QString &folder)
{
    m_home = folder;
}

void ClientDriver::setProgram(const QString &path)
{
    m_program = path;
}

QString ClientDriver::home() const
{
    return m_home;
}

void ClientDriver::setArguments(const QStringList &arguments)
{
    m_arguments = arguments;
}

QProcessEnvironment ClientDriver::environmentOfTheProgram() const
{
    QProcessEnvironment environment = m_environment;
    environment.insert(QStringLiteral("HOME"), m_home);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home + QStringLiteral("/.config"));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_home);
    return environment;
}

int ClientDriver::startAgain(const QStringList &arguments)
{
    QProcess second;
    second.setProcessChannelMode(QProcess::MergedChannels);
    second.setProcessEnvironment(environmentOfTheProgram());
    second.start(m_program, arguments);
    const bool ended = second.waitForStarted()
        && QTest::qWaitFor([&second] { return second.state() == QProcess::NotRunning; }, patience);
    m_output += second.readAll();
    return ended && second.exitStatus() == QProcess::NormalExit ? second.exitCode() : -1;
}

bool ClientDriver::start()
{
    delete m_socket;
    m_socket = nullptr;
    m_server.close();
    QDir().mkpath(m_home + QStringLiteral("/Pictures"));
    if (!m_server.listen(QUuid::createUuid().toString(QUuid::WithoutBraces))) {
        m_error = m_server.errorString();
        return false;
    }
    QProcessEnvironment environment = environmentOfTheProgram();
    environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("kavlordriver"));
    environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(KAVLOR_DRIVER_PLUGINS));
    environment.insert(QStringLiteral("KAVLOR_DRIVER_SOCKET"), m_server.fullServerName());
    m_process.setProcessEnvironment(environment);
    m_process.setWorkingDirectory(m_home);
    m_process.start(m_program, m_arguments);
    if (!m_process.waitForStarted() || !m_server.waitForNewConnection(patience)) {
        m_error = QStringLiteral("the client did not start: ") + QString::fromLocal8Bit(output());
        return false;
    }
    m_socket = m_server.nextPendingConnection();
    return true;
}

bool ClientDriver::isRunning() const
{
    return m_process.state() != QProcess::NotRunning;
}

qint64 ClientDriver::processId() const
{
    return m_process.processId();
}

int ClientDriver::waitForEnd()
{
    const bool ended = QTest::qWaitFor([this] { return !isRunning(); }, patience);
    return ended && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

bool ClientDriver::close()
{
    ask(command("quit"));
    const int code = waitForEnd();
    if (code == 0)
        return true;
    m_error = QStringLiteral("the client ended with code %1: ").arg(code)
        + QString::fromLocal8Bit(output());
    return false;
}

void ClientDriver::kill()
{
    if (!isRunning())
        return;
    m_process.kill();
    m_process.waitForFinished();
}

QJsonObject ClientDriver::ask(const QJsonObject &question)
{
    if (!m_socket || !isRunning()) {
        m_error = QStringLiteral("the client is not running: ") + QString::fromLocal8Bit(output());
        return {};
    }
    m_socket->write(QJsonDocument(question).toJson(QJsonDocument::Compact) + '\n');
    const bool answered =
        QTest::qWaitFor([this] { return !isRunning() || m_socket->canReadLine(); }, patience);
    if (!answered || !m_socket->canReadLine()) {
        m_error = QStringLiteral("no answer from the client");
        return {};
    }
    const QJsonObject answer = QJsonDocument::fromJson(m_socket->readLine()).object();
    if (!isOk(answer))
        m_error = answer.value(QLatin1String("value")).toString();
    return answer;
}

// Asks until the program can do it; it answers "not there" for as long as it cannot.
bool ClientDriver::until(const QJsonObject &question)
{
    QElapsedTimer timer;
    timer.start();
    while (!isOk(ask(question))) {
        if (!isRunning() || timer.hasExpired(patience))
            return false;
        QTest::qWait(pollInterval);
    }
    return true;
}

bool ClientDriver::waitFor(const QString &name)
{
    return until(command("find", name));
}

bool ClientDriver::isThere(const QString &name)
{
    return isOk(ask(command("find", name)));
}

bool ClientDriver::click(const QString &name)
{
    return until(command("click", name));
}

bool ClientDriver::clickTwice(const QString &name)
{
    return until(command("clickTwice", name));
}

bool ClientDriver::clickTab(const QString &tabs, int tab)
{
    QJsonObject question = command("tab", tabs);
    question.insert(QStringLiteral("row"), tab);
    return until(question);
}

bool ClientDriver::type(const QString &name, const QString &text)
{
    return until(command("type", name, text));
}

bool ClientDriver::key(const QString &name, Qt::Key key)
{
    QJsonObject question = command("key", name);
    question.insert(QStringLiteral("key"), static_cast<int>(key));
    return until(question);
}

QJsonObject ClientDriver::cellCommand(const char *action, const QString &table, int row, int column)
{
    QJsonObject question = command(action, table);
    question.insert(QStringLiteral("row"), row);
    question.insert(QStringLiteral("column"), column);
    return question;
}

bool ClientDriver::clickCell(const QString &table, int row, int column)
{
    return until(cellCommand("cell", table, row, column));
}

bool ClientDriver::waitForPhoto(const QString &table, int row, int column)
{
    return until(cellCommand("photo", table, row, column));
}

QImage ClientDriver::paintedCell(const QString &table, int row, int column)
{
    const QString file = m_ownHome.filePath(QStringLiteral("cell.png"));
    QJsonObject question = cellCommand("painted", table, row, column);
    question.insert(QStringLiteral("text"), file);
    return until(question) ? QImage(file) : QImage();
}

QString ClientDriver::text(const QString &name)
{
    const QJsonObject answer = ask(command("text", name));
    return isOk(answer) ? answer.value(QLatin1String("value")).toString() : QString();
}

bool ClientDriver::waitForText(const QString &name, const QString &part)
{
    const bool shown =
        QTest::qWaitFor([&] { return !isRunning() || text(name).contains(part); }, patience);
    if (shown && isRunning())
        return true;
    m_error = name + QStringLiteral(" says: ") + text(name);
    return false;
}

int ClientDriver::rows(const QString &table)
{
    const QJsonObject answer = ask(command("rows", table));
    return isOk(answer) ? answer.value(QLatin1String("value")).toInt() : -1;
}

bool ClientDriver::chooseFile(const QString &path)
{
    return type(QStringLiteral("fileNameEdit"), path)
        && waitForText(QStringLiteral("fileNameEdit"), path)
        && key(QStringLiteral("fileNameEdit"), Qt::Key_Return);
}

bool ClientDriver::waitForBox()
{
    return until(command("box"));
}

QString ClientDriver::closeBox()
{
    if (!until(command("box")))
        return {};
    const QString text = ask(command("box")).value(QLatin1String("value")).toString();
    return until(command("closeBox")) ? text : QString();
}

bool ClientDriver::resize(int width, int height)
{
    QJsonObject question = command("resize");
    question.insert(QStringLiteral("width"), width);
    question.insert(QStringLiteral("height"), height);
    return isOk(ask(question));
}

bool ClientDriver::isDumpable()
{
    const QJsonObject answer = ask(command("dumpable"));
    return !isOk(answer) || answer.value(QLatin1String("value")).toInt() != 0;
}

bool ClientDriver::picture(const QString &path)
{
    // The client's own folder is another.
    return isOk(ask(command("picture", QString(), QFileInfo(path).absoluteFilePath())));
}

QString ClientDriver::error() const
{
    return m_error;
}

QByteArray ClientDriver::output()
{
    if (m_process.isOpen())
        m_output += m_process.readAll();
    return m_output;
}
