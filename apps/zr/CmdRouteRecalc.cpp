// zr route recalc: labels, grid positions, turns and distances of a route computed anew.

#include "CmdRouteRecalc.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliNumber.h"
#include "CliOutput.h"
#include "CliRoute.h"
#include "CliText.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrWpts.h"

#include <QFile>
#include <QJsonDocument>

#include <cmath>
#include <iterator>
#include <optional>

namespace {

struct Options : cli::RouteOptions
{
    std::string in;
};

constexpr double tolerance = 1e-6; ///< metres or radians: what computing anew may change by rounding

bool IsSame(double a, double b)
{
    return std::fabs(a - b) <= tolerance || (std::isnan(a) && std::isnan(b));
}

/// Whether what the route computes is the same in both.
bool IsSame(const ZrWpt& a, const ZrWpt& b)
{
    static constexpr double ZrWpt::*computed[]
        = {&ZrWpt::x, &ZrWpt::y, &ZrWpt::q, &ZrWpt::r, &ZrWpt::speed, &ZrWpt::ricX, &ZrWpt::ricY, &ZrWpt::rit,
            &ZrWpt::tp1X, &ZrWpt::tp1Y, &ZrWpt::tp1Q, &ZrWpt::tp2X, &ZrWpt::tp2Y, &ZrWpt::tp2Q};
    for (double ZrWpt::*member : computed) {
        if (!IsSame(a.*member, b.*member))
            return false;
    }
    return a.pseudo == b.pseudo;
}

/// The number of waypoints whose computed values in the file are other ones than those of \p route, which was
/// read from it. Nothing for the forms that hold none.
std::optional<u64> CountStale(const QString& path, const ZrWpts& route)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray bytes = file.readAll();
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes.remove(0, 3);
    QJsonObject root = QJsonDocument::fromJson(bytes).object();
    if (!root.contains(QStringLiteral("waypoints")))
        return {};
    ZrWpts stored;
    zr::ZrSetModule module(zr::ePersistLoading, root);
    stored.settings(module);
    u64 stale = 0;
    ZrListPos* pos = route.GetHeadPos();
    for (ZrListPos* old = stored.GetHeadPos(); old && pos;)
        stale += IsSame(*stored.GetNext(old), *route.GetNext(pos)) ? 0 : 1;
    return stale;
}

QString StaleText(std::optional<u64> stale)
{
    if (!stale)
        return QStringLiteral("the form of IN holds no computed values");
    return *stale == 0
        ? QStringLiteral("nothing was out of date")
        : cli::count_text(*stale, "waypoint was", "waypoints were") + QStringLiteral(" out of date");
}

int Run(const Options& options)
{
    const QString in = QString::fromStdString(options.in);
    CliRouteTarget target;
    if (const int code = target.Prepare(options.Out(), options, {in}))
        return code;
    // Reading recomputes.
    ZrWpts route;
    if (const int code = cli::read_route(in, route))
        return code;
    const std::optional<u64> stale = CountStale(in, route);
    if (const int code = target.Write(route))
        return code;
    const ZrRoutePath path(route);
    if (!options.json) {
        cli::print_field("Written", target.Text(cli::count(route)));
        cli::print_field("Path",
            QStringLiteral("%1 over the turn arcs, %2")
                .arg(cli::metres_text(path.Length()), cli::duration_text(path.Duration())));
        cli::print_field("Changed", StaleText(stale));
        return exDone;
    }
    QJsonObject result = target.Json();
    result.insert(QStringLiteral("in"), in);
    result.insert(QStringLiteral("waypoints"), cli::json_count(cli::count(route)));
    result.insert(QStringLiteral("path_length"), cli::json_number(path.Length()));
    result.insert(QStringLiteral("path_duration"), cli::json_number(path.Duration()));
    result.insert(QStringLiteral("stale"), stale ? cli::json_count(*stale) : QJsonValue());
    CliOutput::Get().Json(result);
    return exDone;
}

} // namespace

void AddRouteRecalc(CLI::App& route, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(route, run, "recalc",
        "Compute a route anew\n"
        "\n"
        "Labels, grid positions, inherited speeds, turns and distances along the route are "
        "computed from positions, radii and types of speed, as applications do after an "
        "edit: for files that were edited by hand or by a script. The radius of the first "
        "and of the last waypoint becomes 0.",
        "Units: lengths in metres. Of a settings file (.json) it is told how many\n"
        "waypoints had other values.\n"
        "\n"
        "Example:\n"
        "  zr route recalc edited.json plan.json");
    cli::add_argument(*verb, "IN", options->in, "Route to read");
    cli::add_argument(*verb, "OUT", options->out, "File to write");
    cli::add_route_options(*verb, *options);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
