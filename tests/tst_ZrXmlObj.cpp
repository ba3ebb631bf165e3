#include "XmlChecks.h"
#include "ZrUtil/ZrXmlObj.h"

#include <functional>
#include <type_traits>

static_assert(std::is_base_of_v<ZrLstMgd<ZrXmlItem>, ZrXmlObj>);
static_assert(std::is_same_v<decltype(ZrXmlObj::cursor), ZrListPos*>);
static_assert(std::is_same_v<decltype(ZrXmlObj::set), ZrXmlSet*>);
static_assert(std::is_same_v<decltype(ZrXmlObj::data), ZrLstMgd<QString>>);

namespace {

/// Adds items "A=0", "B=1" ... for the letters of \p names.
void AddItems(ZrXmlObj& obj, const char* names)
{
    for (int i = 0; names[i]; ++i)
        obj.Add(QString(QLatin1Char(names[i])), QString::number(i));
}

/// The value of the item found, "-" if none is.
QString Find(ZrXmlObj& obj, char name)
{
    QString value;
    return obj.GetItm(QString(QLatin1Char(name)), value) ? value : QStringLiteral("-");
}

} // namespace

class tst_ZrXmlObj : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void construction();
    void direction();
    void detachedObjectStores();
    void addText();
    void addFormatted();
    void addNullFormat();
    void formattedTextIsCut_data();
    void formattedTextIsCut();
    void formattedTextIsCutBetweenCharacters_data();
    void formattedTextIsCutBetweenCharacters();
    void refusedFormat();
    void dataLines();
    void storedTextIsNoFormat();
    void getItmIsExact();
    void getItmOfEmptyObject();
    void failedLookupLeavesValueAndCursor();
    void cursorIsTheItemFoundLast();
    void lookupInOrderAndAgainst();
    void lookupWrapsOnce();
    void repeatedNamesTakeTurns();
    void lookupInOrderTakesOneStep();
    void itemsAddedBehindTheCursorAreFound();
    void removalDropsTheCursor_data();
    void removalDropsTheCursor();
    void lookupAfterRemovalOfTheCursor();
    void removals();
};

void tst_ZrXmlObj::construction()
{
    const ZrXmlObj empty;
    QVERIFY(empty.name.isEmpty());
    QVERIFY(empty.type.isEmpty());
    QVERIFY(!empty.cursor);
    QVERIFY(!empty.set);
    QVERIFY(empty.IsEmpty());
    QVERIFY(empty.data.IsEmpty());

    ZrXmlSet set;
    const ZrXmlObj obj(QStringLiteral("Wpt 0"), QStringLiteral("Waypoint"), &set);
    QCOMPARE(obj.name, QStringLiteral("Wpt 0"));
    QCOMPARE(obj.type, QStringLiteral("Waypoint"));
    QCOMPARE(obj.set, &set);
}

void tst_ZrXmlObj::direction()
{
    ZrXmlObj obj;
    QVERIFY(obj.IsStoring());
    QVERIFY(!obj.IsLoading());

    ZrXmlSet set;
    obj.set = &set;
    QVERIFY(obj.IsStoring());
    QVERIFY(!obj.IsLoading());

    ZrXmlStore loading(false);
    set.store = &loading;
    QVERIFY(!obj.IsStoring());
    QVERIFY(obj.IsLoading());

    ZrXmlStore storing(true);
    set.store = &storing;
    QVERIFY(obj.IsStoring());
    QVERIFY(!obj.IsLoading());
}

void tst_ZrXmlObj::detachedObjectStores()
{
    ZrXmlObj obj;
    obj.Add(QStringLiteral("N"), QStringLiteral("5"));
    int value = 7;
    obj.Item(QStringLiteral("N"), value);
    QCOMPARE(value, 7);
    QCOMPARE(Items(obj), QStringList({QStringLiteral("N=5"), QStringLiteral("N=7")}));
}

void tst_ZrXmlObj::addText()
{
    ZrXmlObj obj;
    obj.Add(QStringLiteral("A"), QStringLiteral("1"));
    obj.Add(QString(), QString());
    obj.Add(QStringLiteral("A"), QStringLiteral("2"));
    QCOMPARE(Items(obj), QStringList({QStringLiteral("A=1"), QStringLiteral("="), QStringLiteral("A=2")}));
}

