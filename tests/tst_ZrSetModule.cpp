// One settings function for both directions: items and sub-items, in every mode.

#include "ZrUtil/IPersistable.h"
#include "ZrUtil/ZrSetModule.h"

#include <QColor>
#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

#include <cmath>
#include <functional>
#include <stdexcept>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

constexpr auto neither = static_cast<zr::ePersistMode>(2);

/// An object whose settings function is given to it.
class Child final : public zr::IPersistable
{
public:
    explicit Child(std::function<void(zr::ZrSetModule&)> fn)
        : m_fn(std::move(fn))
    {
    }

    void settings(zr::ZrSetModule& module) override
    {
        ++calls;
        m_fn(module);
    }

    int calls = 0;

private:
    std::function<void(zr::ZrSetModule&)> m_fn;
};

/// Of every type one.
struct Everything
{
    bool flag = true;
    signed char i8 = -8;
    unsigned char u8 = 8;
    short i16 = -16;
    unsigned short u16 = 16;
    int i32 = -32;
    unsigned int u32 = 32;
    long long i64 = -64;
    unsigned long long u64 = 64;
    float f32 = 0.5F;
    double f64 = -0.25;
    QString text = S("Text ü");
    std::string bytes = "bytes \xFC";
    std::filesystem::path path = "/a/b";
    QColor colour = QColor(1, 2, 3, 4);
    QJsonArray array{1, S("a")};

    void settings(zr::ZrSetModule& m)
    {
        m.item(S("flag"), flag);
        m.item(S("i8"), i8);
        m.item(S("u8"), u8);
        m.item(S("i16"), i16);
        m.item(S("u16"), u16);
        m.item(S("i32"), i32);
        m.item(S("u32"), u32);
        m.item(S("i64"), i64);
        m.item(S("u64"), u64);
        m.item(S("f32"), f32);
        m.item(S("f64"), f64);
        m.item(S("text"), text);
        m.item(S("bytes"), bytes);
        m.item(S("path"), path);
        m.item(S("colour"), colour);
        m.item(S("array"), array);
    }
};

const QJsonObject everythingStored{{S("flag"), true}, {S("i8"), S("-8")}, {S("u8"), S("8")},
    {S("i16"), S("-16")}, {S("u16"), S("16")}, {S("i32"), S("-32")}, {S("u32"), S("32")},
    {S("i64"), S("-64")}, {S("u64"), S("64")}, {S("f32"), 0.5}, {S("f64"), -0.25}, {S("text"), S("Text ü")},
    {S("bytes"), S("bytes ü")}, {S("path"), S("/a/b")}, {S("colour"), S("04010203")},
    {S("array"), QJsonArray{1, S("a")}}};

/// What storing makes of \p object.
QJsonObject Stored(Everything& object)
{
    QJsonObject json;
    zr::ZrSetModule module(zr::ePersistStoring, json);
    object.settings(module);
    return json;
}

} // namespace

class tst_ZrSetModule : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void modes_data();
    void modes();
    void isACursor();
    void storesEveryType();
    void loadsEveryType();
    void missingKeysKeepTheDefaults();
    void wrongKindsOverwrite();
    void numberForAnIntegerLoadsZero();
    void nullIsAKey();
    void storingReplaces();
    void neitherModeLeavesItems();
    void keysAreSorted();
    void keysMayBeAnything();
    void subItemStoresAFreshObject();
    void subItemLoadsACopy();
    void subItemAlwaysCallsTheChild_data();
    void subItemAlwaysCallsTheChild();
    void subItemLeavesANull();
    void subItemOfNeitherModeIsLoading();
    void functionStoresAFreshObject();
    void functionLoadsOnlyObjects_data();
    void functionLoadsOnlyObjects();
    void functionAfterAnInterface();
    void emptyFunctionThrows();
    void emptyFunctionIsNotCalledWithoutAnObject();
    void throwingChildStoresNothing();
    void nested();
};

