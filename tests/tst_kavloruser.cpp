// SPDX-License-Identifier: MIT

#include "kavloruser.h"
#include "testcase.h"
#include "testmain.h"

#include <QSettings>
#include <QTemporaryDir>

using Field = CKavlorUser::Field;

namespace {

// A record that passes every check.
CKavlorUser::Fields goodFields()
{
    CKavlorUser::Fields fields = CKavlorUser::defaultFields();
    fields[CKavlorUser::Username] = QStringLiteral("m1");
    fields[CKavlorUser::Password] = QStringLiteral("secret");
    fields[CKavlorUser::EmailAddress] = QStringLiteral("m1@example.org");
    return fields;
}

} // namespace

class tst_KavlorUser : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void defaultsAreUsMaleEnglish();
    void lengthLimits_data();
    void lengthLimits();
    void overlongUsernameFailsEvenBelowLevelZero();
    void emptyEmailFailsAtLevelZeroAndPassesBelow();
    void usernameIsReportedBeforePassword();
    void addressForm_data();
    void addressForm();
    void emptyPaypalAddressPasses();
    void confirmationIsExact();
    void confirmationIsNotLookedAtBelowLevelZero();
    void passwordConfirmation();
    void twitterConfirmation();
    void genderIsCheckedFromLevelOne();
    void missingErrorStringIsAllowed();
    void saveWritesTheGroupAndTheLastName();
    void savingWithoutUsernameWritesOnlyTheLastName();
    void noSaveWritesNothing();
    void loadingAnUnknownNameEmptiesEverything();
    void loadingAnEmptyNameChangesNothing();
    void aBrokenUserIdLoadsAsZero();
    void groupNameIsTheNameUnescaped();
    void copyIsNeverSaved();
    void assignmentTakesFieldsAndNumberOnly();
    void withoutStoreLoadAndSaveDoNothing();

private:
    QString validate(const CKavlorUser::Fields &fields, int level);

    QTemporaryDir m_folder;
    std::unique_ptr<QSettings> m_settings;
};

void tst_KavlorUser::init()
{
    TestCase::init();
    m_settings = std::make_unique<QSettings>(m_folder.filePath(QStringLiteral("kavlor.conf")),
                                             QSettings::IniFormat);
    m_settings->clear();
}

// The message of the first fault, or an empty text; both addresses confirm themselves.
QString tst_KavlorUser::validate(const CKavlorUser::Fields &fields, int level)
{
    const CKavlorUser user(nullptr, nullptr, true, fields);
    QString error;
    const bool valid = user.validate(user.field(CKavlorUser::EmailAddress), level,
                                     user.field(CKavlorUser::TwitterPassword), &error, false);
    return valid ? QString() : error;
}

void tst_KavlorUser::defaultsAreUsMaleEnglish()
{
    const CKavlorUser user(nullptr, nullptr, false, CKavlorUser::defaultFields());
    QCOMPARE(user.field(CKavlorUser::CountryID), QStringLiteral("US"));
    QCOMPARE(user.field(CKavlorUser::Gender), QStringLiteral("M"));
    QCOMPARE(user.field(CKavlorUser::Language), QStringLiteral("EN"));
    QCOMPARE(user.field(CKavlorUser::Username), QString());
    QCOMPARE(user.userId(), 0);
}

void tst_KavlorUser::lengthLimits_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<int>("limit");
    QTest::addColumn<QString>("name");

    QTest::newRow("user name") << static_cast<int>(CKavlorUser::Username) << 100 << "Username";
    QTest::newRow("password") << static_cast<int>(CKavlorUser::Password) << 100 << "Password";
    QTest::newRow("first name") << static_cast<int>(CKavlorUser::FirstName) << 50 << "First Name";
    QTest::newRow("last name") << static_cast<int>(CKavlorUser::LastName) << 50 << "Last Name";
    QTest::newRow("e-mail") << static_cast<int>(CKavlorUser::EmailAddress) << 80 << "Email Address";
    QTest::newRow("paypal") << static_cast<int>(CKavlorUser::PaypalAddress) << 80
                            << "Paypal Address";
    QTest::newRow("country") << static_cast<int>(CKavlorUser::CountryID) << 2 << "Country ID";
    QTest::newRow("gender") << static_cast<int>(CKavlorUser::Gender) << 1 << "Gender";
    QTest::newRow("language") << static_cast<int>(CKavlorUser::Language) << 2 << "Language";
    QTest::newRow("twitter name") << static_cast<int>(CKavlorUser::TwitterUsername) << 50
                                  << "Twitter Username";
    QTest::newRow("twitter password")
        << static_cast<int>(CKavlorUser::TwitterPassword) << 50 << "Twitter Password";
}

