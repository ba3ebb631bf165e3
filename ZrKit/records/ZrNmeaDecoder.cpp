#include "ZrKit/records/ZrNmeaDecoder.h"

#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrEnvRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrMotionRecord.h"
#include "ZrKit/records/ZrNmeaFields.h"

#include <algorithm>
#include <cmath>
#include <iterator>

using namespace zr::nmea;

namespace {

using Records = std::vector<ZrDecodedRecord>;

constexpr double lateSentence = 60.0; ///< seconds a sentence may come late over midnight

template <class Record> void Append(Records& records, const Record& record)
{
    records.push_back({zr::rec_type(Record::RecType), Record::Format, record.Encode()});
}

/// Fills the position from four fields at \p i. False when it is not known.
bool TakePosition(const ZrNmeaSentence& s, int i, ZrFixRecord& fix)
{
    fix.latitude = coordinate(s, i, 'N', 'S', 90.0);
    fix.longitude = coordinate(s, i + 2, 'E', 'W', 180.0);
    return !std::isnan(fix.latitude) && !std::isnan(fix.longitude);
}

// GGA: time, latitude, N/S, longitude, E/W, quality, satellites, hdop, height, M, ...
void DecodeGga(const ZrNmeaSentence& s, Records& records)
{
    ZrFixRecord fix;
    fix.quality = small_number(s, 5);
    if (fix.quality == 0 || !TakePosition(s, 1, fix))
        return;
    fix.satellites = small_number(s, 6);
    fix.hdop = single(s.Number(7));
    fix.height = single(measured(s, 8, 'M'));
    Append(records, fix);
}

// GLL: latitude, N/S, longitude, E/W, time, status, mode
void DecodeGll(const ZrNmeaSentence& s, Records& records)
{
    ZrFixRecord fix;
    fix.quality = quality_of_mode(s.Field(6));
    if (s.Field(5) != "V" && fix.quality != 0 && TakePosition(s, 0, fix))
        Append(records, fix);
}

// RMC: time, status, latitude, N/S, longitude, E/W, knots, true course, date, variation, E/W, mode, ...
bool IsValidRmc(const ZrNmeaSentence& s)
{
    return s.Field(1) != "V" && quality_of_mode(s.Field(11)) != 0;
}

void DecodeRmc(const ZrNmeaSentence& s, Records& records)
{
    if (!IsValidRmc(s))
        return;
    ZrFixRecord fix;
    fix.quality = quality_of_mode(s.Field(11));
    if (TakePosition(s, 2, fix))
        Append(records, fix);
    ZrMotionRecord motion;
    motion.speedGround = single(s.Number(6) * metresPerSecondPerKnot);
    motion.courseTrue = single(angle(s.Number(7)));
    if (!std::isnan(motion.speedGround) || !std::isnan(motion.courseTrue))
        Append(records, motion);
}

/// Metres of the common layout of DBT and DBS: feet, f, metres, M, fathoms, F.
double DepthOfThreeUnits(const ZrNmeaSentence& s)
{
    return first_known(
        {measured(s, 2, 'M'), measured(s, 0, 'f') * metresPerFoot, measured(s, 4, 'F') * metresPerFathom});
}

void AppendDepth(Records& records, double depth, double offset)
{
    ZrDepthRecord record;
    record.depth = single(depth);
    record.offset = single(offset);
    if (record.depth >= 0.0F) // false for NaN too
        Append(records, record);
}

void DecodeDbt(const ZrNmeaSentence& s, Records& records)
{
    AppendDepth(records, DepthOfThreeUnits(s), notKnown);
}

void DecodeDbs(const ZrNmeaSentence& s, Records& records)
{
    // Measured from the surface: as if the transducer lay in the water line.
    AppendDepth(records, DepthOfThreeUnits(s), 0.0);
}

// DPT: metres below the transducer, offset, greatest depth of the range in use
void DecodeDpt(const ZrNmeaSentence& s, Records& records)
{
    AppendDepth(records, s.Number(0), s.Number(1));
}

void AppendMotion(Records& records, const ZrMotionRecord& motion)
{
    for (const float value : {motion.headingTrue, motion.headingMagnetic, motion.courseTrue,
             motion.speedGround, motion.speedWater}) {
        if (!std::isnan(value)) {
            Append(records, motion);
            return;
        }
    }
}

/// m/s of knots, N, km/h, K at \p i: the knots count where both are given.
double Speed(const ZrNmeaSentence& s, int i)
{
    return first_known(
        {measured(s, i, 'N') * metresPerSecondPerKnot, measured(s, i + 2, 'K') * metresPerSecondPerKmh});
}

void DecodeHdt(const ZrNmeaSentence& s, Records& records)
{
    ZrMotionRecord motion;
    motion.headingTrue = single(angle(measured(s, 0, 'T')));
    AppendMotion(records, motion);
}

void DecodeHdm(const ZrNmeaSentence& s, Records& records)
{
    ZrMotionRecord motion;
    motion.headingMagnetic = single(angle(measured(s, 0, 'M')));
    AppendMotion(records, motion);
}

// HDG: sensor heading, deviation, E/W, variation, E/W
void DecodeHdg(const ZrNmeaSentence& s, Records& records)
{
    const double magnetic = angle(s.Number(0)) + first_known({correction(s, 1), 0.0});
    ZrMotionRecord motion;
    motion.headingMagnetic = single(wrapped(magnetic));
    motion.headingTrue = single(wrapped(magnetic + correction(s, 3)));
    AppendMotion(records, motion);
}

// VTG: true course, T, magnetic course, M, knots, N, km/h, K, mode
void DecodeVtg(const ZrNmeaSentence& s, Records& records)
{
    if (s.Field(8) == "N")
        return;
    ZrMotionRecord motion;
    motion.courseTrue = single(angle(measured(s, 0, 'T')));
    motion.speedGround = single(Speed(s, 4));
    AppendMotion(records, motion);
}

// VHW: true heading, T, magnetic heading, M, knots, N, km/h, K
void DecodeVhw(const ZrNmeaSentence& s, Records& records)
{
    ZrMotionRecord motion;
    motion.headingTrue = single(angle(measured(s, 0, 'T')));
    motion.headingMagnetic = single(angle(measured(s, 2, 'M')));
    motion.speedWater = single(Speed(s, 4));
    AppendMotion(records, motion);
}

void AppendEnvironment(Records& records, const ZrEnvRecord& env)
{
    if (!std::isnan(env.waterTemperature) || !std::isnan(env.windSpeed) || !std::isnan(env.windAngle))
        Append(records, env);
}

void DecodeMtw(const ZrNmeaSentence& s, Records& records)
{
    ZrEnvRecord env;
    env.waterTemperature = single(measured(s, 0, 'C'));
    AppendEnvironment(records, env);
}

/// m/s of the speed at \p i in the unit that the field behind it names; NaN for an unknown unit.
double WindSpeed(const ZrNmeaSentence& s, int i)
{
    const QByteArray unit = s.Field(i + 1);
    if (unit == "K")
        return s.Number(i) * metresPerSecondPerKmh;
    if (unit == "M")
        return s.Number(i);
    return unit == "N" ? s.Number(i) * metresPerSecondPerKnot : notKnown;
}

u8 MwvReference(const QByteArray& letter)
{
    if (letter == "R")
        return ZrEnvRecord::windRelative;
    return letter == "T" ? ZrEnvRecord::windTrue : ZrEnvRecord::windUnknown;
}

// MWV: angle, R/T, speed, unit, status
void DecodeMwv(const ZrNmeaSentence& s, Records& records)
{
    if (s.Field(4) == "V")
        return;
    ZrEnvRecord env;
    env.windAngle = single(angle(s.Number(0)));
    env.windReference = MwvReference(s.Field(1));
    env.windSpeed = single(WindSpeed(s, 2));
    AppendEnvironment(records, env);
}

// MWD: true direction, T, magnetic direction, M, knots, N, m/s, M
void DecodeMwd(const ZrNmeaSentence& s, Records& records)
{
    ZrEnvRecord env;
    env.windAngle = single(angle(measured(s, 0, 'T')));
    env.windReference = ZrEnvRecord::windNorth;
    env.windSpeed = single(first_known({measured(s, 6, 'M'), measured(s, 4, 'N') * metresPerSecondPerKnot}));
    AppendEnvironment(records, env);
}

/// The date of RMC, "ddmmyy"; invalid when it is none or the sentence says "not valid".
QDate DateOfRmc(const ZrNmeaSentence& s)
{
    const QByteArray text = s.Field(8);
    if (!IsValidRmc(s) || text.size() != 6)
        return QDate();
    return date(text.left(2), text.mid(2, 2), text.mid(4));
}

// ZDA: time, day, month, year, local zone hours, local zone minutes. Time and date are UTC, so the zone is
// not read. The year has four digits by the standard and two in some devices.
QDate DateOfZda(const ZrNmeaSentence& s)
{
    return date(s.Field(1), s.Field(2), s.Field(3));
}

constexpr int noField = -1;

struct Formatter
{
    const char* name;
    int timeField; ///< where the time of day stands, `noField` for none
    void (*decode)(const ZrNmeaSentence&, Records&); ///< null: gives no records
    QDate (*date)(const ZrNmeaSentence&); ///< null: tells no date
};

constexpr Formatter formatters[] = {
    {"GGA", 0, DecodeGga, nullptr},
    {"GLL", 4, DecodeGll, nullptr},
    {"RMC", 0, DecodeRmc, DateOfRmc},
    {"DBT", noField, DecodeDbt, nullptr},
    {"DPT", noField, DecodeDpt, nullptr},
    {"DBS", noField, DecodeDbs, nullptr},
    {"HDT", noField, DecodeHdt, nullptr},
    {"HDG", noField, DecodeHdg, nullptr},
    {"HDM", noField, DecodeHdm, nullptr},
    {"VTG", noField, DecodeVtg, nullptr},
    {"VHW", noField, DecodeVhw, nullptr},
    {"MTW", noField, DecodeMtw, nullptr},
    {"MWV", noField, DecodeMwv, nullptr},
    {"MWD", noField, DecodeMwd, nullptr},
    {"ZDA", 0, nullptr, DateOfZda},
};

const Formatter* FindFormatter(const QByteArray& name)
{
    const auto found = std::find_if(std::begin(formatters), std::end(formatters),
        [&name](const Formatter& formatter) { return name == formatter.name; });
    return found == std::end(formatters) ? nullptr : found;
}

} // namespace

