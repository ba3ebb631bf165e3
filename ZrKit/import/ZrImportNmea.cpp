#include "ZrKit/import/ZrImportNmea.h"

#include "ZrKit/import/ZrImportTime.h"
#include "ZrKit/records/ZrNmeaSentence.h"

#include <QCoreApplication>
#include <QDate>
#include <QDateTime>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double DaySeconds = 86400.0;
const QDate EpochDate(1970, 1, 1);

std::string_view viewOf(const QByteArray& bytes)
{
    return std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

bool beginsSentence(std::string_view text)
{
    return !text.empty() && (text.front() == '$' || text.front() == '!' || text.front() == '\\');
}

/// Time in the field "c:" of a tag block (`\s:x,c:1397678239*5A\$GP…`) with a right checksum; NaN when there
/// is none.
double tagTime(std::string_view line)
{
    const std::size_t end = line.find('\\', 1);
    const std::size_t star = line.rfind('*', end);
    if (line.empty() || line.front() != '\\' || end == std::string_view::npos
        || star == std::string_view::npos)
        return NaN;
    const QByteArray body(line.data() + 1, static_cast<int>(star - 1));
    const QByteArray sum(line.data() + star + 1, static_cast<int>(end - star - 1));
    bool isHex = false;
    if (sum.toUInt(&isHex, 16) != ZrNmeaSentence::Checksum(body) || !isHex)
        return NaN;
    for (const QByteArray& field : body.split(',')) {
        double time = NaN;
        const std::string_view text = viewOf(field);
        if (text.substr(0, 2) == "c:" && zr::read_epoch_time(text.substr(2), time) == text.size() - 2)
            return time;
    }
    return NaN;
}

/// Cuts the time of reception off the beginning of \p line, together with what separates it from the
/// sentence. NaN, and only spaces are cut off, when there is none.
double takeReceiveTime(std::string_view& line)
{
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (beginsSentence(line))
        return tagTime(line);
    double time = NaN;
    std::size_t used = zr::read_iso_time(line, time);
    if (used == 0)
        used = zr::read_epoch_time(line, time);
    const std::size_t begin = line.find_first_not_of(" \t,;", used);
    if (used == 0 || begin == std::string_view::npos || begin == used || !beginsSentence(line.substr(begin)))
        return NaN;
    line.remove_prefix(begin);
    return time;
}

QByteArray bytesOf(std::string_view text)
{
    return QByteArray(text.data(), static_cast<int>(text.size()));
}

/// What a first look at a file tells about its clock.
struct FirstTimes
{
    QDate date; ///< date of the first time of day; invalid when no sentence told it
    double received = NaN; ///< first time of reception
    double ofDay = NaN; ///< first time of day, seconds
};

/// Follows the clock of the sentences until both date and time are known.
class ClockFinder
{
public:
    FirstTimes found;

    /// Looks at one line; true when nothing more is to be learnt.
    bool Look(const QByteArray& line)
    {
        std::string_view text = viewOf(line);
        found.received = takeReceiveTime(text);
        ZrNmeaSentence sentence;
        QString error;
        if (!ZrNmeaSentence::Parse(bytesOf(text), sentence, &error)) {
            found.received = NaN;
            return false;
        }
        if (!std::isnan(found.received))
            return true;
        m_decoder.Decode(sentence);
        TakeClock(m_decoder.Time());
        return found.date.isValid();
    }

private:
    /// \p time counts from `AnyDate` until a sentence tells the date.
    void TakeClock(double time)
    {
        if (std::isnan(time))
            return;
        const qint64 day = static_cast<qint64>(std::floor(time / DaySeconds));
        const double ofDay = time - DaySeconds * static_cast<double>(day);
        if (std::isnan(found.ofDay))
            found.ofDay = ofDay;
        if (m_decoder.HasDate())
            found.date = EpochDate.addDays(day - m_daysPassed - MidnightStep(ofDay));
        else
            m_daysPassed = day - EpochDate.daysTo(AnyDate);
        m_last = ofDay;
    }

    /// Days between the time of day told last and \p ofDay, by the rules of the decoder.
    qint64 MidnightStep(double ofDay) const
    {
        constexpr double LateSentence = 60.0;
        if (std::isnan(m_last))
            return 0;
        if (ofDay - m_last < -DaySeconds / 2.0)
            return 1;
        return ofDay - m_last > DaySeconds - LateSentence ? -1 : 0;
    }

    const QDate AnyDate{2000, 1, 1};
    ZrNmeaDecoder m_decoder{AnyDate};
    double m_last = NaN; ///< time of day told last
    qint64 m_daysPassed = 0; ///< midnights since the first time of day
};

/// Reads \p path up to the first time of its sentences, and further for their date within the bounds.
FirstTimes lookAhead(const QString& path)
{
    ClockFinder finder;
    ZrImportLines lines;
    QString error;
    if (!lines.Open(path, &error))
        return finder.found;
    while (lines.Next() && !finder.Look(lines.Text())) {
        const bool farEnough
            = lines.Number() >= ZrImportNmea::DateLines || lines.Position() >= ZrImportNmea::DateBytes;
        if (farEnough && !std::isnan(finder.found.ofDay))
            break;
    }
    return finder.found;
}

} // namespace

