#include "ZrKit/planning/ZrRouteFile.h"

#include "ZrKit/files/ZrReplaceFile.h"
#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteFields.h"
#include "ZrKit/planning/ZrRouteGeoJson.h"
#include "ZrKit/planning/ZrRouteGpx.h"
#include "ZrKit/planning/ZrRouteKml.h"
#include "ZrKit/planning/ZrRouteSettings.h"
#include "ZrKit/planning/ZrRouteStore.h"
#include "ZrKit/planning/ZrRouteTab.h"
#include "ZrKit/planning/ZrTextLines.h"
#include "ZrUtil/ZrWpts.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSet>
#include <QTextCodec>
#include <QXmlStreamReader>

#include <memory>
#include <utility>

namespace {

constexpr int PieceSize = 1 << 16; ///< bytes of a file read at once

/// \p bytes without the mark of their encoding; UTF-16, which spreadsheets write, as UTF-8.
QByteArray AsUtf8(const QByteArray& bytes)
{
    const QTextCodec* codec = QTextCodec::codecForUtfText(bytes, nullptr);
    if (!codec)
        return bytes;
    if (bytes.startsWith("\xEF\xBB\xBF"))
        return bytes.mid(3); // not decoded: what is no UTF-8 has its own rules in the list
    return codec->toUnicode(bytes).toUtf8();
}

/// The name of the first element, without its prefix.
QString RootOf(const QByteArray& xml)
{
    QXmlStreamReader reader(xml);
    return reader.readNextStartElement() ? reader.name().toString() : QString();
}

/// The line where XML that must be UTF-8 is none; 0 when it is. Qt calls it line 1.
int LineOfBadUtf8(const QByteArray& xml, const QByteArray& head)
{
    static const QRegularExpression declared(
        QStringLiteral("^<\\?xml[^>]*\\sencoding\\s*=\\s*[\"'](?!utf-8)"),
        QRegularExpression::CaseInsensitiveOption);
    return declared.match(QString::fromLatin1(head)).hasMatch() ? 0 : ZrTextLines::OfBadUtf8(xml);
}

QString NumberOf(int number, const ZrWpt& wpt)
{
    return wpt.Name().isEmpty() ? QStringLiteral("waypoint %1").arg(number)
                                : QStringLiteral("waypoint %1 (%2)").arg(number).arg(wpt.Name());
}

QString TooManyWaypoints()
{
    return QCoreApplication::translate("ZrRouteFile", "more than %1 waypoints")
        .arg(ZrRouteFile::MaxWaypoints);
}

/// Why a form of a position cannot hold \p route; empty when it can.
QString CheckPositions(const ZrWpts& route)
{
    int number = 1;
    QString error;
    for (ZrListPos* pos = route.GetHeadPos(); pos; ++number) {
        const ZrWpt& wpt = *route.GetNext(pos);
        if (!ZrGeoShapes::Check({wpt.lat, wpt.lng}, error))
            return NumberOf(number, wpt) + QLatin1String(": ") + error;
    }
    return error;
}

} // namespace

/// A file as far as it can be read without a word to the process.
struct ZrRouteFile::Content
{
    ZrGeoShapes shapes; ///< unless it is a route of a form of our own
    bool isRoute = false;
    ZrWpts route; ///< of settings
    QJsonObject settings;
    std::unique_ptr<ZrXmlStore> store; ///< null unless it is one
};

ZrRouteFile::eFormat ZrRouteFile::FormatOf(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("json"))
        return Settings;
    if (suffix == QLatin1String("xml"))
        return Store;
    if (suffix == QLatin1String("gpx"))
        return Gpx;
    if (suffix == QLatin1String("kml"))
        return Kml;
    return suffix == QLatin1String("geojson") ? GeoJson : List;
}

bool ZrRouteFile::Fail(const QString& reason)
{
    m_error = reason;
    return false;
}

bool ZrRouteFile::FailIn(const QString& path)
{
    return Fail(path + QLatin1String(": ") + m_error);
}

bool ZrRouteFile::ReadBytes(const QString& path, QByteArray& bytes)
{
    const QString tooLarge
        = QCoreApplication::translate("ZrRouteFile", "too large for a route (more than 64 MiB)");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Fail(file.errorString());
    if (file.size() > MaxSize)
        return Fail(tooLarge);
    // In pieces: devices have no size, and room for the largest file would be cleared for every small one.
    for (QByteArray piece = file.read(PieceSize); !piece.isEmpty() && bytes.size() <= MaxSize;
         piece = file.read(PieceSize))
        bytes += piece;
    if (file.error() != QFileDevice::NoError)
        return Fail(file.errorString());
    return bytes.size() > MaxSize ? Fail(tooLarge) : true;
}

