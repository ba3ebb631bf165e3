#pragma once

#include "CliTarget.h"
#include "ZrKit/planning/ZrArea.h"
#include "ZrKit/planning/ZrRouteFile.h"
#include "ZrUtil/ZrTypes.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

class ZrWpts;

namespace CLI {
class App;
}

/// What the verbs for routes have in common: the files that they read and write.
namespace cli {

/// Reads a route; what the file holds besides is told as a warning. Returns the exit code, and complains
/// unless it is 0.
///
/// A settings file brings the three preset speeds along, which are those of the whole process: the route that
/// matters is read last.
int read_route(const QString& path, ZrWpts& route);

/// Reads areas, to be appended to \p areas. Returns the exit code, and complains unless it is 0.
int read_areas(const QString& path, std::vector<ZrArea>& areas);

/// The number of waypoints.
u64 count(const ZrWpts& route);

/// Tells warnings about a file.
void warn(const QString& path, const QStringList& warnings);

/// Prints "Name        value".
void print_field(const char* name, const QString& value);

/// The options of a verb that writes a route.
struct RouteOptions
{
    std::string out;
    std::string form; ///< empty: the ending of `out` tells it
    bool force = false;
    bool json = false;

    QString Out() const { return QString::fromStdString(out); }
};

/// Adds `--to`, `--force` and `--json`. The argument OUT is the verb's own.
void add_route_options(CLI::App& verb, RouteOptions& options);

/// The endings of the forms, for help texts.
extern const char* const routeEndings;

} // namespace cli

/// A file that a route is written to.
class CliRouteTarget
{
public:
    /// Checks the form and the place before anything is touched. Returns the exit code, and complains unless
    /// it is 0.
    int Prepare(const QString& out, const cli::RouteOptions& options, const QStringList& inputs);

    /// Writes the route and puts the file in its place; what its form cannot hold is told as a warning.
    /// Returns the exit code, and complains unless it is 0.
    int Write(const ZrWpts& route);

    QString FormName() const; ///< "gpx"

    u64 Bytes() const { return m_bytes; } ///< of the file written

    /// `out`, `form`, `bytes` and `warnings` of a JSON result.
    QJsonObject Json() const;

    /// "OUT: 12 waypoints, gpx, 3.4 KiB (3456 bytes)".
    QString Text(u64 waypoints) const;

private:
    QString m_out; ///< as on the command line
    ZrRouteFile::eFormat m_form = ZrRouteFile::Settings;
    CliTarget m_target;
    QStringList m_warnings;
    u64 m_bytes = 0;
};
