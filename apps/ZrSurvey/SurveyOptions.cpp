#include "apps/ZrSurvey/SurveyOptions.h"

#include <QCommandLineParser>
#include <QStandardPaths>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

constexpr int leastWidth = 320;
constexpr int leastHeight = 240;

const char* const pages[] = {"Home", "Plan", "Record", "Review", "Scene"};

/// Qt's own, which an application with windows takes out of the arguments by itself; with one hyphen or two.
struct QtOption
{
    const char* name;
    bool hasValue;
};

constexpr QtOption qtOptions[] = {{"platform", true}, {"platformpluginpath", true}, {"platformtheme", true},
    {"plugin", true}, {"qwindowgeometry", true}, {"geometry", true}, {"qwindowicon", true}, {"icon", true},
    {"qwindowtitle", true}, {"title", true}, {"style", true}, {"stylesheet", true}, {"session", true},
    {"display", true}, {"name", true}, {"visual", true}, {"widgetcount", false}, {"reverse", false},
    {"nograb", false}, {"dograb", false}, {"sync", false}};

QStringList WithoutQt(const QStringList& arguments)
{
    QStringList others;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == QLatin1String("--")) {
            others += arguments.mid(i);
            break;
        }
        const int hyphens = argument.startsWith(QLatin1String("--")) ? 2 : 1;
        const QString name = argument.section(QLatin1Char('='), 0, 0).mid(hyphens);
        const auto* option = std::find_if(std::begin(qtOptions), std::end(qtOptions),
            [&name](const QtOption& each) { return name == QLatin1String(each.name); });
        if (i == 0 || !argument.startsWith(QLatin1Char('-')) || option == std::end(qtOptions))
            others.append(argument);
        else if (option->hasValue && !argument.contains(QLatin1Char('=')))
            ++i;
    }
    return others;
}

SurveyOptions Told(const QString& output)
{
    SurveyOptions options;
    options.exitCode = 0;
    options.output = output;
    return options;
}

SurveyOptions Refused(const QString& error)
{
    SurveyOptions options;
    options.exitCode = 1;
    options.error = error;
    return options;
}

/// The options, and what they mean.
struct Parser
{
    Parser()
    {
        parser.setApplicationDescription(
            SurveyOptions::tr("Plans, records and reviews surveys of underwater vehicles."));
        parser.addOptions({help, version, data, screenshot, page, size, timeStart, tour, tourLine});
        parser.addPositionalArgument(QStringLiteral("FILE"),
            SurveyOptions::tr("A log or a recording to review, or a plan to work on."),
            QStringLiteral("[FILE]"));
    }

    bool IsSet(const QCommandLineOption& option) const { return parser.isSet(option); }

    QString Value(const QCommandLineOption& option) const { return parser.value(option); }

    QString Conflict() const;
    QSize WindowSize() const;

    QCommandLineParser parser;
    QCommandLineOption help{
        QStringList({QStringLiteral("h"), QStringLiteral("help")}), SurveyOptions::tr("Show this text.")};
    QCommandLineOption version{QStringList({QStringLiteral("v"), QStringLiteral("version")}),
        SurveyOptions::tr("Show the version.")};
    QCommandLineOption data{QStringLiteral("data"),
        SurveyOptions::tr("Keep the settings and the plan's draft in DIR."), QStringLiteral("DIR")};
    QCommandLineOption screenshot{QStringLiteral("screenshot"),
        SurveyOptions::tr("Write a picture of the first screen into FILE and end."), QStringLiteral("FILE")};
    QCommandLineOption page{QStringLiteral("page"),
        SurveyOptions::tr("Show the page NAME first: Home, Plan, Record, Review, Scene."),
        QStringLiteral("NAME")};
    QCommandLineOption size{QStringLiteral("size"),
        SurveyOptions::tr("Size of the window, for instance 1280x800."), QStringLiteral("WxH"),
        QStringLiteral("1280x800")};
    QCommandLineOption timeStart{
        QStringLiteral("time-start"), SurveyOptions::tr("Print a line at the first frame and end.")};
    QCommandLineOption tour{QStringLiteral("tour"),
        SurveyOptions::tr(
            "Go through the whole main job by itself. DIR, which is made, or empty, or that of an earlier "
            "tour, gets a picture of each station, the folders exports and data, and tour.txt; those of the "
            "earlier tour are deleted."),
        QStringLiteral("DIR")};
    QCommandLineOption tourLine{QStringLiteral("tour-line"),
        SurveyOptions::tr(
            "The side-scan line (XTF) of the tour, instead of the one that comes with the program."),
        QStringLiteral("FILE")};
};