void tst_ZrXmlObj::addFormatted()
{
    ZrXmlObj obj;
    obj.Add(QStringLiteral("A"), "%d of %s, %5.2f%%", 3, "K\xC3\xBCste", 1.25);
    obj.Add(QStringLiteral("B"), "plain");
    obj.Add(QStringLiteral("C"), "%s", "");
    QCOMPARE(Items(obj),
        QStringList({QStringLiteral("A=3 of K%1ste,  1.25%").arg(QChar(0xFC)), QStringLiteral("B=plain"),
            QStringLiteral("C=")}));
}

void tst_ZrXmlObj::addNullFormat()
{
    ZrXmlObj obj;
    const char* volatile none = nullptr;
    obj.Add(QStringLiteral("A"), none);
    obj.Data(none);
    QCOMPARE(Items(obj), QStringList(QStringLiteral("A=")));
    QCOMPARE(DataLines(obj), QStringList(QString()));
}

void tst_ZrXmlObj::formattedTextIsCut_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("kept");
    QTest::newRow("4094") << 4094 << 4094;
    QTest::newRow("4095") << 4095 << 4095;
    QTest::newRow("4096") << 4096 << 4095;
    QTest::newRow("4097") << 4097 << 4095;
    QTest::newRow("a million") << 1000000 << 4095;
}

void tst_ZrXmlObj::formattedTextIsCut()
{
    QFETCH(int, length);
    QFETCH(int, kept);
    const QByteArray text(length, 'x');
    ZrXmlObj obj;
    obj.Add(QStringLiteral("A"), "%s", text.constData());
    obj.Data("%s", text.constData());
    QCOMPARE(obj.GetHead()->value, QString(kept, QLatin1Char('x')));
    QCOMPARE(*obj.data.GetHead(), QString(kept, QLatin1Char('x')));

    // A text that is not formatted has no limit.
    obj.Add(QStringLiteral("B"), QString::fromLatin1(text));
    QCOMPARE(obj.GetTail()->value.size(), length);
}

void tst_ZrXmlObj::formattedTextIsCutBetweenCharacters_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<QByteArray>("character");
    QTest::addColumn<bool>("kept");
    const QByteArray two = "\xC3\xBC";
    const QByteArray three = "\xE2\x82\xAC";
    const QByteArray four = "\xF0\x9F\x90\x9F";
    QTest::newRow("two bytes fit") << 4093 << two << true;
    QTest::newRow("one of two") << 4094 << two << false;
    QTest::newRow("none of two") << 4095 << two << false;
    QTest::newRow("three bytes fit") << 4092 << three << true;
    QTest::newRow("two of three") << 4093 << three << false;
    QTest::newRow("one of three") << 4094 << three << false;
    QTest::newRow("four bytes fit") << 4091 << four << true;
    QTest::newRow("three of four") << 4092 << four << false;
    QTest::newRow("two of four") << 4093 << four << false;
    QTest::newRow("one of four") << 4094 << four << false;
}

void tst_ZrXmlObj::formattedTextIsCutBetweenCharacters()
{
    QFETCH(int, before);
    QFETCH(QByteArray, character);
    QFETCH(bool, kept);
    const QByteArray text = QByteArray(before, 'x') + character + "more";
    const QString expected
        = QString(before, QLatin1Char('x')) + (kept ? QString::fromUtf8(character) : QString());
    ZrXmlObj obj;
    obj.Add(QStringLiteral("A"), "%s", text.constData());
    obj.Data("%s", text.constData());
    QCOMPARE(obj.GetHead()->value, expected);
    QCOMPARE(*obj.data.GetHead(), expected);
    // Bytes that are no UTF-8, to the end of the buffer: replaced one by one, and no way back beyond its
    // start.
    const QByteArray wrong(5000, '\xBF');
    obj.Data("%s", wrong.constData());
    QCOMPARE(*obj.data.GetTail(), QString(4095, QChar::ReplacementCharacter));
}

void tst_ZrXmlObj::refusedFormat()
{
    // The C locale has no byte for the euro sign.
    ZrXmlObj obj;
    obj.Add(QStringLiteral("A"), "12 %ls", L"\u20AC");
    obj.Data("12 %ls", L"\u20AC");
    QCOMPARE(Items(obj), QStringList(QStringLiteral("A=")));
    QCOMPARE(DataLines(obj), QStringList(QString()));
}

void tst_ZrXmlObj::dataLines()
{
    ZrXmlObj obj;
    obj.Data("%d %d", 1, 2);
    obj.Data("%s", "three");
    obj.Data("100%%");
    QCOMPARE(DataLines(obj),
        QStringList({QStringLiteral("1 2"), QStringLiteral("three"), QStringLiteral("100%")}));
    QVERIFY(obj.IsEmpty());
}

