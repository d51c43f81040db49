// SPDX-License-Identifier: MIT

#include "localserviceprocess.h"
#include "testcase.h"
#include "testmain.h"
#include "testpaths.h"
#include "uploadrequest.h"
#include "webvisitor.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QTcpSocket>

namespace {

using Form = QList<QPair<QByteArray, QByteArray>>;

const QByteArray login = "Username=m1&Password=secret";

QByteArray encoded(const Form &form)
{
    QByteArray body;
    for (const auto &field : form)
        body += field.first + '=' + field.second.toPercentEncoding("@.") + '&';
    return body + "SUBMIT=Submit";
}

// An account form as a member's device fills it in, with the user name's own changes.
Form accountForm(const QByteArray &username)
{
    return {{"Password2", "secret"}, {"Username", username},
            {"Password1", "secret"}, {"FirstName", "Dana"},
            {"LastName", "Moreau"},  {"EmailAddress", username + "@example.org"},
            {"PaypalAddress", ""},   {"CountryID", "US"},
            {"Gender", "M"},         {"Language", "EN"},
            {"TwitterUsername", ""}, {"TwitterPassword", ""}};
}

Form changed(Form form, const QByteArray &name, const QByteArray &value)
{
    for (auto &field : form) {
        if (field.first == name)
            field.second = value;
    }
    return form;
}

} // namespace

class tst_LocalService : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void badOptionsAreRefused_data();
    void badOptionsAreRefused();
    void theVersionIsSaid();
    void theManualNamesEveryOption();
    void helpIsSaid();
    void theFolderIsItsOwnersAlone();
    void aFolderInUseIsRefused();
    void aPortInUseIsRefused();
    void aTermSignalEndsItInGoodOrder();
    void seedingFillsAnEmptyServiceOnce();

    void termsAreHtmlWithInlineSizes();
    void headingsOfTheTermsAreLargerThanTheirText();
    void countriesAreListed();
    void categoriesMakeATree();
    void aLoginIsValidatedWithOneAndNothingElse();
    void everyMembersOperationWantsThePassword_data();
    void everyMembersOperationWantsThePassword();
    void noNameAtAllIsNobody();
    void anUnknownOperationIsRefused();
    void repliesAreNeverCompressed();
    void formsAreTakenToTheirLimitOnly();
    void aFormCutShortIsRefused();

    void anAccountIsStored();
    void accountsAccepted_data();
    void accountsAccepted();
    void accountsRefused_data();
    void accountsRefused();
    void passwordsAreNowhereInTheFolder();
    void anAccountIsModified();
    void modificationsRefused_data();
    void modificationsRefused();
    void alertOptionsAreSetAndRead();
    void alertOptionsRefused_data();
    void alertOptionsRefused();

    void theAuctionListHasElevenItemsALine();
    void titlesCannotBreakTheList_data();
    void titlesCannotBreakTheList();
    void theReserveIsShownAsMetOnceItIs();
    void pricesAreChanged_data();
    void pricesAreChanged();
    void othersAuctionsAndEndedOnesCannotBeChanged();
    void thumbnailsFitTheSquare_data();
    void thumbnailsFitTheSquare();
    void aThumbnailOfSomebodyElsesAuctionIsRefused();

private:
    QByteArray post(const QByteArray &operation, const QByteArray &form = login) const;
    qint64 newAuction(const UploadRequest &upload = {}) const;
    QByteArrayList auctionItems(qint64 auction) const;
    int memberCount() const;

    LocalServiceProcess m_service;
};

void tst_LocalService::initTestCase()
{
    QVERIFY(m_service.start());
    QCOMPARE(post("CreateAccount", encoded(accountForm("m1"))), QByteArray("1"));
    QCOMPARE(post("CreateAccount", encoded(accountForm("m2"))), QByteArray("2"));
}

void tst_LocalService::cleanupTestCase()
{
    QCOMPARE(m_service.terminate(), 0);
    QCOMPARE(m_service.complaints(), QByteArray());
}

// The body of a reply that a member's device would read as text.
QByteArray tst_LocalService::post(const QByteArray &operation, const QByteArray &form) const
{
    const LocalServiceProcess::Reply reply = m_service.post(operation, form);
    return reply.status == 200 && reply.type == "text/plain" ? reply.body
                                                             : "no text: " + reply.header;
}

qint64 tst_LocalService::newAuction(const UploadRequest &upload) const
{
    return m_service.send(upload.bytes(m_service.host())).body.toLongLong();
}

QByteArrayList tst_LocalService::auctionItems(qint64 auction) const
{
    const QByteArrayList lines = post("GetMyAuctions").split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(QByteArray::number(auction) + ','))
            return line.split(',');
    }
    return {};
}

int tst_LocalService::memberCount() const
{
    return m_service.value(QStringLiteral("SELECT count(*) FROM members")).toInt();
}

