// zr sonar image: side-scan lines as a picture.

#include "CmdSonarImage.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliInOut.h"
#include "CliMessages.h"
#include "CliNumber.h"
#include "CliOutput.h"
#include "CliProgress.h"
#include "CliSignals.h"
#include "CliSonarLine.h"
#include "CliTarget.h"
#include "CliText.h"
#include "CliTime.h"
#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrKit/sonar/ZrWaterfall.h"
#include "ZrKit/sonar/ZrWaterfallMap.h"

#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace {

/// Seconds over which positions are averaged: the way of some metres, which hides that receivers round.
constexpr double trackSmoothing = 4.0;

struct Options : CliInOut
{
    std::string palette = ZrWaterfallSettings().palette.toStdString();
    std::string gain;
    std::string spreading;
    std::string absorption;
    std::string from;
    std::string to;
    std::string side;
    std::string newest;
    std::string contrast;
    std::string gamma;
    std::string width;
    std::string resolution;
    bool slant = false;
    bool noSpeedCorrection = false;
    bool bottom = false;
    bool invert = false;
    CliAltitudeOption altitude;
};

std::string Refusal(const std::string& text, const char* expected)
{
    return "\"" + text + "\" is not " + expected;
}

std::string CheckPalette(const std::string& text)
{
    if (ZrSonarPalette::Names().contains(QString::fromStdString(text)))
        return {};
    return Refusal(
        text, ("one of " + ZrSonarPalette::Names().join(QStringLiteral(", ")).toStdString()).c_str());
}

std::string CheckGain(const std::string& text)
{
    const bool good = text == "auto" || text == "law" || text == "none";
    return good ? std::string() : Refusal(text, "auto, law or none");
}

std::string CheckSide(const std::string& text)
{
    const bool good = text == "port" || text == "starboard" || text == "both";
    return good ? std::string() : Refusal(text, "port, starboard or both");
}

std::string CheckNewest(const std::string& text)
{
    return text == "top" || text == "bottom" ? std::string() : Refusal(text, "top or bottom");
}

std::string CheckSpreading(const std::string& text)
{
    return cli::check_number(text, 0.0, 100.0, "decibels");
}

std::string CheckAbsorption(const std::string& text)
{
    return cli::check_number(text, 0.0, 10.0, "decibels per metre");
}

std::string CheckGamma(const std::string& text)
{
    const std::string wrong = cli::check_number(text, 0.05, 20.0, "gamma");
    return wrong.empty() ? wrong : Refusal(text, "a number from 0.05 to 20");
}

std::string CheckWidth(const std::string& text)
{
    bool ok = false;
    const int pixels = QString::fromStdString(text).toInt(&ok);
    const bool good = ok && pixels >= 2 && pixels <= ZrWaterfallMap::MostColumns;
    return good ? std::string() : Refusal(text, "a whole number of pixels from 2 to 30000");
}

std::string CheckResolution(const std::string& text)
{
    return cli::check_number(text, 0.0001, 1000.0, "metres");
}

/// The two ends of "LO:HI"; false when the text is something else.
bool ParseContrast(const std::string& text, float& lo, float& hi)
{
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos)
        return false;
    const std::string ends[] = {text.substr(0, colon), text.substr(colon + 1)};
    for (const std::string& end : ends) {
        if (!cli::check_number(end, 0.0, 65535.0, "").empty())
            return false;
    }
    lo = static_cast<float>(cli::number(ends[0], 0.0));
    hi = static_cast<float>(cli::number(ends[1], 0.0));
    return lo < hi;
}

std::string CheckContrast(const std::string& text)
{
    float lo = 0.0F;
    float hi = 0.0F;
    if (text == "auto" || text == "full" || ParseContrast(text, lo, hi))
        return {};
    return Refusal(text, "auto, full, or LO:HI with 0 <= LO < HI <= 65535");
}

