#include "WptChecks.h"
#include "XmlChecks.h"
#include "ZrUtil/ZrFromJson.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrWpt.h"

#include <QJsonDocument>

#include <cmath>
#include <type_traits>
#include <utility>

namespace {

QJsonObject Stored(ZrWpt wpt)
{
    QJsonObject object;
    zr::ZrSetModule module(zr::ePersistStoring, object);
    ZrWpt::serialise(wpt, module);
    return object;
}

void Load(ZrWpt& wpt, QJsonObject object)
{
    zr::ZrSetModule module(zr::ePersistLoading, object);
    ZrWpt::serialise(wpt, module);
}

QStringList StoredItems(ZrWpt wpt)
{
    ZrXmlObj obj;
    wpt.SyncXml(obj);
    return Items(obj);
}

/// Loads \p items, each "name=value", as an object of a store.
void LoadItems(ZrWpt& wpt, const QStringList& items)
{
    const LoadingObj loading;
    for (const QString& item : items)
        loading.obj->Add(item.section(QLatin1Char('='), 0, 0), item.section(QLatin1Char('='), 1));
    wpt.SyncXml(*loading.obj);
}

/// Stores \p wpt into bytes in the line form and loads them into a new waypoint.
ZrWpt ThroughLines(ZrWpt wpt)
{
    ZrXmlStore out(true);
    wpt.SyncXml(*out.Set(QStringLiteral("S"))->Obj(QStringLiteral("O"), QStringLiteral("T")));
    QByteArray bytes;
    out.Save(bytes);
    ZrXmlStore in(false);
    in.Load(bytes);
    ZrWpt loaded;
    loaded.SyncXml(*in.Set(QStringLiteral("S"))->Obj(QStringLiteral("O"), QStringLiteral("T")));
    return loaded;
}

/// The same through a file.
ZrWpt ThroughFile(ZrWpt wpt)
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("wpt.xml"));
    const DebugLines silence;
    ZrXmlStore out(true);
    wpt.SyncXml(*out.Set(QStringLiteral("S"))->Obj(QStringLiteral("O"), QStringLiteral("T")));
    out.Save(path);
    ZrXmlStore in(false);
    in.Load(path);
    ZrWpt loaded;
    loaded.SyncXml(*in.Set(QStringLiteral("S"))->Obj(QStringLiteral("O"), QStringLiteral("T")));
    return loaded;
}

} // namespace

class tst_ZrWpt : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void plainValue();
    void newWaypointsHaveNewIdentities();
    void copiesAndMovesKeepEverything();
    void nameFallsBackToTheLabel();

    void xmlForm();
    void xmlDefaults();
    void xmlLoadsEveryItem();
    void xmlKeysOneByOne_data();
    void xmlKeysOneByOne();
    void xmlMissingKeysLeaveTheFields();
    void xmlTenDecimals();
    void xmlSixDigits();
    void xmlLosesTheAlpha();
    void xmlUuids_data();
    void xmlUuids();
    void xmlValuesThatDoNotConvert();
    void xmlUnicode();
    void xmlFileIsLatin1();
    void xmlFileKeepsFieldsOfEmptyTexts();
    void xmlNotANumber();

    void jsonForm();
    void jsonDefaults();
    void jsonLoadsEveryMember();
    void jsonKeysOneByOne_data();
    void jsonKeysOneByOne();
    void jsonMissingKeysLeaveTheFields();
    void jsonNeitherLoadingNorStoring();
    void jsonKeepsEveryDigit();
    void jsonBottomLetter_data();
    void jsonBottomLetter();
    void jsonUuids_data();
    void jsonUuids();
    void jsonIntegers_data();
    void jsonIntegers();
    void jsonUnicode();
    void jsonNotANumber();
    void jsonWrongKinds();
};