void tst_LocalService::badOptionsAreRefused_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("complaint");

    const auto row = [](const char *name, const QStringList &options, const char *complaint) {
        QTest::newRow(name) << options << QByteArray(complaint);
    };
    row("unknown", {QStringLiteral("--colour")}, "colour");
    row("single dash", {QStringLiteral("-colour")}, "colour");
    row("argument", {QStringLiteral("now")}, "'now'");
    row("port in words", {QStringLiteral("--port"), QStringLiteral("http")}, "'http'");
    row("port too high", {QStringLiteral("--port"), QStringLiteral("65536")}, "'65536'");
    row("port negative", {QStringLiteral("--port=-1")}, "'-1'");
    row("port missing", {QStringLiteral("--port")}, "port");
    row("limit in words", {QStringLiteral("--max-media"), QStringLiteral("1k")}, "'1k'");
    row("limit 0", {QStringLiteral("--max-media"), QStringLiteral("0")}, "'0'");
    row("port empty", {QStringLiteral("--port=")}, "''");
    row("limit too high", {QStringLiteral("--max-media"), QStringLiteral("9223372036854775807")},
        "'9223372036854775807'");
    row("seed with a value", {QStringLiteral("--seed=yes")}, "seed");
    row("twice", {QStringLiteral("--port=1"), QStringLiteral("--port=2")}, "twice");
    row("folder missing", {QStringLiteral("--data")}, "data");
    row("folder without a name", {QStringLiteral("--data=")}, "folder");
}

void tst_LocalService::badOptionsAreRefused()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, complaint);

    const LocalServiceProcess::End run = LocalServiceProcess::runToEnd(options);
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output, QByteArray());
    QVERIFY2(run.errors.startsWith("kavlor-localservice: "), run.errors.constData());
    QVERIFY2(run.errors.contains(complaint), run.errors.constData());
    QCOMPARE(run.errors.count('\n'), 1);
}

void tst_LocalService::theVersionIsSaid()
{
    const LocalServiceProcess::End run =
        LocalServiceProcess::runToEnd({QStringLiteral("--version")});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.output, QByteArray("kavlor-localservice " KAVLOR_VERSION "\n"));
    QCOMPARE(run.errors, QByteArray());
}

void tst_LocalService::theManualNamesEveryOption()
{
    QFile manual(QStringLiteral(TEST_DATA "/../../localservice/kavlor-localservice.1.in"));
    QVERIFY(manual.open(QIODevice::ReadOnly));
    const QByteArray page = manual.readAll().replace("\\-", "-");
    const QByteArray help = LocalServiceProcess::runToEnd({QStringLiteral("--help")}).output;
    static const QRegularExpression option(QStringLiteral("--[a-z-]+"));
    QRegularExpressionMatchIterator options = option.globalMatch(QString::fromUtf8(help));
    QVERIFY(options.hasNext());
    while (options.hasNext()) {
        const QByteArray name = options.next().captured().toLatin1();
        QVERIFY2(page.contains(name), name.constData());
    }
}

void tst_LocalService::helpIsSaid()
{
    const LocalServiceProcess::End run = LocalServiceProcess::runToEnd({QStringLiteral("--help")});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.errors, QByteArray());
    for (const char *option : {"--port", "--data", "--seed", "--max-media", "--version", "--help"})
        QVERIFY2(run.output.contains(option), option);
}

void tst_LocalService::theFolderIsItsOwnersAlone()
{
    const auto others = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ExeGroup
        | QFileDevice::ReadOther | QFileDevice::WriteOther | QFileDevice::ExeOther;
    QCOMPARE(QFileInfo(m_service.dataDir()).permissions() & others, QFileDevice::Permissions());
}

void tst_LocalService::aFolderInUseIsRefused()
{
    const LocalServiceProcess::End run =
        LocalServiceProcess::runToEnd({QStringLiteral("--port"), QStringLiteral("0"),
                                       QStringLiteral("--data"), m_service.dataDir()});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.errors.contains("in use by another service"), run.errors.constData());
}

void tst_LocalService::aPortInUseIsRefused()
{
    QTemporaryDir folder;
    const LocalServiceProcess::End run =
        LocalServiceProcess::runToEnd({QStringLiteral("--port"), QString::number(m_service.port()),
                                       QStringLiteral("--data"), folder.path()});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.errors.contains(QByteArray::number(m_service.port()) + " is in use"),
             run.errors.constData());
}

void tst_LocalService::aTermSignalEndsItInGoodOrder()
{
    LocalServiceProcess service;
    QVERIFY(service.start());
    QCOMPARE(service.post("ValidateLogin", login).body, QByteArray("0"));
    QCOMPARE(service.terminate(), 0);
    QVERIFY(service.start());
}

