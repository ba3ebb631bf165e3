#include "XmlChecks.h"
#include "ZrUtil/ZrXmlStore.h"

#include <type_traits>

static_assert(std::is_base_of_v<ZrLstMgd<ZrXmlSet>, ZrXmlStore>);
static_assert(std::is_same_v<decltype(ZrXmlStore::storing), bool>);
static_assert(!std::is_copy_constructible_v<ZrXmlStore> && !std::is_copy_assignable_v<ZrXmlStore>);

namespace {

/// What an application keeps: one function for both directions.
struct Camera
{
    QString name;
    double pan = 0.0;
    unsigned int mask = 0;
    bool on = false;

    void Sync(ZrXmlObj& obj)
    {
        obj.Item(QStringLiteral("Name"), name);
        obj.Item(QStringLiteral("Pan"), pan, 3);
        obj.Item(QStringLiteral("Mask"), mask, true);
        obj.Item(QStringLiteral("On"), on);
    }
};

} // namespace

class tst_ZrXmlStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void direction();
    void addSetInBothDirections();
    void setWhileStoring();
    void setWhileLoading();
    void oneFunctionForBothDirections();
    void loadedLinesSavedAsFile();
    void bothFormsUnderDecimalComma();
};

void tst_ZrXmlStore::direction()
{
    const ZrXmlStore storing(true);
    QVERIFY(storing.storing);
    QVERIFY(storing.IsStoring());
    QVERIFY(!storing.IsLoading());
    const ZrXmlStore loading(false);
    QVERIFY(!loading.storing);
    QVERIFY(!loading.IsStoring());
    QVERIFY(loading.IsLoading());
}

void tst_ZrXmlStore::addSetInBothDirections()
{
    for (const bool storing : {true, false}) {
        ZrXmlStore store(storing);
        ZrXmlSet* b = store.AddSet(QStringLiteral("B"));
        ZrXmlSet* a = store.AddSet(QStringLiteral("A"));
        ZrXmlSet* unnamed = store.AddSet(QString());
        QCOMPARE(b->name, QStringLiteral("B"));
        QCOMPARE(b->store, &store);
        QCOMPARE(b->IsStoring(), storing);
        QCOMPARE(store.AddSet(QStringLiteral("B")), b);
        QCOMPARE(store.AddSet(QString()), unnamed);
        QVERIFY(store.AddSet(QStringLiteral("b")) != b);
        QCOMPARE(store.GetCount(), 4);
        QCOMPARE(store.GetIndex(b), 0);
        QCOMPARE(store.GetIndex(a), 1);
    }
}

void tst_ZrXmlStore::setWhileStoring()
{
    ZrXmlStore store(true);
    ZrXmlSet* a = store.Set(QStringLiteral("A"));
    QVERIFY(a);
    QCOMPARE(a->store, &store);
    QCOMPARE(store.Set(QStringLiteral("A")), a);
    QCOMPARE(store.GetCount(), 1);
}

void tst_ZrXmlStore::setWhileLoading()
{
    ZrXmlStore store(false);
    QVERIFY(!store.Set(QStringLiteral("A")));
    QVERIFY(store.IsEmpty());
    ZrXmlSet* a = store.AddSet(QStringLiteral("A"));
    QCOMPARE(store.Set(QStringLiteral("A")), a);
    QVERIFY(!store.Set(QStringLiteral("B")));
    QCOMPARE(store.GetCount(), 1);
}

void tst_ZrXmlStore::oneFunctionForBothDirections()
{
    const QString set = QStringLiteral("Cameras");
    const QString obj = QStringLiteral("Front");
    const QString type = QStringLiteral("Camera");
    Camera written;
    written.name = QStringLiteral("Bow camera");
    written.pan = -12.5;
    written.mask = 0xF0;
    written.on = true;
    ZrXmlStore out(true);
    written.Sync(*out.Set(set)->Obj(obj, type));
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("settings.xml"));
    QByteArray bytes;
    QVERIFY(out.Save(path));
    out.Save(bytes);

    for (const bool asFile : {true, false}) {
        ZrXmlStore in(false);
        QVERIFY(asFile ? in.Load(path) : in.Load(bytes));
        QCOMPARE(Contents(in), Contents(out));
        Camera read;
        read.Sync(*in.Set(set)->Obj(obj, type));
        QCOMPARE(read.name, written.name);
        QCOMPARE(read.pan, written.pan);
        QCOMPARE(read.mask, written.mask);
        QCOMPARE(read.on, written.on);
        QVERIFY(!in.Set(QStringLiteral("Lights")));
        QVERIFY(!in.Set(set)->Obj(QStringLiteral("Aft"), type));
        QCOMPARE(Contents(in), Contents(out));
    }
}

void tst_ZrXmlStore::loadedLinesSavedAsFile()
{
    QByteArray bytes("<SET>=Route\n<OBJ>=Wpt 0=Waypoint\nLat=50.5\n<DATA>=free text\n");
    ZrXmlStore store(false);
    QVERIFY(store.Load(bytes));
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("plan.xml"));
    QVERIFY(store.Save(path));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    QCOMPARE(text.mid(text.indexOf("\t<Settings")),
        QByteArray("\t<Settings name=\"Route\">\n"
                   "\t\t<Object name=\"Wpt 0\" type=\"Waypoint\">\n"
                   "\t\t\t<Lat val=\"50.5\"/>\n"
                   "\t\t\t<Data>free text</Data>\n"
                   "\t\t</Object>\n"
                   "\t</Settings>\n"
                   "</XmlStore>\n"));
}

void tst_ZrXmlStore::bothFormsUnderDecimalComma()
{
    const CommaLocale locale;
    QVERIFY2(CommaLocale::HasComma(), "no locale with a decimal comma could be set");
    Camera camera;
    camera.pan = 1.5;
    ZrXmlStore out(true);
    camera.Sync(*out.Set(QStringLiteral("S"))->Obj(QStringLiteral("O"), QStringLiteral("T")));
    QByteArray bytes;
    out.Save(bytes);
    QCOMPARE(bytes, QByteArray("<SET>=S\n<OBJ>=O=T\nName=\nPan=1.500\nMask=0x00000000\nOn=false\n"));
    ZrXmlStore in(false);
    QVERIFY(in.Load(bytes));
    Camera read;
    read.Sync(*in.Set(QStringLiteral("S"))->Obj(QStringLiteral("O"), QStringLiteral("T")));
    QVERIFY(read.pan == 1.5);
}

QTEST_GUILESS_MAIN(tst_ZrXmlStore)
#include "tst_ZrXmlStore.moc"
