#include "ZrKit/import/ZrImportGnss.h"

#include "ZrKit/import/ZrImportTime.h"
#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrFixRecord.h"

#include <QCoreApplication>

#include <cmath>
#include <limits>

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

bool namesFix(const QStringList& names)
{
    return names.contains(QStringLiteral("Longitude"), Qt::CaseInsensitive)
        && names.contains(QStringLiteral("Latitude"), Qt::CaseInsensitive);
}

} // namespace

bool ZrImportGnss::Fits(const QByteArray& head)
{
    const QStringList names = HeaderNames(head);
    return names.contains(QStringLiteral("Timestamp"), Qt::CaseInsensitive)
        && (namesFix(names) || names.contains(QStringLiteral("Depth"), Qt::CaseInsensitive));
}

bool ZrImportGnss::Open(const QString& path, const ZrImportOptions& options, QString* error)
{
    m_report.format = QStringLiteral("gnss");
    m_source = options.source;
    if (!OpenTable(path, {QStringLiteral("Timestamp")}, error))
        return false;
    m_time = Column(QStringLiteral("Timestamp"));
    m_longitude = Column(QStringLiteral("Longitude"));
    m_latitude = Column(QStringLiteral("Latitude"));
    m_height = Column(QStringLiteral("EllipsoidalHeight"));
    m_status = Column(QStringLiteral("Status"));
    m_depth = Column(QStringLiteral("Depth"));
    if ((m_longitude < 0 || m_latitude < 0) && m_depth < 0) {
        *error = QCoreApplication::translate(
            "ZrImportGnss", "%1: the first line names neither Longitude and Latitude nor Depth")
                     .arg(path);
        return false;
    }
    return true;
}

bool ZrImportGnss::ReadMore()
{
    if (!NextRow())
        return false;
    const bool hasFix = m_longitude >= 0 && m_latitude >= 0;
    const double time = Time();
    const ZrFixRecord fix = hasFix ? Fix() : ZrFixRecord();
    const ZrDepthRecord sounding = Sounding();
    if (!RowIsSound())
        return true;
    if (hasFix)
        Push(fix, time);
    if (m_depth >= 0)
        Push(sounding, time);
    return true;
}

double ZrImportGnss::Time()
{
    const std::string_view text = Text(m_time);
    double time = NaN;
    if (text.empty() || zr::read_iso_time(text, time) != text.size())
        Spoil(QCoreApplication::translate("ZrImportGnss", "%1 is no date and time").arg(Quoted(m_time)));
    return time;
}

ZrFixRecord ZrImportGnss::Fix()
{
    ZrFixRecord fix;
    fix.latitude = Number(m_latitude);
    fix.longitude = Number(m_longitude);
    fix.height = static_cast<float>(Number(m_height));
    fix.quality = Quality();
    if (std::fabs(fix.latitude) > 90.0)
        Spoil(
            QCoreApplication::translate("ZrImportGnss", "%1 lies beyond 90 degrees").arg(Quoted(m_latitude)));
    if (std::fabs(fix.longitude) > 180.0)
        Spoil(QCoreApplication::translate("ZrImportGnss", "%1 lies beyond 180 degrees")
                  .arg(Quoted(m_longitude)));
    if (fix.latitude == 0.0 && fix.longitude == 0.0) {
        Remark(QCoreApplication::translate("ZrImportGnss", "the position is 0,0: taken as not known"));
        fix.latitude = NaN;
        fix.longitude = NaN;
    }
    return fix;
}

u8 ZrImportGnss::Quality()
{
    const double status = Number(m_status);
    if (std::isnan(status))
        return 255;
    if (status == -1.0)
        return 0;
    if (status == 0.0)
        return 1;
    if (status == 1.0 || status == 2.0)
        return 2;
    Remark(QCoreApplication::translate(
        "ZrImportGnss", "the status is none of -1, 0, 1 and 2: quality taken as not known"));
    return 255;
}

ZrDepthRecord ZrImportGnss::Sounding()
{
    ZrDepthRecord sounding;
    const double depth = Number(m_depth);
    if (depth > 0.0)
        sounding.depth = static_cast<float>(depth);
    else if (depth <= 0.0)
        Remark(QCoreApplication::translate("ZrImportGnss", "the depth is 0 or less: no bottom was found"));
    return sounding;
}
