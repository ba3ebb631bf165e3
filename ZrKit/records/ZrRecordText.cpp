#include "ZrKit/records/ZrRecordText.h"

#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrEnvRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrMotionRecord.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/records/ZrVehicleRecord.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QDateTime>
#include <QUuid>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <iterator>

namespace {

constexpr char degrees[] = "°";
constexpr char metres[] = "m";
constexpr char metresPerSecond[] = "m/s";
constexpr char celsius[] = "°C";

/// No item of a log is larger; Qt's arrays count in int.
constexpr std::size_t maxPayload = 0x7FFFFFFF;

/// What a number of a coded field means.
struct Meaning
{
    qint64 code;
    const char* text; ///< null: the value is not known
};

constexpr Meaning sides[] = {{0, "port"}, {1, "starboard"}};
constexpr Meaning windReferences[] = {
    {ZrEnvRecord::windUnknown, nullptr},
    {ZrEnvRecord::windRelative, "relative"},
    {ZrEnvRecord::windTrue, "true, from the bow"},
    {ZrEnvRecord::windNorth, "true, from north"},
};
constexpr Meaning qualities[] = {
    {0, "none"},
    {1, "autonomous"},
    {2, "differential"},
    {3, "precise"},
    {4, "RTK fixed"},
    {5, "RTK float"},
    {6, "dead reckoning"},
    {7, "manual"},
    {8, "simulated"},
    {255, nullptr},
};
constexpr Meaning satelliteCounts[] = {{255, nullptr}};

/// The shortest decimal that reads back as \p value in binary32, as a double: 12.6 rather than 12.600000381.
/// Whole numbers stay what they are, however large.
double Shortest(float value)
{
    if (std::trunc(value) == value)
        return static_cast<double>(value);
    for (int digits = 6; digits <= 9; ++digits) {
        const double candidate = QByteArray::number(static_cast<double>(value), 'g', digits).toDouble();
        if (static_cast<float>(candidate) == value)
            return candidate;
    }
    return static_cast<double>(value);
}

double Shortest(double value)
{
    return value;
}

// The sizes are given below because zero bytes are part of these texts and would end them.

QString FromUtf8(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes.constData(), bytes.size());
}

QString FromLatin1(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.constData(), bytes.size());
}

/// Text without lone surrogates, which no UTF-8 output could hold.
QString ValidUnicode(const QString& text)
{
    return text.isValidUtf16() ? text : FromUtf8(text.toUtf8());
}

/// Gathers fields, one call each.
class FieldList
{
public:
    std::vector<ZrRecordField> fields;

    void Add(const char* name, const QString& text, const char* unit, const QJsonValue& value)
    {
        fields.push_back({QString::fromLatin1(name), text, QString::fromUtf8(unit), value});
    }

    void AddUnknown(const char* name, const char* unit)
    {
        Add(name, QStringLiteral("-"), unit, QJsonValue(QJsonValue::Null));
    }

    /// A measured value with \p digits behind the point. Numbers that only damage can give are written with
    /// an exponent, so that they do not fill lines.
    template <class T> void Measure(const char* name, T value, int digits, const char* unit)
    {
        if (!std::isfinite(value)) {
            AddUnknown(name, unit);
            return;
        }
        const double number = Shortest(value);
        const QString text = std::abs(number) < 1e12 ? QString::number(number, 'f', digits)
                                                     : QString::number(number, 'g', 6);
        Add(name, text, unit, number);
    }

    void Count(const char* name, qint64 value)
    {
        Add(name, QString::number(value), "", static_cast<double>(value));
    }

    void Bits(const char* name, u32 value)
    {
        const QString digits = QStringLiteral("%1").arg(value, 8, 16, QLatin1Char('0')).toUpper();
        Add(name, QLatin1String("0x") + digits, "", static_cast<double>(value));
    }

    /// A number with the meaning that \p meanings gives it, otherwise as itself.
    template <std::size_t N> void Coded(const char* name, qint64 value, const Meaning (&meanings)[N])
    {
        const auto found = std::find_if(std::begin(meanings), std::end(meanings),
            [value](const Meaning& meaning) { return meaning.code == value; });
        if (found == std::end(meanings))
            Count(name, value);
        else if (!found->text)
            AddUnknown(name, "");
        else
            Add(name, QString::fromLatin1(found->text), "", static_cast<double>(value));
    }

