// ZrLogEvt: the value, its serial form byte by byte, damaged forms, events in the owning list.

#include "ZrDatasetFixture.h"
#include "ZrUtil/ZrLogEvt.h"

#include <QDataStream>

#include <type_traits>

static_assert(
    std::is_same_v<ZrLogEvt::eEvtSrc, eEvtSrc>, "the class's name of the enumeration is the global one");
static_assert(std::is_same_v<std::underlying_type_t<eEvtSrc>, int>, "stored as a 32-bit integer");
static_assert(std::is_convertible_v<eEvtSrc, int>, "unscoped");
static_assert(
    std::has_virtual_destructor_v<
        ZrLogEvt> && std::is_copy_constructible_v<ZrLogEvt> && std::is_copy_assignable_v<ZrLogEvt> && std::is_default_constructible_v<ZrLogEvt>,
    "a polymorphic value");
static_assert(
    std::
            is_same_v<
                decltype(ZrLogEvt::code), i16> && std::is_same_v<decltype(ZrLogEvt::time), double> && std::is_same_v<decltype(ZrLogEvt::src), eEvtSrc> && std::is_same_v<decltype(ZrLogEvt::text), QString> && std::is_same_v<decltype(ZrLogEvt::detail), QString> && std::is_same_v<decltype(ZrLogEvt::uid), QUuid> && std::is_same_v<decltype(ZrLogEvt::rec), i32>,
    "types of the members");
// Events of applications override these as they stand.
static_assert(std::is_same_v<decltype(&ZrLogEvt::Load), void (ZrLogEvt::*)(QByteArray&)>);
static_assert(std::is_same_v<decltype(&ZrLogEvt::Save), void (ZrLogEvt::*)(QByteArray&)>);
static_assert(std::is_same_v<decltype(&ZrLogEvt::WriteTo), void (ZrLogEvt::*)(QDataStream&)>);
static_assert(std::is_same_v<decltype(&ZrLogEvt::ReadFrom), void (ZrLogEvt::*)(QDataStream&)>);
static_assert(std::is_constructible_v<ZrLogEvt, double, eEvtSrc, QString>);

namespace {

const QUuid sampleUid(QStringLiteral("{12345678-9abc-def0-0123-456789abcdef}"));

ZrLogEvt SampleEvent()
{
    ZrLogEvt evt(1.5, esUser, QStringLiteral("A\u00e9"));
    evt.code = 0x0102;
    evt.uid = sampleUid;
    evt.rec = 77;
    return evt;
}

/// What `SampleEvent` looks like in a file.
QByteArray SampleBytes()
{
    return FromHex("01 02                      # code\n"
                   "3f f8 00 00 00 00 00 00    # time 1.5\n"
                   "00 00 00 02                # src\n"
                   "00 00 00 04 00 41 00 e9    # text\n"
                   "ff ff ff ff                # detail, null\n"
                   "12 34 56 78 9a bc de f0 01 23 45 67 89 ab cd ef    # uid");
}

bool SameStored(const ZrLogEvt& a, const ZrLogEvt& b)
{
    return a.code == b.code && a.time == b.time && a.src == b.src && a.text == b.text && a.detail == b.detail
        && a.uid == b.uid;
}

int living = 0;

/// An event of an application: counts itself and stores itself in another way.
class OwnEvent final : public ZrLogEvt
{
public:
    OwnEvent() { ++living; }

    ~OwnEvent() override { --living; }

    void Load(QByteArray& bytes) override { text = QString::fromLatin1(bytes); }

    void Save(QByteArray& bytes) override { bytes = text.toLatin1(); }

    void WriteTo(QDataStream& stream) override { stream << qint8(5); }

    void ReadFrom(QDataStream& stream) override
    {
        qint8 number = 0;
        stream >> number;
        code = number;
    }
};

} // namespace

class tst_ZrLogEvt : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultEventIsEmpty();
    void constructedFromTimeSourceAndText();
    void copiesAreIndependent();
    void membersAndVirtualsStandInOrder();
    void goldenBytes();
    void emptyAndNullTextsDiffer();
    void roundTrip_data();
    void roundTrip();
    void saveReplacesTheBytes();
    void loadKeepsTheRecordAndTheBytes();
    void streamsAreWrittenAndReadInPlace();
    void truncatedAtEveryOffset();
    void hostileTextLengths_data();
    void hostileTextLengths();
    void anyBytesCanBeLoaded();
    void virtualsAreCalledThroughTheBase();
    void listOwnsItsEvents();
};

