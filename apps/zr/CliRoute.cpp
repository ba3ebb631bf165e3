#include "CliRoute.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliText.h"
#include "ZrKit/planning/ZrAreaFile.h"
#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrUtil/ZrWpts.h"

#include <QFileInfo>
#include <QJsonArray>

#include <iterator>

namespace {

/// A form of route files.
struct Form
{
    const char* name; ///< for `--to`
    const char* ending; ///< of file names, with the dot, lower case
    ZrRouteFile::eFormat format;
};

// Of several endings of a form the first is the usual one.
constexpr Form forms[] = {
    {"settings", ".json", ZrRouteFile::Settings},
    {"store", ".xml", ZrRouteFile::Store},
    {"gpx", ".gpx", ZrRouteFile::Gpx},
    {"kml", ".kml", ZrRouteFile::Kml},
    {"geojson", ".geojson", ZrRouteFile::GeoJson},
    {"list", ".txt", ZrRouteFile::List},
    {"list", ".tsv", ZrRouteFile::List},
    {"list", ".tab", ZrRouteFile::List},
};

QString FormNames()
{
    QStringList names;
    for (const Form& form : forms)
        names << QLatin1String(form.name);
    names.removeDuplicates();
    return names.join(QStringLiteral(", "));
}

std::string CheckForm(const std::string& text)
{
    for (const Form& form : forms) {
        if (text == form.name)
            return {};
    }
    return "\"" + text + "\" is no form of routes: " + FormNames().toStdString();
}

/// The form that \p name says, or, when that is empty, the ending of \p out; null when neither does.
const Form* FindForm(const std::string& name, const QString& out)
{
    for (const Form& form : forms) {
        if (name.empty() ? out.endsWith(QLatin1String(form.ending), Qt::CaseInsensitive) : name == form.name)
            return &form;
    }
    return nullptr;
}

bool HasAllPositions(const ZrWpts& route)
{
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt& wpt = *route.GetNext(pos);
        if (!ZrGeoPoint{wpt.lat, wpt.lng}.IsValid())
            return false;
    }
    return true;
}

} // namespace

const char* const cli::routeEndings = ".json, .xml, .gpx, .kml, .geojson, .txt, .tsv or .tab";

int cli::read_route(const QString& path, ZrWpts& route)
{
    if (const int code = check_input(path))
        return code;
    ZrRouteFile file;
    bool read = false;
    {
        const EndOnInterrupt stop;
        read = file.Read(path, route);
    }
    if (!read)
        return fail(exBadInput, file.Error());
    warn(path, file.Warnings());
    return exDone;
}

int cli::read_areas(const QString& path, std::vector<ZrArea>& areas)
{
    if (const int code = check_input(path))
        return code;
    ZrAreaFile file;
    std::vector<ZrArea> read;
    bool done = false;
    {
        const EndOnInterrupt stop;
        done = file.Read(path, read);
    }
    if (!done)
        return fail(exBadInput, file.Error());
    warn(path, file.Warnings());
    areas.insert(areas.end(), std::make_move_iterator(read.begin()), std::make_move_iterator(read.end()));
    return exDone;
}

u64 cli::count(const ZrWpts& route)
{
    return static_cast<u64>(route.GetCount());
}

void cli::warn(const QString& path, const QStringList& warnings)
{
    for (const QString& warning : warnings)
        complain(path + QStringLiteral(": ") + warning);
}

void cli::print_field(const char* name, const QString& value)
{
    CliOutput::Get().Line(QString::fromLatin1(name).leftJustified(12) + value);
}

void cli::add_route_options(CLI::App& verb, RouteOptions& options)
{
    add_value(verb, "--to", options.form, "FORM", CheckForm,
        "Form of OUT, whatever its ending: " + FormNames().toStdString());
    verb.add_flag("--force", options.force, "Replace OUT when it exists");
    verb.add_flag("--json", options.json, "Print the result as one JSON object");
}

int CliRouteTarget::Prepare(const QString& out, const cli::RouteOptions& options, const QStringList& inputs)
{
    m_out = out;
    const Form* const form = FindForm(options.form, out);
    if (!form) {
        return cli::fail(exUsage,
            QStringLiteral("%1: The ending of the name tells no form: %2; or give one with --to")
                .arg(out, QLatin1String(cli::routeEndings)));
    }
    m_form = form->format;
    return m_target.Prepare(out, options.force, inputs);
}

int CliRouteTarget::Write(const ZrWpts& route)
{
    if (const int code = m_target.CreateTemporary())
        return code;
    const QString temporary = m_target.TemporaryPath();
    ZrRouteFile file;
    bool written = false;
    {
        const cli::HoldInterrupts hold;
        written = file.Write(temporary, m_form, route);
    }
    if (!written) {
        // The settings and the store hold whatever a waypoint has; the other forms need its position.
        const bool keepsAll = m_form == ZrRouteFile::Settings || m_form == ZrRouteFile::Store;
        if (keepsAll || HasAllPositions(route))
            return m_target.FailWriting();
        return cli::fail(exBadInput, file.Error().replace(temporary, m_out));
    }
    m_bytes = static_cast<u64>(QFileInfo(temporary).size());
    m_warnings = file.Warnings();
    if (const int code = m_target.Commit())
        return code;
    cli::warn(m_out, m_warnings);
    return exDone;
}

QString CliRouteTarget::FormName() const
{
    for (const Form& form : forms) {
        if (form.format == m_form)
            return QLatin1String(form.name);
    }
    return {};
}

QJsonObject CliRouteTarget::Json() const
{
    return {
        {QStringLiteral("out"), m_out},
        {QStringLiteral("form"), FormName()},
        {QStringLiteral("bytes"), cli::json_count(m_bytes)},
        {QStringLiteral("warnings"), QJsonArray::fromStringList(m_warnings)},
    };
}

QString CliRouteTarget::Text(u64 waypoints) const
{
    return QStringLiteral("%1: %2, %3, %4")
        .arg(m_out, cli::count_text(waypoints, "waypoint", "waypoints"), FormName(),
            cli::size_text_both(m_bytes));
}