void tst_ZrWpt::defaults()
{
    const ZrWpt wpt;
    QCOMPARE(wpt.name, QString());
    QCOMPARE(wpt.pseudo, QString());
    QCOMPARE(wpt.filename, QString());
    QVERIFY(!wpt.uuid.isNull());
    QVERIFY(wpt.gridId.isNull());
    QVERIFY(wpt.lookAt.isNull());
    QCOMPARE(wpt.colour, QColor(255, 255, 0));
    for (const double value : {wpt.lat, wpt.lng, wpt.x, wpt.y, wpt.z, wpt.alt, wpt.r, wpt.p, wpt.q, wpt.rx,
             wpt.rz, wpt.speed, wpt.head, wpt.ricX, wpt.ricY, wpt.rit, wpt.tp1X, wpt.tp1Y, wpt.tp1Q, wpt.tp2X,
             wpt.tp2Y, wpt.tp2Q})
        QCOMPARE(value, 0.0);
    for (const float value :
        {wpt.burial, wpt.length, wpt.height, wpt.width, wpt.viz, wpt.ripples, wpt.current})
        QCOMPARE(value, 0.0F);
    for (const u8 value : {wpt.fileType, wpt.type, wpt.src, wpt.shape, wpt.bottom, wpt.classA, wpt.classB,
             wpt.classC, wpt.classD})
        QCOMPARE(value, u8(0));
    for (const int value : {wpt.spdType, wpt.headType, wpt.zType})
        QCOMPARE(value, 0);
    QCOMPARE(wpt.flags, 0U);
    QCOMPARE(wpt.time, -1.0);
    QCOMPARE(wpt.atWpt, false);
    QCOMPARE(wpt.veg, false);
    QCOMPARE(wpt.bottomA, QChar(QLatin1Char('A')));
    QCOMPARE(wpt.bottomN, 1);
}

void tst_ZrWpt::plainValue()
{
    static_assert(!std::is_polymorphic_v<ZrWpt>);
    static_assert(std::is_copy_constructible_v<ZrWpt> && std::is_copy_assignable_v<ZrWpt>);
    static_assert(std::is_move_constructible_v<ZrWpt> && std::is_move_assignable_v<ZrWpt>);
    static_assert(std::is_same_v<decltype(ZrWpt::flags), unsigned int>);
    static_assert(std::is_same_v<decltype(ZrWpt::type), unsigned char>);
    static_assert(std::is_same_v<decltype(ZrWpt::burial), float>);
}

void tst_ZrWpt::newWaypointsHaveNewIdentities()
{
    QSet<QUuid> seen;
    for (int i = 0; i < 1000; ++i)
        seen.insert(ZrWpt().uuid);
    QCOMPARE(seen.size(), 1000);
}

void tst_ZrWpt::copiesAndMovesKeepEverything()
{
    const ZrWpt full = FullWpt();
    const QJsonObject expected = Stored(full);

    const ZrWpt copy(full);
    QCOMPARE(Stored(copy), expected);
    QCOMPARE(copy.uuid, full.uuid);

    ZrWpt assigned;
    assigned = full;
    QCOMPARE(Stored(assigned), expected);

    const ZrWpt moved(std::move(assigned));
    QCOMPARE(Stored(moved), expected);

    ZrWpt source(full);
    ZrWpt moveAssigned;
    moveAssigned = std::move(source);
    QCOMPARE(Stored(moveAssigned), expected);
    QCOMPARE(Stored(full), expected);
}

void tst_ZrWpt::nameFallsBackToTheLabel()
{
    ZrWpt wpt;
    QCOMPARE(wpt.Name(), QString());
    wpt.pseudo = QStringLiteral("Start Mission");
    QCOMPARE(wpt.Name(), QStringLiteral("Start Mission"));
    wpt.name = QStringLiteral(" ");
    QCOMPARE(wpt.Name(), QStringLiteral(" "));
    wpt.name = QStringLiteral("Wreck");
    QCOMPARE(wpt.Name(), QStringLiteral("Wreck"));
}

void tst_ZrWpt::xmlForm()
{
    QCOMPARE(StoredItems(FullWpt()), FullItems());
}

void tst_ZrWpt::xmlDefaults()
{
    ZrWpt wpt;
    wpt.uuid = QUuid();
    const QStringList items = StoredItems(wpt);
    QCOMPARE(items.size(), FullItems().size());
    for (const char* item : {"UUID={00000000-0000-0000-0000-000000000000}",
             "GridId={00000000-0000-0000-0000-000000000000}", "Name=", "Colour=#ffff00", "Lat=0.0000000000",
             "Z=0", "Time=-1.0000000000", "Flags=0", "AtWpt=false", "BottomA=A", "BottomN=1", "Burial=0"})
        QVERIFY2(items.contains(Latin1(item)), item);
}

void tst_ZrWpt::xmlLoadsEveryItem()
{
    ZrWpt wpt;
    LoadItems(wpt, FullItems());
    QCOMPARE(StoredItems(wpt), FullItems());
    QCOMPARE(wpt.flags, 4294967295U);
    QCOMPARE(wpt.src, u8(255));
    QCOMPARE(wpt.spdType, -4);
}