void tst_LocalService::seedingFillsAnEmptyServiceOnce()
{
    const QByteArray demo = "Username=demo&Password=demo&SUBMIT=Submit";
    LocalServiceProcess service;
    QVERIFY(service.start({QStringLiteral("--seed")}));
    QCOMPARE(service.post("ValidateLogin", demo).body, QByteArray("1"));
    const QByteArray list = service.post("GetMyAuctions", demo).body;
    QVERIFY(list.count('\n') > 5);

    int sold = 0;
    int reserveMet = 0;
    int viewed = 0;
    const QByteArrayList lines = list.trimmed().split('\n').mid(1);
    for (const QByteArray &line : lines) {
        const QByteArrayList items = line.split(',');
        QCOMPARE(items.size(), 11);
        sold += items.at(7) == "1" ? 1 : 0;
        reserveMet += items.at(10) == items.at(3) ? 1 : 0;
        viewed += items.at(8).toInt() > 0 ? 1 : 0;
        const LocalServiceProcess::Reply picture =
            service.post("GetThumbnail", demo + "&AuctionID=" + items.at(0));
        QVERIFY(picture.type.startsWith("image/"));
        QVERIFY(!QImage::fromData(picture.body).isNull());
    }
    QVERIFY(sold > 0 && sold < lines.size());
    QVERIFY(reserveMet > 0 && reserveMet < lines.size());
    QVERIFY(viewed > 0);

    QCOMPARE(service.terminate(), 0);
    QVERIFY(service.start({QStringLiteral("--seed")}));
    QCOMPARE(service.post("GetMyAuctions", demo).body, list);
}

void tst_LocalService::termsAreHtmlWithInlineSizes()
{
    const QByteArray terms = post("GetServiceTerms", "SUBMIT=Submit");
    QVERIFY(terms.startsWith("<html>"));
    QVERIFY(!terms.contains("ERROR"));
    QVERIFY(terms.count("style='font-size:10.0pt'") > 5);
}

void tst_LocalService::headingsOfTheTermsAreLargerThanTheirText()
{
    const QString terms = QString::fromUtf8(post("GetServiceTerms", "SUBMIT=Submit"));
    constexpr double shownText = 22; // points; what the client makes of a text's 10
    static const QRegularExpression size(QStringLiteral("font-size:([0-9.]+)pt"));
    int headings = 0;
    for (auto each = size.globalMatch(terms); each.hasNext();) {
        const QString points = each.next().captured(1);
        if (points == QLatin1String("10.0"))
            continue;
        ++headings;
        QVERIFY2(points.toDouble() > shownText, qPrintable(points));
    }
    QVERIFY(headings > 1);
}

void tst_LocalService::countriesAreListed()
{
    const QByteArray list = post("GetCountryList", "SUBMIT=Submit");
    QVERIFY(!list.contains("ERROR"));
    QVERIFY(list.contains("\nUS,United States\n"));
    const QByteArrayList lines = list.trimmed().split('\n').mid(1);
    QVERIFY(lines.size() > 190);
    for (const QByteArray &line : lines)
        QVERIFY2(line.count(',') == 1 && line.indexOf(',') == 2, line.constData());
}

void tst_LocalService::categoriesMakeATree()
{
    const QByteArrayList lines = post("GetCategoryList").trimmed().split('\n');
    QHash<int, int> parents;
    QHash<int, QByteArray> names;
    for (const QByteArray &line : lines.mid(1)) {
        const QByteArrayList items = line.split(',');
        QCOMPARE(items.size(), 3);
        const int id = items.at(0).toInt();
        QVERIFY2(id > 0 && !parents.contains(id), line.constData());
        parents.insert(id, items.at(2).toInt());
        names.insert(id, items.at(1));
    }
    const QByteArrayList topLevel{"Public Figures", "Breaking News", "Event", "Sports",
                                  "Funny",          "Places",        "Party"};
    for (int id = 1; id <= 7; ++id) {
        QCOMPARE(names.value(id), topLevel.at(id - 1));
        QCOMPARE(parents.value(id, -1), 0);
    }
    QSet<int> withTwoLevels;
    for (auto category = parents.cbegin(); category != parents.cend(); ++category) {
        QVERIFY(category.value() == 0 || parents.contains(category.value()));
        const int grandparent = parents.value(category.value(), 0);
        if (grandparent != 0)
            withTwoLevels.insert(grandparent);
    }
    QVERIFY(withTwoLevels.size() >= 2);
}

void tst_LocalService::aLoginIsValidatedWithOneAndNothingElse()
{
    QCOMPARE(post("ValidateLogin", "Username=m1&Password=secret&SUBMIT=Submit"), QByteArray("1"));
    QCOMPARE(post("ValidateLogin", "Username=m2&Password=secret&SUBMIT=Submit"), QByteArray("1"));
    for (const char *wrong :
         {"Username=m1&Password=Secret", "Username=M1&Password=secret",
          "Username=m1&Password=", "Username=&Password=", "Username=m1", "",
          "Username=m1%00&Password=secret", "Username=%27 OR 1=1 --&Password=x"}) {
        QCOMPARE(post("ValidateLogin", wrong), QByteArray("0"));
    }
}

