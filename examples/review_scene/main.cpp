// A recording on a map and in 3D, side by side; a tap on its way moves the vehicle there.
//     review_scene FILE [--screenshot FILE]: a log, or a recording in a foreign form, whose log is made first
//     and gone at the end
// Exit code 1 for wrong arguments, 2 when the recording cannot be read, 3 when the picture cannot be written.

#include "ZrKit/chart/ZrRecordingChart.h"
#include "ZrKit/import/ZrImportTask.h"
#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrMapSurface.h"
#include "ZrKit/scene/ZrScenePanel.h"
#include "ZrKit/scene/ZrSceneSurface.h"
#include "ZrKit/scene/ZrSceneWay.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/survey/ZrTargetMarker.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrWorkPanel.h"
#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrPage.h"
#include "ZrUtil/ZrTheme.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTemporaryDir>
#include <QTimer>

#include <cmath>
#include <cstdio>

struct RecordingPage final : ZrPage
{
    explicit RecordingPage(ZrAppView* view)
        : ZrPage(view)
    {
        m_hasBackground = false;
        m_map.m_layers = m_chart.Layers();
        const auto frame = [view] { view->update(); };
        connect(m_panel, &ZrMapPanel::Changed, view, frame);
        connect(m_scenePanel, &ZrScenePanel::Changed, view, frame);
        connect(&m_chart, &ZrRecordingChart::Changed, view, frame);
        connect(&m_way, &ZrSceneWay::Changed, view, frame);
        connect(&m_chart, &ZrRecordingChart::Built, this,
            [this] { m_map.m_camera.Fit(m_chart.Bounds(), ZrTheme::DpI(32)); });
        connect(m_panel, &ZrMapPanel::Tapped, this, [this](const QPointF& /*world*/, const QPointF& pixel) {
            const double time = m_chart.TimeAt(m_map.m_camera, pixel, 40.0, 40.0);
            if (!std::isnan(time))
                SetCursor(time);
        });
        connect(&m_way, &ZrSceneWay::OriginChanged, this, [this] { SetCursor(m_cursor); });
    }

    void Show(const std::shared_ptr<ZrSurveyRecording>& recording)
    {
        m_recording = recording;
        m_chart.SetRecording(recording);
        const ZrSurveySeries& series = recording->Series();
        std::vector<ZrScenePlace> places;
        for (std::size_t i = 0; i < series.Count(); ++i)
            places.push_back({series.track[i].latitude, series.track[i].longitude,
                static_cast<double>(series.depth.Value(i)), static_cast<double>(series.altitude.Value(i))});
        m_way.Clear();
        m_way.Append(places);
        SetCursor((recording->Times()->Begin() + recording->Times()->End()) / 2.0);
    }

    void SetCursor(double time)
    {
        m_cursor = time;
        m_chart.SetCursor(time);
        const ZrGeoPoint at = m_recording->PositionAt(time);
        const ZrSurveySeries& series = m_recording->Series();
        m_scene.m_hasVehicle = m_way.HasOrigin() && at.IsValid();
        m_scene.m_pose.position
            = m_way.ToScene(at.lat, at.lng, static_cast<double>(series.depth.ValueAt(time)));
        m_scene.m_pose.heading = series.heading.ValueAt(time);
        m_scenePanel->PoseChanged();
    }

    bool IsBusy() const { return m_chart.IsBuilding() || m_way.IsWorking(); }

    void zr_initializeGL() override
    {
        m_map.OnCreate();
        m_scene.OnCreate();
    }

    void zr_paintGL() override
    {
        m_map.Render();
        m_scene.Render();
    }

    void resizeEvent(QResizeEvent* /*event*/) override
    {
        m_panel->setGeometry(0, 0, width() / 2, height());
        m_scenePanel->setGeometry(width() / 2, 0, width() - width() / 2, height());
    }

