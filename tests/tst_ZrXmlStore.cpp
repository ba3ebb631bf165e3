#include "XmlChecks.h"
#include "ZrUtil/ZrConsole.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QColor>
#include <QMatrix4x4>
#include <QVector3D>

#include <atomic>
#include <thread>
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

/// A variable of every type that an item can have.
struct Everything
{
    char character = 0;
    unsigned char byte = 0;
    unsigned char hexByte = 0;
    short small = 0;
    unsigned short word = 0;
    unsigned short hexWord = 0;
    int number = 0;
    unsigned int mask = 0;
    unsigned int hexMask = 0;
    float single = 0;
    float rounded = 0;
    double real = 0;
    double unstored = 0;
    QVector3D vector;
    bool on = false;
    bool off = true;
    QString text;
    QChar letter;
    QColor colour;
    QMatrix4x4 matrix;
    void* pointer = nullptr;

    void Sync(ZrXmlObj& obj)
    {
        obj.Item(QStringLiteral("Character"), character);
        obj.Item(QStringLiteral("Byte"), byte, false);
        obj.Item(QStringLiteral("HexByte"), hexByte, true);
        obj.Item(QStringLiteral("Small"), small);
        obj.Item(QStringLiteral("Word"), word, false);
        obj.Item(QStringLiteral("HexWord"), hexWord, true);
        obj.Item(QStringLiteral("Number"), number);
        obj.Item(QStringLiteral("Mask"), mask, false);
        obj.Item(QStringLiteral("HexMask"), hexMask, true);
        obj.Item(QStringLiteral("Single"), single, -1);
        obj.Item(QStringLiteral("Rounded"), rounded, 1);
        obj.Item(QStringLiteral("Real"), real, 10);
        obj.Item(QStringLiteral("Unstored"), unstored, -2);
        obj.Item(QStringLiteral("Vector"), vector, 2);
        obj.Item(QStringLiteral("On"), on);
        obj.Item(QStringLiteral("Off"), off);
        obj.Item(QStringLiteral("Text"), text);
        obj.Item(QStringLiteral("Letter"), letter);
        obj.Item(QStringLiteral("Colour"), colour);
        obj.Item(QStringLiteral("Matrix"), matrix, -1);
        obj.Item(QStringLiteral("Pointer"), pointer, [](const QString&) -> void* { return nullptr; });
    }
};

/// Counts in \a gone how many of its kind were deleted.
template <class Base> class Counted : public Base
{
public:
    explicit Counted(int& gone)
        : m_gone(gone)
    {
    }

    ~Counted() override { ++m_gone; }

    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

private:
    int& m_gone;
};

} // namespace

class tst_ZrXmlStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void direction();
    void destructorDeletesAllSets();
    void addSetInBothDirections();
    void setWhileStoring();
    void setWhileLoading();
    void oneFunctionForBothDirections();
    void everyTypeThroughBothForms();
    void loadedLinesSavedAsFile();
    void bothFormsUnderDecimalComma();
    void resultsWithoutDebugOutput();
    void storesOfTwoThreads();
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

