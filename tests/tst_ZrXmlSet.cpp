#include "XmlChecks.h"
#include "ZrUtil/ZrXmlSet.h"

#include <type_traits>

static_assert(std::is_base_of_v<ZrLstMgd<ZrXmlObj>, ZrXmlSet>);
static_assert(std::is_same_v<decltype(ZrXmlSet::store), ZrXmlStore*>);

namespace {

const QString nameA = QStringLiteral("A");
const QString nameB = QStringLiteral("B");
const QString typeT = QStringLiteral("T");
const QString typeU = QStringLiteral("U");

} // namespace

class tst_ZrXmlSet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void construction();
    void direction();
    void addObjAppends();
    void addObjFindsByName();
    void getObj();
    void getObjGivesTheFirst();
    void objWhileStoring();
    void objWhileLoading();
    void objOfDetachedSet();
};

void tst_ZrXmlSet::construction()
{
    const ZrXmlSet empty;
    QVERIFY(empty.name.isEmpty());
    QVERIFY(!empty.store);
    QVERIFY(empty.IsEmpty());

    ZrXmlStore store(true);
    const ZrXmlSet set(nameA, &store);
    QCOMPARE(set.name, nameA);
    QCOMPARE(set.store, &store);
    // The owner is only named here: AddSet is what appends a set to it.
    QVERIFY(store.IsEmpty());
}

void tst_ZrXmlSet::direction()
{
    ZrXmlSet set;
    QVERIFY(set.IsStoring());
    QVERIFY(!set.IsLoading());
    ZrXmlStore loading(false);
    set.store = &loading;
    QVERIFY(!set.IsStoring());
    QVERIFY(set.IsLoading());
    ZrXmlStore storing(true);
    set.store = &storing;
    QVERIFY(set.IsStoring());
    QVERIFY(!set.IsLoading());
}

void tst_ZrXmlSet::addObjAppends()
{
    for (const bool storing : {true, false}) {
        ZrXmlStore store(storing);
        ZrXmlSet set(QStringLiteral("S"), &store);
        ZrXmlObj* a = set.AddObj(nameA, typeT);
        ZrXmlObj* b = set.AddObj(nameB, typeU);
        QCOMPARE(a->name, nameA);
        QCOMPARE(a->type, typeT);
        QCOMPARE(a->set, &set);
        QVERIFY(a->IsEmpty());
        QCOMPARE(b->type, typeU);
        QCOMPARE(set.GetCount(), 2);
        QCOMPARE(set.GetHead(), a);
        QCOMPARE(set.GetTail(), b);
    }
}

void tst_ZrXmlSet::addObjFindsByName()
{
    ZrXmlSet set;
    ZrXmlObj* a = set.AddObj(nameA, typeT);
    QCOMPARE(set.AddObj(nameA, typeU), a);
    QCOMPARE(a->type, typeT);
    QCOMPARE(set.GetCount(), 1);
    // Names are compared exactly.
    QVERIFY(set.AddObj(QStringLiteral("a"), typeT) != a);
    QCOMPARE(set.GetCount(), 2);
}

void tst_ZrXmlSet::getObj()
{
    ZrXmlSet set;
    QVERIFY(!set.GetObj(nameA));
    ZrXmlObj* a = set.AddObj(nameA, typeT);
    ZrXmlObj* unnamed = set.AddObj(QString(), QString());
    QCOMPARE(set.GetObj(nameA), a);
    QCOMPARE(set.GetObj(QString()), unnamed);
    QVERIFY(!set.GetObj(nameB));
    QVERIFY(!set.GetObj(QStringLiteral("A ")));
    QCOMPARE(set.GetCount(), 2);
}

void tst_ZrXmlSet::getObjGivesTheFirst()
{
    ZrXmlSet set;
    auto* first = new ZrXmlObj(nameA, typeT, &set);
    set.AddTail(first);
    set.AddTail(new ZrXmlObj(nameA, typeU, &set));
    QCOMPARE(set.GetObj(nameA), first);
    QCOMPARE(set.AddObj(nameA, typeU), first);
}

void tst_ZrXmlSet::objWhileStoring()
{
    ZrXmlStore store(true);
    ZrXmlSet set(QStringLiteral("S"), &store);
    ZrXmlObj* a = set.Obj(nameA, typeT);
    QVERIFY(a);
    QCOMPARE(a->type, typeT);
    QCOMPARE(set.Obj(nameA, typeU), a);
    QCOMPARE(set.GetCount(), 1);
}

void tst_ZrXmlSet::objWhileLoading()
{
    ZrXmlStore store(false);
    ZrXmlSet set(QStringLiteral("S"), &store);
    QVERIFY(!set.Obj(nameA, typeT));
    QVERIFY(set.IsEmpty());
    ZrXmlObj* a = set.AddObj(nameA, typeT);
    // The type is not compared.
    QCOMPARE(set.Obj(nameA, typeU), a);
    QCOMPARE(a->type, typeT);
}

void tst_ZrXmlSet::objOfDetachedSet()
{
    ZrXmlSet set;
    ZrXmlObj* a = set.Obj(nameA, typeT);
    QVERIFY(a);
    QVERIFY(a->IsStoring());
    QCOMPARE(set.Obj(nameA, typeT), a);
}

QTEST_GUILESS_MAIN(tst_ZrXmlSet)
#include "tst_ZrXmlSet.moc"
