#include "CliSurvey.h"

#include "CliHelp.h"
#include "CliNumber.h"

#include <limits>

namespace {

/// A word of the command line and what it stands for.
struct Word
{
    const char* word;
    int value;
};

constexpr Word corners[] = {
    {"near-left", ZrSurveySettings::NearLeft},
    {"near-right", ZrSurveySettings::NearRight},
    {"far-left", ZrSurveySettings::FarLeft},
    {"far-right", ZrSurveySettings::FarRight},
};

constexpr Word orders[] = {
    {"next", ZrSurveySettings::Next},
    {"every-other", ZrSurveySettings::EveryOther},
    {"even-odd", ZrSurveySettings::EvenThenOdd},
    {"racetrack", ZrSurveySettings::Racetrack},
};

constexpr Word ends[] = {
    {"cover", ZrSurveyPatternSettings::Cover},
    {"edge", ZrSurveyPatternSettings::Edge},
};

constexpr Word speeds[] = {{"slow", 1}, {"medium", 2}, {"fast", 3}};
constexpr int ownSpeed = 4;

template <std::size_t n> const Word* Find(const Word (&words)[n], const std::string& text)
{
    for (const Word& word : words) {
        if (text == word.word)
            return &word;
    }
    return nullptr;
}

/// The value of an option that `Check` has accepted; \p otherwise when it was not given.
template <class Enum, std::size_t n>
Enum ValueOf(const Word (&words)[n], const std::string& text, Enum otherwise)
{
    const Word* const word = Find(words, text);
    return word ? static_cast<Enum>(word->value) : otherwise;
}

template <std::size_t n> std::string Check(const Word (&words)[n], const std::string& text)
{
    if (Find(words, text))
        return {};
    std::string error = "\"" + text + "\" is none of ";
    for (const Word& word : words)
        error += (&word == words ? "" : ", ") + std::string(word.word);
    return error;
}

std::string CheckCorner(const std::string& text)
{
    return Check(corners, text);
}

std::string CheckOrder(const std::string& text)
{
    return Check(orders, text);
}

std::string CheckEnds(const std::string& text)
{
    return Check(ends, text);
}

std::string CheckHeading(const std::string& text)
{
    if (text == "longest" || cli::check_heading(text).empty())
        return {};
    return "\"" + text + "\" is no heading: longest, or degrees from -360 to 360";
}

std::string CheckSpeed(const std::string& text)
{
    if (Find(speeds, text) || cli::check_number(text, 0.001, 1000.0, "m/s").empty())
        return {};
    return "\"" + text + "\" is no speed: slow, medium, fast, or m/s from 0.001 to 1000";
}

std::string CheckMinLength(const std::string& text)
{
    return cli::check_number(text, 0.0, 1e6, "metres");
}

std::string CheckDepth(const std::string& text)
{
    return cli::check_number(text, -100000.0, 100000.0, "metres");
}

std::string CheckKind(const std::string& text)
{
    if (text.size() <= 9 && !text.empty() && text.find_first_not_of("0123456789") == std::string::npos)
        return {};
    return "\"" + text + "\" is no number of a kind: 0 or a whole number above";
}

std::string CheckLines(const std::string& text)
{
    if (CheckKind(text).empty() && std::stoi(text) <= 1000)
        return {};
    return "\"" + text + "\" is no number of lines from 0 to 1000";
}

} // namespace

void CliSurvey::SetCommon(ZrSurveySettings& settings) const
{
    settings.order = ValueOf(orders, order, settings.order);
    settings.entry = ValueOf(corners, corner, settings.entry);
    settings.overshoot = cli::number(overshoot, settings.overshoot);
    settings.turnRadius = cli::number(radius, settings.turnRadius);
    settings.loopTurns = !noLoops;
    settings.z = cli::number(z, settings.z);
    settings.zType = zType.empty() ? settings.zType : std::stoi(zType);
    if (speed.empty())
        return;
    settings.spdType = ValueOf(speeds, speed, ownSpeed);
    settings.speed = cli::number(speed, settings.speed);
}

