// zr log filter: the items of some types, as a log or as bare payloads.

#include "CmdLogFilter.h"

#include "CliExit.h"
#include "CliExport.h"
#include "CliHelp.h"
#include "CliInOut.h"
#include "CliTarget.h"
#include "CliTypes.h"
#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrPlayer.h"

#include <QFileInfo>

namespace {

struct Options : CliInOut
{
    std::vector<std::string> types;
    bool payloadOnly = false;
};

int Run(const Options& options)
{
    const QString in = options.In();
    CliTarget target;
    if (const int code = options.Prepare(target))
        return code;

    std::vector<cli::TypeChoice> types;
    for (const std::string& type : options.types)
        types.push_back(*cli::parse_type(QString::fromStdString(type)));
    std::vector<u8> filter = cli::type_filter(types);

    cli::Export job;
    job.in = in;
    job.out = options.Out();
    job.from = ZrLogHeader::Size;
    job.to = static_cast<u64>(QFileInfo(in).size());
    job.isLog = !options.payloadOnly;
    job.json = options.json;
    job.details = {{QStringLiteral("in"), in}, {QStringLiteral("payload_only"), options.payloadOnly}};
    job.run = [&](const QString& out, IZrProgress* progress) {
        return ZrPlayer::ExportFilteredFile(
            in, out, filter.data(), static_cast<u16>(filter.size()), !options.payloadOnly, progress);
    };
    return cli::run_export(job, target);
}

} // namespace

void AddLogFilter(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "filter",
        "Copy the items of some types into a new log, or their payloads into a plain file",
        "Units: types are numbers from 0 to 65534 and stand for all their sub-types.\n"
        "Payloads are written as stored, one after the other: compressed ones stay\n"
        "compressed.\n"
        "\n"
        "Examples:\n"
        "  zr log filter dive.log sonar.log --types 17\n"
        "  zr log filter dive.log nmea.txt --types 2 --payload-only");
    options->AddArguments(*verb, "File to write");
    cli::add_list(
        *verb, "--types", options->types, "T,...", cli::check_export_type, "Types of the items to copy")
        ->required();
    verb->add_flag("--payload-only", options->payloadOnly, "Write the payloads alone, without any headers");
    options->AddFlags(*verb);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