void tst_KavlorUser::lengthLimits()
{
    QFETCH(int, field);
    QFETCH(int, limit);
    QFETCH(QString, name);

    CKavlorUser::Fields fields = goodFields();
    QString text = QStringLiteral("a@") + QString(limit, QLatin1Char('b'));
    fields[field] = limit > 2 ? text.left(limit) : QString(limit, QLatin1Char('M'));
    QCOMPARE(validate(fields, 3), QString());

    fields[field] += QLatin1Char('b');
    const QString message =
        QStringLiteral("%1 exceeds field length limit(%2)").arg(name).arg(limit);
    for (const int level : {-1, 0, 3})
        QCOMPARE(validate(fields, level), message);
}

void tst_KavlorUser::overlongUsernameFailsEvenBelowLevelZero()
{
    CKavlorUser::Fields fields;
    fields[CKavlorUser::Username] = QString(101, QLatin1Char('x'));
    QCOMPARE(validate(fields, -1), QStringLiteral("Username exceeds field length limit(100)"));
}

void tst_KavlorUser::emptyEmailFailsAtLevelZeroAndPassesBelow()
{
    CKavlorUser::Fields fields = goodFields();
    fields[CKavlorUser::EmailAddress].clear();
    QCOMPARE(validate(fields, 0), QStringLiteral("Email Address must be defined"));
    QCOMPARE(validate(fields, -1), QString());
}

void tst_KavlorUser::usernameIsReportedBeforePassword()
{
    QCOMPARE(validate(CKavlorUser::defaultFields(), 0), QStringLiteral("Username must be defined"));
}

void tst_KavlorUser::addressForm_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("valid");

    QTest::newRow("shortest") << "a@b" << true;
    QTest::newRow("inside a sentence") << "write to a@b, please!" << true;
    QTest::newRow("no at sign") << "example.org" << false;
    QTest::newRow("at sign first") << "@example" << false;
    QTest::newRow("at sign last") << "example@" << false;
    QTest::newRow("non-ASCII letters") << QStringLiteral(u"\u017Eofie@\u010Desko") << true;
    QTest::newRow("no word before the at sign") << "-@b" << false;
}

void tst_KavlorUser::addressForm()
{
    QFETCH(QString, address);
    QFETCH(bool, valid);

    CKavlorUser::Fields fields = goodFields();
    fields[CKavlorUser::EmailAddress] = address;
    QCOMPARE(validate(fields, 0), valid ? QString() : QStringLiteral("Email Address is invalid"));

    fields = goodFields();
    fields[CKavlorUser::PaypalAddress] = address;
    QCOMPARE(validate(fields, 0), valid ? QString() : QStringLiteral("Paypal Address is invalid"));
}

void tst_KavlorUser::emptyPaypalAddressPasses()
{
    CKavlorUser::Fields fields = goodFields();
    fields[CKavlorUser::PaypalAddress].clear();
    QCOMPARE(validate(fields, 3), QString());
}

void tst_KavlorUser::confirmationIsExact()
{
    const CKavlorUser user(nullptr, nullptr, true, goodFields());
    QString error;
    QVERIFY(!user.validate(QStringLiteral("M1@example.org"), 0, {}, &error, false));
    QCOMPARE(error, QStringLiteral("Email Address does not match."));
    QVERIFY(user.validate(QStringLiteral("m1@example.org"), 0, {}, &error, false));
}