void tst_LocalService::everyMembersOperationWantsThePassword_data()
{
    QTest::addColumn<QByteArray>("operation");

    for (const char *operation :
         {"GetCategoryList", "GetNotificationOptions", "SetNotificationOptions", "GetMyAuctions",
          "GetThumbnail", "GetRawMedia", "ModifyAuction", "ModifyAccount"}) {
        QTest::newRow(operation) << QByteArray(operation);
    }
}

void tst_LocalService::everyMembersOperationWantsThePassword()
{
    QFETCH(QByteArray, operation);

    const QByteArray rest =
        "&AuctionID=1&ReservePrice=0&BuyItNowPrice=0&NotifyOnBid=1"
        "&NotifyOnAuctionEnd=1&NotifyOnView=1&NotifyOnBuyerQuestion=1"
        "&Password1=new&Password2=new&EmailAddress=a@b&PaypalAddress=&SUBMIT=Submit";
    const QByteArray refusal = "ERROR: wrong user name or password";
    QCOMPARE(post(operation, "Username=m1&Password=other" + rest), refusal);
    QCOMPARE(post(operation, "Username=not-" + operation + "&Password=secret" + rest), refusal);
    // A right password in between, since many wrong ones in a row are answered late.
    QCOMPARE(post("ValidateLogin", login), QByteArray("1"));
}

void tst_LocalService::noNameAtAllIsNobody()
{
    QCOMPARE(post("GetMyAuctions", "SUBMIT=Submit"),
             QByteArray("ERROR: wrong user name or password"));
}

void tst_LocalService::anUnknownOperationIsRefused()
{
    QCOMPARE(post("GetEverything"), QByteArray("ERROR: there is no such operation"));
    QCOMPARE(post(""), QByteArray("ERROR: there is no such operation"));
}

void tst_LocalService::repliesAreNeverCompressed()
{
    const LocalServiceProcess::Reply reply = m_service.send(
        "POST /tolvex/GetServiceTerms/ HTTP/1.1\r\nHost: " + m_service.host().toLatin1()
        + "\r\n"
          "Accept-Encoding: gzip,deflate\r\nContent-Length: 13\r\n"
          "Content-Type: application/x-www-form-urlencoded\r\n\r\nSUBMIT=Submit");
    QVERIFY(reply.body.startsWith("<html>"));
    QCOMPARE(LocalServiceProcess::headerValue(reply, "Content-Encoding"), QByteArray());
}

void tst_LocalService::formsAreTakenToTheirLimitOnly()
{
    constexpr int limit = 1024 * 1024;
    const QByteArray start = login + "&Filler=";
    QCOMPARE(post("ValidateLogin", start + QByteArray(limit - start.size(), 'x')), QByteArray("1"));
    QCOMPARE(post("ValidateLogin", start + QByteArray(limit - start.size() + 1, 'x')),
             QByteArray("ERROR: the request is too long"));
}

void tst_LocalService::aFormCutShortIsRefused()
{
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), quint16(m_service.port()));
    QVERIFY(socket.waitForConnected());
    const QByteArray form = encoded(accountForm("short"));
    const int members = memberCount();
    socket.write("POST /tolvex/CreateAccount/ HTTP/1.1\r\nHost: " + m_service.host().toLatin1()
                 + "\r\nContent-Length: " + QByteArray::number(form.size() + 1)
                 + "\r\nContent-Type: application/x-www-form-urlencoded\r\n\r\n" + form);
    while (socket.bytesToWrite() > 0)
        QVERIFY(socket.waitForBytesWritten());
    socket.disconnectFromHost();
    // A request after it shows that the service is past the first.
    QCOMPARE(post("ValidateLogin"), QByteArray("1"));
    QCOMPARE(memberCount(), members);
}

void tst_LocalService::anAccountIsStored()
{
    Form form = accountForm("stored");
    form = changed(form, "PaypalAddress", "pay@example.org");
    form = changed(form, "TwitterUsername", "birdie");
    const QByteArray id = post("CreateAccount", encoded(form));
    QVERIFY(id.toInt() > 0);
    QCOMPARE(m_service.query(
                 QStringLiteral("SELECT username, first_name, last_name, email, paypal, country,"
                                " gender, language, twitter_name FROM members WHERE id = ?"),
                 {id.toInt()}),
             (QList<QVariantList>{{QStringLiteral("stored"), QStringLiteral("Dana"),
                                   QStringLiteral("Moreau"), QStringLiteral("stored@example.org"),
                                   QStringLiteral("pay@example.org"), QStringLiteral("US"),
                                   QStringLiteral("M"), QStringLiteral("EN"),
                                   QStringLiteral("birdie")}}));
}