    void Text(const char* name, const QString& text)
    {
        const QString valid = ValidUnicode(text);
        Add(name, valid, "", valid);
    }

    /// Seconds since the epoch; as a calendar date in UTC where there is one of four-digit year.
    void Time(const char* name, double seconds)
    {
        if (!(seconds >= -62135596800.0 && seconds < 253402300799.0)) {
            Measure(name, seconds, 3, "s");
            return;
        }
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(qRound64(seconds * 1000.0), Qt::UTC);
        Add(name, time.toString(Qt::ISODateWithMs), "", seconds);
    }
};

void Describe(const ZrNavRecord& r, FieldList& list)
{
    list.Measure("latitude", r.latitude, 7, degrees);
    list.Measure("longitude", r.longitude, 7, degrees);
    list.Measure("altitude", r.altitude, 2, metres);
    list.Measure("depth", r.depth, 2, metres);
    list.Measure("heading", r.heading, 1, degrees);
    list.Measure("pitch", r.pitch, 1, degrees);
    list.Measure("roll", r.roll, 1, degrees);
    list.Bits("flags", r.flags);
}

void Describe(const ZrPingRecord& r, FieldList& list)
{
    list.Count("pingNumber", r.pingNumber);
    list.Coded("side", r.side, sides);
    list.Count("sampleWidth", r.sampleWidth);
    list.Measure("slantRange", r.slantRange, 2, metres);
    list.Measure("frequency", r.frequency, 1, "kHz");
    list.Measure("soundSpeed", r.soundSpeed, 2, metresPerSecond);
    list.Count("sampleCount", r.sampleCount);
}

void Describe(const ZrFixRecord& r, FieldList& list)
{
    list.Measure("latitude", r.latitude, 7, degrees);
    list.Measure("longitude", r.longitude, 7, degrees);
    list.Measure("height", r.height, 2, metres);
    list.Measure("hdop", r.hdop, 2, "");
    list.Coded("quality", r.quality, qualities);
    list.Coded("satellites", r.satellites, satelliteCounts);
}

void Describe(const ZrDepthRecord& r, FieldList& list)
{
    list.Measure("depth", r.depth, 2, metres);
    list.Measure("offset", r.offset, 2, metres);
}

void Describe(const ZrMotionRecord& r, FieldList& list)
{
    list.Measure("headingTrue", r.headingTrue, 1, degrees);
    list.Measure("headingMagnetic", r.headingMagnetic, 1, degrees);
    list.Measure("courseTrue", r.courseTrue, 1, degrees);
    list.Measure("speedGround", r.speedGround, 2, metresPerSecond);
    list.Measure("speedWater", r.speedWater, 2, metresPerSecond);
}

void Describe(const ZrEnvRecord& r, FieldList& list)
{
    list.Measure("waterTemperature", r.waterTemperature, 1, celsius);
    list.Measure("windSpeed", r.windSpeed, 2, metresPerSecond);
    list.Measure("windAngle", r.windAngle, 1, degrees);
    list.Coded("windReference", r.windReference, windReferences);
}

void Describe(const ZrVehicleRecord& r, FieldList& list)
{
    list.Count("navState", r.navState);
    list.Bits("securityLevel", r.securityLevel);
    list.Measure("temperature", r.temperature, 1, celsius);
    list.Measure("pressure", r.pressure, 0, "Pa");
    list.Measure("voltage", r.voltage, 2, "V");
    list.Measure("declination", r.declination, 1, degrees);
    list.Measure("desiredHeading", r.desiredHeading, 1, degrees);
    list.Measure("ballastCommand", r.ballastCommand, 1, "ml");
    list.Measure("ballastPosition", r.ballastPosition, 1, "ml");
    list.Measure("linearCommand", r.linearCommand, 1, "mm");
    list.Measure("linearPosition", r.linearPosition, 1, "mm");
    list.Measure("angularCommand", r.angularCommand, 1, degrees);
    list.Measure("angularPosition", r.angularPosition, 1, degrees);
}

