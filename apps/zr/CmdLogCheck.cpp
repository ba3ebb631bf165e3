// zr log check: everything that is wrong with a log, with its position.

#include "CmdLogCheck.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliProgress.h"
#include "CliSignals.h"
#include "CliText.h"
#include "ZrKit/review/ZrLogCheck.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

struct Options
{
    std::string log;
    bool json = false;
};

void PrintJson(const QString& path, const ZrLogCheck& check)
{
    QJsonArray problems;
    for (const ZrLogCheck::Problem& problem : check.Problems()) {
        problems << QJsonObject{
            {QStringLiteral("pos"), cli::json_count(problem.pos)},
            {QStringLiteral("length"), cli::json_count(problem.length)},
            {QStringLiteral("text"), problem.text},
        };
    }
    CliOutput::Get().Json({
        {QStringLiteral("path"), path},
        {QStringLiteral("items"), cli::json_count(check.Items())},
        {QStringLiteral("backward_jumps"), cli::json_count(check.BackwardJumps())},
        {QStringLiteral("problem_count"), cli::json_count(check.ProblemCount())},
        {QStringLiteral("problems"), problems},
    });
}

void PrintText(const QString& path, const ZrLogCheck& check)
{
    CliOutput& output = CliOutput::Get();
    for (const ZrLogCheck::Problem& problem : check.Problems())
        output.Line(QStringLiteral("position %1, %2: %3")
                        .arg(problem.pos)
                        .arg(cli::count_text(problem.length, "byte", "bytes"), problem.text));
    if (check.ProblemCount() > check.Problems().size())
        output.Line(QStringLiteral("… and %1 more").arg(check.ProblemCount() - check.Problems().size()));
    output.Line(QStringLiteral("%1: %2, %3, clock set back %4")
                    .arg(path, cli::count_text(check.Items(), "item", "items"),
                        cli::count_text(check.ProblemCount(), "problem", "problems"),
                        cli::count_text(check.BackwardJumps(), "time", "times")));
}

int Run(const Options& options)
{
    const QString path = QString::fromStdString(options.log);
    if (const int code = cli::check_input(path))
        return code;
    ZrLogCheck check;
    bool done = false;
    {
        CliProgress progress(QStringLiteral("Checking"));
        check.progress = &progress;
        const cli::CancelOnInterrupt stop(check.cancel);
        done = check.Run(path);
        check.progress = nullptr;
    }
    if (!done)
        return cli::interrupted() ? cli::interrupt_code() : cli::fail(exBadInput, check.Error());
    if (options.json)
        PrintJson(path, check);
    else
        PrintText(path, check);
    return check.ProblemCount() == 0 ? exDone : exBadInput;
}

} // namespace

void AddLogCheck(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "check",
        "List everything that is wrong with a log\n"
        "\n"
        "Goes on behind damage. Looks at headers, at payloads that are compressed or of a\n"
        "record type that is known, and at times. The exit code is 2 when there is a problem.",
        "Units: positions and lengths in bytes.\n"
        "\n"
        "Examples:\n"
        "  zr log check dive.log\n"
        "  zr log check dive.log --json");
    cli::add_argument(*verb, "LOG", options->log, "Log to read");
    verb->add_flag("--json", options->json, "Print the result as one JSON object");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