void tst_LocalService::accountsAccepted_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QByteArray>("value");

    QTest::newRow("longest user name") << QByteArray("Username") << QByteArray(100, 'u');
    QTest::newRow("longest e-mail") << QByteArray("EmailAddress") << "a@" + QByteArray(78, 'b');
    QTest::newRow("longest first name") << QByteArray("FirstName") << QByteArray(50, 'f');
    QTest::newRow("longest in UTF-8")
        << QByteArray("LastName") << QByteArray("\xc3\xa9").repeated(50);
    QTest::newRow("Latin-1") << QByteArray("LastName") << QByteArray("\xe9t\xe9");
    QTest::newRow("markup") << QByteArray("FirstName") << QByteArray("<b>&amp;'\"");
    QTest::newRow("no gender") << QByteArray("Gender") << QByteArray();
    QTest::newRow("female") << QByteArray("Gender") << QByteArray("F");
    QTest::newRow("user name in Cyrillic")
        << QByteArray("Username") << QByteArray("\xd0\x96\xd0\xb0");
    QTest::newRow("user name with a plus") << QByteArray("Username") << QByteArray("a+b c&d=e");
}

void tst_LocalService::accountsAccepted()
{
    QFETCH(QByteArray, field);
    QFETCH(QByteArray, value);

    const Form named =
        changed(accountForm(QTest::currentDataTag()), "EmailAddress", "good@example.org");
    const Form form = changed(named, field, value);
    const QByteArray id = post("CreateAccount", encoded(form));
    QVERIFY2(id.toInt() > 0, id.constData());
    const Form loginForm{form.at(1), {"Password", "secret"}};
    QCOMPARE(post("ValidateLogin", encoded(loginForm)), QByteArray("1"));
}

void tst_LocalService::accountsRefused_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("reason");

    const auto row = [](const char *name, const QByteArray &field, const QByteArray &value,
                        const QByteArray &reason) {
        QTest::newRow(name) << field << value << reason;
    };
    row("user name taken", "Username", "m1", "taken");
    row("no user name", "Username", "", "Username is missing");
    row("user name too long", "Username", QByteArray(101, 'u'), "longer than 100");
    row("no password", "Password1", "", "Password1 is missing");
    row("passwords differ", "Password2", "Secret", "differ");
    row("password too long", "Password1", QByteArray(101, 'p'), "longer than 100");
    row("first name too long", "FirstName", QByteArray(51, 'f'), "longer than 50");
    row("last name too long", "LastName", QByteArray(51, 'l'), "longer than 50");
    row("no e-mail", "EmailAddress", "", "EmailAddress is missing");
    row("e-mail without at sign", "EmailAddress", "example.org", "no e-mail address");
    row("e-mail too long", "EmailAddress", "a@" + QByteArray(79, 'b'), "longer than 80");
    row("paypal without at sign", "PaypalAddress", "example.org", "no e-mail address");
    row("paypal too long", "PaypalAddress", "a@" + QByteArray(79, 'b'), "longer than 80");
    row("country too long", "CountryID", "USA", "longer than 2");
    row("gender too long", "Gender", "MF", "longer than 1");
    row("gender unknown", "Gender", "m", "Gender");
    row("language too long", "Language", "ENG", "longer than 2");
    row("twitter name too long", "TwitterUsername", QByteArray(51, 't'), "longer than 50");
    row("twitter password too long", "TwitterPassword", QByteArray(51, 't'), "longer than 50");
}

void tst_LocalService::accountsRefused()
{
    QFETCH(QByteArray, field);
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, reason);

    const int members = memberCount();
    const QByteArray reply =
        post("CreateAccount", encoded(changed(accountForm("refused"), field, value)));
    QVERIFY2(reply.startsWith("ERROR: ") && reply.contains(reason), reply.constData());
    QCOMPARE(memberCount(), members);
}

void tst_LocalService::passwordsAreNowhereInTheFolder()
{
    Form form = changed(accountForm("hidden"), "Password1", "open-sesame-4711");
    form = changed(form, "Password2", "open-sesame-4711");
    form = changed(form, "TwitterPassword", "tweet-sesame-4711");
    QVERIFY(post("CreateAccount", encoded(form)).toInt() > 0);

    QStringList files = QDir(m_service.dataDir()).entryList(QDir::Files | QDir::Hidden);
    QVERIFY(files.size() >= 2);
    for (const QString &name : files) {
        QFile file(m_service.dataDir() + QLatin1Char('/') + name);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY2(!file.readAll().contains("sesame-4711"), qPrintable(name));
    }
    const QString hash =
        m_service
            .value(QStringLiteral("SELECT password_hash FROM members WHERE username = 'hidden'"))
            .toString();
    QVERIFY2(hash.startsWith(QLatin1String("$argon2id$")), qPrintable(hash));
}

