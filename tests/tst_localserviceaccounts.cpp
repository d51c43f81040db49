// SPDX-License-Identifier: MIT

#include "accounts.h"
#include "database.h"
#include "loginmemory.h"
#include "passwords.h"
#include "testcase.h"
#include "testmain.h"

#include <QTemporaryDir>

#include <atomic>
#include <dlfcn.h>
#include <memory>
#include <thread>
#include <vector>

namespace {

std::atomic<int> checks{0};

} // namespace

// Stands before the library's function of this name and counts how often a password is hashed.
extern "C" int crypto_pwhash_str_verify(const char *hash, const char *password,
                                        unsigned long long length)
{
    using Function = int (*)(const char *, const char *, unsigned long long);
    static const auto real =
        reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "crypto_pwhash_str_verify"));
    ++checks;
    return real(hash, password, length);
}

class tst_LocalServiceAccounts : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void aLoginIsHashedOnce();
    void manyAtOnceAreHashedOnce();
    void aWrongPasswordIsHashedEveryTime();
    void anUnknownNameIsHashedLikeAKnownOne();
    void aChangedPasswordIsForgotten_data();
    void aChangedPasswordIsForgotten();
    void loginsAreForgottenInTime();
    void aLoginIsOfOneMember();

    void wrongPasswordsGetSlower();
    void aRightPasswordIsNeverHeldBack();
    void guessesAreForgottenInTime();

private:
    qint64 login(const char *name, const char *password);
    qint64 addMember(const char *name);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Database> m_database;
    std::unique_ptr<Accounts> m_accounts;
};

namespace {

Fields form(const char *name, const char *password, const char *newPassword)
{
    Fields fields;
    fields.set(QStringLiteral("Username"), QLatin1String(name));
    fields.set(QStringLiteral("Password"), QLatin1String(password));
    fields.set(QStringLiteral("Password1"), QLatin1String(newPassword));
    fields.set(QStringLiteral("Password2"), QLatin1String(newPassword));
    fields.set(QStringLiteral("EmailAddress"), QStringLiteral("m@example.org"));
    return fields;
}

} // namespace

void tst_LocalServiceAccounts::init()
{
    TestCase::init();
    QVERIFY(prepareSecrets());
    m_folder = std::make_unique<QTemporaryDir>();
    m_accounts.reset();
    m_database = std::make_unique<Database>(m_folder->filePath(QStringLiteral("a.sqlite")));
    QVERIFY(m_database->open(Database::MayBeEmpty).isOk());
    m_accounts = std::make_unique<Accounts>(*m_database);
    QCOMPARE(addMember("m1"), 1);
    checks = 0;
}

qint64 tst_LocalServiceAccounts::addMember(const char *name)
{
    const Result<qint64> member = m_accounts->create(form(name, "", "secret"));
    return member.isOk() ? member.value() : -1;
}

qint64 tst_LocalServiceAccounts::login(const char *name, const char *password)
{
    const Result<qint64> member =
        m_accounts->login(QLatin1String(name), QLatin1String(password), "here");
    if (!member.isOk() && member.failure().kind == Failure::Stranger)
        return 0;
    return member.isOk() ? member.value() : -1;
}

void tst_LocalServiceAccounts::aLoginIsHashedOnce()
{
    for (int i = 0; i < 50; ++i)
        QCOMPARE(login("m1", "secret"), 1);
    QCOMPARE(checks.load(), 1);
}

void tst_LocalServiceAccounts::manyAtOnceAreHashedOnce()
{
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    threads.reserve(16);
    for (int i = 0; i < 16; ++i)
        threads.emplace_back([&] { good += login("m1", "secret") == 1 ? 1 : 0; });
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(good.load(), 16);
    QCOMPARE(checks.load(), 1);
}

void tst_LocalServiceAccounts::aWrongPasswordIsHashedEveryTime()
{
    QCOMPARE(login("m1", "secret"), 1);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(login("m1", "Secret"), 0);
    QCOMPARE(checks.load(), 4);
}

void tst_LocalServiceAccounts::anUnknownNameIsHashedLikeAKnownOne()
{
    for (int i = 0; i < 3; ++i)
        QCOMPARE(login("nobody", "secret"), 0);
    QCOMPARE(checks.load(), 3);
}

