// SPDX-License-Identifier: MIT

#include "dostep.h"
#include "patience.h"
#include "testcase.h"
#include "testmain.h"
#include "testpaths.h"
#include "waituntil.h"
#include "wholesystem.h"

#include <QProcess>

/**
 * The real client with a service that is not ours: one that was written in another language from
 * docs/protocol.md alone. What that description lacks or says wrong is found here.
 */
class tst_OtherService : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void aMembersWholeWayWorksWithIt();

private:
    bool changeAccount();

    QProcess m_service;
    WholeSystem m_system;
};

namespace {

const QString member = QStringLiteral("zoe");
const QString oldPassword = QStringLiteral("first secret & more");
const QString newPassword = QStringLiteral("second=secret%20");

const QColor photo(0, 128, 128);

// Whether a thumbnail is of a photo of that colour; packing changes it a little.
bool isOf(const QColor &colour, const QImage &thumbnail)
{
    const QColor corner = thumbnail.isNull() ? QColor() : thumbnail.pixelColor(5, 5);
    return qAbs(corner.red() - colour.red()) < 12 && qAbs(corner.green() - colour.green()) < 12
        && qAbs(corner.blue() - colour.blue()) < 12;
}

QString name(const char *objectName)
{
    return QLatin1String(objectName);
}

} // namespace

void tst_OtherService::initTestCase()
{
    m_service.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_service.start(
        QStringLiteral("python3"),
        {QStringLiteral(KAVLOR_OTHER_SERVICE), QString::number(WholeSystem::servicePort())});
    while (!m_service.canReadLine())
        QVERIFY2(m_service.waitForReadyRead(patience), qPrintable(m_service.errorString()));
    QVERIFY(m_system.startConnectivity());
}

void tst_OtherService::cleanupTestCase()
{
    QCOMPARE(m_service.state(), QProcess::Running);
    m_service.kill();
    m_service.waitForFinished(patience);
}

bool tst_OtherService::changeAccount()
{
    ClientDriver &client = *m_system.client;
    return client.click(name("buttonSettings")) && client.click(name("pushButtonMyAccount"))
        && client.click(name("checkBoxPassword")) && client.type(name("linePassword"), newPassword)
        && client.type(name("lineConfirm"), newPassword) && client.click(name("pushButtonDone"))
        && client.waitFor(name("pushButtonMyAccount")) && client.click(name("backNavigationButton"))
        && client.click(name("cancelNavigationButton")); // signs out
}

void tst_OtherService::aMembersWholeWayWorksWithIt()
{
    ClientDriver &client = *m_system.client;
    const QString table = name("myAuctionsTable");
    DO(client.start());
    DO(m_system.createAccount(member, oldPassword, QStringLiteral("zoe@example.org")));
    DO(m_system.prepareUpload(m_system.makePhoto(photo), QStringLiteral("Ein schönes Tor")));
    DO(client.click(name("createAuctionButton")));
    DO(client.click(name("buttonOk")));
    DO(client.click(name("checkBoxOnView")));
    DO(client.click(name("pushButtonDone")));

    DO(client.click(name("buttonMyKavlor")));
    DO(client.waitFor(table));
    QTRY_VERIFY(isOf(photo, client.paintedCell(table, 0, 0)));
    QCOMPARE(client.rows(table), 1);
    DO(client.clickCell(table, 0, 1));
    DO(client.type(name("buyItNowPrice"), QStringLiteral("120")));
    DO(client.click(name("done")));
    QCOMPARE(client.closeBox(), QStringLiteral("Your auction has been updated successfully."));
    DO(client.click(name("backNavigationButton")));

    DO(changeAccount());
    DO(m_system.logIn(member, newPassword));
    DO(client.close());
}

KAVLOR_TEST_MAIN(tst_OtherService)
#include "tst_otherservice.moc"
