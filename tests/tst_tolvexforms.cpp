// SPDX-License-Identifier: MIT

#include "kavlornotificationoptions.h"
#include "kavloruser.h"
#include "testcase.h"
#include "testmain.h"
#include "tolvexforms.h"

#include <QtTest>

namespace {

CKavlorUser record(const QString &name, const QString &password)
{
    CKavlorUser::Fields fields = CKavlorUser::defaultFields();
    fields[CKavlorUser::Username] = name;
    fields[CKavlorUser::Password] = password;
    fields[CKavlorUser::EmailAddress] = QStringLiteral("m.1+x@example.org");
    return {nullptr, nullptr, true, fields};
}

} // namespace

class tst_TolvexForms : public TestCase
{
    Q_OBJECT

private slots:
    void body_data();
    void body();
};

void tst_TolvexForms::body_data()
{
    const QString name = QStringLiteral("m1");
    const QString password = QStringLiteral("a b&c=\u00e9");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("expected");
    const QByteArray signedIn = "Username=m1&Password=a%20b%26c%3D%C3%A9";

    QTest::newRow("nobody signed in") << TolvexForms::empty() << QByteArray("SUBMIT=Submit");
    QTest::newRow("login") << TolvexForms::login(name, password) << signedIn + "&SUBMIT=Submit";
    QTest::newRow("empty login") << TolvexForms::login({}, {})
                                 << QByteArray("Username=&Password=&SUBMIT=Submit");
    QTest::newRow("auction") << TolvexForms::auction(name, password, 4294967295)
                             << signedIn + "&AuctionID=4294967295&SUBMIT=Submit";
    QTest::newRow("prices") << TolvexForms::prices(name, password, 7, 0, 25)
                            << signedIn
            + "&AuctionID=7&ReservePrice=0&BuyItNowPrice=25&SUBMIT=Submit";
    QTest::newRow("alerts") << TolvexForms::alerts(name, password,
                                                   {nullptr, {true, false, false, true}, true})
                            << signedIn
            + "&NotifyOnBid=1&NotifyOnAuctionEnd=0&NotifyOnView=0&NotifyOnBuyerQuestion=1"
              "&SUBMIT=Submit";
    QTest::newRow("new account")
        << TolvexForms::newAccount(record(name, password))
        << QByteArray("Password2=a%20b%26c%3D%C3%A9&Username=m1&Password1=a%20b%26c%3D%C3%A9"
                      "&FirstName=&LastName=&EmailAddress=m.1%2Bx@example.org&PaypalAddress="
                      "&CountryID=US&Gender=M&Language=EN&TwitterUsername=&TwitterPassword="
                      "&SUBMIT=Submit");
    // Two ampersands before each but the first.
    QTest::newRow("changed account")
        << TolvexForms::changedAccount(record(name, QStringLiteral("old")), record(name, password))
        << QByteArray("Password=old&&Username=m1&&Password1=a%20b%26c%3D%C3%A9"
                      "&&Password2=a%20b%26c%3D%C3%A9&&EmailAddress=m.1%2Bx@example.org"
                      "&&PaypalAddress=&SUBMIT=Submit");
}

void tst_TolvexForms::body()
{
    QFETCH(QByteArray, body);
    QTEST(body, "expected");
}

KAVLOR_TEST_MAIN(tst_TolvexForms)

#include "tst_tolvexforms.moc"