    std::shared_ptr<ZrSurveyRecording> m_recording;
    ZrMapSurface m_map;
    ZrMapPanel* m_panel = new ZrMapPanel(this, m_map);
    ZrSceneSurface m_scene;
    ZrScenePanel* m_scenePanel = new ZrScenePanel(this, m_scene);
    ZrRecordingChart m_chart;
    ZrSceneWay m_way{m_scene};
    double m_cursor = 0.0;
};

struct RecordingView final : ZrAppView
{
    RecordingView()
        : ZrAppView(nullptr, std::chrono::milliseconds(40), updateTimer, std::chrono::milliseconds(40))
    {
        AddPage(QStringLiteral("Home"), m_page, true);
        connect(&m_import, &ZrImportTask::Finished, this, [this](int result) {
            if (result == ZrImportTask::done)
                Load(m_import.Log());
            else
                Fail(m_import.Error());
        });
        connect(&m_worker, &ZrWorker::Finished, this, [this] {
            if (!m_loading->Error().isEmpty())
                return Fail(m_loading->Error());
            m_page->Show(m_loading);
            TellTarget();
        });
    }

    void Open(const QString& path)
    {
        if (!ZrImportTask::IsForeign(path))
            return Load(path);
        m_work->Begin(m_import.Worker(), QStringLiteral("Importing"));
        if (!m_import.Start(path, ZrImportTask::PlaceFor(path, m_folder.path()).log))
            Fail(m_import.Error());
    }

    void Load(const QString& path)
    {
        m_loading = std::make_shared<ZrSurveyRecording>();
        m_work->Begin(m_worker, QStringLiteral("Opening"));
        m_worker.Start(
            [loading = m_loading, path](IZrProgress& progress) {
                loading->progress = &progress;
                loading->Load(path);
                loading->progress = nullptr;
            },
            [loading = m_loading] { loading->cancel = true; });
    }

    /// What a tap in the middle of the starboard side, in the middle line of a waterfall, would tell.
    void TellTarget() const
    {
        ZrTargetMarker marker;
        marker.SetRecording(m_loading.get());
        if (!marker.HasSonar())
            return;
        ZrWaterfallPoint point;
        point.ping = static_cast<double>(m_loading->Pings().size()) / 2.0;
        point.side = sideStarboard;
        point.slantRange
            = m_loading->Pings()[m_loading->Pings().size() / 2].sides[sideStarboard].slantRange / 2.0;
        if (marker.Tap(point))
            std::printf("At the middle: %.1f m beside the track\n", marker.Target()->groundRange);
        else
            std::printf("%s\n", qPrintable(marker.Error()));
    }

    void Fail(const QString& error)
    {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        m_exitCode = 2;
        close();
    }

    bool IsShown() const { return m_page->m_recording && !m_page->IsBusy(); }

    int m_exitCode = 0;

private:
    RecordingPage* m_page = new RecordingPage(this);
    ZrWorkPanel* m_work = new ZrWorkPanel(this);
    QTemporaryDir m_folder;
    std::shared_ptr<ZrSurveyRecording> m_loading;
    ZrImportTask m_import;
    ZrWorker m_worker;
};

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption picture(
        QStringLiteral("screenshot"), QStringLiteral("Write a picture and end."), QStringLiteral("FILE"));
    parser.addHelpOption();
    parser.addOption(picture);
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The recording."));
    parser.process(app);
    if (parser.positionalArguments().size() != 1) {
        std::fprintf(stderr, "%s", qPrintable(parser.helpText()));
        return 1;
    }
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    ZrColourScheme::Apply(ZrColourScheme::dusk);
    RecordingView view;
    view.resize(1280, 800);
    view.show();
    view.Open(parser.positionalArguments()[0]);
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &view, [&] {
        if (!view.IsShown())
            return;
        look.stop();
        if (!view.grab().save(parser.value(picture)))
            view.m_exitCode = 3;
        view.close();
    });
    if (parser.isSet(picture))
        look.start(200);
    QApplication::exec();
    return view.m_exitCode;
}