void tst_ZrXmlObj::storedTextIsNoFormat()
{
    ZrXmlObj obj;
    obj.Add(QStringLiteral("%n%s"), QStringLiteral("%s%n%1000000d"));
    QString text = QStringLiteral("%n%n");
    obj.Item(QStringLiteral("%s"), text);
    int number = 7;
    obj.Item(QStringLiteral("%n"), number);
    QCOMPARE(Items(obj),
        QStringList(
            {QStringLiteral("%n%s=%s%n%1000000d"), QStringLiteral("%s=%n%n"), QStringLiteral("%n=7")}));
}

void tst_ZrXmlObj::getItmIsExact()
{
    ZrXmlObj obj;
    obj.Add(QStringLiteral("Name"), QStringLiteral("1"));
    obj.Add(QString(), QStringLiteral("empty"));
    QString value = QStringLiteral("former");
    QVERIFY(!obj.GetItm(QStringLiteral("name"), value));
    QVERIFY(!obj.GetItm(QStringLiteral("Nam"), value));
    QVERIFY(!obj.GetItm(QStringLiteral("Name "), value));
    QCOMPARE(value, QStringLiteral("former"));
    QVERIFY(obj.GetItm(QStringLiteral("Name"), value));
    QCOMPARE(value, QStringLiteral("1"));
    QVERIFY(obj.GetItm(QString(), value));
    QCOMPARE(value, QStringLiteral("empty"));
}

void tst_ZrXmlObj::getItmOfEmptyObject()
{
    ZrXmlObj obj;
    QCOMPARE(Find(obj, 'A'), QStringLiteral("-"));
    QVERIFY(!obj.cursor);
}

void tst_ZrXmlObj::failedLookupLeavesValueAndCursor()
{
    ZrXmlObj obj;
    AddItems(obj, "ABC");
    QCOMPARE(Find(obj, 'Z'), QStringLiteral("-"));
    QVERIFY(!obj.cursor);
    QCOMPARE(Find(obj, 'B'), QStringLiteral("1"));
    QString value = QStringLiteral("former");
    QVERIFY(!obj.GetItm(QStringLiteral("Z"), value));
    QCOMPARE(value, QStringLiteral("former"));
    QCOMPARE(obj.cursor, obj.FindIndex(1));
}

void tst_ZrXmlObj::cursorIsTheItemFoundLast()
{
    ZrXmlObj obj;
    AddItems(obj, "ABC");
    for (const char* name = "CABBC"; *name; ++name) {
        Find(obj, *name);
        QCOMPARE(obj.cursor, obj.FindIndex(*name - 'A'));
    }
}

void tst_ZrXmlObj::lookupInOrderAndAgainst()
{
    ZrXmlObj obj;
    AddItems(obj, "ABCDE");
    QString found;
    for (const char* name = "ABCDEABCDEEDCBAAECB"; *name; ++name)
        found += Find(obj, *name);
    QCOMPARE(found, QStringLiteral("0123401234432100421"));
}

void tst_ZrXmlObj::lookupWrapsOnce()
{
    ZrXmlObj obj;
    AddItems(obj, "AB");
    QCOMPARE(Find(obj, 'B'), QStringLiteral("1"));
    QCOMPARE(Find(obj, 'Z'), QStringLiteral("-"));
    // The item found last is itself the last that is looked at.
    QCOMPARE(Find(obj, 'B'), QStringLiteral("1"));
    QCOMPARE(Find(obj, 'A'), QStringLiteral("0"));

    ZrXmlObj one;
    AddItems(one, "A");
    QCOMPARE(Find(one, 'A'), QStringLiteral("0"));
    QCOMPARE(Find(one, 'A'), QStringLiteral("0"));
    QCOMPARE(Find(one, 'B'), QStringLiteral("-"));
}

void tst_ZrXmlObj::repeatedNamesTakeTurns()
{
    ZrXmlObj obj;
    AddItems(obj, "XAAXA");
    QString found;
    for (int i = 0; i < 7; ++i)
        found += Find(obj, 'A');
    QCOMPARE(found, QStringLiteral("1241241"));
    QCOMPARE(Find(obj, 'X'), QStringLiteral("3"));
    QCOMPARE(Find(obj, 'A'), QStringLiteral("4"));
}

