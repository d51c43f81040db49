#include "localserviceprocess.h"
#include "testcase.h"
#include "testmain.h"

class tst_LocalService : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();

    void aLoginIsValidatedWithOneAndNothingElse();

private:
    LocalServiceProcess m_service;
};

void tst_LocalService::initTestCase()
{
    QVERIFY(m_service.start());
    const LocalServiceProcess::Reply created = m_service.post(
        "CreateAccount",
        "Password2=secret&Username=m1&Password1=secret&FirstName=&LastName=&EmailAddress=m1@"
        "example.org"
        "&PaypalAddress=&CountryID=US&Gender=M&Language=EN&TwitterUsername=&TwitterPassword="
        "&SUBMIT=Submit");
    QCOMPARE(created.body, QByteArray("1"));
}

void tst_LocalService::aLoginIsValidatedWithOneAndNothingElse()
{
    QCOMPARE(m_service.post("ValidateLogin", "Username=m1&Password=secret&SUBMIT=Submit").body,
             QByteArray("1"));
    QCOMPARE(m_service.post("ValidateLogin", "Username=m1&Password=Secret&SUBMIT=Submit").body,
             QByteArray("0"));
}

KAVLOR_TEST_MAIN(tst_LocalService)
#include "tst_localservice.moc"