void tst_ZrWpt::xmlKeysOneByOne_data()
{
    QTest::addColumn<int>("index");
    const QStringList items = FullItems();
    for (int i = 0; i < items.size(); ++i)
        QTest::newRow(qPrintable(items[i].section(QLatin1Char('='), 0, 0))) << i;
}

/// Each item sets its own field and no other.
void tst_ZrWpt::xmlKeysOneByOne()
{
    QFETCH(int, index);
    const DebugLines silence; // missing floats are reported
    ZrWpt wpt;
    QStringList expected = StoredItems(wpt);
    QVERIFY(expected[index] != FullItems()[index]);
    expected[index] = FullItems()[index];
    LoadItems(wpt, {FullItems()[index]});
    QCOMPARE(StoredItems(wpt), expected);
}

void tst_ZrWpt::xmlMissingKeysLeaveTheFields()
{
    ZrWpt wpt = FullWpt();
    const DebugLines lines;
    LoadItems(wpt, {QStringLiteral("Unknown=1")});
    QCOMPARE(Stored(wpt), Stored(FullWpt()));
    // Of all kinds of items only the floats say that they are missing.
    QStringList expected;
    for (const char* name : {"Burial", "Length", "Height", "Width", "Viz", "Ripples", "Current"})
        expected.append(DebugLines::Shown(QStringLiteral("Cannot find item ") + Latin1(name)));
    QCOMPARE(DebugLines::Get(), expected);
}

void tst_ZrWpt::xmlTenDecimals()
{
    ZrWpt wpt;
    for (double* field : {&wpt.lat, &wpt.lng, &wpt.x, &wpt.y, &wpt.time, &wpt.ricX, &wpt.ricY, &wpt.tp1X,
             &wpt.tp1Y, &wpt.tp2X, &wpt.tp2Y})
        *field = 1.0 / 3.0;
    QStringList withTen;
    for (const QString& item : StoredItems(wpt))
        if (item.endsWith(QLatin1String("=0.3333333333")))
            withTen.append(item.section(QLatin1Char('='), 0, 0));
    QCOMPARE(
        withTen.join(QLatin1Char(' ')), QStringLiteral("Lat Lng X Y Time RICX RICY TP1X TP1Y TP2X TP2Y"));

    // Ten decimals of a degree are a hundredth of a millimetre.
    ZrWpt exact;
    exact.lat = -89.9999999999;
    exact.lng = 179.1234567891;
    const ZrWpt loaded = ThroughLines(exact);
    QVERIFY(std::fabs(loaded.lat - exact.lat) < 1e-10);
    QVERIFY(std::fabs(loaded.lng - exact.lng) < 1e-10);
}

void tst_ZrWpt::xmlSixDigits()
{
    ZrWpt wpt;
    for (double* field : {&wpt.z, &wpt.alt, &wpt.r, &wpt.p, &wpt.q, &wpt.rx, &wpt.rz, &wpt.speed, &wpt.head,
             &wpt.rit, &wpt.tp1Q, &wpt.tp2Q})
        *field = 12345.678;
    QStringList withSix;
    for (const QString& item : StoredItems(wpt))
        if (item.endsWith(QLatin1String("=12345.7")))
            withSix.append(item.section(QLatin1Char('='), 0, 0));
    QCOMPARE(withSix.join(QLatin1Char(' ')), QStringLiteral("Z Alt R P Q RX RZ Speed Head RIT TP1Q TP2Q"));
}

void tst_ZrWpt::xmlLosesTheAlpha()
{
    ZrWpt wpt;
    wpt.colour = QColor(10, 20, 30, 40);
    QCOMPARE(ThroughLines(wpt).colour, QColor(10, 20, 30, 255));
}

void tst_ZrWpt::xmlUuids_data()
{
    jsonUuids_data();
}

void tst_ZrWpt::xmlUuids()
{
    QFETCH(QString, text);
    QFETCH(QString, uuid);
    const DebugLines silence;
    ZrWpt wpt = FullWpt();
    LoadItems(wpt,
        {QStringLiteral("UUID=") + text, QStringLiteral("GridId=") + text, QStringLiteral("LookAt=") + text});
    QCOMPARE(wpt.uuid.toString(), uuid);
    QCOMPARE(wpt.gridId.toString(), uuid);
    QCOMPARE(wpt.lookAt.toString(), uuid);
}

