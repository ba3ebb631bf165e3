// zr log items: one line for each item of a log.

#include "CmdLogItems.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliInput.h"
#include "CliOutput.h"
#include "CliPosition.h"
#include "CliProgress.h"
#include "CliSignals.h"
#include "CliText.h"
#include "CliTypes.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/review/ZrLogScan.h"

#include <QJsonObject>

#include <limits>

namespace {

struct Options
{
    std::string log;
    std::vector<std::string> types;
    std::string source;
    std::string from = "0%";
    std::string limit;
    bool json = false;
};

/// Which items are listed.
struct Selection
{
    std::vector<cli::TypeChoice> types;
    std::optional<u16> source;

    bool Takes(const ZrLogItem& item) const
    {
        return (!source || *source == item.source) && cli::matches_any(types, item.RecType());
    }
};

bool PrintJson(const ZrLogItem& item, u64 pos)
{
    return CliOutput::Get().Json({
        {QStringLiteral("pos"), cli::json_count(pos)},
        {QStringLiteral("type"), item.type},
        {QStringLiteral("sub"), item.sub},
        {QStringLiteral("source"), item.source},
        {QStringLiteral("format"), item.format},
        {QStringLiteral("time"), cli::json_number(item.time)},
        {QStringLiteral("compressed"), item.compressed != 0},
        {QStringLiteral("data_size"), cli::json_count(item.dataSize)},
        {QStringLiteral("stored_size"), cli::json_count(item.storedSize)},
    });
}

/// Lines of columns that are as wide as the log can make them, since they are printed one by one.
class TextLines
{
public:
    explicit TextLines(u64 fileSize)
        : m_posWidth(std::max(3, QString::number(fileSize).size()))
        , m_sizeWidth(std::max(6, std::min(10, m_posWidth)))
    {
    }

    bool PrintTitle() const
    {
        return Print(
            {QStringLiteral("Pos"), QStringLiteral("Type"), QStringLiteral("Sub"), QStringLiteral("Source"),
                QStringLiteral("Format"), QStringLiteral("Stored"), QStringLiteral("Data")},
            QStringLiteral("Time"), QStringLiteral("Packed"), QStringLiteral("Name"));
    }

    bool PrintItem(const ZrLogItem& item, u64 pos) const
    {
        return Print({QString::number(pos), QString::number(item.type), QString::number(item.sub),
                         QString::number(item.source), QString::number(item.format),
                         QString::number(item.storedSize), QString::number(item.dataSize)},
            cli::time_text(item.time), item.compressed != 0 ? QStringLiteral("yes") : QStringLiteral("-"),
            zr::rec_type_name(item.RecType()));
    }

private:
    bool Print(
        const QStringList& numbers, const QString& time, const QString& packed, const QString& name) const
    {
        constexpr int timeWidth = 24;
        const int widths[] = {m_posWidth, 5, 5, 6, 6, m_sizeWidth, m_sizeWidth};
        QString line;
        for (int i = 0; i < numbers.size(); ++i) {
            line += numbers[i].rightJustified(widths[i]) + QStringLiteral("  ");
            if (i == 4)
                line += time.leftJustified(timeWidth) + QStringLiteral("  ");
        }
        line += packed.leftJustified(6) + QStringLiteral("  ") + name;
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        return CliOutput::Get().Line(line);
    }

    int m_posWidth; ///< of the title and of the largest position
    int m_sizeWidth; ///< of the titles and of sizes, which have 32 bits
};

/// Lists the items from where \p scan stands.
void List(ZrLogScan& scan, const Selection& selection, u64 limit, bool json)
{
    const TextLines text(scan.FileSize());
    bool open = json || text.PrintTitle();
    ZrLogItem item;
    u64 pos = 0;
    for (u64 listed = 0; open && listed < limit && scan.Next(item, pos);) {
        if (!selection.Takes(item))
            continue;
        open = json ? PrintJson(item, pos) : text.PrintItem(item, pos);
        ++listed;
    }
}

int Run(const Options& options)
{
    const QString path = QString::fromStdString(options.log);
    if (const int code = cli::check_input(path))
        return code;
    Selection selection;
    for (const std::string& type : options.types)
        selection.types.push_back(*cli::parse_type(QString::fromStdString(type)));
    if (!options.source.empty())
        selection.source = static_cast<u16>(std::stoul(options.source));
    const u64 limit = options.limit.empty() ? std::numeric_limits<u64>::max() : std::stoull(options.limit);
    CliPosition from = CliPosition::FromOption(options.from);
    if (const int code = CliPosition::Resolve(path, {&from}))
        return code;

    CliProgress progress(QStringLiteral("Reading"));
    ZrLogScan scan;
    // A bar between the lines of a listing would only be in the way.
    scan.progress = CliOutput::IsTerminal() ? nullptr : &progress;
    const cli::CancelOnInterrupt stop(scan.cancel);
    if (scan.Open(path) && scan.SeekTo(from.bytes))
        List(scan, selection, limit, options.json);
    if (scan.State() == ZrLogScan::AtEnd || scan.State() == ZrLogScan::Scanning)
        return exDone;
    return cli::fail_scan(path, scan);
}

} // namespace

void AddLogItems(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "items", "List the items of a log, one line each",
        "A type T stands for all its sub-types, T:S for that sub-type alone.\n"
        "\n"
        "Units: positions and sizes in bytes; stored is the size in the file, data the\n"
        "size before compression. Times are UTC, in JSON seconds since 1970-01-01.\n"
        "\n"
        "Examples:\n"
        "  zr log items dive.log --type 2 --limit 20\n"
        "  zr log items dive.log --type 17:1 --source 3 --json\n"
        "  zr log items dive.log --from 50%");
    cli::add_argument(*verb, "LOG", options->log, "Log to read");
    cli::add_list(*verb, "--type", options->types, "T[:S],...", cli::check_type,
        "Only items of these record types; may be repeated");
    cli::add_value(*verb, "--source", options->source, "N", cli::check_u16, "Only items of this source");
    cli::add_value(*verb, "--from", options->from, "POS", CliPosition::Check,
        "Start at the item at this position: bytes, or a share of the file as in 33% (the first item "
        "at or after it)");
    cli::add_value(*verb, "--limit", options->limit, "N", cli::check_count, "List at most N items");
    verb->add_flag("--json", options->json, "Print one JSON object on each line");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