void tst_ZrLogEvt::defaultEventIsEmpty()
{
    const ZrLogEvt evt;
    QCOMPARE(evt.code, i16(0));
    QCOMPARE(evt.time, 0.0);
    QCOMPARE(int(evt.src), 0);
    QVERIFY(evt.text.isNull());
    QVERIFY(evt.detail.isNull());
    QVERIFY(evt.uid.isNull());
    QCOMPARE(evt.rec, -1);
}

void tst_ZrLogEvt::constructedFromTimeSourceAndText()
{
    const ZrLogEvt evt(1602049684.592, esSystem, QStringLiteral("start"));
    QCOMPARE(evt.time, 1602049684.592);
    QCOMPARE(evt.src, esSystem);
    QCOMPARE(evt.text, QStringLiteral("start"));
    QCOMPARE(evt.code, i16(0));
    QVERIFY(evt.detail.isNull());
    QVERIFY(evt.uid.isNull());
    QCOMPARE(evt.rec, -1);
}

void tst_ZrLogEvt::copiesAreIndependent()
{
    ZrLogEvt original = SampleEvent();
    const ZrLogEvt copy(original);
    ZrLogEvt assigned;
    assigned = original;
    original.text = QStringLiteral("other");
    original.rec = 3;
    QVERIFY(SameStored(copy, SampleEvent()));
    QVERIFY(SameStored(assigned, SampleEvent()));
    QCOMPARE(copy.rec, 77);
    QCOMPARE(assigned.rec, 77);
}

void tst_ZrLogEvt::membersAndVirtualsStandInOrder()
{
    const ZrLogEvt evt;
    const std::vector<const void*> members{
        &evt.code, &evt.time, &evt.src, &evt.text, &evt.detail, &evt.uid, &evt.rec};
    QVERIFY(std::is_sorted(members.begin(), members.end()));
#if defined(__GNUC__) && defined(__x86_64__)
    // A pointer to a virtual function begins with the offset of its slot, plus 1.
    const auto slotOf = [](auto function) {
        std::ptrdiff_t offset;
        std::memcpy(&offset, &function, sizeof offset);
        return (offset - 1) / std::ptrdiff_t(sizeof(void*));
    };
    // The destructor takes the first two.
    QCOMPARE(slotOf(&ZrLogEvt::Load), std::ptrdiff_t(2));
    QCOMPARE(slotOf(&ZrLogEvt::Save), std::ptrdiff_t(3));
    QCOMPARE(slotOf(&ZrLogEvt::WriteTo), std::ptrdiff_t(4));
    QCOMPARE(slotOf(&ZrLogEvt::ReadFrom), std::ptrdiff_t(5));
#endif
}

void tst_ZrLogEvt::goldenBytes()
{
    QByteArray bytes;
    SampleEvent().Save(bytes);
    QCOMPARE(bytes.toHex(' '), SampleBytes().toHex(' '));

    QByteArray golden = SampleBytes();
    ZrLogEvt evt;
    evt.Load(golden);
    QVERIFY(SameStored(evt, SampleEvent()));
    QVERIFY(evt.detail.isNull());
}

void tst_ZrLogEvt::emptyAndNullTextsDiffer()
{
    ZrLogEvt evt(0.0, esUnknown, QStringLiteral(""));
    QByteArray bytes;
    evt.Save(bytes);
    QCOMPARE(bytes.mid(14, 8).toHex(), QByteArray("00000000ffffffff"));
    evt.text = evt.detail = QStringLiteral("filled");
    evt.Load(bytes);
    QVERIFY(evt.text.isEmpty() && !evt.text.isNull());
    QVERIFY(evt.detail.isNull());
}