void tst_ZrXmlObj::lookupInOrderTakesOneStep()
{
    // A quarter of a million lookups: from the head each time they would take longer than a test may run.
    ZrXmlObj obj;
    constexpr int count = 250000;
    for (int i = 0; i < count; ++i)
        obj.Add(QString::number(i), QString::number(-i));
    QString value;
    for (int i = 0; i < count; ++i) {
        QVERIFY(obj.GetItm(QString::number(i), value));
        QCOMPARE(value, QString::number(-i));
    }
}

void tst_ZrXmlObj::itemsAddedBehindTheCursorAreFound()
{
    ZrXmlObj obj;
    AddItems(obj, "AB");
    QCOMPARE(Find(obj, 'B'), QStringLiteral("1"));
    obj.Add(QStringLiteral("C"), QStringLiteral("2"));
    QCOMPARE(Find(obj, 'C'), QStringLiteral("2"));
    QCOMPARE(obj.cursor, obj.tail);
}

using Removal = std::function<void(ZrXmlObj&)>;
Q_DECLARE_METATYPE(Removal)

void tst_ZrXmlObj::removalDropsTheCursor_data()
{
    QTest::addColumn<Removal>("remove");
    QTest::addColumn<QStringList>("left");
    const auto row = [](const char* title, const Removal& remove, const char* left) {
        QTest::newRow(title) << remove << Latin1(left).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    };
    // The cursor stands on B of A, B, C.
    row(
        "RemoveAt", [](ZrXmlObj& obj) { obj.RemoveAt(obj.cursor); }, "A=0 C=2");
    row(
        "Remove", [](ZrXmlObj& obj) { obj.Remove(obj.GetAt(obj.cursor)); }, "A=0 C=2");
    row(
        "RemoveHead", [](ZrXmlObj& obj) { obj.RemoveHead(); }, "B=1 C=2");
    row(
        "RemoveTail", [](ZrXmlObj& obj) { obj.RemoveTail(); }, "A=0 B=1");
    row(
        "RemoveAfter", [](ZrXmlObj& obj) { obj.RemoveAfter(obj.head); }, "A=0 C=2");
    row(
        "RemoveBefore", [](ZrXmlObj& obj) { obj.RemoveBefore(obj.tail); }, "A=0 C=2");
    row(
        "RemoveAll", [](ZrXmlObj& obj) { obj.RemoveAll(); }, "");
    row(
        "Grow", [](ZrXmlObj& obj) { obj.Grow(-2); }, "A=0");
    row(
        "SetSize", [](ZrXmlObj& obj) { obj.SetSize(1); }, "A=0");
}

void tst_ZrXmlObj::removalDropsTheCursor()
{
    QFETCH(Removal, remove);
    QFETCH(QStringList, left);
    ZrXmlObj obj;
    AddItems(obj, "ABC");
    QCOMPARE(Find(obj, 'B'), QStringLiteral("1"));
    remove(obj);
    QVERIFY(!obj.cursor);
    QCOMPARE(Items(obj), left);
    for (const char name : {'A', 'B', 'C'}) {
        const QString item = QString(QLatin1Char(name)) + QLatin1Char('=') + QString::number(name - 'A');
        QCOMPARE(Find(obj, name), left.contains(item) ? QString::number(name - 'A') : QStringLiteral("-"));
    }
}

void tst_ZrXmlObj::lookupAfterRemovalOfTheCursor()
{
    ZrXmlObj obj;
    AddItems(obj, "AAA");
    QCOMPARE(Find(obj, 'A'), QStringLiteral("0"));
    QCOMPARE(Find(obj, 'A'), QStringLiteral("1"));
    obj.RemoveAt(obj.cursor);
    // The next search starts at the head.
    QCOMPARE(Find(obj, 'A'), QStringLiteral("0"));
    QCOMPARE(Find(obj, 'A'), QStringLiteral("2"));
}

void tst_ZrXmlObj::removals()
{
    ZrXmlObj obj;
    obj.RemoveAll();
    obj.RemoveHead();
    obj.RemoveAt(nullptr);
    obj.SetSize(2);
    QCOMPARE(Items(obj), QStringList({QStringLiteral("="), QStringLiteral("=")}));
    obj.Grow(1);
    QCOMPARE(obj.GetCount(), 3);
    obj.SetSize(0);
    QVERIFY(obj.IsEmpty());
}

QTEST_GUILESS_MAIN(tst_ZrXmlObj)
#include "tst_ZrXmlObj.moc"