bool ZrRouteFile::ParseJson(const QByteArray& bytes)
{
    QJsonParseError parse;
    const QJsonObject root = QJsonDocument::fromJson(bytes, &parse).object();
    if (parse.error != QJsonParseError::NoError)
        return Fail(QStringLiteral("line %1: %2")
                        .arg(ZrTextLines::OfOffset(bytes, parse.offset))
                        .arg(parse.errorString()));
    Content& content = *m_content;
    content.isRoute = ZrRouteSettings::Is(root);
    if (!content.isRoute)
        return ZrRouteGeoJson::Read(root, bytes, content.shapes, m_error);
    if (root.value(QLatin1String("waypoints")).toArray().size() > MaxWaypoints)
        return Fail(TooManyWaypoints());
    content.settings = root;
    return ZrRouteSettings::ReadRoute(root, bytes, content.route, m_error);
}

/// Fills the content: the route, when the file is one of our forms with a route in it, or else the shapes.
bool ZrRouteFile::Parse(const QByteArray& bytes)
{
    m_error.clear();
    m_warnings.clear();
    m_content = std::make_shared<Content>();
    ZrGeoShapes& shapes = m_content->shapes;
    const QByteArray text = AsUtf8(bytes);
    const QByteArray head = text.left(4096).trimmed();
    if (head.isEmpty() && text.trimmed().isEmpty())
        return Fail(QCoreApplication::translate("ZrRouteFile", "the file is empty"));
    if (head.startsWith('{') || head.startsWith('['))
        return ParseJson(text);
    if (head.startsWith("PK\x03\x04"))
        return Fail(QCoreApplication::translate("ZrRouteFile", "an archive (KMZ?), to be unpacked first"));
    if (!head.startsWith('<'))
        return ZrRouteTab::Read(text, shapes, m_error);
    const QString root = RootOf(bytes); // of what was read: XML names its encoding
    const auto isRoot = [&](const char* name) {
        return root == QLatin1String(name)
            || (root.isEmpty() && head.contains(QByteArray("<") + name)); // damaged
    };
    if (isRoot("gpx") || isRoot("kml")) {
        if (const int line = LineOfBadUtf8(text, head))
            return Fail(QCoreApplication::translate(
                "ZrRouteFile", "line %1: no UTF-8, and no other encoding is declared")
                            .arg(line));
        return isRoot("gpx") ? ZrRouteGpx::Read(bytes, shapes, m_error)
                             : ZrRouteKml::Read(bytes, shapes, m_error);
    }
    m_content->isRoute = true;
    m_content->store = std::make_unique<ZrXmlStore>(false);
    return ZrRouteStore::Load(bytes, *m_content->store, m_error);
}

bool ZrRouteFile::FromShapes(const ZrGeoShapes& shapes, ZrWpts& route)
{
    // In our KML and GeoJSON the line only joins the points.
    const bool isOurs = shapes.route.contains(QLatin1String("linked"));
    const bool isLine = !shapes.lines.empty() && !(isOurs && !shapes.points.empty());
    const std::vector<ZrShapePoint>& points = isLine ? shapes.lines.front().points : shapes.points;
    if (shapes.lines.size() > 1)
        m_warnings << QCoreApplication::translate("ZrRouteFile", "of %1 routes and lines the first was taken")
                          .arg(shapes.lines.size());
    if (isLine && !shapes.points.empty())
        m_warnings << QCoreApplication::translate("ZrRouteFile", "points beside the line were left out: %1")
                          .arg(shapes.points.size());
    if (!shapes.areas.empty())
        m_warnings
            << QCoreApplication::translate("ZrRouteFile", "areas were left out: %1").arg(shapes.areas.size());
    if (points.size() > static_cast<std::size_t>(MaxWaypoints))
        return Fail(TooManyWaypoints());

    route.linked = isLine;
    if (isLine)
        route.prefix = shapes.lines.front().name;
    ZrRouteFields::Apply(isLine ? shapes.lines.front().route : shapes.route, route);
    QSet<QUuid> uuids;
    for (const ZrShapePoint& point : points) {
        auto wpt = std::make_unique<ZrWpt>();
        const QUuid fresh = wpt->uuid;
        ZrRouteFields::Apply(point.fields, *wpt);
        if (wpt->uuid.isNull() || uuids.contains(wpt->uuid)) // a line copied by hand
            wpt->uuid = fresh;
        uuids.insert(wpt->uuid);
        wpt->name = point.name;
        wpt->lat = point.position.lat;
        wpt->lng = point.position.lng;
        route.AddTail(wpt.get());
        wpt.release();
    }
    return true;
}