template <class Record> bool ReadRecord(zr::span<u8> payload, FieldList& list)
{
    Record record;
    if (!Record::Decode(payload, record))
        return false;
    Describe(record, list);
    return true;
}

/// Latin-1 with a zero byte at its end, which is no part of the text.
bool ReadSerialText(zr::span<u8> payload, FieldList& list)
{
    QByteArray bytes = zr::to_byte_array(payload);
    if (bytes.endsWith('\0'))
        bytes.chop(1);
    list.Text("text", FromLatin1(bytes));
    return true;
}

bool ReadMissionPlan(zr::span<u8> payload, FieldList& list)
{
    list.Text("text", FromUtf8(zr::to_byte_array(payload)));
    return true;
}

/// The serial form of an event: qint16 code, double time, qint32 source, QString text, QString detail, QUuid.
bool ReadEvent(zr::span<u8> payload, FieldList& list)
{
    const QByteArray bytes = zr::to_byte_array(payload);
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_5_15);
    qint16 code = 0;
    double time = 0.0;
    qint32 source = 0;
    QString text;
    QString detail;
    QUuid uid;
    stream >> code >> time >> source >> text >> detail >> uid;
    if (stream.status() != QDataStream::Ok)
        return false;
    list.Count("code", code);
    list.Time("time", time);
    list.Count("src", source);
    list.Text("text", text);
    list.Text("detail", detail);
    if (uid.isNull())
        list.AddUnknown("uid", "");
    else
        list.Text("uid", uid.toString(QUuid::WithoutBraces));
    return true;
}

constexpr int anyFormat = -1;

struct Reader
{
    int type;
    int format; ///< the only one that is understood, or `anyFormat`
    bool (*read)(zr::span<u8>, FieldList&); ///< false: the payload does not fit
};

constexpr Reader readers[] = {
    {rtSerialText, anyFormat, ReadSerialText},
    {rtEvent, anyFormat, ReadEvent},
    {rtMissionPlan, anyFormat, ReadMissionPlan},
    {krtNavigation, ZrNavRecord::Format, ReadRecord<ZrNavRecord>},
    {krtPing, ZrPingRecord::Format, ReadRecord<ZrPingRecord>},
    {krtFix, ZrFixRecord::Format, ReadRecord<ZrFixRecord>},
    {krtDepth, ZrDepthRecord::Format, ReadRecord<ZrDepthRecord>},
    {krtMotion, ZrMotionRecord::Format, ReadRecord<ZrMotionRecord>},
    {krtEnvironment, ZrEnvRecord::Format, ReadRecord<ZrEnvRecord>},
    {krtVehicle, ZrVehicleRecord::Format, ReadRecord<ZrVehicleRecord>},
};

const Reader* FindReader(CRecType type)
{
    // Which sub-types a type has is known by its name.
    if (zr::rec_type_name(type).isEmpty())
        return nullptr;
    const auto found = std::find_if(std::begin(readers), std::end(readers),
        [type](const Reader& reader) { return reader.type == type.type; });
    return found == std::end(readers) ? nullptr : found;
}

std::vector<ZrRecordField> Fail(QString* error, const QString& reason)
{
    if (error)
        *error = reason;
    return {};
}

} // namespace

std::vector<ZrRecordField> zr::record_fields(const ZrLogItemInf& inf, zr::span<u8> payload, QString* error)
{
    const Reader* reader = FindReader(inf);
    if (!reader) {
        return Fail(error,
            QCoreApplication::translate("ZrRecordText", "Record type %1, sub-type %2 is not known.")
                .arg(inf.type)
                .arg(inf.sub));
    }
    const QString name = rec_type_name(inf);
    if (reader->format != anyFormat && reader->format != inf.format)
        return Fail(error,
            QCoreApplication::translate("ZrRecordText", "Format %1 of a %2 record is not known.")
                .arg(inf.format)
                .arg(name));
    FieldList list;
    if (payload.size() > maxPayload || !reader->read(payload, list)) {
        return Fail(error,
            QCoreApplication::translate("ZrRecordText", "A payload of %1 bytes is no whole %2 record.")
                .arg(payload.size())
                .arg(name));
    }
    return list.fields;
}
