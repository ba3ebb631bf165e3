// zr sonar mosaic: a side-scan line laid on the map, as a picture that charts can place.

#include "CmdSonarMosaic.h"

#include "CliExit.h"
#include "CliGeo.h"
#include "CliHelp.h"
#include "CliInOut.h"
#include "CliMessages.h"
#include "CliNumber.h"
#include "CliOutput.h"
#include "CliProgress.h"
#include "CliRoute.h"
#include "CliSignals.h"
#include "CliSonarLine.h"
#include "CliTarget.h"
#include "CliText.h"
#include "CliTypes.h"
#include "ZrKit/sonar/ZrMosaic.h"
#include "ZrKit/sonar/ZrMosaicFile.h"
#include "ZrKit/sonar/ZrSonarPalette.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace {

struct Options : CliInOut
{
    std::string resolution;
    std::string palette;
    std::string gain;
    std::string blend;
    std::string sampling;
    std::string side;
    std::string nadirGap;
    std::string farGap;
    std::string from;
    std::string to;
    CliTrackOptions track;
    CliAltitudeOption altitude;
};

std::string CheckPixel(const std::string& text)
{
    return cli::check_number(text, 0.001, 1000.0, "metres");
}

std::string CheckPalette(const std::string& text)
{
    return cli::check_word(text, ZrSonarPalette::Names().join(QLatin1Char(' ')).toLatin1().constData());
}

std::string CheckGain(const std::string& text)
{
    return cli::check_word(text, "none law auto");
}

std::string CheckBlend(const std::string& text)
{
    return cli::check_word(text, "newest brightest average nadir");
}

std::string CheckSampling(const std::string& text)
{
    return cli::check_word(text, "nearest bilinear");
}

std::string CheckSide(const std::string& text)
{
    return cli::check_word(text, "port starboard both");
}

ZrMosaicSettings SettingsOf(const Options& options)
{
    ZrMosaicSettings settings;
    settings.resolution = cli::number(options.resolution, 0.0);
    if (!options.palette.empty())
        settings.palette = QString::fromStdString(options.palette);
    if (options.gain == "none")
        settings.gain.mode = ZrSonarGainSettings::gainNone;
    else if (options.gain == "law")
        settings.gain.mode = ZrSonarGainSettings::gainLaw;
    if (options.blend == "brightest")
        settings.blend = ZrMosaicSettings::blendBrightest;
    else if (options.blend == "average")
        settings.blend = ZrMosaicSettings::blendAverage;
    else if (options.blend == "nadir")
        settings.blend = ZrMosaicSettings::blendNadir;
    if (options.sampling == "nearest")
        settings.sampling = ZrMosaicSettings::samplingNearest;
    settings.port = options.side != "starboard";
    settings.starboard = options.side != "port";
    settings.nadirGap = cli::number(options.nadirGap, 0.0);
    settings.farGap = cli::number(options.farGap, 0.0);
    settings.track = options.track.Settings();
    return settings;
}

/// Checks the picture and the files beside it. Returns the exit code, and complains unless it is 0, as all
/// functions below do.
int Prepare(const Options& options, QString& path)
{
    const QStringList files = ZrMosaicFile::FilesOf(options.Out());
    if (files.isEmpty()) {
        QStringList endings;
        for (const QString& suffix : ZrMosaicFile::Suffixes())
            endings << QLatin1Char('.') + suffix;
        return cli::fail(exUsage,
            QStringLiteral("%1: The name of the output must end in %2")
                .arg(options.Out(), endings.join(QStringLiteral(", "))));
    }
    CliTarget target;
    if (const int code = options.Prepare(target))
        return code;
    path = options.Out();
    for (const QString& beside : files.mid(1)) {
        CliTarget other;
        if (const int code = other.Prepare(beside, options.force, {options.In()}))
            return code;
    }
    return exDone;
}

int Range(const Options& options, const CliSonarLine& line, std::size_t& first, std::size_t& last)
{
    first = options.from.empty() ? 0 : std::stoull(options.from);
    last = options.to.empty() ? line.log.Pings().size() - 1 : std::stoull(options.to);
    for (const std::size_t number : {first, last}) {
        if (const int code = line.CheckLine(number))
            return code;
    }
    if (first <= last)
        return exDone;
    return cli::fail(
        exUsage, QStringLiteral("--to-line (%1) lies before --from-line (%2)").arg(last).arg(first));
}

int Build(ZrMosaic& mosaic, const QString& in)
{
    bool built = false;
    {
        CliProgress progress(QStringLiteral("Drawing"));
        mosaic.progress = &progress;
        const cli::CancelOnInterrupt stop(mosaic.cancel);
        built = mosaic.Build();
        mosaic.progress = nullptr;
    }
    if (cli::interrupted())
        return cli::interrupt_code();
    return built ? int(exDone) : cli::fail(exBadInput, in + QStringLiteral(": ") + mosaic.Error());
}

int Write(const ZrMosaic& mosaic, const QString& path)
{
    ZrMosaicFile file;
    bool written = false;
    {
        const cli::CancelOnInterrupt stop(file.cancel);
        written = file.Write(mosaic.Image(), mosaic.Frame(), path);
    }
    if (written)
        return exDone;
    return cli::interrupted() ? cli::interrupt_code() : cli::fail(exBadOutput, file.Error());
}

