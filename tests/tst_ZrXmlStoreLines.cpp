#include "XmlChecks.h"
#include "ZrUtil/ZrXmlStore.h"

namespace {

QStringList List(std::initializer_list<const char*> lines)
{
    QStringList list;
    for (const char* line : lines)
        list.append(QString::fromUtf8(line));
    return list;
}

/// What a store holds after loading \p bytes, which must stay as they are.
QStringList Loaded(QByteArray bytes)
{
    const QByteArray former = bytes;
    ZrXmlStore store(false);
    const DebugLines lines;
    if (!store.Load(bytes))
        return List({"(not loaded)"});
    if (bytes != former)
        return List({"(bytes changed)"});
    if (!lines.Get().isEmpty())
        return List({"(messages)"});
    return Contents(store);
}

QByteArray Saved(ZrXmlStore& store)
{
    QByteArray bytes;
    store.Save(bytes);
    return bytes;
}

const QByteArray objectOpen = "<SET>=S\n<OBJ>=O=T\n";
const QStringList emptyObject = List({"set S", "object O of T"});

} // namespace

class tst_ZrXmlStoreLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void savedBytes();
    void savedEmptyStore();
    void emptyObjectsAreNotWritten();
    void saveReplacesTheBytes();
    void conversionsInTextsAreWrittenAsTheyStand();
    void textsAreUtf8();
    void noOtherEncodingIsGuessed();
    void loadedLines_data();
    void loadedLines();
    void linesInObjects_data();
    void linesInObjects();
    void lineEnds();
    void newlineInATextStartsALine();
    void loadAddsToTheStore();
    void emptyTextsAreKept();
    void longTextsAreKept();
    void roundTrip();
    void bytesCutAnywhere();
    void anyBytes();
};

void tst_ZrXmlStoreLines::savedBytes()
{
    ZrXmlStore store(true);
    ZrXmlSet* first = store.AddSet(QStringLiteral("First set"));
    ZrXmlObj* obj = first->AddObj(QStringLiteral("Obj 1"), QStringLiteral("Type 1"));
    obj->Add(QStringLiteral("Key"), QStringLiteral("a value"));
    obj->Data("line %d", 1);
    obj->Add(QStringLiteral("Late"), QStringLiteral("\"=<>"));
    obj->Data("line %d", 2);
    first->AddObj(QStringLiteral("Obj 2"), QString())->Data("only data");
    store.AddSet(QStringLiteral("Empty set"));
    QCOMPARE(Saved(store),
        QByteArray("<SET>=First set\n"
                   "<OBJ>=Obj 1=Type 1\n"
                   "Key=a value\n"
                   "Late=\"=<>\n"
                   "<DATA>=line 1\n"
                   "<DATA>=line 2\n"
                   "<OBJ>=Obj 2=\n"
                   "<DATA>=only data\n"
                   "<SET>=Empty set\n"));
}

void tst_ZrXmlStoreLines::savedEmptyStore()
{
    ZrXmlStore store(true);
    const DebugLines lines;
    QCOMPARE(Saved(store), QByteArray());
    QCOMPARE(lines.Get(), QStringList());
}

void tst_ZrXmlStoreLines::emptyObjectsAreNotWritten()
{
    ZrXmlStore store(true);
    ZrXmlSet* set = store.AddSet(QStringLiteral("S"));
    set->AddObj(QStringLiteral("Empty"), QStringLiteral("T"));
    set->AddObj(QStringLiteral("O"), QStringLiteral("T"))->Add(QStringLiteral("K"), QStringLiteral("v"));
    const QByteArray bytes = Saved(store);
    QCOMPARE(bytes, objectOpen + "K=v\n");
    QCOMPARE(Loaded(bytes), emptyObject + List({"item K=v"}));
}

void tst_ZrXmlStoreLines::saveReplacesTheBytes()
{
    ZrXmlStore store(true);
    store.AddSet(QStringLiteral("S"));
    QByteArray bytes(1000, 'x');
    const QByteArray shared = bytes;
    store.Save(bytes);
    QCOMPARE(bytes, QByteArray("<SET>=S\n"));
    QCOMPARE(shared, QByteArray(1000, 'x'));
    store.RemoveAll();
    store.Save(bytes);
    QCOMPARE(bytes, QByteArray());
}

void tst_ZrXmlStoreLines::conversionsInTextsAreWrittenAsTheyStand()
{
    ZrXmlStore store(true);
    const QString text = QStringLiteral("%n%s%1000000d%%");
    ZrXmlObj* obj = store.AddSet(text)->AddObj(text, text);
    obj->Add(text, text);
    obj->data.AddTail(new QString(text));
    const QByteArray bytes = Saved(store);
    const QByteArray plain = text.toLatin1();
    QCOMPARE(bytes,
        "<SET>=" + plain + "\n<OBJ>=" + plain + "=" + plain + "\n" + plain + "=" + plain + "\n<DATA>=" + plain
            + "\n");
    QCOMPARE(Loaded(bytes), Contents(store));
}