void tst_LocalServiceAccounts::aChangedPasswordIsForgotten_data()
{
    QTest::addColumn<bool>("isFromOutside");

    QTest::newRow("by the member") << false;
    QTest::newRow("in the records") << true;
}

void tst_LocalServiceAccounts::aChangedPasswordIsForgotten()
{
    QFETCH(bool, isFromOutside);

    QCOMPARE(login("m1", "secret"), 1);
    if (isFromOutside) {
        const Result<QByteArray> hash = hashPassword(QStringLiteral("new"));
        QVERIFY(hash.isOk());
        Database::Session session(*m_database, Database::Writing);
        session.change(QStringLiteral("UPDATE members SET password_hash = ?"),
                       {QString::fromLatin1(hash.value())});
        QVERIFY(session.commit().isOk());
    } else {
        QVERIFY(m_accounts->modify(form("m1", "secret", "new"), "here").isOk());
    }
    QCOMPARE(login("m1", "secret"), 0);
    QCOMPARE(login("m1", "new"), 1);
}

void tst_LocalServiceAccounts::loginsAreForgottenInTime()
{
    LoginMemory memory(std::chrono::minutes(1));
    memory.remember("hash", QStringLiteral("secret"));
    QVERIFY(memory.isKnown("hash", QStringLiteral("secret")));
    QVERIFY(!memory.isKnown("hash", QStringLiteral("Secret")));
    QVERIFY(!memory.isKnown("other", QStringLiteral("secret")));

    LoginMemory forgetful(std::chrono::milliseconds(0));
    forgetful.remember("hash", QStringLiteral("secret"));
    QVERIFY(!forgetful.isKnown("hash", QStringLiteral("secret")));
}

void tst_LocalServiceAccounts::aLoginIsOfOneMember()
{
    QCOMPARE(addMember("m2"), 2);
    QCOMPARE(login("m1", "secret"), 1);
    QCOMPARE(login("m2", "secret"), 2);
    QCOMPARE(checks.load(), 2);
}

void tst_LocalServiceAccounts::wrongPasswordsGetSlower()
{
    // An unknown name like a known one, and each name and each address for itself.
    for (const char *name : {"m1", "nobody"}) {
        QList<int> delays;
        for (int i = 0; i < 10; ++i) {
            const Result<qint64> wrong =
                m_accounts->login(QLatin1String(name), QStringLiteral("guess"), "there");
            QVERIFY(!wrong.isOk());
            QCOMPARE(wrong.failure().reason, QStringLiteral("wrong user name or password"));
            delays.append(int(wrong.failure().delay.count()));
        }
        QCOMPARE(delays, (QList<int>{0, 0, 0, 0, 1000, 2000, 4000, 8000, 8000, 8000}));
    }
    const Result<qint64> elsewhere =
        m_accounts->login(QStringLiteral("m1"), QStringLiteral("guess"), "elsewhere");
    QCOMPARE(elsewhere.failure().delay.count(), 0);
    const Result<qint64> other =
        m_accounts->login(QStringLiteral("m2"), QStringLiteral("guess"), "there");
    QCOMPARE(other.failure().delay.count(), 0);
}

void tst_LocalServiceAccounts::aRightPasswordIsNeverHeldBack()
{
    for (int i = 0; i < 6; ++i)
        QCOMPARE(login("m1", "guess"), 0);
    QCOMPARE(login("m1", "secret"), 1);
    // And then the count begins anew.
    const Result<qint64> wrong =
        m_accounts->login(QStringLiteral("m1"), QStringLiteral("guess"), "here");
    QCOMPARE(wrong.failure().delay.count(), 0);
}

void tst_LocalServiceAccounts::guessesAreForgottenInTime()
{
    LoginBrake brake;
    const LoginBrake::Clock::time_point start = LoginBrake::Clock::now();
    for (int i = 0; i < 4; ++i)
        QCOMPARE(brake.wrong(QStringLiteral("m1"), "here", start).count(), 0);
    QCOMPARE(brake.wrong(QStringLiteral("m1"), "here", start).count(), 1000);
    QCOMPARE(brake.wrong(QStringLiteral("m1"), "here", start + std::chrono::hours(1)).count(), 0);
}

KAVLOR_TEST_MAIN(tst_LocalServiceAccounts)
#include "tst_localserviceaccounts.moc"
