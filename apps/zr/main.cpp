// The command-line tool of the library: `zr log VERB`, `zr route VERB`, `zr geo VERB`. Each verb has a file
// of its own.

#include "CliExit.h"
#include "CliHelp.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliRun.h"
#include "CliSignals.h"
#include "CmdGeo.h"
#include "CmdLogCensus.h"
#include "CmdLogCheck.h"
#include "CmdLogCut.h"
#include "CmdLogDump.h"
#include "CmdLogEvents.h"
#include "CmdLogFilter.h"
#include "CmdLogImport.h"
#include "CmdLogIndex.h"
#include "CmdLogInfo.h"
#include "CmdLogItems.h"
#include "CmdLogPlan.h"
#include "CmdLogRecord.h"
#include "CmdLogRecover.h"
#include "CmdLogSeek.h"
#include "CmdLogSimulate.h"
#include "CmdLogTrack.h"
#include "CmdMesh.h"
#include "CmdRouteCheck.h"
#include "CmdRouteConvert.h"
#include "CmdRouteInfo.h"
#include "CmdRouteRecalc.h"
#include "CmdRouteResume.h"
#include "CmdRouteSplit.h"
#include "CmdRouteSurvey.h"
#include "CmdSonar.h"

#include <QCoreApplication>
#include <QTextCodec>

#include <clocale>
#include <new>

namespace {

void AddLog(CLI::App& app, CliRun& run)
{
    CLI::App* log = app.add_subcommand("log", "Look at data logs, take parts of them, make them");
    log->group("Verbs");
    log->require_subcommand(0, 1);
    log->footer("Example:\n"
                "  zr log info dive.log\n"
                "\n"
                "zr log VERB --help describes a verb.");
    AddLogInfo(*log, run);
    AddLogItems(*log, run);
    AddLogDump(*log, run);
    AddLogCensus(*log, run);
    AddLogCut(*log, run);
    AddLogFilter(*log, run);
    AddLogImport(*log, run);
    AddLogRecord(*log, run);
    AddLogCheck(*log, run);
    AddLogRecover(*log, run);
    AddLogIndex(*log, run);
    AddLogEvents(*log, run);
    AddLogTrack(*log, run);
    AddLogSeek(*log, run);
    AddLogPlan(*log, run);
    AddLogSimulate(*log, run);
}

void AddRoute(CLI::App& app, CliRun& run)
{
    CLI::App* route = app.add_subcommand("route", "Look at routes, plan surveys, check and convert them");
    route->group("Verbs");
    route->require_subcommand(0, 1);
    route->footer("Example:\n"
                  "  zr route info plan.gpx\n"
                  "\n"
                  "zr route VERB --help describes a verb.");
    AddRouteInfo(*route, run);
    AddRouteConvert(*route, run);
    AddRouteSurvey(*route, run);
    AddRouteCheck(*route, run);
    AddRouteRecalc(*route, run);
    AddRouteSplit(*route, run);
    AddRouteResume(*route, run);
}

void Describe(CLI::App& app)
{
    app.name("zr");
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", "zr " ZR_VERSION, "Show the version and exit");
    app.footer("Results go to standard output, messages to standard error.\n"
               "\n"
               "Exit codes:\n"
               "  0    done\n"
               "  1    wrong usage\n"
               "  2    the input cannot be read or is damaged; route check: it has errors\n"
               "  3    the output cannot be written\n"
               "  4    recover: done, but something was lost\n"
               "  130  interrupted (128 and the number of the signal)\n"
               "\n"
               "Example:\n"
               "  zr log info dive.log");
}

/// Help and version go to standard output; what is wrong goes to standard error.
int ParseFailed(const CLI::App& app, const CLI::ParseError& error)
{
    std::ostringstream out;
    std::ostringstream err;
    const int code = app.exit(error, out, err);
    CliOutput::Get().Write(QByteArray::fromStdString(out.str()));
    if (code == 0)
        return CliOutput::Get().Finish(exDone);
    const QString text = QString::fromStdString(err.str()).trimmed();
    return cli::fail(exUsage, text);
}

/// What to say when the command line ends before a verb.
QString MissingVerb(const CLI::App& app)
{
    QString command = QString::fromStdString(app.get_name());
    for (const CLI::App* sub : app.get_subcommands())
        command += QLatin1Char(' ') + QString::fromStdString(sub->get_name());
    return QStringLiteral("No verb is given; %1 --help lists them").arg(command);
}

/// Carries out the verb. Only memory can run short unexpectedly, for a payload of gigabytes.
int Carry(const CliRun& run)
{
    try {
        return run.action();
    } catch (const std::bad_alloc&) {
        return cli::fail(exBadInput, QStringLiteral("There is not enough memory for this"));
    }
}

} // namespace

int main(int argc, char** argv)
{
    CliOutput::ReserveStreams();
    cli::install_signals();
    QCoreApplication qt(argc, argv);
    // Paths are UTF-8 and numbers have a point, whatever the locale says.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    std::setlocale(LC_ALL, "C");
    cli::install_message_handler(false);

    CliRun run;
    CLI::App app("Works with the data logs and the routes of survey missions.");
    cli::set_help_layout(app);
    Describe(app);
    AddLog(app, run);
    AddGeo(app, run);
    AddRoute(app, run);
    AddSonar(app, run);
    AddMesh(app, run);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return ParseFailed(app, error);
    }
    if (!run.action)
        return cli::fail(exUsage, MissingVerb(app));
    cli::install_message_handler(run.verbose);
    return CliOutput::Get().Finish(Carry(run));
}