ZrWaterfallSettings SettingsOf(const Options& options)
{
    ZrWaterfallSettings settings;
    settings.palette = QString::fromStdString(options.palette);
    if (options.gain == "law")
        settings.gain.mode = ZrSonarGainSettings::gainLaw;
    else if (options.gain == "none")
        settings.gain.mode = ZrSonarGainSettings::gainNone;
    settings.gain.spreading = cli::number(options.spreading, settings.gain.spreading);
    settings.gain.absorption = cli::number(options.absorption, settings.gain.absorption);
    if (options.side == "port")
        settings.sides = ZrWaterfallSettings::portOnly;
    else if (options.side == "starboard")
        settings.sides = ZrWaterfallSettings::starboardOnly;
    if (options.newest == "bottom")
        settings.newest = ZrWaterfallSettings::newestBottom;
    if (options.contrast == "full")
        settings.clip = ZrSonarContrast().clip;
    else
        ParseContrast(options.contrast, settings.lo, settings.hi);
    settings.gamma = cli::number(options.gamma, settings.gamma);
    settings.width = static_cast<int>(cli::number(options.width, 0.0));
    settings.resolution = cli::number(options.resolution, 0.0);
    settings.slantCorrected = options.slant;
    settings.speedCorrected = !options.noSpeedCorrection;
    settings.drawBottom = options.bottom;
    settings.invert = options.invert;
    return settings;
}

/// The formats that suit a picture of many colours, as far as this system writes them.
QStringList Endings()
{
    QStringList endings;
    for (const char* ending : {"png", "bmp", "jpeg", "jpg", "ppm", "tif", "tiff", "webp"}) {
        if (QImageWriter::supportedImageFormats().contains(ending))
            endings << QLatin1String(ending);
    }
    return endings;
}

/// What is wrong with the options, beyond each single one. Returns the exit code, and complains unless it is
/// 0.
int Check(const Options& options)
{
    if (!Endings().contains(QFileInfo(options.Out()).suffix().toLower())) {
        return cli::fail(exUsage,
            QStringLiteral("%1: The name of the output must end in .%2")
                .arg(options.Out(), Endings().join(QStringLiteral(", ."))));
    }
    if (options.gain != "law" && !(options.spreading.empty() && options.absorption.empty()))
        return cli::fail(exUsage, QStringLiteral("--spreading and --absorption go with --gain law only"));
    return exDone;
}

/// Times that fall by no more than this are out of order, not set back, seconds.
constexpr double disorder = 1.0;

/// The pings between two times, ends included, as far as they lie together in the log.
struct Range
{
    std::size_t first = 0;
    std::size_t last = 0;

    /// Returns the exit code, and complains unless it is 0.
    int Find(const Options& options, const ZrSonarLog& log)
    {
        const auto time = [](const std::string& text, double otherwise) {
            return text.empty() ? otherwise : *cli::parse_time(QString::fromStdString(text));
        };
        constexpr double ever = std::numeric_limits<double>::infinity();
        const double from = time(options.from, -ever);
        const double to = time(options.to, ever);
        const ZrSonarPings& pings = log.Pings();
        if (from > to)
            return cli::fail(exUsage, QStringLiteral("--to lies before --from"));
        const auto wanted = [&](const ZrSonarPing& ping) { return ping.time >= from && ping.time <= to; };
        const auto begin = std::find_if(pings.begin(), pings.end(), wanted);
        if (begin == pings.end()) {
            return cli::fail(exUsage,
                QStringLiteral("There are no pings between these times; the log has some from %1 to %2")
                    .arg(cli::time_text(pings.front().time), cli::time_text(pings.back().time)));
        }
        // Pings of several sonars are not in order to the second: the last one wanted may lie behind others.
        const auto end = std::find_if(begin, pings.end(), [&](const ZrSonarPing& ping) {
            return ping.time < from - disorder || ping.time > to + disorder;
        });
        const auto latest = std::find_if(std::make_reverse_iterator(end), pings.rend(), wanted);
        first = static_cast<std::size_t>(begin - pings.begin());
        last = static_cast<std::size_t>(latest.base() - pings.begin()) - 1;
        return exDone;
    }
};

