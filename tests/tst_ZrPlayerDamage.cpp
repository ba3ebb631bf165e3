// Damaged logs: cut at every offset, every header byte changed. What must happen is computed by a small model
// of the reading rules that works on the bytes in memory and shares nothing with the player.

#include "PlayerDamages.h"

#include <QtTest/QtTest>

#include <sys/resource.h>

namespace {

enum eReader
{
    NextItem, ///< ReadNextItem(false)
    NextItemPlaying, ///< ReadNextItem(true)
    ItemOfType, ///< ReadNextItemOfType({type 4 or 300.2}, 5, false)
    UntilType ///< PlayUntilType(300.2)
};

constexpr CRecType typeA(0, 4);
constexpr CRecType typeB(2, 300);
constexpr quint16 wantedSource = 5;

QString Result(bool result, quint64 pos)
{
    return QStringLiteral("%1 at %2").arg(result ? QStringLiteral("true") : QStringLiteral("false")).arg(pos);
}

/// What the rules say about a file of these bytes: all messages, signals, results and positions in order.
class Model
{
public:
    Model(const QByteArray& bytes, eReader reader)
        : m_bytes(bytes)
        , m_reader(reader)
    {
    }

    QStringList Run()
    {
        if (!Call([this] { return Open(); }))
            return m_lines;
        for (;;) {
            const bool goesOn = Call([this] {
                return m_reader == ItemOfType ? OfType() : m_reader == UntilType ? Until() : Next();
            });
            if (!goesOn)
                return m_lines;
        }
    }

private:
    quint64 Size() const { return static_cast<quint64>(m_bytes.size()); }

    template <class Body> bool Call(Body body)
    {
        const bool result = body();
        m_lines << Result(result, m_pos);
        return result;
    }

    bool Fail(const QString& message)
    {
        m_lines << QStringLiteral("message ") + message << QStringLiteral("EndOfFile, closed");
        return false;
    }

    bool Open()
    {
        if (Size() < 48)
            return Fail(QStringLiteral("File is not big enough to contain a header"));
        m_pos = 48;
        if (m_bytes.left(4) != QByteArray::fromHex("44332211"))
            return Fail(QStringLiteral("Not a valid header"));
        if (m_bytes.mid(4, 4) != QByteArray::fromHex("30000000"))
            return Fail(QStringLiteral("File header version mismatch"));
        return true;
    }

    /// Takes the item at the position apart; at least 40 bytes are there.
    bool Take(Item& item)
    {
        const QByteArray header = m_bytes.mid(static_cast<int>(m_pos), 40);
        m_pos += 40;
        const bool tellsMagic = m_reader == NextItem || m_reader == NextItemPlaying;
        if (header.left(4) != QByteArray::fromHex("ddccbbaa")) {
            const QString number = QString::number(LeAt<quint32>(header, 0), 16);
            return Fail(QStringLiteral("Not a valid item header")
                + (tellsMagic ? QLatin1Char(':') + number : QString()));
        }
        if (header.mid(4, 4) != QByteArray::fromHex("28000000"))
            return Fail(QStringLiteral("Item header version mismatch"));
        const quint64 stored = LeAt<quint32>(header, 32);
        if (Size() - m_pos < stored)
            return Fail(QStringLiteral("Unable to read item payload"));
        item.type = LeAt<quint16>(header, 8);
        item.format = LeAt<quint16>(header, 10);
        item.sub = LeAt<quint16>(header, 12);
        item.time = DoubleAt(header, 16);
        item.source = LeAt<quint16>(header, 26);
        item.payload = m_bytes.mid(static_cast<int>(m_pos), static_cast<int>(stored));
        m_pos += stored;
        return true;
    }