void tst_ZrWpt::xmlValuesThatDoNotConvert()
{
    QStringList items;
    for (const QString& item : FullItems()) {
        const QString key = item.section(QLatin1Char('='), 0, 0);
        if (!QStringList{Latin1("UUID"), Latin1("GridId"), Latin1("LookAt"), Latin1("Pseudo"), Latin1("Name"),
                Latin1("Filename"), Latin1("AtWpt"), Latin1("Veg")}
                 .contains(key))
            items.append(key + (key == QLatin1String("BottomA") ? Latin1("=") : Latin1("=?!")));
    }
    QCOMPARE(items.size(), FullItems().size() - 8);
    const DebugLines silence;
    ZrWpt wpt = FullWpt();
    LoadItems(wpt, items);
    QCOMPARE(Stored(wpt), Stored(FullWpt()));
    // Every text but "false" is true.
    wpt.veg = false;
    LoadItems(wpt, {Latin1("AtWpt=false"), Latin1("Veg=?!")});
    QCOMPARE(wpt.atWpt, false);
    QCOMPARE(wpt.veg, true);
}

void tst_ZrWpt::xmlUnicode()
{
    ZrWpt wpt;
    wpt.name = QString::fromUtf8("Épave n°7 — 沈没船 \U0001F6A2");
    wpt.filename = QString::fromUtf8("/données/plan.dat");
    wpt.bottomA = QChar(0x00D8);
    const ZrWpt loaded = ThroughLines(wpt);
    QCOMPARE(loaded.name, wpt.name);
    QCOMPARE(loaded.filename, wpt.filename);
    QCOMPARE(loaded.bottomA, wpt.bottomA);
}

void tst_ZrWpt::xmlFileIsLatin1()
{
    ZrWpt wpt = FullWpt();
    wpt.name = QString::fromUtf8("Épave 沈");
    ZrWpt loaded = ThroughFile(wpt);
    QCOMPARE(loaded.name, QString::fromUtf8("Épave ?"));
    loaded.name = wpt.name;
    QCOMPARE(StoredItems(loaded), StoredItems(wpt));
}

void tst_ZrWpt::xmlFileKeepsFieldsOfEmptyTexts()
{
    ZrWpt wpt = FullWpt();
    wpt.name.clear();
    QCOMPARE(ThroughFile(wpt).name, QString());
    QCOMPARE(ThroughFile(wpt).pseudo, QStringLiteral("Wpt: 3"));
}

void tst_ZrWpt::xmlNotANumber()
{
    ZrWpt wpt;
    wpt.lat = NAN;
    wpt.z = HUGE_VAL;
    wpt.speed = -HUGE_VAL;
    wpt.burial = NAN;
    const ZrWpt loaded = ThroughLines(wpt);
    QVERIFY(std::isnan(loaded.lat));
    QCOMPARE(loaded.z, HUGE_VAL);
    QCOMPARE(loaded.speed, -HUGE_VAL);
    QVERIFY(std::isnan(loaded.burial));
}

void tst_ZrWpt::jsonForm()
{
    QCOMPARE(
        QJsonDocument(Stored(FullWpt())).toJson(QJsonDocument::Compact), "{" + FullMembers().join(',') + "}");
}

void tst_ZrWpt::jsonDefaults()
{
    ZrWpt wpt;
    const QJsonObject object = Stored(wpt);
    QCOMPARE(object.size(), FullMembers().size());
    QCOMPARE(object.value(QLatin1String("UUID")), QJsonValue(wpt.uuid.toString()));
    QCOMPARE(
        object.value(QLatin1String("GridId")), QJsonValue(Latin1("{00000000-0000-0000-0000-000000000000}")));
    QCOMPARE(object.value(QLatin1String("colour")), QJsonValue(Latin1("ffffff00")));
    QCOMPARE(object.value(QLatin1String("time")), QJsonValue(-1));
    QCOMPARE(object.value(QLatin1String("bottomA")), QJsonValue(Latin1("A")));
    QCOMPARE(object.value(QLatin1String("bottomN")), QJsonValue(Latin1("1")));
    QCOMPARE(object.value(QLatin1String("at wpt")), QJsonValue(false));
}

void tst_ZrWpt::jsonLoadsEveryMember()
{
    const QByteArray text = "{" + FullMembers().join(',') + "}";
    ZrWpt wpt;
    Load(wpt, QJsonDocument::fromJson(text).object());
    QCOMPARE(QJsonDocument(Stored(wpt)).toJson(QJsonDocument::Compact), text);
    QCOMPARE(wpt.colour, QColor(1, 2, 3, 4));
    QCOMPARE(wpt.flags, 4294967295U);
}