void tst_KavlorUser::confirmationIsNotLookedAtBelowLevelZero()
{
    const CKavlorUser user(nullptr, nullptr, true, goodFields());
    QVERIFY(user.validate(QStringLiteral("other"), -1, {}, nullptr, false));
    QVERIFY(user.validate(QStringLiteral("other"), -1, {}, nullptr, true));
}

void tst_KavlorUser::passwordConfirmation()
{
    const CKavlorUser user(nullptr, nullptr, true, goodFields());
    QString error;
    QVERIFY(!user.validate(QStringLiteral("Secret"), 3, {}, &error, true));
    QCOMPARE(error, QStringLiteral("Password does not match."));
    QVERIFY(user.validate(QStringLiteral("secret"), 3, {}, &error, true));
}

void tst_KavlorUser::twitterConfirmation()
{
    CKavlorUser user(nullptr, nullptr, true, goodFields());
    user.setField(CKavlorUser::TwitterPassword, QStringLiteral("tweet"));
    const QString email = user.field(CKavlorUser::EmailAddress);
    QString error;
    QVERIFY(!user.validate(email, 1, QStringLiteral("other"), &error, false));
    QCOMPARE(error, QStringLiteral("Twitter Password does not match."));
    QVERIFY(user.validate(email, 0, QStringLiteral("other"), &error, false));
    QVERIFY(user.validate(email, 3, QString(), &error, false));
    QVERIFY(user.validate(email, 3, QStringLiteral("tweet"), &error, false));
}

void tst_KavlorUser::genderIsCheckedFromLevelOne()
{
    CKavlorUser::Fields fields = goodFields();
    fields[CKavlorUser::Gender] = QStringLiteral("m");
    QCOMPARE(validate(fields, 3), QStringLiteral("Gender is invalid"));
    QCOMPARE(validate(fields, 1), QStringLiteral("Gender is invalid"));
    QCOMPARE(validate(fields, 0), QString());
    fields[CKavlorUser::Gender].clear();
    QCOMPARE(validate(fields, 3), QString());
    fields[CKavlorUser::Gender] = QStringLiteral("F");
    QCOMPARE(validate(fields, 3), QString());
}

void tst_KavlorUser::missingErrorStringIsAllowed()
{
    const CKavlorUser user(nullptr, nullptr, true, CKavlorUser::defaultFields());
    QVERIFY(!user.validate({}, 0, {}, nullptr, false));
}

void tst_KavlorUser::saveWritesTheGroupAndTheLastName()
{
    CKavlorUser::Fields fields;
    for (int row = 0; row < CKavlorUser::fieldCount; ++row)
        fields[row] = QStringLiteral("value %1").arg(row);
    CKavlorUser user(m_settings.get(), nullptr, false, fields);
    user.setUserId(17);
    user.save();

    const QStringList names{
        QStringLiteral("Username"),         QStringLiteral("Password"),
        QStringLiteral("First Name"),       QStringLiteral("Last Name"),
        QStringLiteral("Email Address"),    QStringLiteral("Paypal Address"),
        QStringLiteral("Country ID"),       QStringLiteral("Gender"),
        QStringLiteral("Language"),         QStringLiteral("Twitter Username"),
        QStringLiteral("Twitter Password"),
    };
    QStringList keys{QStringLiteral("last/USERID")};
    for (const QString &name : names)
        keys.append(QStringLiteral("UserData.value 0/") + name);
    keys.append(QStringLiteral("UserData.value 0/UserID"));
    keys.sort();
    QStringList found = m_settings->allKeys();
    found.sort();
    QCOMPARE(found, keys);
    for (int row = 0; row < CKavlorUser::fieldCount; ++row) {
        QCOMPARE(m_settings->value(QStringLiteral("UserData.value 0/") + names.at(row)).toString(),
                 QStringLiteral("value %1").arg(row));
    }
    QCOMPARE(m_settings->value(QStringLiteral("last/USERID")).toString(),
             QStringLiteral("value 0"));

    CKavlorUser loaded(m_settings.get(), nullptr, false, CKavlorUser::defaultFields());
    loaded.load(QStringLiteral("value 0"));
    for (int row = 0; row < CKavlorUser::fieldCount; ++row)
        QCOMPARE(loaded.field(Field(row)), fields[row]);
    QCOMPARE(loaded.userId(), 17);
}