void PrintText(const ZrMosaic& mosaic, const QString& path)
{
    const ZrMosaicFrame& frame = mosaic.Frame();
    const ZrGeoPoint middle = frame.Position(frame.width / 2.0, frame.height / 2.0);
    cli::print_field("Picture",
        QStringLiteral("%1 x %2 pixels of %3 m").arg(frame.width).arg(frame.height).arg(frame.resolution));
    cli::print_field("Seen",
        QStringLiteral("%1 m², %2 % of the picture")
            .arg(static_cast<double>(mosaic.PixelsSeen()) * frame.resolution * frame.resolution, 0, 'f', 1)
            .arg(100.0 * static_cast<double>(mosaic.PixelsSeen()) / frame.width / frame.height, 0, 'f', 1));
    cli::print_field("Grid",
        QStringLiteral("WGS 84 / UTM zone %1 (EPSG:%2)")
            .arg(cli::zone_text(frame.zone, frame.south))
            .arg(frame.Epsg()));
    cli::print_field("Middle", cli::degrees_text(middle.lat, middle.lng));
    cli::print_field("Gaps", QString::number(mosaic.Gaps()));
    for (const QString& file : ZrMosaicFile::FilesOf(path)) {
        cli::print_field("Written",
            QStringLiteral("%1, %2").arg(
                file, cli::size_text_both(static_cast<u64>(QFileInfo(file).size()))));
    }
}

void PrintJson(const Options& options, const ZrMosaic& mosaic, const QString& path)
{
    const ZrMosaicFrame& frame = mosaic.Frame();
    QJsonObject result{
        {QStringLiteral("in"), options.In()},
        {QStringLiteral("out"), options.Out()},
        {QStringLiteral("files"), QJsonArray::fromStringList(ZrMosaicFile::FilesOf(path))},
        {QStringLiteral("width"), frame.width},
        {QStringLiteral("height"), frame.height},
        {QStringLiteral("resolution"), frame.resolution},
        {QStringLiteral("epsg"), frame.Epsg()},
        {QStringLiteral("pixels_seen"), cli::json_count(mosaic.PixelsSeen())},
        {QStringLiteral("gaps"), cli::json_count(mosaic.Gaps())},
    };
    cli::add_grid(result, frame.zone, frame.south, frame.west, frame.north); // the upper left corner
    CliOutput::Get().Json(result);
}

int Run(const Options& options)
{
    QString path;
    if (const int code = Prepare(options, path))
        return code;
    CliSonarLine line;
    if (const int code = line.Load(options.In()))
        return code;
    if (const int code = line.LoadBottom(options.altitude))
        return code;
    std::size_t first = 0;
    std::size_t last = 0;
    if (const int code = Range(options, line, first, last))
        return code;
    ZrMosaic mosaic(SettingsOf(options));
    mosaic.AddLine(line.log, line.bottom, first, last);
    if (const int code = Build(mosaic, options.In()))
        return code;
    if (const int code = Write(mosaic, path))
        return code;
    if (options.json)
        PrintJson(options, mosaic, path);
    else
        PrintText(mosaic, path);
    return line.EndCode();
}

} // namespace

void AddSonarMosaic(CLI::App& sonar, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(sonar, run, "mosaic",
        "Lay a side-scan line on the map\n"
        "\n"
        "Makes a picture with north up in the metres of a UTM grid. Beside OUT come a world "
        "file (.pgw, .jgw, .bpw), which tells where it lies, and a .prj, which tells the "
        "grid. A .tif is GeoTIFF and needs the package gdal-bin. Where nothing was seen the "
        "picture is transparent.",
        "Units: lengths in metres, lines are counted from 0.\n"
        "\n"
        "A compass that shows magnetic north needs --heading-offset, or --heading course where\n"
        "the vehicle does not drift.\n"
        "\n"
        "Examples:\n"
        "  zr sonar mosaic dive.log dive.png --heading course\n"
        "  zr sonar mosaic dive.log dive.tif --resolution 0.1 --heading-offset -17.6\n"
        "  zr sonar mosaic dive.log wreck.png --from-line 120 --to-line 299 --palette gray");
    options->AddArguments(*verb, "Picture to write, a name ending in .png, .jpg, .jpeg, .bmp, .tif or .tiff");
    cli::add_value(*verb, "--resolution", options->resolution, "M", CheckPixel,
        "Metres of a pixel, 0.001 to 1000; by samples and pings unless given");
    cli::add_value(*verb, "--palette", options->palette, "NAME", CheckPalette,
        "Colours, copper unless given: " + ZrSonarPalette::Names().join(QStringLiteral(", ")).toStdString());
    cli::add_value(*verb, "--gain", options->gain, "HOW", CheckGain,
        "Evens out the fall of the echo with range: none, law (spreading and absorption), auto (by the line "
        "itself, the default)");
    cli::add_value(*verb, "--blend", options->blend, "HOW", CheckBlend,
        "What shows where a place was seen twice: newest (the default), brightest, average, nadir (nearest "
        "to the track)");
    cli::add_value(*verb, "--sampling", options->sampling, "HOW", CheckSampling,
        "nearest: samples as recorded; bilinear: between them, the default");
    cli::add_value(
        *verb, "--side", options->side, "SIDE", CheckSide, "port, starboard or both (the default)");
    cli::add_value(*verb, "--nadir-gap", options->nadirGap, "M", cli::check_length,
        "Leave out so many metres to each side of the track; 0 unless given");
    cli::add_value(*verb, "--far-gap", options->farGap, "M", cli::check_length,
        "Leave out so many metres at the far end of each side; 0 unless given");
    cli::add_value(*verb, "--from-line", options->from, "N", cli::check_count, "First line; 0 unless given");
    cli::add_value(*verb, "--to-line", options->to, "N", cli::check_count,
        "Last line, which is included; that of the log unless given");
    options->track.AddTo(*verb);
    options->altitude.AddTo(*verb);
    options->AddFlags(*verb);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