void tst_ZrWpt::jsonKeysOneByOne_data()
{
    QTest::addColumn<QByteArray>("member");
    for (const QByteArray& member : FullMembers())
        QTest::newRow(member.left(member.indexOf(':')).constData()) << member;
}

/// Each member sets its own field and no other.
void tst_ZrWpt::jsonKeysOneByOne()
{
    QFETCH(QByteArray, member);
    const QJsonObject one = QJsonDocument::fromJson("{" + member + "}").object();
    QCOMPARE(one.size(), 1);
    const QString key = one.begin().key();
    ZrWpt wpt;
    QJsonObject expected = Stored(wpt);
    QVERIFY(expected.value(key) != one.begin().value());
    expected.insert(key, one.begin().value());
    Load(wpt, one);
    QCOMPARE(Stored(wpt), expected);
}

void tst_ZrWpt::jsonMissingKeysLeaveTheFields()
{
    ZrWpt wpt = FullWpt();
    Load(wpt, {{QStringLiteral("Lat"), 1.0}, {QStringLiteral("unknown"), true}});
    QCOMPARE(Stored(wpt), Stored(FullWpt()));
}

void tst_ZrWpt::jsonNeitherLoadingNorStoring()
{
    QJsonObject object{{QStringLiteral("lat"), 1.0}, {QStringLiteral("UUID"), QStringLiteral("x")},
        {QStringLiteral("bottomA"), QStringLiteral("Z")}};
    const QJsonObject before = object;
    zr::ZrSetModule module(static_cast<zr::ePersistMode>(2), object);
    ZrWpt wpt = FullWpt();
    ZrWpt::serialise(wpt, module);
    QCOMPARE(Stored(wpt), Stored(FullWpt()));
    QCOMPARE(object, before);
}

void tst_ZrWpt::jsonKeepsEveryDigit()
{
    ZrWpt wpt;
    wpt.lat = 50.0 + 1.0 / 3.0;
    wpt.q = 1234567.0 + 1.0 / 7.0;
    wpt.tp1Q = 1e-300;
    wpt.burial = 0.1F;
    const QByteArray text = QJsonDocument(Stored(wpt)).toJson();
    ZrWpt loaded;
    Load(loaded, QJsonDocument::fromJson(text).object());
    QVERIFY(loaded.lat == wpt.lat);
    QVERIFY(loaded.q == wpt.q);
    QVERIFY(loaded.tp1Q == wpt.tp1Q);
    QVERIFY(loaded.burial == wpt.burial);
}

void tst_ZrWpt::jsonBottomLetter_data()
{
    QTest::addColumn<QJsonValue>("stored");
    QTest::addColumn<QChar>("letter");
    QTest::newRow("one character") << QJsonValue(Latin1("B")) << QChar(u'B');
    QTest::newRow("several") << QJsonValue(Latin1("CDE")) << QChar(u'C');
    QTest::newRow("beyond ASCII") << QJsonValue(QString(QChar(0x2113))) << QChar(0x2113);
    QTest::newRow("empty") << QJsonValue(QString()) << QChar(u'A');
    QTest::newRow("null") << QJsonValue() << QChar(u'A');
    QTest::newRow("number") << QJsonValue(66) << QChar(u'A');
    QTest::newRow("array") << QJsonValue(QJsonArray{Latin1("B")}) << QChar(u'A');
}

void tst_ZrWpt::jsonBottomLetter()
{
    QFETCH(QJsonValue, stored);
    QFETCH(QChar, letter);
    ZrWpt wpt;
    Load(wpt, {{QStringLiteral("bottomA"), stored}});
    QCOMPARE(wpt.bottomA, letter);
}

void tst_ZrWpt::jsonUuids_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("uuid");
    const QString null = QStringLiteral("{00000000-0000-0000-0000-000000000000}");
    const QString good = QStringLiteral("{01234567-89ab-4cde-8f01-23456789abcd}");
    QTest::newRow("good") << good << good;
    QTest::newRow("upper case") << QStringLiteral("{01234567-89AB-4CDE-8F01-23456789ABCD}") << good;
    QTest::newRow("without braces") << QStringLiteral("01234567-89ab-4cde-8f01-23456789abcd") << good;
    QTest::newRow("rest not examined") << good + QStringLiteral(" and more") << good;
    QTest::newRow("leading space") << QStringLiteral(" ") + good << null;
    QTest::newRow("cut") << QStringLiteral("{01234567-89ab-4cde-8f01-2345}") << null;
    QTest::newRow("not hexadecimal") << QStringLiteral("{0123456g-89ab-4cde-8f01-23456789abcd}") << null;
    QTest::newRow("text") << QStringLiteral("north end") << null;
    QTest::newRow("unicode") << QString::fromUtf8("沈没船") << null;
    QTest::newRow("empty") << QString() << null;
}

