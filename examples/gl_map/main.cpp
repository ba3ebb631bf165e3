// A map of a recorded track with a track of a million positions beside it.
//
//     gl_map LOG [--points N] [--statistics] [--screenshot FILE [--all] [--turn DEGREES]]
//
// One finger or the mouse pans, and the map coasts on; two fingers or the wheel zoom about where they are;
// two fingers, or the mouse with Shift, turn. The buttons at the right have keys, see their tool tips. Exit
// code 1 for a wrong option, 2 when there is no track in the log, 3 when a picture cannot be written.

#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrTheme.h"
#include "examples/gl_map/MapPage.h"

#include <QApplication>
#include <QCommandLineParser>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <utility>

namespace {

/// Nothing moves by itself: frames come when the map asks for them.
constexpr std::chrono::milliseconds idle = std::chrono::hours(24);

/// Keeps the colours when the library sets its style anew for another size.
class MapView : public ZrAppView
{
public:
    MapView()
        : ZrAppView(nullptr, idle, updateTimer, idle)
    {
    }

protected:
    void resizeGL(int w, int h) override
    {
        ZrAppView::resizeGL(w, h);
        ZrColourScheme::Apply(ZrColourScheme::dusk);
    }
};

int Fail(int code, const QString& text)
{
    std::fprintf(stderr, "%s\n", qPrintable(text));
    return code;
}

} // namespace

int main(int argc, char** argv)
{
    QSurfaceFormat format;
    format.setVersion(2, 0);
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    QSurfaceFormat::setDefaultFormat(format);
    QApplication app(argc, argv);
    const auto tr = [](const char* text) { return QCoreApplication::translate("main", text); };
    QCommandLineParser parser;
    const QCommandLineOption points(QStringLiteral("points"),
        tr(QT_TRANSLATE_NOOP("main", "Positions of the long track.")), QStringLiteral("N"),
        QStringLiteral("1000000"));
    const QCommandLineOption statistics(QStringLiteral("statistics"),
        tr(QT_TRANSLATE_NOOP("main", "Show times and vertices of the frames.")));
    const QCommandLineOption picture(QStringLiteral("screenshot"),
        tr(QT_TRANSLATE_NOOP("main", "Write a picture into FILE and end.")), QStringLiteral("FILE"));
    const QCommandLineOption all(
        QStringLiteral("all"), tr(QT_TRANSLATE_NOOP("main", "Show both tracks, not only the recording.")));
    const QCommandLineOption turn(QStringLiteral("turn"),
        tr(QT_TRANSLATE_NOOP("main", "Turn the map counter-clockwise.")), QStringLiteral("DEGREES"),
        QStringLiteral("0"));
    parser.setApplicationDescription(
        tr(QT_TRANSLATE_NOOP("main", "A map of a recorded track with a very long one beside it.")));
    parser.addHelpOption();
    parser.addOptions({points, statistics, picture, all, turn});
    parser.addPositionalArgument(QStringLiteral("LOG"), tr(QT_TRANSLATE_NOOP("main", "The recording.")));
    parser.process(app);
    bool isNumber = false;
    bool isAngle = false;
    const int count = parser.value(points).toInt(&isNumber);
    const double degrees = parser.value(turn).toDouble(&isAngle);
    if (parser.positionalArguments().size() != 1 || !isNumber || count < 1 || count > 10000000 || !isAngle
        || !std::isfinite(degrees))
        return Fail(1, parser.helpText());
    const Track track = ReadTrack(parser.positionalArguments()[0]);
    if (!track.error.isEmpty())
        return Fail(2, track.error);

    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    ZrColourScheme::Apply(ZrColourScheme::dusk);
    MapView view;
    auto* page = new MapPage(&view, track, count);
    view.AddPage(QStringLiteral("Home"), page, true);
    view.resize(1280, 800);
    view.show();
    page->Panel().setFocus();
    page->SetStatistics(parser.isSet(statistics));
    int code = 0;
    bool isTaken = false;
    const auto take = [&] {
        // The picture is a frame too.
        if (std::exchange(isTaken, true))
            return;
        if (!view.grab().save(parser.value(picture)))
            code = Fail(3, QStringLiteral("%1 cannot be written").arg(parser.value(picture)));
        if (parser.isSet(statistics))
            std::printf("%s\n", qPrintable(page->Statistics()));
        view.close();
    };
    // What is shown is fitted to the map as it is turned.
    page->Panel().Map().m_camera.SetRotation(degrees);
    if (parser.isSet(all))
        page->ShowAll();
    else
        page->ShowRecording();
    if (parser.isSet(picture))
        QObject::connect(&view, &QOpenGLWidget::frameSwapped, &view, take, Qt::QueuedConnection);
    const int ended = QApplication::exec();
    return code != 0 ? code : ended;
}