void tst_ZrLogEvt::roundTrip_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<double>("time");
    QTest::addColumn<int>("src");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("detail");
    QTest::addColumn<QUuid>("uid");
    QTest::newRow("empty") << 0 << 0.0 << 0 << QString() << QString() << QUuid();
    QTest::newRow("extremes") << -32768 << -1e300 << std::numeric_limits<int>::min() << QStringLiteral("x")
                              << QStringLiteral("y") << sampleUid;
    QTest::newRow("greatest") << 32767 << std::numeric_limits<double>::infinity()
                              << std::numeric_limits<int>::max() << QString(100000, QLatin1Char('t'))
                              << QString() << QUuid();
    QTest::newRow("milliseconds") << 5 << 1602049684.592 << 2 << QStringLiteral("a\nb\tc\"d")
                                  << QString(QChar(0)) << sampleUid;
    QTest::newRow("unicode") << 1 << -0.0 << 1 << QString::fromUtf8("\xf0\x9f\x90\x9f Fl\xc3\xb6\xc3\x9f")
                             << QString(QChar(0xd800)) << sampleUid;
}

void tst_ZrLogEvt::roundTrip()
{
    QFETCH(int, code);
    QFETCH(double, time);
    QFETCH(int, src);
    QFETCH(QString, text);
    QFETCH(QString, detail);
    QFETCH(QUuid, uid);
    ZrLogEvt evt(time, static_cast<eEvtSrc>(src), text);
    evt.code = static_cast<i16>(code);
    evt.detail = detail;
    evt.uid = uid;
    QByteArray bytes;
    evt.Save(bytes);
    QCOMPARE(bytes.size(),
        14 + 4 + 2 * text.size() + 4 + 2 * detail.size() + 16); // fixed fields, two lengths, UTF-16, UUID
    ZrLogEvt loaded;
    loaded.Load(bytes);
    QVERIFY(SameStored(loaded, evt));
}

void tst_ZrLogEvt::saveReplacesTheBytes()
{
    QByteArray bytes(1000, 'x');
    SampleEvent().Save(bytes);
    QCOMPARE(bytes, SampleBytes());
    SampleEvent().Save(bytes);
    QCOMPARE(bytes, SampleBytes());
}

void tst_ZrLogEvt::loadKeepsTheRecordAndTheBytes()
{
    QByteArray bytes = SampleBytes() + "more";
    ZrLogEvt evt;
    evt.rec = 12;
    evt.Load(bytes);
    QVERIFY(SameStored(evt, SampleEvent()));
    QCOMPARE(evt.rec, 12);
    QCOMPARE(bytes, SampleBytes() + "more");
}

void tst_ZrLogEvt::streamsAreWrittenAndReadInPlace()
{
    QByteArray bytes;
    {
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream << quint8(0xaa);
        SampleEvent().WriteTo(stream);
        SampleEvent().WriteTo(stream);
    }
    QCOMPARE(bytes, QByteArray("\xaa") + SampleBytes() + SampleBytes());
    QDataStream stream(bytes);
    quint8 first = 0;
    stream >> first;
    ZrLogEvt a;
    ZrLogEvt b;
    a.ReadFrom(stream);
    b.ReadFrom(stream);
    QVERIFY(SameStored(a, SampleEvent()) && SameStored(b, SampleEvent()));
    QCOMPARE(a.rec, -1);
    QVERIFY(stream.atEnd());
    QCOMPARE(stream.status(), QDataStream::Ok);
    ZrLogEvt c = SampleEvent();
    c.ReadFrom(stream);
    QCOMPARE(stream.status(), QDataStream::ReadPastEnd);
    QVERIFY(SameStored(c, ZrLogEvt()));
}

void tst_ZrLogEvt::truncatedAtEveryOffset()
{
    ZrLogEvt whole = SampleEvent();
    whole.detail = QStringLiteral("xy");
    QByteArray bytes;
    whole.Save(bytes);
    QCOMPARE(bytes.size(), 46);
    for (int cut = 0; cut < bytes.size(); ++cut) {
        QByteArray part = bytes.left(cut);
        ZrLogEvt evt(9.0, esSystem, QStringLiteral("old")); // nothing of it may stay
        evt.code = 9;
        evt.detail = QStringLiteral("old");
        evt.uid = QUuid::createUuid();
        evt.Load(part);
        // Ends of the fields: 2, 10, 14, 22, 30, 46.
        ZrLogEvt expected;
        expected.code = cut >= 2 ? whole.code : i16(0);
        expected.time = cut >= 10 ? whole.time : 0.0;
        expected.src = cut >= 14 ? whole.src : esUnknown;
        expected.text = cut >= 22 ? whole.text : QString();
        expected.detail = cut >= 30 ? whole.detail : QString();
        QVERIFY2(SameStored(evt, expected), QByteArray::number(cut).constData());
    }
}