void tst_ZrSetModule::modes_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("loading");
    QTest::addColumn<bool>("storing");
    QTest::newRow("0") << 0 << true << false;
    QTest::newRow("1") << 1 << false << true;
    QTest::newRow("2") << 2 << false << false;
    QTest::newRow("-1") << -1 << false << false;
}

void tst_ZrSetModule::modes()
{
    QFETCH(int, mode);
    QJsonObject object;
    const zr::ZrSetModule module(static_cast<zr::ePersistMode>(mode), object);
    QTEST(module.is_loading(), "loading");
    QTEST(module.is_storing(), "storing");
    QCOMPARE(int(module.mode), mode);
}

void tst_ZrSetModule::isACursor()
{
    QJsonObject object;
    const zr::ZrSetModule module(zr::ePersistStoring, object);
    QCOMPARE(module.object, &object);
    zr::ZrSetModule copy = module;
    int value = 12;
    copy.item(S("a"), value);
    QCOMPARE(object, (QJsonObject{{S("a"), S("12")}}));
    QJsonObject other;
    copy = zr::ZrSetModule(zr::ePersistStoring, other);
    copy.item(S("b"), value);
    QCOMPARE(object.size(), 1);
    QCOMPARE(other, (QJsonObject{{S("b"), S("12")}}));
}

void tst_ZrSetModule::storesEveryType()
{
    Everything object;
    QCOMPARE(Stored(object), everythingStored);
}

void tst_ZrSetModule::loadsEveryType()
{
    Everything object;
    object.flag = false;
    object.i8 = 0;
    object.u8 = 0;
    object.i16 = 0;
    object.u16 = 0;
    object.i32 = 0;
    object.u32 = 0;
    object.i64 = 0;
    object.u64 = 0;
    object.f32 = 0.0F;
    object.f64 = 0.0;
    object.text.clear();
    object.bytes.clear();
    object.path.clear();
    object.colour = QColor();
    object.array = QJsonArray();
    QJsonObject json = everythingStored;
    zr::ZrSetModule module(zr::ePersistLoading, json);
    object.settings(module);
    QCOMPARE(Stored(object), everythingStored);
    QCOMPARE(json, everythingStored);
}

void tst_ZrSetModule::missingKeysKeepTheDefaults()
{
    Everything object;
    QJsonObject json{{S("other"), 1}};
    const QJsonObject before = json;
    zr::ZrSetModule module(zr::ePersistLoading, json);
    object.settings(module);
    QCOMPARE(Stored(object), everythingStored);
    QCOMPARE(json, before);
}

void tst_ZrSetModule::wrongKindsOverwrite()
{
    Everything object;
    QJsonObject json;
    for (const QString& key : everythingStored.keys())
        json[key] = QJsonObject();
    zr::ZrSetModule module(zr::ePersistLoading, json);
    object.settings(module);
    const QJsonObject expected{{S("flag"), false}, {S("i8"), S("0")}, {S("u8"), S("0")}, {S("i16"), S("0")},
        {S("u16"), S("0")}, {S("i32"), S("0")}, {S("u32"), S("0")}, {S("i64"), S("0")}, {S("u64"), S("0")},
        {S("f32"), 0}, {S("f64"), 0}, {S("text"), QString()}, {S("bytes"), QString()}, {S("path"), QString()},
        {S("colour"), S("00000000")}, {S("array"), QJsonArray()}};
    QCOMPARE(Stored(object), expected);
}

void tst_ZrSetModule::numberForAnIntegerLoadsZero()
{
    QJsonObject json{{S("count"), 12}, {S("depth"), S("2.5")}};
    zr::ZrSetModule module(zr::ePersistLoading, json);
    int count = 7;
    module.item(S("count"), count);
    QCOMPARE(count, 0);
    double depth = 7.0;
    module.item(S("depth"), depth);
    QCOMPARE(depth, 0.0);
}

