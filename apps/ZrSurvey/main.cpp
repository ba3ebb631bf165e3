// Plans, records and reviews surveys of underwater vehicles.

#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/ui/ZrQtLog.h"
#include "ZrKit/ui/ZrTranslation.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SurveyView.h"
#include "apps/ZrSurvey/tour/Tour.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QStandardPaths>
#include <QSurfaceFormat>
#include <QTimer>

#include <cstdio>
#include <optional>
#include <utility>

namespace {

void SetSurfaceFormat()
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setVersion(2, 0);
    format.setProfile(QSurfaceFormat::NoProfile);
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    format.setSwapInterval(1);
    QSurfaceFormat::setDefaultFormat(format);
}

/// Text and controls are larger than the library's default until the user says otherwise: boats move.
void ChooseScale(SurveyView& view)
{
    if (QFileInfo::exists(view.DataDir() + QStringLiteral("/settings.json")))
        return;
    for (ZrForm* form : qAsConst(view.forms().m_forms)) {
        if (auto* app = qobject_cast<ZrFmApp*>(form))
            app->OnSmall();
    }
}

/// 0 when all was as expected, 2 when not, 1 when it cannot begin.
int RunTour(const QString& folder, const QString& line, const QSize& size)
{
    Tour tour(folder, line);
    if (!tour.Prepare()) {
        std::fprintf(stderr, "%s\n", qPrintable(tour.Error()));
        return 1;
    }
    SurveyView view(tour.DataDir());
    ChooseScale(view);
    view.resize(size);
    int result = 2;
    QTimer::singleShot(0, &view, [&] {
        result = tour.Run(view);
        QCoreApplication::quit();
    });
    QApplication::exec();
    return result;
}

/// What the command line asks for.
struct Options
{
    QString data; ///< folder of the settings
    QString screenshot; ///< file to write, empty for none
    QString page; ///< to show first, empty for the one it begins with
    QSize size;
    QString tour; ///< folder, when `isTour`
    QString tourLine;
    QString file; ///< to open, empty for none
    bool isTour = false;
    bool isTimed = false; ///< tells of the first frame, and ends
};

void SetUp()
{
    QApplication::setStyle(QStringLiteral("Fusion"));
    QCoreApplication::setApplicationName(QStringLiteral("ZrSurvey"));
    QCoreApplication::setOrganizationName(QStringLiteral("ZrSurvey"));
    const QString name = QCoreApplication::applicationName();
    ZrTranslation::Install(name, ZrTranslation::Folders(name));
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    // Lines for typing take their letters from here, all else from the theme.
    QApplication::setFont(QFont(ZrTheme::fontFamily));
}

