// The settings of an application in a file: what is loaded, what the person is told, what is kept.

#include "ZrKit/settings/ZrAppSettings.h"
#include "ZrUtil/IPersistable.h"
#include "ZrUtil/ZrSetApp.h"
#include "ZrUtil/ZrSetModule.h"

#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

class Winch final : public zr::IPersistable
{
public:
    int turns = 7;
    bool isLocked = true;
    double length = 12.5;
    QString name = S("default");

    void settings(zr::ZrSetModule& module) override
    {
        module.item(S("turns"), turns);
        module.item(S("name"), name);
        module.sub_item(S("brake"), [this](zr::ZrSetModule& brake) {
            brake.item(S("locked"), isLocked);
            brake.item(S("length"), length);
        });
    }
};

} // namespace

class tst_ZrAppSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void firstStart();
    void roundTrip();
    void damage_data();
    void damage();
    void damagedWithACopy();
    void wrongKinds_data();
    void wrongKinds();
    void wrongKindsAreListedInPart();
    void missingAndUnknownKeys();
    void notANumberStays();
    void cannotBeKept();
    void cannotBeSaved();
    void messagesAreForgotten();

private:
    void Write(const QByteArray& bytes);
    QByteArray Read(const QString& path);

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path;
};

void tst_ZrAppSettings::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_path = m_dir->filePath(S("settings äß.json"));
}

void tst_ZrAppSettings::Write(const QByteArray& bytes)
{
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

QByteArray tst_ZrAppSettings::Read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_ZrAppSettings::firstStart()
{
    Winch winch;
    ZrAppSettings settings(m_path);
    QVERIFY(!settings.Load(winch));
    QVERIFY(settings.Message().isEmpty());
    QCOMPARE(settings.File().State(), ZrSettingsFile::Missing);
    QCOMPARE(winch.turns, 7);
    QVERIFY(QDir(m_dir->path()).isEmpty());
}

void tst_ZrAppSettings::roundTrip()
{
    Winch winch;
    winch.turns = -3;
    winch.isLocked = false;
    winch.name = S("Größe");
    ZrAppSettings settings(m_path);
    QVERIFY(settings.Save(winch));
    QVERIFY(settings.Message().isEmpty());
    Winch other;
    ZrAppSettings again(m_path);
    QVERIFY(again.Load(other));
    QVERIFY(again.Message().isEmpty());
    QCOMPARE(other.turns, -3);
    QCOMPARE(other.isLocked, false);
    QCOMPARE(other.name, S("Größe"));
    QVERIFY(!QFile::exists(again.File().DamagedPath()));
}

void tst_ZrAppSettings::damage_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("cut") << QByteArray("{\n    \"turns\": \"12\",\n    \"na");
    QTest::newRow("garbage") << QByteArray("\x00\xff\x13garbage\x80", 11);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("a list") << QByteArray("[1, 2]");
    QTest::newRow("text behind") << QByteArray("{\"turns\": \"12\"} x");
    QTest::newRow("too deep") << QByteArray("{\"a\":") + QByteArray(2000, '[') + QByteArray(2000, ']') + "}";
}

void tst_ZrAppSettings::damage()
{
    QFETCH(QByteArray, bytes);
    Write(bytes);
    Winch winch;
    ZrAppSettings settings(m_path);
    QVERIFY(!settings.Load(winch));
    QCOMPARE(settings.File().State(), ZrSettingsFile::Damaged);
    QCOMPARE(winch.turns, 7);
    QCOMPARE(winch.name, S("default"));
    QVERIFY2(settings.Message().startsWith(
                 S("The settings cannot be read; these are the defaults. ") + m_path + S(": ")),
        qPrintable(settings.Message()));
    // Put aside before anything is saved, and still there afterwards.
    QCOMPARE(Read(settings.File().DamagedPath()), bytes);
    QCOMPARE(Read(m_path), bytes);
    QCOMPARE(settings.Message().contains(S("What the file held is kept in ") + settings.File().DamagedPath()),
        !bytes.isEmpty());
    QVERIFY(settings.Save(winch));
    QCOMPARE(Read(settings.File().DamagedPath()), bytes);
    QVERIFY(settings.Load(winch));
    QVERIFY(settings.Message().isEmpty());
}

void tst_ZrAppSettings::damagedWithACopy()
{
    Winch winch;
    winch.turns = 20;
    ZrAppSettings settings(m_path);
    QVERIFY(settings.Save(winch));
    Write("{");
    Winch other;
    QVERIFY(settings.Load(other));
    QCOMPARE(other.turns, 20);
    QVERIFY(settings.Message().contains(settings.File().BackupPath()));
    QVERIFY(settings.Message().endsWith(S("is kept in ") + settings.File().DamagedPath() + S(".")));
    QCOMPARE(Read(settings.File().DamagedPath()), QByteArray("{"));
}