void tst_ZrXmlStoreLines::textsAreUtf8()
{
    // u with diaeresis, euro sign, a fish beyond the BMP, a zero character.
    const QString text = QString::fromUtf8("\xC3\xBC\xE2\x82\xAC\xF0\x9F\x90\x9F") + QChar(0);
    ZrXmlStore store(true);
    store.AddSet(text)->AddObj(text, text)->Add(text, text);
    const QByteArray bytes = Saved(store);
    const QByteArray utf8("\xC3\xBC\xE2\x82\xAC\xF0\x9F\x90\x9F\0", 10);
    QCOMPARE(bytes, "<SET>=" + utf8 + "\n<OBJ>=" + utf8 + "=" + utf8 + "\n" + utf8 + "=" + utf8 + "\n");
    QCOMPARE(Loaded(bytes), Contents(store));
}

void tst_ZrXmlStoreLines::noOtherEncodingIsGuessed()
{
    // The bytes "FF FE" open a text of UTF-16; as UTF-8 they are two wrong characters of an ordinary line.
    QCOMPARE(Loaded("\xFF\xFE\n" + objectOpen + "K=v\n"), emptyObject + List({"item K=v"}));
    QCOMPARE(Loaded(objectOpen + "K=\xFC\n"), emptyObject + List({"item K=\xEF\xBF\xBD"}));
    // The mark with which some editors begin a UTF-8 text is no part of it.
    QCOMPARE(Loaded("\xEF\xBB\xBF" + objectOpen + "K=v\n"), emptyObject + List({"item K=v"}));
}

void tst_ZrXmlStoreLines::loadedLines_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("contents");
    const auto row = [](const char* bytes, std::initializer_list<const char*> contents) {
        QTest::newRow(bytes) << QByteArray(bytes) << List(contents);
    };
    row("", {});
    row("\n\n\n", {});
    row("=", {});
    row("K=v\n", {});
    row("<DATA>=d\n", {});
    row("<OBJ>=O=T\nK=v\n<DATA>=d\n", {});
    row("<SET>=S", {"set S"});
    row("<SET>=S\n", {"set S"});
    row("<SET>=S=T\n", {"set S=T"});
    row("<SET>=\n", {"set "});
    row("<SET>\n", {});
    row("<SET>\n<SET>=S\n", {"set S"});
    row(" <SET>=S\n", {});
    row("<SET> =S\n", {});
    row("<set>=S\n", {});
    row("<SET>=S\nK=v\n<DATA>=d\n", {"set S"});
    row("<SET>=S\n<OBJ>\nK=v\n", {"set S"});
    row("<SET>=S\n<OBJ>=O\nK=v\n", {"set S"});
    row("<SET>=S\n<OBJ>=O=T\n", {"set S", "object O of T"});
    row("<SET>=S\n<OBJ>=O=\n", {"set S", "object O of "});
    row("<SET>=S\n<OBJ>==T\n", {"set S", "object  of T"});
    row("<SET>=S\n<OBJ>=O=T=U=\n", {"set S", "object O of T=U="});
    row("<SET>=A\n<SET>=B\n<SET>=A\n<OBJ>=O=T\n", {"set A", "object O of T", "set B"});
    row("<SET>=S\n<OBJ>=O=T\nK=1\n<OBJ>=P=T\nK=2\n<OBJ>=O=U\nK=3\n",
        {"set S", "object O of T", "item K=1", "item K=3", "object P of T", "item K=2"});
    // A new set leaves no current object, also when it is a known one.
    row("<SET>=S\n<OBJ>=O=T\n<SET>=S\nK=v\n<DATA>=d\n", {"set S", "object O of T"});
    row("<SET>=S\n<OBJ>=O=T\n<SET>=Z\nK=v\n<DATA>=d\n", {"set S", "object O of T", "set Z"});
}

void tst_ZrXmlStoreLines::loadedLines()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, contents);
    QCOMPARE(Loaded(bytes), contents);
}

void tst_ZrXmlStoreLines::linesInObjects_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("things");
    const auto row = [](const char* line, std::initializer_list<const char*> things) {
        QTest::newRow(line) << QByteArray(line) << List(things);
    };
    row("K=v", {"item K=v", "item last=1"});
    row("K=", {"item K=", "item last=1"});
    row("K=a=b==c", {"item K=a=b==c", "item last=1"});
    row(" K = v ", {"item  K = v ", "item last=1"});
    row("=v", {"item =v", "item last=1"});
    row("=", {"item =", "item last=1"});
    row("K", {"item last=1"});
    row("", {"item last=1"});
    row("   ", {"item last=1"});
    row("<DATA>=d", {"item last=1", "data d"});
    row("<DATA>=", {"item last=1", "data "});
    row("<DATA>=a=b=", {"item last=1", "data a=b="});
    row("<DATA>", {"item last=1"});
    row("<data>=d", {"item <data>=d", "item last=1"});
    row("<OTHER>=x", {"item <OTHER>=x", "item last=1"});
    row("<SET>", {"item last=1"});
    row("<OBJ>", {"item last=1"});
    row("<OBJ>=P", {"item last=1"});
}