bool ZrImportNmea::Fits(const QByteArray& head)
{
    int sound = 0;
    int other = 0;
    for (const QByteArray& line : QByteArray(head).replace('\r', '\n').split('\n')) {
        std::string_view text = viewOf(line);
        takeReceiveTime(text);
        if (text.empty())
            continue;
        ZrNmeaSentence sentence;
        QString error;
        const bool isSound
            = line.size() <= ZrImportLines::MaxLine && ZrNmeaSentence::Parse(bytesOf(text), sentence, &error);
        // Chance does not produce a right checksum; without one, most of the text must look the part.
        if (isSound && sentence.hasChecksum)
            return true;
        ++(isSound ? sound : other);
    }
    return sound > other;
}

bool ZrImportNmea::Open(const QString& path, const ZrImportOptions& options, QString* error)
{
    m_report.path = path;
    m_report.format = QStringLiteral("nmea");
    m_report.byLine = true;
    m_source = options.source;
    if (!m_lines.Open(path, error))
        return false;
    const FirstTimes first = lookAhead(path);
    const double modified = static_cast<double>(QFileInfo(path).lastModified().toMSecsSinceEpoch()) / 1000.0;
    const double ofDay = std::isnan(first.ofDay) ? 0.0 : first.ofDay;
    m_hasReceived = !std::isnan(first.received);
    m_noTime = !m_hasReceived && std::isnan(first.ofDay);
    QDate date = first.date.isValid() ? first.date : options.date;
    m_dateOfFile = !date.isValid() && !m_hasReceived && !m_noTime;
    if (!date.isValid()) {
        // The data cannot be younger than the file: a file closed after midnight may begin the day before.
        date = EpochDate.addDays(static_cast<qint64>(std::floor((modified - ofDay) / DaySeconds)));
    }
    m_decoder = ZrNmeaDecoder(date);
    if (m_hasReceived)
        m_startTime = first.received;
    else if (m_noTime)
        m_startTime = modified;
    else
        m_startTime = DaySeconds * static_cast<double>(EpochDate.daysTo(date)) + ofDay;
    return true;
}

bool ZrImportNmea::ReadMore()
{
    const bool any = m_lines.Next();
    m_report.bytes = m_lines.Position();
    if (!any && m_lines.Failed())
        m_report.AddIssue(m_lines.Number() + 1,
            QCoreApplication::translate("ZrImportNmea", "the file cannot be read any further"));
    if (!any)
        return false;
    if (m_lines.TooLong()) {
        ++m_report.records;
        m_report.AddIssue(m_lines.Number(),
            QCoreApplication::translate("ZrImportNmea", "longer than %1 bytes").arg(ZrImportLines::MaxLine));
    } else {
        TakeLine(m_lines.Text());
    }
    return true;
}

void ZrImportNmea::TakeLine(const QByteArray& line)
{
    std::string_view text = viewOf(line);
    const double received = takeReceiveTime(text);
    if (text.empty())
        return;
    ++m_report.records;
    QByteArray serial = bytesOf(text);
    ZrNmeaSentence sentence;
    QString error;
    if (!ZrNmeaSentence::Parse(serial, sentence, &error)) {
        m_report.AddIssue(m_lines.Number(), error);
        return;
    }
    const std::vector<ZrDecodedRecord> records = m_decoder.Decode(sentence);
    if (!ZrNmeaDecoder::Knows(sentence.formatter))
        Ignore(QString::fromLatin1(sentence.talker + sentence.formatter));
    const double time = LineTime(received);
    serial.append('\0');
    PushPayload(CRecType(rtSerialText), 0, time, serial);
    for (const ZrDecodedRecord& record : records)
        PushPayload(record.type, record.format, time, record.payload);
}

/// Time of the line whose sentence was decoded last.
double ZrImportNmea::LineTime(double received)
{
    if (!std::isnan(received))
        m_received = received;
    if (!std::isnan(m_received))
        return m_received;
    const double told = m_hasReceived ? NaN : m_decoder.Time();
    if (m_noTime)
        Note(QCoreApplication::translate("ZrImportNmea", "no line tells a time: that of the file is taken"));
    else if (std::isnan(told))
        Note(QCoreApplication::translate(
            "ZrImportNmea", "the line comes before the first time and carries that"));
    if (m_dateOfFile && !m_decoder.HasDate())
        Note(QCoreApplication::translate(
            "ZrImportNmea", "no sentence tells the date: that of the file is taken"));
    return std::isnan(told) ? m_startTime : told;
}