void tst_ZrSetModule::nullIsAKey()
{
    QJsonObject json{{S("a"), QJsonValue::Null}};
    zr::ZrSetModule module(zr::ePersistLoading, json);
    double number = 7.0;
    module.item(S("a"), number);
    QVERIFY(std::isnan(number));
    int count = 7;
    module.item(S("a"), count);
    QCOMPARE(count, 0);
    QString text = S("x");
    module.item(S("a"), text);
    QCOMPARE(text, QString());
}

void tst_ZrSetModule::storingReplaces()
{
    QJsonObject json{{S("a"), QJsonArray{1}}, {S("b"), true}};
    zr::ZrSetModule module(zr::ePersistStoring, json);
    int value = 1;
    module.item(S("a"), value);
    value = 2;
    module.item(S("a"), value);
    QCOMPARE(json, (QJsonObject{{S("a"), S("2")}, {S("b"), true}}));
    QCOMPARE(value, 2);
}

void tst_ZrSetModule::neitherModeLeavesItems()
{
    QJsonObject json{{S("a"), S("5")}};
    const QJsonObject before = json;
    zr::ZrSetModule module(neither, json);
    int value = 7;
    module.item(S("a"), value);
    QCOMPARE(value, 7);
    module.item(S("b"), value);
    QCOMPARE(json, before);
}

void tst_ZrSetModule::keysAreSorted()
{
    QJsonObject json;
    zr::ZrSetModule module(zr::ePersistStoring, json);
    bool value = true;
    for (const char* key : {"ä", "b", "B", "a", ""})
        module.item(S(key), value);
    QCOMPARE(json.keys(), (QStringList{S(""), S("B"), S("a"), S("b"), S("ä")}));
}

void tst_ZrSetModule::keysMayBeAnything()
{
    const QStringList keys{QString(), S("tablet mode"), S("深度 🌊"), QString::fromLatin1("a\0\n\"\\", 5),
        QString(70000, QLatin1Char('k'))};
    QJsonObject json;
    int value = 0;
    zr::ZrSetModule storing(zr::ePersistStoring, json);
    for (const QString& key : keys)
        storing.item(key, ++value);
    QCOMPARE(json.size(), keys.size());
    zr::ZrSetModule loading(zr::ePersistLoading, json);
    for (int i = 0; i < keys.size(); ++i) {
        loading.item(keys[i], value);
        QCOMPARE(value, i + 1);
    }
}

void tst_ZrSetModule::subItemStoresAFreshObject()
{
    QJsonObject json{{S("child"), QJsonObject{{S("stale"), 1}}}};
    zr::ZrSetModule module(zr::ePersistStoring, json);
    int value = 12;
    Child child([&](zr::ZrSetModule& m) {
        QVERIFY(m.is_storing());
        QVERIFY(m.object->isEmpty());
        m.item(S("value"), value);
        // Not there until the child has returned.
        QCOMPARE(json[S("child")], QJsonValue(QJsonObject{{S("stale"), 1}}));
    });
    module.sub_item(S("child"), child);
    QCOMPARE(child.calls, 1);
    QCOMPARE(json, (QJsonObject{{S("child"), QJsonObject{{S("value"), S("12")}}}}));

    Child nothing([](zr::ZrSetModule&) {});
    module.sub_item(S("child"), nothing);
    QCOMPARE(json, (QJsonObject{{S("child"), QJsonObject()}}));
}

void tst_ZrSetModule::subItemLoadsACopy()
{
    QJsonObject json{{S("child"), QJsonObject{{S("value"), S("12")}}}};
    const QJsonObject before = json;
    zr::ZrSetModule module(zr::ePersistLoading, json);
    int value = 0;
    Child child([&value](zr::ZrSetModule& m) {
        QVERIFY(m.is_loading());
        m.item(S("value"), value);
        m.object->insert(S("discarded"), true);
        m.object->remove(S("value"));
    });
    module.sub_item(S("child"), child);
    QCOMPARE(value, 12);
    QCOMPARE(json, before);
}