void tst_ZrXmlStoreLines::linesInObjects()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, things);
    QCOMPARE(Loaded(objectOpen + line + "\nlast=1\n"), emptyObject + things);
}

void tst_ZrXmlStoreLines::lineEnds()
{
    const QStringList expected = emptyObject + List({"item K=v", "data d"});
    QCOMPARE(Loaded("<SET>=S\n<OBJ>=O=T\nK=v\n<DATA>=d"), expected);
    QCOMPARE(Loaded("<SET>=S\r\n<OBJ>=O=T\r\nK=v\r\n<DATA>=d\r\n"), expected);
}

void tst_ZrXmlStoreLines::newlineInATextStartsALine()
{
    ZrXmlStore out(true);
    out.AddSet(QStringLiteral("S"))
        ->AddObj(QStringLiteral("O"), QStringLiteral("T"))
        ->Add(QStringLiteral("K"), QStringLiteral("v\n<SET>=Z"));
    QCOMPARE(Loaded(Saved(out)), emptyObject + List({"item K=v", "set Z"}));
}

void tst_ZrXmlStoreLines::loadAddsToTheStore()
{
    QByteArray bytes = objectOpen + "K=v\n<DATA>=d\n";
    ZrXmlStore store(true);
    store.AddSet(QStringLiteral("A"));
    QVERIFY(store.Load(bytes));
    QVERIFY(store.Load(bytes));
    QCOMPARE(
        Contents(store), List({"set A"}) + emptyObject + List({"item K=v", "item K=v", "data d", "data d"}));
}

void tst_ZrXmlStoreLines::emptyTextsAreKept()
{
    ZrXmlStore out(true);
    ZrXmlObj* obj = out.AddSet(QString())->AddObj(QString(), QString());
    obj->Add(QString(), QString());
    obj->Data("%s", "");
    QCOMPARE(Loaded(Saved(out)), Contents(out));
}

void tst_ZrXmlStoreLines::longTextsAreKept()
{
    ZrXmlStore out(true);
    const QString text(1000000, QLatin1Char('x'));
    ZrXmlObj* obj = out.AddSet(text)->AddObj(text, text);
    obj->Add(text, text);
    obj->data.AddTail(new QString(text));
    QCOMPARE(Loaded(Saved(out)), Contents(out));
}

void tst_ZrXmlStoreLines::roundTrip()
{
    ZrXmlStore out(true);
    for (const char* set : {"Route", "Markers", "a = b"}) {
        for (const char* name : {"Wpt 0", "Wpt 1", ""}) {
            ZrXmlObj* obj = out.AddSet(Latin1(set))->AddObj(Latin1(name), QStringLiteral("Way=point"));
            obj->Add(QStringLiteral("Lat"), "%.10f", 50.25);
            obj->Add(QStringLiteral("Name"), QStringLiteral("1 = 2 \"=\""));
            obj->Add(QStringLiteral("Lat"), QStringLiteral("again"));
            obj->Data("%s", "=data=");
        }
    }
    QByteArray bytes = Saved(out);
    ZrXmlStore in(false);
    QVERIFY(in.Load(bytes));
    QCOMPARE(Contents(in), Contents(out));
    QCOMPARE(Saved(in), bytes);
    for (ZrListPos* setPos = in.GetHeadPos(); setPos;) {
        const ZrXmlSet* set = in.GetNext(setPos);
        QCOMPARE(set->store, &in);
        for (ZrListPos* pos = set->GetHeadPos(); pos;)
            QCOMPARE(static_cast<const ZrXmlSet*>(set->GetNext(pos)->set), set);
    }
}

void tst_ZrXmlStoreLines::bytesCutAnywhere()
{
    const QByteArray bytes = objectOpen + "Key=value\nOther=1\n<DATA>=d\n<SET>=Z\n";
    const QStringList whole = Loaded(bytes);
    QCOMPARE(whole.size(), 6);
    for (int size = 0; size < bytes.size(); ++size) {
        const QStringList part = Loaded(bytes.left(size));
        // All is as in the whole but the last thing, whose text may be cut.
        QVERIFY(part.size() <= whole.size());
        QCOMPARE(part.mid(0, part.size() - 1), whole.mid(0, qMax(0, part.size() - 1)));
    }
}

void tst_ZrXmlStoreLines::anyBytes()
{
    const QByteArray bytes = objectOpen + "Key=value\n<DATA>=d\n";
    for (int i = 0; i < bytes.size(); ++i) {
        for (int byte = 0; byte < 256; ++byte) {
            QByteArray damaged = bytes;
            damaged[i] = char(byte);
            const QStringList contents = Loaded(damaged);
            QVERIFY(contents.size() <= 5);
            QVERIFY(!contents.value(0).startsWith(QLatin1Char('(')));
        }
    }
}

QTEST_GUILESS_MAIN(tst_ZrXmlStoreLines)
#include "tst_ZrXmlStoreLines.moc"
