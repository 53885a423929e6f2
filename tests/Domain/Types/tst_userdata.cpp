#include "Domain/Types/UserData.h"
#include "Domain/Types/UserPreferences.h"
#include "support/MarkingTranslator.h"

#include <QtTest>

using namespace zelmor::domain::types;
using zelmor::testsupport::MarkingTranslator;

class TestUserData : public QObject
{
    Q_OBJECT

private slots:
    void userLevelName_data();
    void userLevelName();
    void preferencesCompareByContent();
};

void TestUserData::userLevelName_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("name");

    QTest::newRow("none") << 0 << QString();
    QTest::newRow("1") << 1 << QStringLiteral("Basic");
    QTest::newRow("2") << 2 << QStringLiteral("Advanced");
    QTest::newRow("3") << 3 << QStringLiteral("Administrator");
    QTest::newRow("4") << 4 << QStringLiteral("Service");
    QTest::newRow("5") << 5 << QStringLiteral("Laboratory");
    QTest::newRow("6") << 6 << QStringLiteral("Superuser");
    QTest::newRow("7") << 7 << QString();
}

void TestUserData::userLevelName()
{
    QFETCH(int, level);
    QFETCH(QString, name);

    const UserData user(1, QStringLiteral("admin"), UserLevel(level));
    QCOMPARE(user.getUserLevelName(), name);
    QCOMPARE(UserData::USER_LEVEL_NAMES.value(UserLevel(level)), name);

    // a language chosen after start-up shows
    MarkingTranslator marking;
    QCOMPARE(user.getUserLevelName(), name.isEmpty() ? QString() : QStringLiteral("[UserData] ") + name);
}

void TestUserData::preferencesCompareByContent()
{
    const auto preferences = [](QChar separator) {
        return QSharedPointer<UserPreferences>::create(CSV_FILE, QLocale::German, QStringLiteral("HH:mm"),
                                                       QStringLiteral("dd.MM.yyyy"), separator, Unit::CELSIUS,
                                                       Unit::RELATIVE_HUMIDITY_RF);
    };
    UserData left(4, QStringLiteral("lab"), LABORATORY);
    UserData right = left;
    QVERIFY(left == right);

    left.preferences = preferences(QLatin1Char(','));
    QVERIFY(left != right);
    right.preferences = preferences(QLatin1Char(','));
    QVERIFY(left == right);
    right.preferences = preferences(QLatin1Char('.'));
    QVERIFY(left != right);

    // earlier preferences are kept for telling changes, not for comparing
    UserPreferences changed = *left.preferences;
    changed.setOldPreferences(*right.preferences);
    QCOMPARE(changed.getOldPreferences(), *right.preferences);
    QVERIFY(changed == *left.preferences);
}

QTEST_GUILESS_MAIN(TestUserData)
#include "tst_userdata.moc"