void tst_LocalService::anAccountIsModified()
{
    const QByteArray id = post("CreateAccount", encoded(accountForm("changing")));
    QCOMPARE(post("ModifyAccount",
                  "Password=secret&&Username=changing&&Password1=new%20one&&Password2=new%20one"
                  "&&EmailAddress=new@example.org&&PaypalAddress=pay@example.org&SUBMIT=Submit"),
             id);
    QCOMPARE(post("ValidateLogin", "Username=changing&Password=secret"), QByteArray("0"));
    QCOMPARE(post("ValidateLogin", "Username=changing&Password=new%20one"), QByteArray("1"));
    QCOMPARE(m_service.query(
                 QStringLiteral("SELECT email, paypal, first_name FROM members WHERE id = ?"),
                 {id.toInt()}),
             (QList<QVariantList>{{QStringLiteral("new@example.org"),
                                   QStringLiteral("pay@example.org"), QStringLiteral("Dana")}}));
}

void tst_LocalService::modificationsRefused_data()
{
    QTest::addColumn<QByteArray>("form");
    QTest::addColumn<QByteArray>("reason");

    const QByteArray start = "Password=secret&&Username=m2";
    QTest::newRow("passwords differ")
        << start + "&&Password1=a&&Password2=b&&EmailAddress=a@b" << QByteArray("differ");
    QTest::newRow("no new password") << start + "&&EmailAddress=a@b" << QByteArray("missing");
    QTest::newRow("no e-mail") << start + "&&Password1=a&&Password2=a&&EmailAddress="
                               << QByteArray("EmailAddress is missing");
    QTest::newRow("no e-mail address")
        << start + "&&Password1=a&&Password2=a&&EmailAddress=ab" << QByteArray("no e-mail address");
    QTest::newRow("no payment address")
        << start + "&&Password1=a&&Password2=a&&EmailAddress=a@b&&PaypalAddress=ab"
        << QByteArray("PaypalAddress is no");
}

void tst_LocalService::modificationsRefused()
{
    QFETCH(QByteArray, form);
    QFETCH(QByteArray, reason);

    const QByteArray reply = post("ModifyAccount", form + "&SUBMIT=Submit");
    QVERIFY2(reply.startsWith("ERROR: ") && reply.contains(reason), reply.constData());
    QCOMPARE(post("ValidateLogin", "Username=m2&Password=secret"), QByteArray("1"));
    QCOMPARE(m_service.value(QStringLiteral("SELECT email FROM members WHERE id = 2")).toString(),
             QStringLiteral("m2@example.org"));
}

void tst_LocalService::alertOptionsAreSetAndRead()
{
    const auto options = [this] { return post("GetNotificationOptions").split('\n').value(1); };
    QCOMPARE(options(), QByteArray("1,1,0,1,m1@example.org"));
    for (const QByteArrayList &flags : QList<QByteArrayList>{{"0", "0", "0", "0"},
                                                             {"1", "0", "0", "0"},
                                                             {"0", "1", "0", "0"},
                                                             {"0", "0", "1", "0"},
                                                             {"0", "0", "0", "1"},
                                                             {"1", "1", "1", "1"}}) {
        QCOMPARE(post("SetNotificationOptions",
                      login + "&NotifyOnBid=" + flags.at(0) + "&NotifyOnAuctionEnd=" + flags.at(1)
                          + "&NotifyOnView=" + flags.at(2) + "&NotifyOnBuyerQuestion=" + flags.at(3)
                          + "&SUBMIT=Submit"),
                 QByteArray("1"));
        QCOMPARE(options(), flags.join(',') + ",m1@example.org");
    }
}

void tst_LocalService::alertOptionsRefused_data()
{
    QTest::addColumn<QByteArray>("options");

    QTest::newRow("one missing") << QByteArray(
        "&NotifyOnBid=0&NotifyOnAuctionEnd=0&NotifyOnView=0");
    QTest::newRow("two") << QByteArray(
        "&NotifyOnBid=0&NotifyOnAuctionEnd=0&NotifyOnView=0&NotifyOnBuyerQuestion=2");
    QTest::newRow("empty") << QByteArray(
        "&NotifyOnBid=&NotifyOnAuctionEnd=0&NotifyOnView=0&NotifyOnBuyerQuestion=0");
    QTest::newRow("a word") << QByteArray(
        "&NotifyOnBid=0&NotifyOnAuctionEnd=yes&NotifyOnView=0&NotifyOnBuyerQuestion=0");
}

void tst_LocalService::alertOptionsRefused()
{
    QFETCH(QByteArray, options);

    const QByteArray before = post("GetNotificationOptions");
    const QByteArray reply = post("SetNotificationOptions", login + options + "&SUBMIT=Submit");
    QVERIFY2(reply.startsWith("ERROR: "), reply.constData());
    QCOMPARE(post("GetNotificationOptions"), before);
}