void tst_ZrAppSettings::wrongKinds_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("names");
    QTest::newRow("list for a number") << QByteArray("{\"turns\": [1]}") << S("turns");
    QTest::newRow("number for a text") << QByteArray("{\"name\": 5}") << S("name");
    QTest::newRow("text for an object") << QByteArray("{\"brake\": \"x\"}") << S("brake");
    QTest::newRow("object for a text") << QByteArray("{\"name\": {\"turns\": \"1\"}}") << S("name");
    QTest::newRow("null for a switch")
        << QByteArray("{\"brake\": {\"locked\": null}}") << S("brake / locked");
    QTest::newRow("two") << QByteArray("{\"brake\": {\"locked\": \"no\", \"length\": false}, \"turns\": 3}")
                         << S("brake / length, brake / locked, turns");
}

void tst_ZrAppSettings::wrongKinds()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, names);
    Write(text);
    Winch winch;
    ZrAppSettings settings(m_path);
    QVERIFY(settings.Load(winch));
    QCOMPARE(winch.turns, 7);
    QCOMPARE(winch.isLocked, true);
    QCOMPARE(winch.length, 12.5);
    QCOMPARE(winch.name, S("default"));
    QCOMPARE(settings.Message(),
        S("These settings have their defaults, what is in %1 is of the wrong kind: %2. What the file held is "
          "kept "
          "in %3.")
            .arg(m_path, names, settings.File().DamagedPath()));
    QCOMPARE(Read(settings.File().DamagedPath()), text);
}

void tst_ZrAppSettings::wrongKindsAreListedInPart()
{
    class Many final : public zr::IPersistable
    {
    public:
        void settings(zr::ZrSetModule& module) override
        {
            for (int i = 0; i < 9; ++i) {
                bool value = true;
                module.item(S("key %1").arg(i), value);
            }
        }
    };

    Many many;
    QJsonObject root;
    for (int i = 0; i < 9; ++i)
        root.insert(S("key %1").arg(i), 1.5);
    Write(QJsonDocument(root).toJson());
    ZrAppSettings settings(m_path);
    QVERIFY(settings.Load(many));
    QVERIFY(settings.Message().contains(S(": key 0, key 1, key 2, key 3, key 4 and 4 more.")));
}

void tst_ZrAppSettings::missingAndUnknownKeys()
{
    Write("{\"turns\": \"8\", \"later version\": [1, 2], \"brake\": {}}");
    Winch winch;
    ZrAppSettings settings(m_path);
    QVERIFY(settings.Load(winch));
    QVERIFY(settings.Message().isEmpty());
    QCOMPARE(winch.turns, 8);
    QCOMPARE(winch.isLocked, true);
}

void tst_ZrAppSettings::notANumberStays()
{
    Winch winch;
    winch.length = std::numeric_limits<double>::quiet_NaN();
    ZrAppSettings settings(m_path);
    QVERIFY(settings.Save(winch));
    Winch other;
    QVERIFY(settings.Load(other));
    QVERIFY(settings.Message().isEmpty());
    QVERIFY(qIsNaN(other.length));
    // And the other way round.
    Winch third;
    QVERIFY(settings.Save(third));
    QVERIFY(settings.Load(winch));
    QVERIFY(settings.Message().isEmpty());
    QCOMPARE(winch.length, 12.5);
}

void tst_ZrAppSettings::cannotBeKept()
{
    Write("{");
    ZrAppSettings settings(m_path);
    QVERIFY(QDir().mkdir(settings.File().DamagedPath()));
    Winch winch;
    QVERIFY(!settings.Load(winch));
    QVERIFY2(
        settings.Message().contains(S("What the file held cannot be kept: ") + settings.File().DamagedPath()),
        qPrintable(settings.Message()));
}

void tst_ZrAppSettings::cannotBeSaved()
{
    QVERIFY(QDir().mkdir(m_path));
    Winch winch;
    ZrAppSettings settings(m_path);
    QVERIFY(!settings.Load(winch));
    QVERIFY(
        settings.Message().startsWith(S("The settings cannot be read; these are the defaults. ") + m_path));
    QVERIFY(!settings.Save(winch));
    QVERIFY(settings.Message().startsWith(S("The settings are not saved. ") + m_path));
    QVERIFY(QFileInfo(m_path).isDir());
    ZrAppSettings full(S("/dev/full"));
    QVERIFY(!full.Save(winch));
    QVERIFY(full.Message().startsWith(S("The settings are not saved. /dev/full")));
}

void tst_ZrAppSettings::messagesAreForgotten()
{
    Write("{");
    Winch winch;
    ZrAppSettings settings(m_path);
    QVERIFY(!settings.Load(winch));
    QVERIFY(!settings.Message().isEmpty());
    QVERIFY(QFile::remove(m_path));
    QVERIFY(!settings.Load(winch));
    QVERIFY(settings.Message().isEmpty());
}

QTEST_GUILESS_MAIN(tst_ZrAppSettings)
#include "tst_ZrAppSettings.moc"