QString Digits(double value)
{
    return QString::number(value, 'g', 6);
}

/// Tells other programs the scale: a metre of seabed is a metre of the picture.
void Describe(QImage& image, const ZrWaterfallMap& map, const ZrSonarLog& log)
{
    const auto dots
        = [](double metres) { return static_cast<int>(std::lround(std::clamp(1.0 / metres, 1.0, 1e6))); };
    const bool alongKnown = map.MetresPerRow() > 0.0;
    image.setDotsPerMeterX(dots(map.MetresPerPixel()));
    image.setDotsPerMeterY(dots(alongKnown ? map.MetresPerRow() : map.MetresPerPixel()));
    const QFileInfo info(log.Path());
    image.setText(
        QStringLiteral("Title"), QStringLiteral("Side-scan image of %1").arg(info.completeBaseName()));
    image.setText(QStringLiteral("Software"), QStringLiteral("zr " ZR_VERSION));
    image.setText(QStringLiteral("Log"), info.fileName());
    image.setText(QStringLiteral("First ping"), cli::time_text(log.Pings().Time(map.First())));
    image.setText(QStringLiteral("Last ping"), cli::time_text(log.Pings().Time(map.Last())));
    image.setText(
        QStringLiteral("Range"), map.IsSlantCorrected() ? QStringLiteral("ground") : QStringLiteral("slant"));
    image.setText(QStringLiteral("Metres per pixel"), Digits(map.MetresPerPixel()));
    if (alongKnown)
        image.setText(QStringLiteral("Metres per row"), Digits(map.MetresPerRow()));
}

/// Takes all that an encoder writes and remembers a failure: some encoders complain on standard error, in
/// words of their own, when they see one.
class Sink final : public QIODevice
{
public:
    explicit Sink(const QString& path)
        : m_file(path)
    {
        m_good = m_file.open(QIODevice::ReadWrite) && open(QIODevice::ReadWrite | QIODevice::Unbuffered);
    }

    bool Finish()
    {
        m_good = m_good && m_file.flush();
        m_file.close();
        return m_good && m_file.error() == QFileDevice::NoError;
    }

    qint64 size() const override { return m_file.size(); }

    bool seek(qint64 pos) override { return QIODevice::seek(pos) && m_file.seek(pos); }

protected:
    qint64 readData(char* data, qint64 size) override { return m_file.read(data, size); }

    qint64 writeData(const char* data, qint64 size) override
    {
        m_good = m_good && m_file.write(data, size) == size;
        return size;
    }

private:
    QFile m_file;
    bool m_good = false;
};

int Write(const Options& options, const QImage& image, CliTarget& target)
{
    if (const int code = target.CreateTemporary())
        return code;
    Sink sink(target.TemporaryPath());
    QImageWriter writer(&sink, QFileInfo(options.Out()).suffix().toLower().toLatin1());
    constexpr int quality = 92; // of the formats that lose something
    if (writer.format() != "png" && writer.supportsOption(QImageIOHandler::Quality))
        writer.setQuality(quality);
    const bool encoded = sink.isOpen() && writer.write(image);
    if (!sink.Finish())
        return target.FailWriting();
    if (!encoded)
        return cli::fail(exBadOutput, options.Out() + QStringLiteral(": ") + writer.errorString());
    return target.Commit();
}