bool ZrRouteFile::FromBytes(const QByteArray& bytes, ZrWpts& route)
{
    return Parse(bytes) && Conclude(route);
}

/// Makes the route of the content, as it is there.
bool ZrRouteFile::TakeContent(ZrWpts& route, QJsonObject& presets)
{
    const std::shared_ptr<Content> content = std::move(m_content);
    ZrWpts& read = content->route;
    m_warnings = content->shapes.warnings;
    if (!content->isRoute && !FromShapes(content->shapes, read))
        return false;
    if (content->store)
        ZrRouteStore::FinishBare(*content->store, read);
    if (read.IsEmpty())
        return Fail(QCoreApplication::translate("ZrRouteFile", "no route and no waypoints in it"));
    presets = ZrRouteSettings::PresetsOf(content->settings);
    route = read;
    return true;
}

/// Makes the route of the content, and computes what it computes.
bool ZrRouteFile::Conclude(ZrWpts& route)
{
    QJsonObject presets;
    if (!TakeContent(route, presets))
        return false;
    ZrRouteSettings::ReadPresets(presets);
    route.UpdatePseudo();
    route.Recalc(true);
    return true;
}

bool ZrRouteFile::Load(const QString& path)
{
    m_error.clear();
    m_warnings.clear();
    m_content.reset();
    m_path = path;
    QByteArray bytes;
    if (ReadBytes(path, bytes) && Parse(bytes))
        return true;
    m_content.reset();
    return FailIn(path);
}

bool ZrRouteFile::LoadBytes(const QByteArray& bytes)
{
    m_path.clear();
    if (Parse(bytes))
        return true;
    m_content.reset();
    return false;
}

bool ZrRouteFile::Finish(ZrWpts& route)
{
    m_error.clear();
    return (m_content && Conclude(route)) || FailIn(m_path);
}

bool ZrRouteFile::FinishBare(ZrWpts& route, QJsonObject& presets)
{
    m_error.clear();
    return (m_content && TakeContent(route, presets)) || FailIn(m_path);
}

bool ZrRouteFile::Read(const QString& path, ZrWpts& route)
{
    return Load(path) && Finish(route);
}

bool ZrRouteFile::ShapesOf(const ZrWpts& route, ZrGeoShapes& shapes)
{
    const QString error = CheckPositions(route);
    if (!error.isEmpty())
        return Fail(error);
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt& wpt = *route.GetNext(pos);
        shapes.points.push_back({{wpt.lat, wpt.lng}, wpt.name, ZrRouteFields::Of(wpt)});
    }
    return true;
}

bool ZrRouteFile::ReadShapes(const QString& path, ZrGeoShapes& shapes)
{
    return Load(path) && FinishShapes(shapes);
}

bool ZrRouteFile::FinishShapes(ZrGeoShapes& shapes)
{
    m_error.clear();
    const std::shared_ptr<Content> content = std::move(m_content);
    if (!content)
        return FailIn(m_path);
    if (content->store)
        ZrRouteStore::Finish(*content->store, content->route);
    if (content->isRoute && !ShapesOf(content->route, content->shapes))
        return FailIn(m_path);
    m_warnings = content->shapes.warnings;
    shapes = std::move(content->shapes);
    return true;
}

bool ZrRouteFile::ToBytes(eFormat format, const ZrWpts& route, QByteArray& bytes)
{
    m_warnings.clear();
    m_error = format == Settings || format == Store ? QString() : CheckPositions(route);
    if (!m_error.isEmpty())
        return false;
    switch (format) {
    case Settings:
        bytes = ZrRouteSettings::Write(route);
        break;
    case Store:
        bytes = ZrRouteStore::Write(route, m_warnings);
        break;
    case Gpx:
        bytes = ZrRouteGpx::Write(route);
        break;
    case Kml:
        bytes = ZrRouteKml::Write(route);
        break;
    case GeoJson:
        bytes = ZrRouteGeoJson::Write(route);
        break;
    case List:
        bytes = ZrRouteTab::Write(route);
        break;
    }
    return true;
}

bool ZrRouteFile::Write(const QString& path, eFormat format, const ZrWpts& route)
{
    QByteArray bytes;
    if (!ToBytes(format, route, bytes))
        return FailIn(path);
    if (bytes.size() > MaxSize) {
        Fail(QCoreApplication::translate(
            "ZrRouteFile", "the route would take more than 64 MiB, which could not be read again"));
        return FailIn(path);
    }
    return zr::replace_file(path, bytes, &m_error);
}