void tst_KavlorUser::savingWithoutUsernameWritesOnlyTheLastName()
{
    CKavlorUser user(m_settings.get(), nullptr, false, CKavlorUser::defaultFields());
    user.save();
    QCOMPARE(m_settings->allKeys(), QStringList{QStringLiteral("last/USERID")});
    QCOMPARE(m_settings->value(QStringLiteral("last/USERID")).toString(), QString());
}

void tst_KavlorUser::noSaveWritesNothing()
{
    CKavlorUser user(m_settings.get(), nullptr, true, goodFields());
    user.save();
    QCOMPARE(m_settings->allKeys(), QStringList());
}

void tst_KavlorUser::loadingAnUnknownNameEmptiesEverything()
{
    CKavlorUser user(m_settings.get(), nullptr, false, goodFields());
    user.setUserId(5);
    user.load(QStringLiteral("nobody"));
    for (int row = 0; row < CKavlorUser::fieldCount; ++row)
        QCOMPARE(user.field(Field(row)), QString());
    QCOMPARE(user.userId(), 0);
}

void tst_KavlorUser::loadingAnEmptyNameChangesNothing()
{
    CKavlorUser user(m_settings.get(), nullptr, false, goodFields());
    user.load(QString());
    QCOMPARE(user.field(CKavlorUser::Username), QStringLiteral("m1"));
}

void tst_KavlorUser::aBrokenUserIdLoadsAsZero()
{
    m_settings->setValue(QStringLiteral("UserData.m1/UserID"), QStringLiteral("many"));
    CKavlorUser user(m_settings.get(), nullptr, false, goodFields());
    user.setUserId(5);
    user.load(QStringLiteral("m1"));
    QCOMPARE(user.userId(), 0);
}

void tst_KavlorUser::groupNameIsTheNameUnescaped()
{
    CKavlorUser::Fields fields = goodFields();
    fields[CKavlorUser::Username] = QStringLiteral(u"a/b \u00E9");
    CKavlorUser user(m_settings.get(), nullptr, false, fields);
    user.save();
    QVERIFY(m_settings->contains(QStringLiteral(u"UserData.a/b \u00E9/Password")));
    CKavlorUser loaded(m_settings.get(), nullptr, false, {});
    loaded.load(QStringLiteral(u"a/b \u00E9"));
    QCOMPARE(loaded.field(CKavlorUser::Password), QStringLiteral("secret"));
}

void tst_KavlorUser::copyIsNeverSaved()
{
    QObject parent;
    CKavlorUser user(m_settings.get(), &parent, false, goodFields());
    user.setUserId(9);
    CKavlorUser copy(user);
    QCOMPARE(copy.field(CKavlorUser::Username), QStringLiteral("m1"));
    QCOMPARE(copy.userId(), 9);
    QCOMPARE(copy.parent(), &parent);
    copy.save();
    QCOMPARE(m_settings->allKeys(), QStringList());
}

void tst_KavlorUser::assignmentTakesFieldsAndNumberOnly()
{
    CKavlorUser live(m_settings.get(), nullptr, false, CKavlorUser::defaultFields());
    CKavlorUser edited(nullptr, nullptr, true, goodFields());
    edited.setUserId(3);
    live = edited;
    QCOMPARE(live.field(CKavlorUser::Username), QStringLiteral("m1"));
    QCOMPARE(live.userId(), 3);
    live.save();
    QCOMPARE(m_settings->value(QStringLiteral("last/USERID")).toString(), QStringLiteral("m1"));
}

void tst_KavlorUser::withoutStoreLoadAndSaveDoNothing()
{
    CKavlorUser user(nullptr, nullptr, false, goodFields());
    user.load(QStringLiteral("other"));
    QCOMPARE(user.field(CKavlorUser::Username), QStringLiteral("m1"));
    user.save();
    user.setSettings(m_settings.get());
    user.save();
    QVERIFY(m_settings->contains(QStringLiteral("UserData.m1/Username")));
}

KAVLOR_TEST_MAIN(tst_KavlorUser)
#include "tst_kavloruser.moc"