void Print(const Options& options, const ZrWaterfallMap& map, const ZrWaterfall& waterfall, u64 bytes)
{
    const u64 pings = map.Last() - map.First() + 1;
    if (!options.json) {
        const auto scale = [](double metres) { return Digits(metres) + QStringLiteral(" m"); };
        CliOutput::Get().Line(
            QStringLiteral("%1: %2 x %3 pixels of %4 across and %5 along, %6, contrast %7:%8, %9")
                .arg(options.Out())
                .arg(map.Width())
                .arg(map.Height())
                .arg(scale(map.MetresPerPixel()),
                    std::isnan(map.MetresPerRow()) ? QStringLiteral("-") : scale(map.MetresPerRow()),
                    cli::count_text(pings, "ping", "pings"), Digits(static_cast<double>(waterfall.Lo())),
                    Digits(static_cast<double>(waterfall.Hi())), cli::size_text_both(bytes)));
        return;
    }
    CliOutput::Get().Json({
        {QStringLiteral("in"), options.In()},
        {QStringLiteral("out"), options.Out()},
        {QStringLiteral("width"), map.Width()},
        {QStringLiteral("height"), map.Height()},
        {QStringLiteral("first"), cli::json_count(map.First())},
        {QStringLiteral("last"), cli::json_count(map.Last())},
        {QStringLiteral("pings"), cli::json_count(pings)},
        {QStringLiteral("metres_per_pixel"), cli::json_number(map.MetresPerPixel())},
        {QStringLiteral("metres_per_row"), cli::json_number(map.MetresPerRow())},
        {QStringLiteral("slant_corrected"), map.IsSlantCorrected()},
        {QStringLiteral("speed_corrected"), map.IsSpeedCorrected()},
        {QStringLiteral("lo"), cli::json_number(static_cast<double>(waterfall.Lo()))},
        {QStringLiteral("hi"), cli::json_number(static_cast<double>(waterfall.Hi()))},
        {QStringLiteral("bytes"), cli::json_count(bytes)},
    });
}

/// Draws and writes. Returns the exit code, and complains unless it is 0.
int Draw(const Options& options, CliSonarLine& line, const Range& range, CliTarget& target)
{
    ZrSonarLog& log = line.log;
    ZrSonarTrackSettings smooth;
    smooth.smoothing = trackSmoothing;
    const ZrSonarTrack track(log.Pings(), smooth);
    const ZrWaterfallSettings settings = SettingsOf(options);
    const ZrWaterfallMap map(log.Pings(), track, line.bottom, settings, range.first, range.last);
    if (map.IsTooLarge())
        return cli::fail(exUsage, map.Error());
    if (!map.Error().isEmpty())
        return cli::fail(exBadInput, log.Path() + QStringLiteral(": ") + map.Error());
    if (settings.slantCorrected && !map.IsSlantCorrected())
        return cli::fail(
            exBadInput, QStringLiteral("%1: No altitude is known, which --slant needs").arg(log.Path()));
    if (settings.speedCorrected && !map.IsSpeedCorrected())
        cli::complain(QStringLiteral("%1: The way is not known: one row for each ping").arg(log.Path()));
    ZrWaterfall waterfall(log);
    QImage image;
    {
        CliProgress progress(QStringLiteral("Drawing"));
        waterfall.progress = &progress;
        const cli::CancelOnInterrupt stop(waterfall.cancel);
        const bool drawn = waterfall.Render(map, image);
        waterfall.progress = nullptr;
        if (!drawn && cli::interrupted())
            return cli::interrupt_code();
        if (!drawn)
            return cli::fail(exBadInput, log.Path() + QStringLiteral(": ") + waterfall.Error());
    }
    Describe(image, map, log);
    if (const int code = Write(options, image, target))
        return code;
    Print(options, map, waterfall, static_cast<u64>(QFileInfo(target.Path()).size()));
    return exDone;
}

int Run(const Options& options)
{
    if (const int code = Check(options))
        return code;
    CliTarget target;
    if (const int code = options.Prepare(target))
        return code;
    CliSonarLine line;
    if (const int code = line.Load(options.In()))
        return code;
    Range range;
    if (const int code = range.Find(options, line.log))
        return code;
    if (const int code = line.LoadBottom(options.altitude))
        return code;
    if (const int code = Draw(options, line, range, target))
        return code;
    return line.EndCode();
}

} // namespace

