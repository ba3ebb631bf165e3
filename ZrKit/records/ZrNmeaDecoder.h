#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrNmeaSentence.h"
#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>
#include <QDate>

#include <vector>

/// One record decoded from a sentence, ready to be logged.
struct ZrDecodedRecord
{
    CRecType type;
    u16 format = 0;
    QByteArray payload;
};

/// Turns NMEA 0183 sentences into the records of the kit and keeps the clock that the sentences tell.
///
/// Decoded: GGA, GLL, RMC (fix), DBT, DPT, DBS (depth), HDT, HDG, HDM, VTG, VHW, RMC (motion), MTW, MWV, MWD
/// (environment), ZDA (date and time). Others, proprietary and encapsulated sentences among them, give
/// nothing. Empty fields give NaN; a sentence without any of the values of its record, or one that says "not
/// valid" (status V, mode N, quality 0), gives no record.
///
/// - Speeds are m/s: a knot is 1852/3600, a km/h 1/3.6. Depths are metres; where DBT and DBS leave the metres
///   empty the feet (0.3048 m) count, then the fathoms (1.8288 m). DBS measures from the surface, so its
///   record has offset 0. Negative depths give no record.
/// - A position out of range (minutes of 60 and more, beyond 90 or 180 degrees) gives no fix; angles outside
///   0 to 360 are taken as not known.
/// - The letter behind a value may be empty but not another one than expected ("T", "M", "N", "K", "C", ...).
/// - HDG: sensor heading plus deviation is the magnetic, plus variation the true heading, east positive.
///   Without deviation the sensor heading is the magnetic one; without variation the true one is not known.
/// - Fix quality is that of GGA; GLL and RMC give theirs by the mode letter. The navigational status that
///   ends a modern RMC is not a statement about the position and is not read.
/// - Every sentence with a time of day sets the clock, valid position or not, because receivers keep time
///   while submerged. Dates come from ZDA and from RMC with a valid position only. Times are UTC, the local
///   zone of ZDA is not read; years of two digits are 1980 to 2079.
///
/// One object per stream; not shared between threads.
class ZR_KIT_EXPORT ZrNmeaDecoder
{
public:
    /// \p date is the UTC date of times of day until a sentence with a date arrives; invalid: none known.
    explicit ZrNmeaDecoder(QDate date = QDate());

    /// The records of one sentence, none when it holds nothing for us.
    std::vector<ZrDecodedRecord> Decode(const ZrNmeaSentence& sentence);

    /// True when the decoder knows what to do with the formatter ("GGA"), whether or not it gave a record.
    static bool Knows(const QByteArray& formatter);

    /// Time of the sentence decoded last, seconds since the epoch: from its own time field, else the time
    /// told last. Midnight is passed when the time of day jumps back by more than half a day, and taken back
    /// when a sentence of the last minute before it comes late. NaN while no date and time is known.
    double Time() const;

    /// True once a sentence itself told the date.
    bool HasDate() const;

private:
    void TakeTime(const QByteArray& timeOfDay);
    void TakeDate(const QDate& date);

    QDate m_date;
    bool m_dateTold = false;
    double m_timeOfDay = -1.0; ///< seconds, negative while unknown
};