/// \returns nothing when that was all, with the exit code in \p code
std::optional<Options> ReadOptions(int& code)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("main", "Plans, records and reviews surveys of underwater vehicles."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
        QCoreApplication::translate("main", "Show this text."));
    const QCommandLineOption data(QStringLiteral("data"),
        QCoreApplication::translate("main", "Keep the settings and the plan's draft in DIR."),
        QStringLiteral("DIR"));
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
        QCoreApplication::translate("main", "Write a picture of the first screen into FILE and end."),
        QStringLiteral("FILE"));
    const QCommandLineOption page(QStringLiteral("page"),
        QCoreApplication::translate("main", "Show the page NAME first: Home, Plan, Record, Review, Scene."),
        QStringLiteral("NAME"));
    const QCommandLineOption size(QStringLiteral("size"),
        QCoreApplication::translate("main", "Size of the window, for instance 1280x800."),
        QStringLiteral("WxH"), QStringLiteral("1280x800"));
    const QCommandLineOption timeStart(QStringLiteral("time-start"),
        QCoreApplication::translate("main", "Print a line at the first frame and end."));
    const QCommandLineOption tour(QStringLiteral("tour"),
        QCoreApplication::translate("main",
            "Go through the whole main job by itself, with a picture of each station and all exports in "
            "DIR."),
        QStringLiteral("DIR"));
    const QCommandLineOption tourLine(QStringLiteral("tour-line"),
        QCoreApplication::translate(
            "main", "The side-scan line (XTF) of the tour, instead of the one that comes with the program."),
        QStringLiteral("FILE"));
    parser.addOptions({help, data, screenshot, page, size, timeStart, tour, tourLine});
    parser.addPositionalArgument(QStringLiteral("FILE"),
        QCoreApplication::translate("main", "A log or a recording to review, or a plan to work on."),
        QStringLiteral("[FILE]"));
    const bool isUnderstood = parser.parse(QCoreApplication::arguments());
    if (isUnderstood && parser.isSet(help)) {
        std::printf("%s", qPrintable(parser.helpText()));
        code = 0;
        return {};
    }
    const QStringList files = parser.positionalArguments();
    if (!isUnderstood || files.size() > 1) {
        const QString what = isUnderstood
            ? QCoreApplication::translate("main", "Unexpected argument %1").arg(files[1])
            : parser.errorText();
        std::fprintf(stderr, "%s\n%s", qPrintable(what), qPrintable(parser.helpText()));
        code = 1;
        return {};
    }

    const QStringList sides = parser.value(size).split(QLatin1Char('x'));
    const QSize windowSize(sides.value(0).toInt(), sides.value(1).toInt());
    if (sides.size() != 2 || windowSize.width() < 320 || windowSize.height() < 240) {
        std::fprintf(stderr, "%s\n",
            qPrintable(QCoreApplication::translate("main", "%1 is no size of a window, such as 1280x800")
                           .arg(parser.value(size))));
        code = 1;
        return {};
    }
    Options options;
    options.data = parser.isSet(data) ? parser.value(data)
                                      : QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    options.screenshot = parser.value(screenshot);
    options.page = parser.value(page);
    options.size = windowSize;
    options.isTour = parser.isSet(tour);
    options.tour = parser.value(tour);
    options.tourLine = parser.value(tourLine);
    options.file = files.value(0);
    options.isTimed = parser.isSet(timeStart);
    return options;
}

void TellFirstFrame(SurveyView& view)
{
    QObject::connect(&view, &QOpenGLWidget::frameSwapped, &view, [isTold = false]() mutable {
        if (std::exchange(isTold, true))
            return;
        std::puts("first frame");
        std::fflush(stdout);
        QCoreApplication::quit();
    });
}

int RunToPicture(SurveyView& view, const QString& path)
{
    bool isSaved = false;
    QTimer::singleShot(4000, &view, [&] {
        isSaved = view.grab().save(path);
        QCoreApplication::quit();
    });
    QApplication::exec();
    return isSaved ? 0 : 3;
}

int RunWindow(const Options& options)
{
    // What the program says about its own work goes into the file that the settings show, unless they say
    // otherwise; a terminal stays quiet.
    zr_debug_log_write_switch(&zr_debug_log_to_file, 1);
    zr_debug_log_write_switch(&zr_debug_log_to_dbg, 0);
    const ZrQtLog qtLog;
    SurveyView view(options.data);
    ChooseScale(view);
    view.resize(options.size);
    if (options.isTimed)
        TellFirstFrame(view);
    view.show();
    if (!options.file.isEmpty())
        view.Open(options.file);
    // Also after what shows the page of the file.
    if (!options.page.isEmpty())
        view.Show(options.page);
    return options.screenshot.isEmpty() ? QApplication::exec() : RunToPicture(view, options.screenshot);
}

} // namespace

int main(int argc, char** argv)
{
    SetSurfaceFormat();
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication app(argc, argv);
    SetUp();
    int code = 0;
    const std::optional<Options> options = ReadOptions(code);
    if (!options)
        return code;
    return options->isTour ? RunTour(options->tour, options->tourLine, options->size) : RunWindow(*options);
}