void tst_ZrWpt::jsonUuids()
{
    QFETCH(QString, text);
    QFETCH(QString, uuid);
    ZrWpt wpt = FullWpt();
    Load(wpt,
        {{QStringLiteral("UUID"), text}, {QStringLiteral("GridId"), text}, {QStringLiteral("LookAt"), text}});
    QCOMPARE(wpt.uuid.toString(), uuid);
    QCOMPARE(wpt.gridId.toString(), uuid);
    QCOMPARE(wpt.lookAt.toString(), uuid);
}

void tst_ZrWpt::jsonIntegers_data()
{
    QTest::addColumn<QJsonValue>("stored");
    QTest::addColumn<u32>("flags");
    QTest::addColumn<int>("spdType");
    QTest::addColumn<u8>("type");
    QTest::newRow("small") << QJsonValue(Latin1("12")) << 12U << 12 << u8(12);
    QTest::newRow("a number") << QJsonValue(12) << 0U << 0 << u8(0);
    QTest::newRow("largest") << QJsonValue(Latin1("4294967295")) << 4294967295U << 0 << u8(0);
    QTest::newRow("beyond 8 bits") << QJsonValue(Latin1("300")) << 300U << 300 << u8(44);
    QTest::newRow("negative") << QJsonValue(Latin1("-5")) << 0U << -5 << u8(0);
    QTest::newRow("null") << QJsonValue() << 0U << 0 << u8(0);
    QTest::newRow("text") << QJsonValue(Latin1("0x10")) << 0U << 0 << u8(0);
}

void tst_ZrWpt::jsonIntegers()
{
    QFETCH(QJsonValue, stored);
    ZrWpt wpt = FullWpt();
    Load(wpt,
        {{QStringLiteral("flags"), stored}, {QStringLiteral("speedtype"), stored},
            {QStringLiteral("type"), stored}});
    QTEST(wpt.flags, "flags");
    QTEST(wpt.spdType, "spdType");
    QTEST(wpt.type, "type");
}

void tst_ZrWpt::jsonUnicode()
{
    ZrWpt wpt;
    wpt.name = QString::fromUtf8("Épave \"7\" \\ 沈没船 \U0001F6A2\n");
    const QByteArray text = QJsonDocument(Stored(wpt)).toJson();
    ZrWpt loaded;
    Load(loaded, QJsonDocument::fromJson(text).object());
    QCOMPARE(loaded.name, wpt.name);
}

void tst_ZrWpt::jsonNotANumber()
{
    ZrWpt wpt;
    wpt.lat = NAN;
    wpt.z = HUGE_VAL;
    wpt.burial = -HUGE_VALF;
    const QJsonObject object = QJsonDocument::fromJson(QJsonDocument(Stored(wpt)).toJson()).object();
    QVERIFY(object.value(QLatin1String("lat")).isNull());
    QVERIFY(object.value(QLatin1String("z")).isNull());
    QVERIFY(object.value(QLatin1String("burial")).isNull());
    ZrWpt loaded = FullWpt();
    Load(loaded, object);
    QVERIFY(std::isnan(loaded.lat));
    QVERIFY(std::isnan(loaded.z));
    QVERIFY(std::isnan(loaded.burial));
}

/// A member of the wrong kind overwrites its field, but for the letter.
void tst_ZrWpt::jsonWrongKinds()
{
    QJsonObject object;
    const QJsonObject full = Stored(FullWpt());
    for (const QString& key : full.keys())
        object.insert(key, QJsonArray{1});
    ZrWpt wpt = FullWpt();
    Load(wpt, object);
    ZrWpt expected;
    expected.uuid = QUuid();
    expected.colour = QColor(0, 0, 0, 0);
    expected.time = 0.0;
    expected.bottomA = QLatin1Char('C');
    expected.bottomN = 0;
    QCOMPARE(Stored(wpt), Stored(expected));
}

QTEST_GUILESS_MAIN(tst_ZrWpt)
#include "tst_ZrWpt.moc"
