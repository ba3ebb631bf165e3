// Plans, records and reviews surveys of underwater vehicles.

#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/ui/ZrQtLog.h"
#include "ZrKit/ui/ZrTranslation.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QStandardPaths>
#include <QSurfaceFormat>
#include <QTimer>

#include <cstdio>
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

} // namespace

int main(int argc, char** argv)
{
    SetSurfaceFormat();
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication app(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    QCoreApplication::setApplicationName(QStringLiteral("ZrSurvey"));
    QCoreApplication::setOrganizationName(QStringLiteral("ZrSurvey"));

    const QString name = QCoreApplication::applicationName();
    ZrTranslation::Install(name, ZrTranslation::Folders(name));

    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    // Lines for typing take their letters from here, all else from the theme.
    QApplication::setFont(QFont(ZrTheme::fontFamily));
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
    parser.addOptions({help, data, screenshot, page, size, timeStart});
    parser.addPositionalArgument(QStringLiteral("FILE"),
        QCoreApplication::translate("main", "A log to review or a plan to work on."),
        QStringLiteral("[FILE]"));
    const bool isUnderstood = parser.parse(QCoreApplication::arguments());
    if (isUnderstood && parser.isSet(help)) {
        std::printf("%s", qPrintable(parser.helpText()));
        return 0;
    }
    const QStringList files = parser.positionalArguments();
    if (!isUnderstood || files.size() > 1) {
        const QString what = isUnderstood
            ? QCoreApplication::translate("main", "Unexpected argument %1").arg(files[1])
            : parser.errorText();
        std::fprintf(stderr, "%s\n%s", qPrintable(what), qPrintable(parser.helpText()));
        return 1;
    }

    // What the program says about its own work goes into the file that the settings show, unless they say
    // otherwise; a terminal stays quiet.
    zr_debug_log_write_switch(&zr_debug_log_to_file, 1);
    zr_debug_log_write_switch(&zr_debug_log_to_dbg, 0);
    const ZrQtLog qtLog;
    SurveyView view(parser.isSet(data) ? parser.value(data)
                                       : QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    const QStringList sides = parser.value(size).split(QLatin1Char('x'));
    view.resize(sides.value(0).toInt(), sides.value(1).toInt());
    if (parser.isSet(timeStart)) {
        QObject::connect(&view, &QOpenGLWidget::frameSwapped, &view, [isTold = false]() mutable {
            if (std::exchange(isTold, true))
                return;
            std::puts("first frame");
            std::fflush(stdout);
            QCoreApplication::quit();
        });
    }
    view.show();
    if (parser.isSet(page))
        view.Show(parser.value(page));
    if (!files.isEmpty())
        view.Open(files[0]);
    if (parser.isSet(screenshot)) {
        bool isSaved = false;
        QTimer::singleShot(4000, &view, [&] {
            isSaved = view.grab().save(parser.value(screenshot));
            QCoreApplication::quit();
        });
        QApplication::exec();
        return isSaved ? 0 : 3;
    }
    return QApplication::exec();
}