ZrSurveyPatternSettings CliSurvey::PatternSettings() const
{
    ZrSurveyPatternSettings settings;
    SetCommon(settings);
    settings.lineSpacing = cli::number(spacing, settings.lineSpacing);
    settings.alternateSpacing = cli::number(alternate, settings.alternateSpacing);
    settings.crossSpacing = cli::number(cross, settings.crossSpacing);
    if (heading != "longest")
        settings.heading = cli::number(heading, settings.heading);
    settings.ends = ValueOf(::ends, ends, settings.ends);
    settings.margin = cli::number(margin, settings.margin);
    settings.minLength = cli::number(minLength, settings.minLength);
    return settings;
}

ZrSurveyCorridorSettings CliSurvey::CorridorSettings() const
{
    ZrSurveyCorridorSettings settings;
    SetCommon(settings);
    settings.lineSpacing = cli::number(spacing, settings.lineSpacing);
    settings.linesLeft = left.empty() ? settings.linesLeft : std::stoi(left);
    settings.linesRight = right.empty() ? settings.linesRight : std::stoi(right);
    settings.centreLine = !noCentre;
    return settings;
}

void CliSurvey::AddTo(CLI::App& verb)
{
    cli::add_argument(verb, "IN", in, "Area to survey, or the guide of a corridor");
    cli::add_argument(verb, "OUT", out, "File to write");
    cli::add_value(
        verb, "--spacing", spacing, "M", cli::check_spacing, "Metres from line to line; 50 unless given");
    cli::add_value(verb, "--overshoot", overshoot, "M", cli::check_length,
        "Metres that lines are run beyond both of their ends; 0 unless given");
    cli::add_value(verb, "--turn-radius", radius, "M", cli::check_length,
        "Turn radius in metres; 0, for a vehicle that turns on the spot, unless given");
    cli::add_value(verb, "--corner", corner, "CORNER", CheckCorner,
        "Where the first line begins, seen along the heading: near-left (unless given), near-right, "
        "far-left, far-right");
    cli::add_value(verb, "--order", order, "ORDER", CheckOrder,
        "Order of the lines: next (unless given), every-other, even-odd, racetrack");
    verb.add_flag("--no-loops", noLoops, "Make no loops to lines closer than two turn radii");
    cli::add_value(verb, "--speed", speed, "SPEED", CheckSpeed,
        "Speed of the waypoints: slow, medium, fast, or m/s; that of the route unless given");
    cli::add_value(verb, "--z", z, "M", CheckDepth, "Depth or altitude of the waypoints, metres");
    cli::add_value(verb, "--z-type", zType, "N", CheckKind, "Kind of --z, as the application numbers them");
    verb.add_option("--name,--prefix", name, "Name of the route; that of the area unless given")
        ->option_text("NAME");

    const std::vector<CLI::Option*> patterns{
        cli::add_value(verb, "--area", area, "NAME", nullptr, "The area of this name, when IN holds several"),
        cli::add_value(verb, "--box", box, "M", cli::check_length,
            "The area is the bounding box of all that IN holds (a track, a route), wider by M metres on all "
            "sides"),
        cli::add_value(verb, "--heading", heading, "D", CheckHeading,
            "Heading of the lines: degrees true, or longest, along the longest side (unless given)"),
        cli::add_value(verb, "--cross", cross, "M", cli::check_spacing,
            "Run a second set of lines across the first, M metres apart"),
        cli::add_value(verb, "--alternate", alternate, "M", cli::check_spacing,
            "Spacings are in turn --spacing and this one"),
        cli::add_value(verb, "--ends", ends, "ENDS", CheckEnds,
            "How far lines reach: cover, until all of the area is seen (unless given), or edge"),
        cli::add_value(verb, "--margin", margin, "M", cli::check_length,
            "Metres that lines keep from the edge of the area; 0 unless given"),
        cli::add_value(verb, "--min-length", minLength, "M", CheckMinLength,
            "Leave out lines shorter than this, metres"),
    };
    CLI::Option* const guide
        = verb.add_flag("--corridor", corridor, "IN is a guide line (a route, a track): lines run along it");
    for (CLI::Option* option : patterns)
        option->excludes(guide);
    cli::add_value(verb, "--left", left, "N", CheckLines, "Lines to the left of the guide; 1 unless given")
        ->needs(guide);
    cli::add_value(verb, "--right", right, "N", CheckLines, "Lines to the right of the guide; 1 unless given")
        ->needs(guide);
    verb.add_flag("--no-centre", noCentre, "The guide itself is no line")->needs(guide);
    cli::add_route_options(verb, *this);
}