void tst_LocalService::theAuctionListHasElevenItemsALine()
{
    QCOMPARE(post("GetMyAuctions", "Username=m2&Password=secret").count('\n'), 1);

    UploadRequest upload;
    upload.set("ReservePrice", "20");
    upload.set("BuyItNowPrice", "50");
    const qint64 id = newAuction(upload);
    QCOMPARE(post("GetMyAuctions", "Username=m2&Password=secret").count('\n'), 1);

    const QByteArrayList items = auctionItems(id);
    QCOMPARE(items.size(), 11);
    const QDateTime ends =
        QDateTime::fromString(QString::fromLatin1(items.at(6)), QStringLiteral("MM/dd/yyyy hh:mm"));
    QVERIFY(qAbs(QDateTime::currentDateTime().addDays(7).secsTo(ends)) < 120);
    QByteArrayList expected{QByteArray::number(id),
                            "The last goal",
                            "5",
                            "20",
                            "50",
                            "0",
                            items.at(6),
                            "0",
                            "0",
                            "0",
                            "-1"};
    QCOMPARE(items, expected);

    WebVisitor visitor(m_service);
    visitor.bid(id, 7);
    visitor.open("/auction?id=" + QByteArray::number(id));
    expected[5] = "7";
    expected[8] = "2";
    expected[9] = "1";
    QCOMPARE(auctionItems(id), expected);

    QCOMPARE(visitor.buy(id).status, 303);
    QCOMPARE(auctionItems(id).at(5), QByteArray("50"));
    QCOMPARE(auctionItems(id).at(7), QByteArray("1"));
}

void tst_LocalService::titlesCannotBreakTheList_data()
{
    QTest::addColumn<QByteArray>("title");
    QTest::addColumn<QByteArray>("listed");

    QTest::newRow("commas") << QByteArray("Paris, by night, 2024")
                            << QByteArray("Paris; by night; 2024");
    QTest::newRow("line ends") << QByteArray("one\r\ntwo\nthree") << QByteArray("one two three");
    QTest::newRow("the word of a refusal")
        << QByteArray("ERROR 404 on a wall") << QByteArray("Error 404 on a wall");
    QTest::newRow("a line of its own")
        << QByteArray("x\n99,y,1,1,1,1,1,1,1,1,1") << QByteArray("x 99;y;1;1;1;1;1;1;1;1;1");
    QTest::newRow("Latin-1 as UTF-8") << QByteArray("Caf\xe9") << QByteArray("Caf\xc3\xa9");
}

void tst_LocalService::titlesCannotBreakTheList()
{
    QFETCH(QByteArray, title);
    QFETCH(QByteArray, listed);

    UploadRequest upload;
    upload.set("Description", title);
    const qint64 id = newAuction(upload);
    const QByteArrayList items = auctionItems(id);
    QCOMPARE(items.size(), 11);
    QCOMPARE(items.at(1), listed);
    QVERIFY(!post("GetMyAuctions").contains("ERROR"));
}

void tst_LocalService::theReserveIsShownAsMetOnceItIs()
{
    UploadRequest upload;
    upload.set("ReservePrice", "20");
    const qint64 id = newAuction(upload);
    WebVisitor visitor(m_service);
    visitor.bid(id, 19);
    QVERIFY(auctionItems(id).at(10) != auctionItems(id).at(3));
    visitor.bid(id, 20);
    QCOMPARE(auctionItems(id).at(10), auctionItems(id).at(3));

    // Without a reserve there is none to meet, bid or not.
    const qint64 unreserved = newAuction();
    QVERIFY(auctionItems(unreserved).at(10) != auctionItems(unreserved).at(3));
    visitor.bid(unreserved, 100);
    QVERIFY(auctionItems(unreserved).at(10) != auctionItems(unreserved).at(3));
}

void tst_LocalService::pricesAreChanged_data()
{
    QTest::addColumn<QByteArray>("reserve");
    QTest::addColumn<QByteArray>("buyNow");
    QTest::addColumn<bool>("accepted");

    const auto row = [](const char *name, const QByteArray &reserve, const QByteArray &buyNow,
                        bool accepted) { QTest::newRow(name) << reserve << buyNow << accepted; };
    row("both", "30", "60", true);
    row("both off", "0", "0", true);
    row("highest", "999999999", "999999999", true);
    row("just above the start", "6", "1", true);
    row("reserve equals the start", "5", "60", false);
    row("reserve 1", "1", "60", false);
    row("reserve too high", "1000000000", "60", false);
    row("buy it now too high", "30", "1000000000", false);
    row("negative", "-1", "60", false);
    row("words", "thirty", "60", false);
    row("cents", "30.5", "60", false);
    row("empty", "", "", false);
}

