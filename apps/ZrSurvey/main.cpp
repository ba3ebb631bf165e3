// Plans, records and reviews surveys of underwater vehicles.

#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/ui/ZrQtLog.h"
#include "ZrKit/ui/ZrTranslation.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SurveyOptions.h"
#include "apps/ZrSurvey/SurveyView.h"
#include "apps/ZrSurvey/tour/Tour.h"

#include <QApplication>
#include <QFileInfo>
#include <QSurfaceFormat>
#include <QTimer>

#include <cstdio>
#include <utility>
#include <vector>

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

/// Texts in the user's language, and where settings are.
void SetName()
{
    const QString name = QStringLiteral("ZrSurvey");
    QCoreApplication::setApplicationName(name);
    QCoreApplication::setOrganizationName(name);
    ZrTranslation::Install(name, ZrTranslation::Folders(name));
}

/// Without a display: what is asked on a terminal is answered there too.
SurveyOptions ReadOptions(int argc, char** argv)
{
    // Of a copy: what an application object takes out of the arguments is there for the next one.
    std::vector<char*> arguments(argv, argv + argc + 1);
    QCoreApplication app(argc, arguments.data());
    SetName();
    return SurveyOptions::Read(QCoreApplication::arguments());
}

void SetUp()
{
    QApplication::setStyle(QStringLiteral("Fusion"));
    SetName();
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    // Lines for typing take their letters from here, all else from the theme.
    QApplication::setFont(QFont(ZrTheme::fontFamily));
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

int RunWindow(const SurveyOptions& options)
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
    const SurveyOptions options = ReadOptions(argc, argv);
    if (options.IsAnswered())
        return options.Answer();
    SetSurfaceFormat();
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication app(argc, argv);
    SetUp();
    return options.isTour ? RunTour(options.tour, options.tourLine, options.size) : RunWindow(options);
}