ZrNmeaDecoder::ZrNmeaDecoder(QDate date)
    : m_date(date)
{
}

std::vector<ZrDecodedRecord> ZrNmeaDecoder::Decode(const ZrNmeaSentence& sentence)
{
    Records records;
    const Formatter* formatter = FindFormatter(sentence.formatter);
    // A maker's own sentence may bear a formatter's letters by chance ("$PGGA").
    if (!formatter || sentence.encapsulated || sentence.talker == "P")
        return records;
    const QByteArray timeOfDay = sentence.Field(formatter->timeField);
    TakeTime(timeOfDay);
    // A date without its time of day cannot say on which side of midnight the clock stands: it only counts
    // while none was told.
    if (formatter->date && (!std::isnan(seconds_of_day(timeOfDay)) || !m_dateTold))
        TakeDate(formatter->date(sentence));
    if (formatter->decode)
        formatter->decode(sentence, records);
    return records;
}

bool ZrNmeaDecoder::Knows(const QByteArray& formatter)
{
    return FindFormatter(formatter) != nullptr;
}

double ZrNmeaDecoder::Time() const
{
    if (!m_date.isValid() || m_timeOfDay < 0.0)
        return notKnown;
    const qint64 days = QDate(1970, 1, 1).daysTo(m_date);
    return static_cast<double>(days) * secondsPerDay + m_timeOfDay;
}

bool ZrNmeaDecoder::HasDate() const
{
    return m_dateTold;
}

void ZrNmeaDecoder::TakeTime(const QByteArray& timeOfDay)
{
    const double seconds = seconds_of_day(timeOfDay);
    if (std::isnan(seconds))
        return;
    if (m_date.isValid() && m_timeOfDay >= 0.0) {
        const double step = seconds - m_timeOfDay;
        if (step < -secondsPerDay / 2)
            m_date = m_date.addDays(1);
        else if (step > secondsPerDay - lateSentence)
            m_date = m_date.addDays(-1);
    }
    m_timeOfDay = seconds;
}

void ZrNmeaDecoder::TakeDate(const QDate& date)
{
    if (!date.isValid())
        return;
    m_date = date;
    m_dateTold = true;
}