void tst_LocalService::pricesAreChanged()
{
    QFETCH(QByteArray, reserve);
    QFETCH(QByteArray, buyNow);
    QFETCH(bool, accepted);

    UploadRequest upload;
    upload.set("ReservePrice", "20");
    upload.set("BuyItNowPrice", "50");
    const qint64 id = newAuction(upload);
    const QByteArray reply = post("ModifyAuction",
                                  login + "&AuctionID=" + QByteArray::number(id) + "&ReservePrice="
                                      + reserve + "&BuyItNowPrice=" + buyNow + "&SUBMIT=Submit");
    QCOMPARE(reply.startsWith("ERROR: "), !accepted);
    QCOMPARE(auctionItems(id).at(3), accepted ? reserve : QByteArray("20"));
    QCOMPARE(auctionItems(id).at(4), accepted ? buyNow : QByteArray("50"));
}

void tst_LocalService::othersAuctionsAndEndedOnesCannotBeChanged()
{
    const auto change = [this](const QByteArray &member, qint64 auction) {
        return post("ModifyAuction",
                    member + "&AuctionID=" + QByteArray::number(auction)
                        + "&ReservePrice=30&BuyItNowPrice=60&SUBMIT=Submit");
    };
    UploadRequest upload;
    upload.set("BuyItNowPrice", "50");
    const qint64 id = newAuction(upload);
    const QByteArray notYours = "ERROR: this is no auction of yours";
    QCOMPARE(change("Username=m2&Password=secret", id), notYours);
    QCOMPARE(change(login, 999999), notYours);
    QCOMPARE(change(login, 0), notYours);

    const QByteArray isOver = "ERROR: the auction has ended and can no longer be changed";
    QCOMPARE(WebVisitor(m_service).buy(id).status, 303);
    QCOMPARE(change(login, id), isOver);
    QCOMPARE(auctionItems(id).at(4), QByteArray("50"));

    const qint64 ended = newAuction();
    m_service.execute(QStringLiteral("UPDATE auctions SET ends = 1 WHERE id = ?"), {ended});
    QCOMPARE(change(login, ended), isOver);
    QCOMPARE(auctionItems(ended).at(7), QByteArray("1"));
}

void tst_LocalService::thumbnailsFitTheSquare_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("media");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QSize>("size");

    const auto picture = [](int width, int height, const char *format, QColor color) {
        QImage image(width, height, QImage::Format_ARGB32);
        image.fill(color);
        return UploadRequest::encoded(image, format);
    };
    const QColor glass(200, 0, 0, 100);
    const QByteArray jpeg = "image/jpeg";
    const QByteArray png = "image/png";
    QTest::newRow("wide") << QByteArray("1.jpg") << picture(800, 400, "JPEG", Qt::red) << jpeg
                          << QSize(220, 110);
    QTest::newRow("tall") << QByteArray("1.jpg") << picture(300, 600, "JPEG", Qt::red) << jpeg
                          << QSize(110, 220);
    QTest::newRow("small stays small")
        << QByteArray("1.png") << picture(20, 10, "PNG", glass) << png << QSize(20, 10);
    QTest::newRow("one line of pixels")
        << QByteArray("1.png") << picture(2000, 1, "PNG", glass) << png << QSize(220, 1);
    QTest::newRow("see-through") << QByteArray("1.png") << picture(440, 440, "PNG", glass) << png
                                 << QSize(220, 220);
    QTest::newRow("ending of another format")
        << QByteArray("1.jpg") << picture(440, 440, "BMP", Qt::blue) << jpeg << QSize(220, 220);
    QTest::newRow("clip") << QByteArray("1.mp4") << QByteArray("film") << jpeg << QSize(220, 165);
    QTest::newRow("unreadable") << QByteArray("1.jpg") << QByteArray("no picture") << jpeg
                                << QSize(220, 165);
}

void tst_LocalService::thumbnailsFitTheSquare()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, media);
    QFETCH(QByteArray, type);
    QFETCH(QSize, size);

    UploadRequest upload;
    upload.mediaName = name;
    upload.media = media;
    const qint64 id = newAuction(upload);
    const LocalServiceProcess::Reply reply = m_service.post(
        "GetThumbnail", login + "&AuctionID=" + QByteArray::number(id) + "&SUBMIT=Submit");
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.type, type);
    QCOMPARE(QImage::fromData(reply.body).size(), size);
}

void tst_LocalService::aThumbnailOfSomebodyElsesAuctionIsRefused()
{
    const QByteArray form = "Username=m2&Password=secret&AuctionID="
        + QByteArray::number(newAuction()) + "&SUBMIT=Submit";
    QCOMPARE(post("GetThumbnail", form), QByteArray("ERROR: this is no auction of yours"));
    QCOMPARE(post("GetRawMedia", form), QByteArray("ERROR: this is no auction of yours"));
    QCOMPARE(post("GetThumbnail", login + "&AuctionID=x"),
             QByteArray("ERROR: this is no auction of yours"));
}

KAVLOR_TEST_MAIN(tst_LocalService)
#include "tst_localservice.moc"
