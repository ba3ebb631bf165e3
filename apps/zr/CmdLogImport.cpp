// zr log import: foreign files merged into one log.

#include "CmdLogImport.h"

#include "CliExit.h"
#include "CliExport.h"
#include "CliHelp.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliProgress.h"
#include "CliSignals.h"
#include "CliTarget.h"
#include "CliText.h"
#include "CliTypes.h"
#include "ZrKit/import/ZrImportSession.h"

#include <QDate>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

struct Options
{
    std::vector<std::string> files; ///< the last one is the log to write
    std::string format = "auto";
    std::string date;
    std::string report; ///< empty: none
    std::string issues = "10";
    bool compress = false;
    bool force = false;
    bool json = false;
};

std::string CheckFormat(const std::string& text)
{
    QStringList names = ZrImporter::Formats();
    names.prepend(QStringLiteral("auto"));
    if (names.contains(QString::fromStdString(text)))
        return {};
    return "\"" + text + "\" is no format: " + names.join(QStringLiteral(", ")).toStdString();
}

QDate ParseDate(const std::string& text)
{
    return QDate::fromString(QString::fromStdString(text), QStringLiteral("yyyy-MM-dd"));
}

std::string CheckDate(const std::string& text)
{
    return ParseDate(text).isValid() ? std::string()
                                     : "\"" + text + "\" is no date: YYYY-MM-DD, as in 2022-05-30";
}

QJsonObject CountsObject(const QMap<QString, u64>& counts)
{
    QJsonObject object;
    for (auto it = counts.begin(); it != counts.end(); ++it)
        object.insert(it.key(), cli::json_count(it.value()));
    return object;
}

QJsonObject FileObject(const ZrImportReport& report)
{
    QJsonArray issues;
    for (const ZrImportReport::Issue& issue : report.issues) {
        issues << QJsonObject{
            {report.byLine ? QStringLiteral("line") : QStringLiteral("offset"), cli::json_count(issue.place)},
            {QStringLiteral("text"), issue.text}};
    }
    const bool timed = report.items > 0;
    return {
        {QStringLiteral("path"), report.path},
        {QStringLiteral("format"), report.format},
        {QStringLiteral("bytes"), cli::json_count(report.bytes)},
        {QStringLiteral("records"), cli::json_count(report.records)},
        {QStringLiteral("items"), cli::json_count(report.items)},
        {QStringLiteral("first_time"), timed ? cli::json_number(report.firstTime) : QJsonValue()},
        {QStringLiteral("last_time"), timed ? cli::json_number(report.lastTime) : QJsonValue()},
        {QStringLiteral("backwards"), cli::json_count(report.backwards)},
        {QStringLiteral("issue_count"), cli::json_count(report.issueCount)},
        {QStringLiteral("issues"), issues},
        {QStringLiteral("ignored"), CountsObject(report.ignored)},
        {QStringLiteral("notes"), CountsObject(report.notes)},
    };
}

QJsonObject ResultObject(const ZrImportSession& session, const QString& out, bool done)
{
    QJsonArray files;
    for (const ZrImportReport& report : session.Reports())
        files << FileObject(report);
    return {
        {QStringLiteral("out"), out},
        {QStringLiteral("items"), cli::json_count(done ? session.Items() : 0)},
        {QStringLiteral("bytes"), cli::json_count(done ? session.Bytes() : 0)},
        {QStringLiteral("error"), done ? QJsonValue() : QJsonValue(session.Error())},
        {QStringLiteral("files"), files},
    };
}

void PrintField(const char* name, const QString& value)
{
    CliOutput::Get().Line(QStringLiteral("  ") + QString::fromLatin1(name).leftJustified(10) + value);
}

void PrintCounts(const char* name, const QMap<QString, u64>& counts)
{
    for (auto it = counts.begin(); it != counts.end(); ++it) {
        PrintField(
            name, QStringLiteral("%1 (%2)").arg(it.key(), cli::count_text(it.value(), "time", "times")));
        name = "";
    }
}

void PrintIssues(const ZrImportReport& report, u64 most)
{
    if (report.issueCount == 0)
        return;
    PrintField("Issues", QString::number(report.issueCount));
    u64 shown = 0;
    for (const ZrImportReport::Issue& issue : report.issues) {
        if (shown == most)
            break;
        ++shown;
        CliOutput::Get().Line(QStringLiteral("    ") + report.IssueText(issue));
    }
    if (report.issueCount > shown)
        CliOutput::Get().Line(QStringLiteral("    … and %1 more").arg(report.issueCount - shown));
}

void PrintReport(const ZrImportReport& report, u64 mostIssues)
{
    CliOutput::Get().Line(
        report.format.isEmpty() ? report.path : QStringLiteral("%1: %2").arg(report.path, report.format));
    PrintField("Read",
        cli::count_text(report.records, "record", "records") + QStringLiteral(", ")
            + cli::size_text_both(report.bytes));
    PrintField("Items", QString::number(report.items));
    if (report.items > 0) {
        PrintField("First", cli::time_text(report.firstTime));
        PrintField("Last", cli::time_text(report.lastTime));
    }
    if (report.backwards > 0) {
        PrintField("Clock",
            cli::count_text(report.backwards, "item", "items")
                + QStringLiteral(" earlier than the one before"));
    }
    PrintIssues(report, mostIssues);
    PrintCounts("Ignored", report.ignored);
    PrintCounts("Notes", report.notes);
    CliOutput::Get().Line(QString());
}