void tst_ZrLogEvt::hostileTextLengths_data()
{
    QTest::addColumn<QByteArray>("length");
    QTest::addColumn<int>("status");
    QTest::newRow("odd") << QByteArray("00000003") << int(QDataStream::ReadCorruptData);
    QTest::newRow("greatest odd") << QByteArray("fffffffd") << int(QDataStream::ReadCorruptData);
    QTest::newRow("4 GiB - 2") << QByteArray("fffffffe") << int(QDataStream::ReadPastEnd);
    QTest::newRow("2 GiB") << QByteArray("80000000") << int(QDataStream::ReadPastEnd);
    QTest::newRow("two more than there is") << QByteArray("0000001a") << int(QDataStream::ReadPastEnd);
}

void tst_ZrLogEvt::hostileTextLengths()
{
    QFETCH(QByteArray, length);
    QFETCH(int, status);
    // 4 bytes of text, 4 of detail, 16 of UUID stand behind the length of the text.
    QByteArray bytes = Patched(SampleBytes(), 14, QByteArray::fromHex(length));
    QDataStream stream(bytes);
    ZrLogEvt evt = SampleEvent();
    evt.ReadFrom(stream);
    QCOMPARE(int(stream.status()), status);
    QVERIFY(evt.text.isEmpty());
    QCOMPARE(evt.time, 1.5);
}

void tst_ZrLogEvt::anyBytesCanBeLoaded()
{
    quint32 state = 99;
    for (int round = 0; round < 20000; ++round) {
        QByteArray bytes = round % 2 ? SampleBytes() : QByteArray(static_cast<int>(state % 60), '\0');
        for (int changes = 0; changes < 6 && !bytes.isEmpty(); ++changes) {
            state = state * 1664525u + 1013904223u;
            bytes[static_cast<int>((state >> 8) % static_cast<quint32>(bytes.size()))]
                = static_cast<char>(state >> 24);
        }
        ZrLogEvt evt;
        evt.Load(bytes);
        // What was read can be written, and reads the same again.
        QByteArray again;
        evt.Save(again);
        ZrLogEvt second;
        second.Load(again);
        QVERIFY(SameStored(evt, second) || evt.time != evt.time);
    }
}

void tst_ZrLogEvt::virtualsAreCalledThroughTheBase()
{
    std::unique_ptr<ZrLogEvt> evt(new OwnEvent);
    QByteArray bytes("hello");
    evt->Load(bytes);
    QCOMPARE(evt->text, QStringLiteral("hello"));
    evt->text = QStringLiteral("bye");
    evt->Save(bytes);
    QCOMPARE(bytes, QByteArray("bye"));
    QByteArray streamed;
    {
        QDataStream stream(&streamed, QIODevice::WriteOnly);
        evt->WriteTo(stream);
    }
    QCOMPARE(streamed, QByteArray("\x05"));
    QDataStream stream(streamed);
    evt->ReadFrom(stream);
    QCOMPARE(evt->code, i16(5));
    evt.reset();
    QCOMPARE(living, 0);
}

void tst_ZrLogEvt::listOwnsItsEvents()
{
    {
        ZrLstMgd<ZrLogEvt> events;
        events.AddTail(new OwnEvent);
        events.AddHead(new OwnEvent);
        events.AddTail(new ZrLogEvt(SampleEvent()));
        QCOMPARE(living, 2);
        events.RemoveHead();
        QCOMPARE(living, 1);
        events.Grow(1);
        QCOMPARE(events.GetCount(), 3);
        QCOMPARE(events.GetTail()->rec, -1);
    }
    QCOMPARE(living, 0);
}

QTEST_GUILESS_MAIN(tst_ZrLogEvt)
#include "tst_ZrLogEvt.moc"