void tst_ZrSetModule::subItemAlwaysCallsTheChild_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined);
    QTest::newRow("null") << QJsonValue(QJsonValue::Null);
    QTest::newRow("number") << QJsonValue(1);
    QTest::newRow("text") << QJsonValue(S("{}"));
    QTest::newRow("array") << QJsonValue(QJsonArray{QJsonObject{{S("value"), S("1")}}});
    QTest::newRow("empty object") << QJsonValue(QJsonObject());
}

void tst_ZrSetModule::subItemAlwaysCallsTheChild()
{
    QFETCH(QJsonValue, value);
    QJsonObject json;
    json.insert(S("child"), value); // an undefined value is not inserted
    zr::ZrSetModule module(zr::ePersistLoading, json);
    int loaded = 7;
    Child child([&loaded](zr::ZrSetModule& m) {
        QVERIFY(m.object->isEmpty());
        m.item(S("value"), loaded);
    });
    module.sub_item(S("child"), child);
    QCOMPARE(child.calls, 1);
    QCOMPARE(loaded, 7);
    QCOMPARE(json.value(S("child")), value.isUndefined() ? QJsonValue(QJsonValue::Null) : value);
}

void tst_ZrSetModule::subItemLeavesANull()
{
    QJsonObject json{{S("a"), true}};
    zr::ZrSetModule module(zr::ePersistLoading, json);
    Child child([](zr::ZrSetModule&) {});
    module.sub_item(S("child"), child);
    QCOMPARE(json, (QJsonObject{{S("a"), true}, {S("child"), QJsonValue::Null}}));
    // From now on the key exists.
    double value = 7.0;
    module.item(S("child"), value);
    QVERIFY(std::isnan(value));
}

void tst_ZrSetModule::subItemOfNeitherModeIsLoading()
{
    QJsonObject json{{S("child"), QJsonObject{{S("value"), S("12")}}}, {S("text"), S("x")}};
    zr::ZrSetModule module(neither, json);
    int value = 7;
    QJsonObject seen;
    const auto look = [&](zr::ZrSetModule& m) {
        QCOMPARE(int(m.mode), 2);
        seen = *m.object;
        m.item(S("value"), value);
    };
    Child child(look);
    module.sub_item(S("child"), child);
    QCOMPARE(seen, (QJsonObject{{S("value"), S("12")}}));
    QCOMPARE(value, 7);
    module.sub_item(S("missing"), child);
    QCOMPARE(child.calls, 2);
    QCOMPARE(json.value(S("missing")), QJsonValue(QJsonValue::Null));

    int calls = 0;
    const auto count = [&calls](zr::ZrSetModule&) { ++calls; };
    module.sub_item(S("child"), count);
    QCOMPARE(calls, 1);
    module.sub_item(S("text"), count);
    module.sub_item(S("other"), count);
    QCOMPARE(calls, 1);
    QVERIFY(!json.contains(S("other")));
}

void tst_ZrSetModule::functionStoresAFreshObject()
{
    QJsonObject json{{S("child"), QJsonObject{{S("stale"), 1}}}};
    zr::ZrSetModule module(zr::ePersistStoring, json);
    int value = 12;
    module.sub_item(S("child"), [&value](zr::ZrSetModule& m) {
        QVERIFY(m.is_storing());
        m.item(S("value"), value);
    });
    QCOMPARE(json, (QJsonObject{{S("child"), QJsonObject{{S("value"), S("12")}}}}));
}

void tst_ZrSetModule::functionLoadsOnlyObjects_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<int>("calls");
    QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined) << 0;
    QTest::newRow("null") << QJsonValue(QJsonValue::Null) << 0;
    QTest::newRow("number") << QJsonValue(1) << 0;
    QTest::newRow("text") << QJsonValue(S("{}")) << 0;
    QTest::newRow("array") << QJsonValue(QJsonArray{QJsonObject()}) << 0;
    QTest::newRow("empty object") << QJsonValue(QJsonObject()) << 1;
    QTest::newRow("object") << QJsonValue(QJsonObject{{S("value"), S("12")}}) << 1;
}