/// What was asked for and would not be done; empty for nothing.
QString Parser::Conflict() const
{
    if (!IsSet(tour))
        return IsSet(tourLine) ? SurveyOptions::tr("--tour-line is for --tour only") : QString();
    if (Value(tour).isEmpty())
        return SurveyOptions::tr("--tour needs the name of a folder");
    for (const QCommandLineOption& option : {data, screenshot, page, timeStart}) {
        if (IsSet(option))
            return SurveyOptions::tr("--%1 cannot be used with --tour").arg(option.names().constLast());
    }
    const QStringList files = parser.positionalArguments();
    return files.isEmpty() ? QString()
                           : SurveyOptions::tr("%1 cannot be opened with --tour").arg(files.constFirst());
}

/// Empty for none.
QSize Parser::WindowSize() const
{
    const QStringList sides = Value(size).split(QLatin1Char('x'));
    const QSize window(sides.value(0).toInt(), sides.value(1).toInt());
    const bool isSize = sides.size() == 2 && window.width() >= leastWidth && window.height() >= leastHeight;
    return isSize ? window : QSize();
}

} // namespace

SurveyOptions SurveyOptions::Read(const QStringList& arguments)
{
    Parser all;
    QCommandLineParser& parser = all.parser;
    const bool isUnderstood = parser.parse(WithoutQt(arguments));
    if (isUnderstood && parser.isSet(all.help))
        return Told(parser.helpText());
    if (isUnderstood && parser.isSet(all.version))
        return Told(QStringLiteral("ZrSurvey " ZR_SURVEY_VERSION "\n"));
    const QStringList files = parser.positionalArguments();
    if (!isUnderstood || files.size() > 1) {
        const QString what = isUnderstood ? tr("Unexpected argument %1").arg(files[1]) : parser.errorText();
        return Refused(what + QLatin1Char('\n') + parser.helpText());
    }
    const QString conflict = all.Conflict();
    if (!conflict.isEmpty())
        return Refused(conflict + QLatin1Char('\n'));
    SurveyOptions options;
    options.size = all.WindowSize();
    if (options.size.isEmpty())
        return Refused(
            tr("%1 is no size of a window, such as 1280x800").arg(all.Value(all.size)) + QLatin1Char('\n'));
    options.page = all.Value(all.page);
    const bool isPage = std::any_of(std::begin(pages), std::end(pages),
        [&options](const char* name) { return options.page == QLatin1String(name); });
    if (all.IsSet(all.page) && !isPage)
        return Refused(tr("There is no page %1").arg(options.page) + QLatin1Char('\n'));
    options.data = all.IsSet(all.data) ? all.Value(all.data)
                                       : QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    options.screenshot = all.Value(all.screenshot);
    options.isTour = all.IsSet(all.tour);
    options.tour = all.Value(all.tour);
    options.tourLine = all.Value(all.tourLine);
    options.file = files.value(0);
    options.isTimed = all.IsSet(all.timeStart);
    return options;
}

int SurveyOptions::Answer() const
{
    std::fprintf(stdout, "%s", qPrintable(output));
    std::fprintf(stderr, "%s", qPrintable(error));
    return exitCode;
}