int WriteReport(CliTarget& target, const QJsonObject& object)
{
    if (const int code = target.CreateTemporary())
        return code;
    QFile file(target.TemporaryPath());
    const QByteArray text = QJsonDocument(object).toJson();
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || file.write(text) != text.size())
        return target.FailWriting();
    file.close();
    return target.Commit();
}

int ExitCode(ZrImportSession::eResult result)
{
    switch (result) {
    case ZrImportSession::Done:
        return exDone;
    case ZrImportSession::BadInput:
        return exBadInput;
    case ZrImportSession::BadOutput:
        return exBadOutput;
    case ZrImportSession::Cancelled:
        break;
    }
    return cli::interrupt_code();
}

ZrImportSession::eResult Import(
    ZrImportSession& session, const Options& options, const QStringList& inputs, const QString& out)
{
    session.format = QString::fromStdString(options.format);
    session.date = ParseDate(options.date);
    session.compress = options.compress;
    CliProgress progress(QStringLiteral("Importing"));
    const cli::CancelOnInterrupt stop(session.cancel);
    return session.Run(inputs, out, &progress);
}

/// The files of the command line, checked. Each function returns the exit code, and complains unless it is 0.
struct Files
{
    QStringList inputs;
    QString out;
    CliTarget log;
    CliTarget report;

    int Prepare(const Options& options)
    {
        for (const std::string& file : options.files)
            inputs << QString::fromStdString(file);
        out = inputs.takeLast();
        for (const QString& input : inputs) {
            if (const int code = cli::check_input(input))
                return code;
        }
        if (const int code = log.Prepare(out, options.force, inputs))
            return code;
        return options.report.empty() ? int(exDone) : PrepareReport(options);
    }

private:
    int PrepareReport(const Options& options)
    {
        const QString path = QString::fromStdString(options.report);
        if (const int code = report.Prepare(path, options.force, inputs + QStringList(out)))
            return code;
        // Neither exists yet, perhaps; then their names are all there is to compare.
        if (QFileInfo(report.Path()).absoluteFilePath() != QFileInfo(log.Path()).absoluteFilePath())
            return exDone;
        return cli::fail(exUsage, path + QStringLiteral(": The report is the same file as the log"));
    }
};

int Run(const Options& options)
{
    Files files;
    if (const int code = files.Prepare(options))
        return code;
    ZrImportSession session;
    const ZrImportSession::eResult result = Import(session, options, files.inputs, files.log.Path());
    if (result == ZrImportSession::Cancelled)
        return ExitCode(result);

    const bool done = result == ZrImportSession::Done;
    const QJsonObject object = ResultObject(session, files.out, done);
    if (options.json) {
        CliOutput::Get().Json(object);
    } else {
        for (const ZrImportReport& report : session.Reports())
            PrintReport(report, std::stoull(options.issues));
        if (done)
            cli::print_written(files.out, session.Items(), session.Bytes(), {}, false);
    }
    if (!done)
        cli::complain(session.Error());
    if (!options.report.empty()) {
        if (const int code = WriteReport(files.report, object))
            return code;
    }
    return ExitCode(result);
}

} // namespace

void AddLogImport(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "import",
        "Make a log from files of other systems, merged by time\n"
        "\n"
        "The items of the first file get source 1, those of the second source 2, and so\n"
        "on. Damaged lines and packets are left out and reported; they do not end the\n"
        "import.",
        "Formats: xtf (side-scan sonar), glider (glider navigation, CSV), nmea (NMEA 0183\n"
        "sentences), gnss (receiver positions as text); auto finds out by content.\n"
        "Units: dates and times are UTC.\n"
        "\n"
        "Examples:\n"
        "  zr log import line1.xtf line1.log --compress --report line1.json\n"
        "  zr log import --date 2022-05-30 gnss.txt sonar.nmea dive.log");
    verb->add_option("FILE", options->files, "Files to read, and as the last one the log to write")
        ->option_text("FILE... OUT")
        ->required()
        ->expected(2, CLI::detail::expected_max_vector_size);
    cli::add_value(*verb, "--format", options->format, "NAME", CheckFormat,
        "Format of the files: auto, xtf, glider, nmea or gnss; auto unless given");
    cli::add_value(*verb, "--date", options->date, "YYYY-MM-DD", CheckDate,
        "UTC date of data that carry only a time of day");
    verb->add_flag("--compress", options->compress, "Store the payloads of sonar pings compressed");
    cli::add_value(*verb, "--report", options->report, "FILE.json", nullptr,
        "Write the whole report, with the issues of each file, as JSON");
    cli::add_value(*verb, "--issues", options->issues, "N", cli::check_count,
        "Show at most N issues of each file; 10 unless given");
    verb->add_flag("--force", options->force, "Replace OUT and the report when they exist");
    verb->add_flag("--json", options->json, "Print the result as one JSON object");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
