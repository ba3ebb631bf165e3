#pragma once

// What the tests of the dataset share. Index and event files are assembled byte by byte from their layout.

#include "ZrLogFixture.h"
#include "ZrUtil/ZrDataset.h"

#include <array>
#include <vector>

using CrdTypes = std::array<CRecType, 8>;
using CrdPositions = std::array<u64, 8>;

/// The navigation members of a record that a `NavDataset` decodes.
struct Nav
{
    double latitude = 0.0;
    double longitude = 0.0;
    float altitude = 0.0f;
    float depth = 0.0f;
    float heading = 0.0f;
    float pitch = 0.0f;
    float roll = 0.0f;
};

/// Decodes payloads that are a `Nav` as it lies in memory, as an application would.
class NavDataset : public ZrDataset
{
public:
    using ZrDataset::ZrDataset;

    void FillRec(ZrLogRec& rec, const ZrLogItemInf& inf, zr::span<u8> payload) override
    {
        ZrDataset::FillRec(rec, inf, payload);
        Nav nav;
        if (payload.size() < sizeof nav)
            return;
        std::memcpy(&nav, payload.data(), sizeof nav);
        rec.latitude = nav.latitude;
        rec.longitude = nav.longitude;
        rec.altitude = nav.altitude;
        rec.depth = nav.depth;
        rec.heading = nav.heading;
        rec.pitch = nav.pitch;
        rec.roll = nav.roll;
    }
};

inline QByteArray NavPayload(const Nav& nav)
{
    return QByteArray(reinterpret_cast<const char*>(&nav), sizeof nav);
}

/// An item of type \p type at \p time.
inline Item TimedItem(quint16 type, double time, const QByteArray& payload = QByteArray())
{
    Item item = MakeItem(type, payload);
    item.time = time;
    return item;
}

/// A record with a time alone.
inline ZrLogRec TimedRec(double time)
{
    ZrLogRec rec;
    rec.time = time;
    return rec;
}

/// A dataset whose records have these times and nothing else.
inline void SetTimes(ZrDataset& dataset, const std::vector<double>& times)
{
    dataset.recs.clear();
    for (double time : times)
        dataset.recs.push_back(TimedRec(time));
}

/// The coordinate positions of a record, which are not aligned where they lie.
inline CrdPositions CrdPosOf(const ZrLogRec& rec)
{
    CrdPositions positions;
    std::memcpy(&positions, reinterpret_cast<const char*>(&rec) + 92, sizeof positions);
    return positions;
}

/// Writes the signals of a dataset down as lines of text, in the order of arrival.
class DatasetSignals
{
public:
    explicit DatasetSignals(ZrDataset& dataset)
    {
        QObject::connect(&dataset, &ZrDataset::PercentLoad, &m_context,
            [this](int percent) { lines << QStringLiteral("PercentLoad %1").arg(percent); });
        QObject::connect(&dataset, &ZrDataset::NewDataset, &m_context, [this, &dataset] {
            lines << QStringLiteral("NewDataset, %1 records, current %2")
                         .arg(dataset.recs.size())
                         .arg(dataset.curRec);
        });
    }

    QStringList Take()
    {
        QStringList taken;
        taken.swap(lines);
        return taken;
    }

    QStringList lines;

private:
    QObject m_context;
};

/// The texts of all events in list order.
inline QStringList EventTexts(const ZrDataset& dataset)
{
    QStringList texts;
    for (ZrListPos* pos = dataset.events.GetHeadPos(); pos;)
        texts << dataset.events.GetNext(pos)->text;
    return texts;
}

/// A message that went through the console, as the debug stream shows it: quotes inside it are escaped.
inline QString ConsoleLine(QString text)
{
    return QStringLiteral("Debug  0 :  \"") + text.replace(QLatin1Char('"'), QStringLiteral("\\\""))
        + QLatin1Char('"');
}

template <class T> void AppendBe(QByteArray& bytes, T value)
{
    const T big = qToBigEndian(value);
    bytes.append(reinterpret_cast<const char*>(&big), sizeof big);
}

/// The stored form of a text: byte length and UTF-16, all big-endian; a null text has a length of its own.
inline QByteArray TextBytes(const QString& text)
{
    QByteArray bytes;
    if (text.isNull())
        return QByteArray(4, '\xff');
    AppendBe<quint32>(bytes, static_cast<quint32>(2 * text.size()));
    for (QChar c : text)
        AppendBe<quint16>(bytes, c.unicode());
    return bytes;
}

/// The serial form of an event without detail and UUID.
inline QByteArray EventBytes(double time, qint32 src, const QString& text, qint16 code = 0)
{
    QByteArray bytes;
    quint64 bits;
    std::memcpy(&bits, &time, sizeof bits);
    AppendBe<qint16>(bytes, code);
    AppendBe<quint64>(bytes, bits);
    AppendBe<qint32>(bytes, src);
    return bytes + TextBytes(text) + TextBytes(QString()) + QByteArray(16, '\0');
}