    bool Next()
    {
        const quint64 start = m_pos;
        if (start == Size()) {
            m_lines << QStringLiteral("EndOfFile, open");
            return false;
        }
        if (Size() - start < 40)
            return Fail(QStringLiteral("Incomplete item header found. FS:%1 BR:%2").arg(Size()).arg(start));
        Item item;
        if (!Take(item))
            return false;
        m_lines += DeliveryLines(item, start, m_reader == NextItem);
        return true;
    }

    bool OfType()
    {
        while (m_pos < Size()) {
            const quint64 start = m_pos;
            if (Size() - start < 40)
                return Fail(QStringLiteral("Incomplete item header found"));
            Item item;
            if (!Take(item))
                return false;
            const bool typeFits = (item.type == 4 && item.sub == 0) || (item.type == 300 && item.sub == 2);
            if (!typeFits || item.source != wantedSource)
                continue;
            m_lines += DeliveryLines(item, start, true);
            return true;
        }
        return false;
    }

    bool Until()
    {
        while (m_pos < Size()) {
            const quint64 start = m_pos;
            if (Size() - start < 40)
                return Fail(QStringLiteral("Incomplete item header found"));
            Item item;
            if (!Take(item))
                return false;
            m_lines += DeliveryLines(item, start, false);
            if (item.type == 300 && item.sub == 2)
                return true;
        }
        return false;
    }

    QByteArray m_bytes;
    eReader m_reader;
    quint64 m_pos = 0;
    QStringList m_lines;
};

bool ReadOne(ZrPlayer& player, eReader reader)
{
    switch (reader) {
    case NextItem:
        return player.ReadNextItem(false);
    case NextItemPlaying:
        return player.ReadNextItem(true);
    case ItemOfType:
        return player.ReadNextItemOfType({typeA, typeB}, wantedSource, false);
    case UntilType:
        return player.PlayUntilType(typeB);
    }
    return false;
}

} // namespace

class tst_ZrPlayerDamage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void modelKnowsTheSoundFile();
    void cutAtEveryOffset_data();
    void cutAtEveryOffset();
    void everyHeaderByteChanged_data();
    void everyHeaderByteChanged();
    void everySizeOfTheLastPayload_data();
    void everySizeOfTheLastPayload();
    void zerosAndNoiseBehindTheItems_data();
    void zerosAndNoiseBehindTheItems();
    void claimOf4GibibytesAllocatesNothing();

private:
    QStringList Play(const QByteArray& bytes, eReader reader);
    void PlayAll(const Damages& damages);

    QTemporaryDir m_dir;
    QString m_path;
    QScopedPointer<MessageCatcher> m_messages;
};

void tst_ZrPlayerDamage::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_path = m_dir.filePath(QStringLiteral("a.log"));
}

void tst_ZrPlayerDamage::init()
{
    m_messages.reset(new MessageCatcher);
}

void tst_ZrPlayerDamage::cleanup()
{
    m_messages.reset();
}

/// What the player really does with a file of these bytes.
QStringList tst_ZrPlayerDamage::Play(const QByteArray& bytes, eReader reader)
{
    WriteWhole(m_path, bytes);
    ZrPlayer player;
    SignalLog signalLog(player, m_messages.data());
    bool result = player.OpenFile(m_path);
    signalLog.lines << Result(result, player.pos);
    while (result) {
        result = ReadOne(player, reader);
        signalLog.lines << Result(result, player.pos);
    }
    if (player.buffer.capacity() > static_cast<std::size_t>(2 * bytes.size()))
        signalLog.lines << QStringLiteral("the buffer grew to %1").arg(player.buffer.capacity());
    return signalLog.Take();
}

void tst_ZrPlayerDamage::modelKnowsTheSoundFile()
{
    const QByteArray log = Damages{SmallItems(), {}}.Whole();
    const QStringList ofType = Model(log, ItemOfType).Run();
    QCOMPARE(ofType.filter(QStringLiteral("NewPayload ")).size(), 3);
    QCOMPARE(ofType.last(), QStringLiteral("false at %1").arg(log.size()));
    const QStringList next = Model(log, NextItem).Run();
    QCOMPARE(next.filter(QStringLiteral("SeekLog")).size(), 5);
    QCOMPARE(next.at(next.size() - 2), QStringLiteral("EndOfFile, open"));
    for (eReader reader : {NextItem, NextItemPlaying, ItemOfType, UntilType})
        QCOMPARE(Play(log, reader), Model(log, reader).Run());
}