void tst_ZrXmlStore::destructorDeletesAllSets()
{
    int sets = 0;
    int objects = 0;
    {
        ZrXmlStore store(true);
        for (int i = 0; i < 2; ++i) {
            auto* set = new Counted<ZrXmlSet>(sets);
            store.AddTail(set);
            for (int k = 0; k < 3; ++k)
                set->AddTail(new Counted<ZrXmlObj>(objects));
        }
        QCOMPARE(sets, 0);
        QCOMPARE(objects, 0);
    }
    QCOMPARE(sets, 2);
    QCOMPARE(objects, 6);
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

void tst_ZrXmlStore::everyTypeThroughBothForms()
{
    Everything written;
    written.character = char(0xE9);
    written.byte = 255;
    written.hexByte = 10;
    written.small = -32768;
    written.word = 65535;
    written.hexWord = 0xBEE;
    written.number = -2147483647 - 1;
    written.mask = 4294967295U;
    written.hexMask = 0xABC;
    written.single = 0.25F;
    written.rounded = 2.75F;
    written.real = -50.0123456789;
    written.unstored = 1.5;
    written.vector = QVector3D(1.5F, -2, 1000000);
    written.on = true;
    written.off = false;
    written.text = QStringLiteral("12 m = 1,2 dam");
    written.letter = QLatin1Char('%');
    written.colour = QColor(1, 2, 3, 4);
    written.matrix.translate(1, 2, 3);
    written.pointer = &written;
    ZrXmlStore out(true);
    written.Sync(*out.Set(QStringLiteral("S"))->Obj(QStringLiteral("O"), QStringLiteral("T")));
    QByteArray bytes;
    out.Save(bytes);
    QCOMPARE(bytes,
        QByteArray("<SET>=S\n<OBJ>=O=T\nCharacter=\xC3\xA9\nByte=255\nHexByte=0x0a\nSmall=-32768\n"
                   "Word=65535\nHexWord=0x0bee\nNumber=-2147483648\nMask=-1\nHexMask=0x00000abc\n"
                   "Single=0.25\nRounded=2.8\nReal=-50.0123456789\nVector=1.50, -2.00, 1000000.00\n"
                   "On=true\nOff=false\nText=12 m = 1,2 dam\nLetter=%\nColour=#010203\n"));
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("settings.xml"));
    QVERIFY(out.Save(path));

    for (const bool asFile : {true, false}) {
        ZrXmlStore in(false);
        QVERIFY(asFile ? in.Load(path) : in.Load(bytes));
        Everything read;
        read.Sync(*in.Set(QStringLiteral("S"))->Obj(QStringLiteral("O"), QStringLiteral("T")));
        QCOMPARE(read.character, written.character);
        QCOMPARE(read.byte, written.byte);
        QCOMPARE(read.hexByte, written.hexByte);
        QCOMPARE(read.small, written.small);
        QCOMPARE(read.word, written.word);
        QCOMPARE(read.hexWord, written.hexWord);
        QCOMPARE(read.number, written.number);
        QCOMPARE(read.mask, written.mask);
        QCOMPARE(read.hexMask, written.hexMask);
        QVERIFY(read.single == written.single);
        QVERIFY(read.rounded == 2.8F);
        QVERIFY(read.real == written.real);
        QVERIFY(read.unstored == 0.0);
        QVERIFY(read.vector.x() == 1.5F && read.vector.y() == -2.0F && read.vector.z() == 1000000.0F);
        QVERIFY(read.on && !read.off);
        QCOMPARE(read.text, written.text);
        QCOMPARE(read.letter, written.letter);
        QCOMPARE(read.colour, QColor(1, 2, 3, 255));
        QVERIFY(read.matrix.isIdentity());
        QVERIFY(!read.pointer);
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

void tst_ZrXmlStore::resultsWithoutDebugOutput()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("settings.xml"));
    const DebugLines lines;
    ZrConsole::debug = false;
    ZrXmlStore store(true);
    const bool results[] = {store.Load(path), store.Save(dir.path()), store.Save(path), store.Load(path)};
    ZrConsole::debug = true;
    QVERIFY(!results[0] && !results[1] && results[2] && results[3]);
    QCOMPARE(lines.Get(), QStringList());
}

void tst_ZrXmlStore::storesOfTwoThreads()
{
    const QTemporaryDir dir;
    std::atomic<int> wrong{0};
    const auto work = [&wrong, &dir](int number) {
        const QString path = dir.filePath(QString::number(number));
        for (int i = 0; i < 100; ++i) {
            Camera camera;
            camera.name = QString::number(number);
            camera.pan = i + 0.125;
            ZrXmlStore out(true);
            camera.Sync(*out.Set(QStringLiteral("S"))->Obj(QStringLiteral("O"), QStringLiteral("T")));
            QByteArray bytes;
            out.Save(bytes);
            ZrXmlStore in(false);
            Camera read;
            if (!out.Save(path) || !(i % 2 ? in.Load(path) : in.Load(bytes)))
                ++wrong;
            else
                read.Sync(*in.Set(QStringLiteral("S"))->Obj(QStringLiteral("O"), QStringLiteral("T")));
            if (read.name != camera.name || read.pan != camera.pan)
                ++wrong;
        }
    };
    ZrConsole::debug = false;
    std::thread first(work, 1);
    std::thread second(work, 2);
    first.join();
    second.join();
    ZrConsole::debug = true;
    QCOMPARE(wrong.load(), 0);
}

QTEST_GUILESS_MAIN(tst_ZrXmlStore)
#include "tst_ZrXmlStore.moc"