void tst_ZrSetModule::functionLoadsOnlyObjects()
{
    QFETCH(QJsonValue, value);
    QFETCH(int, calls);
    QJsonObject json;
    json.insert(S("child"), value);
    const QJsonObject before = json;
    zr::ZrSetModule module(zr::ePersistLoading, json);
    int called = 0;
    module.sub_item(S("child"), [&](zr::ZrSetModule& m) {
        ++called;
        QVERIFY(m.is_loading());
        QCOMPARE(*m.object, value.toObject());
        m.object->insert(S("discarded"), true);
    });
    QCOMPARE(called, calls);
    QCOMPARE(json, before);
    QCOMPARE(json.contains(S("child")), !value.isUndefined());
}

void tst_ZrSetModule::functionAfterAnInterface()
{
    QJsonObject json;
    zr::ZrSetModule module(zr::ePersistLoading, json);
    Child child([](zr::ZrSetModule&) {});
    module.sub_item(S("child"), child);
    int calls = 0;
    module.sub_item(S("child"), [&calls](zr::ZrSetModule&) { ++calls; });
    QCOMPARE(calls, 0);
}

void tst_ZrSetModule::emptyFunctionThrows()
{
    const std::function<void(zr::ZrSetModule&)> none;
    QJsonObject json{{S("child"), QJsonObject()}};
    const QJsonObject before = json;
    for (const zr::ePersistMode mode : {zr::ePersistStoring, zr::ePersistLoading, neither}) {
        zr::ZrSetModule module(mode, json);
        QVERIFY_EXCEPTION_THROWN(module.sub_item(S("child"), none), std::bad_function_call);
    }
    zr::ZrSetModule storing(zr::ePersistStoring, json);
    QVERIFY_EXCEPTION_THROWN(storing.sub_item(S("other"), nullptr), std::bad_function_call);
    QCOMPARE(json, before);
}

void tst_ZrSetModule::emptyFunctionIsNotCalledWithoutAnObject()
{
    const std::function<void(zr::ZrSetModule&)> none;
    QJsonObject json{{S("null"), QJsonValue::Null}, {S("text"), S("x")}};
    zr::ZrSetModule module(zr::ePersistLoading, json);
    int calm = 0;
    for (const char* key : {"null", "text", "missing"}) {
        module.sub_item(S(key), none);
        ++calm;
    }
    QCOMPARE(calm, 3);
}

void tst_ZrSetModule::throwingChildStoresNothing()
{
    QJsonObject json{{S("child"), true}};
    const QJsonObject before = json;
    zr::ZrSetModule module(zr::ePersistStoring, json);
    const auto fail = [](zr::ZrSetModule& m) {
        bool value = true;
        m.item(S("value"), value);
        throw std::runtime_error("no");
    };
    Child child(fail);
    QVERIFY_EXCEPTION_THROWN(module.sub_item(S("child"), child), std::runtime_error);
    QVERIFY_EXCEPTION_THROWN(module.sub_item(S("child"), fail), std::runtime_error);
    QCOMPARE(json, before);
}

void tst_ZrSetModule::nested()
{
    int depth = 0;
    std::function<void(zr::ZrSetModule&)> down = [&](zr::ZrSetModule& m) {
        int here = depth;
        m.item(S("depth"), here);
        QCOMPARE(here, depth);
        if (++depth < 200)
            m.sub_item(S("next"), down);
    };
    QJsonObject json;
    zr::ZrSetModule storing(zr::ePersistStoring, json);
    down(storing);
    QCOMPARE(depth, 200);
    depth = 0;
    zr::ZrSetModule loading(zr::ePersistLoading, json);
    down(loading);
    QCOMPARE(depth, 200);
}

QTEST_GUILESS_MAIN(tst_ZrSetModule)
#include "tst_ZrSetModule.moc"
