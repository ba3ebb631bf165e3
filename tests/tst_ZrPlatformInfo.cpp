// The facts about the machine, and the sink that keeps nothing.

#include "XmlChecks.h"
#include "ZrUtil/ZrPlatformInfo.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrSettingsLogger.h"

#include <QColor>
#include <QHostInfo>
#include <QJsonObject>
#include <QSysInfo>
#include <QtTest>

#include <limits>
#include <type_traits>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace

class tst_ZrPlatformInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void storesFiveStrings();
    void storesIntoASubItem();
    void storesTwice();
    void loadsNothing_data();
    void loadsNothing();
    void loggerKeepsNothing();
};

void tst_ZrPlatformInfo::storesFiveStrings()
{
    QJsonObject object;
    zr::ZrSetModule module(zr::ePersistStoring, object);
    zr::ZrPlatformInfo::serialise(module);
    const QJsonObject expected{{S("qt abi"), QSysInfo::buildAbi()},
        {S("cpu arch"), QSysInfo::currentCpuArchitecture()}, {S("hostname"), QHostInfo::localHostName()},
        {S("os"), QSysInfo::productType()}, {S("os version"), QSysInfo::productVersion()}};
    QCOMPARE(object, expected);
    for (const QJsonValue& value : qAsConst(object))
        QVERIFY(value.isString());
    for (const char* key : {"qt abi", "cpu arch", "os"})
        QVERIFY2(!object[S(key)].toString().isEmpty(), key);
}

void tst_ZrPlatformInfo::storesIntoASubItem()
{
    QJsonObject object;
    zr::ZrSetModule module(zr::ePersistStoring, object);
    module.sub_item(S("platform"), zr::ZrPlatformInfo::serialise);
    QCOMPARE(object.keys(), QStringList{S("platform")});
    QCOMPARE(object[S("platform")].toObject().size(), 5);
}

void tst_ZrPlatformInfo::storesTwice()
{
    QJsonObject object{{S("os"), S("abacus")}, {S("other"), true}};
    zr::ZrSetModule module(zr::ePersistStoring, object);
    zr::ZrPlatformInfo::serialise(module);
    const QJsonObject once = object;
    zr::ZrPlatformInfo::serialise(module);
    QCOMPARE(object, once);
    QCOMPARE(object.keys(),
        (QStringList{S("cpu arch"), S("hostname"), S("os"), S("os version"), S("other"), S("qt abi")}));
    QCOMPARE(object[S("os")].toString(), QSysInfo::productType());
    QCOMPARE(object[S("other")], QJsonValue(true));
}

void tst_ZrPlatformInfo::loadsNothing_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("loading") << 0;
    QTest::newRow("neither") << 2;
}

void tst_ZrPlatformInfo::loadsNothing()
{
    QFETCH(int, mode);
    QJsonObject object{{S("os"), S("abacus")}};
    const QJsonObject before = object;
    zr::ZrSetModule module(static_cast<zr::ePersistMode>(mode), object);
    zr::ZrPlatformInfo::serialise(module);
    QCOMPARE(object, before);
}

void tst_ZrPlatformInfo::loggerKeepsNothing()
{
    // Nothing to look at: every overload takes its arguments, whatever they are, and is quiet.
    const DebugLines lines;
    ZrSettingsLogger logger;
    logger.AddValue(S("text"), S("x"));
    logger.AddValue(QString(), QString());
    logger.AddValue(S("number"), -1);
    logger.AddValue(S("number"), std::numeric_limits<float>::quiet_NaN());
    logger.AddValue(S("number"), std::numeric_limits<double>::infinity());
    logger.AddValue(S("colour"), QColor());
    using Sink = void (ZrSettingsLogger::*)(QString, QColor);
    const Sink sink = &ZrSettingsLogger::AddValue;
    (logger.*sink)(S("colour"), QColor(1, 2, 3));
    QCOMPARE(lines.Get(), QStringList());
    static_assert(std::is_empty_v<ZrSettingsLogger>, "it has nowhere to keep anything");
}

QTEST_GUILESS_MAIN(tst_ZrPlatformInfo)
#include "tst_ZrPlatformInfo.moc"