void AddSonarImage(CLI::App& sonar, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(sonar, run, "image",
        "Draw side-scan lines as a picture\n"
        "\n"
        "Port is left and starboard right, the way of the vehicle in the middle, and the latest ping on "
        "top, as seen from above. The ending of OUT tells the format. Rows are stretched so that a pixel "
        "is as long along the track as across it, and things keep their shape. What was not recorded is "
        "grey-blue. Of a damaged log the pings before the damage are drawn; the exit code is 2.",
        "Units: ranges and resolutions in metres, amplitudes 0 to 65535, gains in\n"
        "decibels of amplitude. A time T is ISO 8601, UTC unless it names an offset, or\n"
        "seconds since 1970-01-01. A metre of the picture, as its dots per metre tell it,\n"
        "is a metre of the seabed.\n"
        "\n"
        "Palettes: "
            + ZrSonarPalette::Names().join(QStringLiteral(", ")).toStdString()
            + ".\n"
              "\n"
              "Examples:\n"
              "  zr sonar image line.log line.png\n"
              "  zr sonar image line.log map.png --slant --resolution 0.1 --palette gray\n"
              "  zr sonar image line.log wreck.jpg --from 2013-09-10T21:13:20Z --side starboard\n"
              "  zr sonar image line.log raw.png --gain none --no-speed-correction --bottom");
    options->AddArguments(*verb, "Picture to write, a name ending in .png, .jpg, .bmp or .ppm");
    cli::add_value(*verb, "--palette", options->palette, "P", CheckPalette,
        "Colours of the amplitudes; copper unless given");
    verb->add_flag("--invert", options->invert, "Draw strong echoes dark");
    cli::add_value(*verb, "--gain", options->gain, "G", CheckGain,
        "How amplitudes are evened out over the range: auto, by the mean of the line at each range and "
        "angle; "
        "law, by --spreading and --absorption; none; auto unless given");
    cli::add_value(*verb, "--spreading", options->spreading, "DB", CheckSpreading,
        "With --gain law: decibels for each tenfold range; 30 unless given");
    cli::add_value(*verb, "--absorption", options->absorption, "DB/M", CheckAbsorption,
        "With --gain law: decibels for each metre, one way; 0.05 unless given");
    CLI::Option* slant = verb->add_flag("--slant", options->slant,
        "Apply the slant-range correction: columns are even steps over a flat seabed, and the water "
        "column is left out; without it they are even steps of the sound's way");
    cli::add_value(*verb, "--from", options->from, "T", cli::check_time, "Only pings from this time on");
    cli::add_value(*verb, "--to", options->to, "T", cli::check_time, "Only pings up to this time");
    cli::add_value(
        *verb, "--side", options->side, "SIDE", CheckSide, "port, starboard or both; both unless given");
    cli::add_value(*verb, "--newest", options->newest, "END", CheckNewest,
        "Where the latest ping is, top or bottom; top unless given. At the bottom the picture is mirrored");
    cli::add_value(*verb, "--contrast", options->contrast, "C", CheckContrast,
        "Amplitudes, after the gain, from black to brightest: auto, leaving out the weakest and the "
        "strongest hundredth beyond the bottom; full, a ten-thousandth; or LO:HI; auto unless given");
    cli::add_value(
        *verb, "--gamma", options->gamma, "G", CheckGamma, "Below 1 lifts what is dark; 1 unless given");
    CLI::Option* width = cli::add_value(*verb, "--width", options->width, "PX", CheckWidth,
        "Width of the picture in pixels; one for each sample unless given");
    CLI::Option* resolution = cli::add_value(*verb, "--resolution", options->resolution, "M", CheckResolution,
        "Metres for each pixel, in place of a width");
    width->excludes(resolution);
    verb->add_flag(
        "--no-speed-correction", options->noSpeedCorrection, "Draw one row for each ping, however far apart");
    CLI::Option* bottom = verb->add_flag(
        "--bottom", options->bottom, "Mark where the first echo of the seabed comes; not with --slant");
    bottom->excludes(slant);
    options->altitude.AddTo(*verb);
    options->AddFlags(*verb);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