void tst_ZrPlayerDamage::cutAtEveryOffset_data()
{
    QTest::addColumn<int>("reader");
    QTest::newRow("ReadNextItem(false)") << int(NextItem);
    QTest::newRow("ReadNextItem(true)") << int(NextItemPlaying);
    QTest::newRow("ReadNextItemOfType") << int(ItemOfType);
    QTest::newRow("PlayUntilType") << int(UntilType);
}

/// Compares what the reader of the row at hand does with what it must do.
void tst_ZrPlayerDamage::PlayAll(const Damages& damages)
{
    QFETCH(int, reader);
    QVERIFY(!damages.logs.isEmpty());
    for (const QByteArray& bytes : damages.logs)
        QCOMPARE(Play(bytes, eReader(reader)), Model(bytes, eReader(reader)).Run());
}

void tst_ZrPlayerDamage::cutAtEveryOffset()
{
    PlayAll(CutAtEveryOffset());
}

void tst_ZrPlayerDamage::everyHeaderByteChanged_data()
{
    cutAtEveryOffset_data();
}

void tst_ZrPlayerDamage::everyHeaderByteChanged()
{
    PlayAll(EveryHeaderByteChanged());
}

void tst_ZrPlayerDamage::everySizeOfTheLastPayload_data()
{
    cutAtEveryOffset_data();
}

void tst_ZrPlayerDamage::everySizeOfTheLastPayload()
{
    PlayAll(EverySizeOfTheLastPayload());
}

void tst_ZrPlayerDamage::zerosAndNoiseBehindTheItems_data()
{
    cutAtEveryOffset_data();
}

void tst_ZrPlayerDamage::zerosAndNoiseBehindTheItems()
{
    PlayAll(ZerosAndNoiseBehindTheItems());
}

void tst_ZrPlayerDamage::claimOf4GibibytesAllocatesNothing()
{
    const QByteArray bytes = ClaimOf4Gibibytes().logs.first();
    QCOMPARE(bytes.size(), 90);
    QVERIFY(WriteWhole(m_path, bytes));
    const auto body = [this] {
        if (!underSanitizer) { // sanitizers need an address space without limit
            const rlim_t limit = rlim_t(2) << 30;
            const struct rlimit addressSpace = {limit, limit};
            if (setrlimit(RLIMIT_AS, &addressSpace) != 0)
                return 2;
        }
        for (eReader reader : {NextItem, ItemOfType, UntilType}) {
            ZrPlayer player;
            if (!player.OpenFile(m_path) || ReadOne(player, reader) || player.pos != 88)
                return 3;
            if (player.buffer.capacity() > 4096)
                return 4;
        }
        u8 filter[10] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
        const QString out = m_dir.filePath(QStringLiteral("out.log"));
        const bool exported = ZrPlayer::ExportFileSegment(m_path, out, 48, 90, nullptr)
            || ZrPlayer::ExportFileSegment(m_path, out, filter, 10, 48, 90, nullptr)
            || ZrPlayer::ExportFileSegmentWithVideo(m_path, out, 48, 90, 48, nullptr)
            || ZrPlayer::ExportFilteredFile(m_path, out, filter, 10, true, nullptr)
            || ZrPlayer::ExportFilteredFile(m_path, out, filter, 10, false, nullptr);
        return exported ? 5 : 0;
    };
    QCOMPARE(RunInChild(body), 0);
}

QTEST_GUILESS_MAIN(tst_ZrPlayerDamage)
#include "tst_ZrPlayerDamage.moc"
