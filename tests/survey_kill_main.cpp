// The application at work until it is killed: it plans, records, marks events, and tells on its standard
// output what it has done, a line each:
//
//   restored COUNT TEXT     waypoints that it began with, and what it said about them
//   edit MS COUNT           waypoints of the plan after an edit, and when that was
//   items COUNT             items of the recording that are with the operating system

#include "ZrKit/recording/ZrRecordingSession.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrWpts.h"
#include "apps/ZrSurvey/PlanFiles.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QStandardPaths>
#include <QSurfaceFormat>
#include <QTimer>

#include <cstdio>
#include <random>

namespace {

constexpr int editMs = 25;
constexpr int editsBeforeRecording = 12;
constexpr int editsPerEvent = 4;

void Press(QWidget& widget, int key)
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&widget, &press);
}

/// Edits the plan at every tick, and begins to record after some of them.
class Work : public QObject
{
public:
    Work(SurveyView& view, unsigned seed)
        : m_view(view)
        , m_random(seed)
    {
        m_clock.start();
        auto* timer = new QTimer(this);
        connect(timer, &QTimer::timeout, this, &Work::OnTick);
        timer->start(editMs);
    }

private:
    void OnTick()
    {
        ZrPlanDocument& plan = m_view.Model().plan;
        if (m_edits < editsBeforeRecording) {
            Press(m_view, Qt::Key_Right); // the map moves on under the cross
            Press(m_view, Qt::Key_Insert);
        } else {
            std::uniform_real_distribution<double> off(-0.002, 0.002);
            const ZrWpt* first = plan.Route().GetHead();
            plan.History().Add(
                first->lat + off(m_random), first->lng + off(m_random), eZrWptBlue, ZrWpts::eAddTail);
            plan.Edited();
        }
        ++m_edits;
        std::printf("edit %lld %d\n", static_cast<long long>(m_clock.elapsed()), plan.Route().GetCount());
        std::fflush(stdout);
        if (m_edits == editsBeforeRecording)
            Record();
        else if (m_edits > editsBeforeRecording && m_edits % editsPerEvent == 0)
            Press(m_view, Qt::Key_1);
    }

    void Record()
    {
        m_view.Show(QStringLiteral("Record"));
        auto& session = static_cast<RecordPage*>(m_view.GetPage(QStringLiteral("Record")))->Session();
        connect(&session, &ZrRecordingSession::Updated, this, [](const ZrRecordingNews& news) {
            if (!news.isRecording)
                return;
            std::printf("items %llu\n", static_cast<unsigned long long>(news.status.items));
            std::fflush(stdout);
        });
        Press(m_view, Qt::Key_R);
    }

    SurveyView& m_view;
    std::mt19937 m_random;
    QElapsedTimer m_clock;
    int m_edits = 0;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fputs("survey_kill_main DIR SEED\n", stderr);
        return 1;
    }
    QSurfaceFormat format;
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    format.setSwapInterval(0);
    QSurfaceFormat::setDefaultFormat(format);
    QStandardPaths::setTestModeEnabled(true);
    QApplication app(argc, argv);
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    const QString dir = QString::fromLocal8Bit(argv[1]);
    SurveyView view(dir);
    SurveySettings& settings = view.Model().settings;
    settings.recordDir = dir + QStringLiteral("/logs");
    settings.simSpeed = 2.0; // the machine is to have time for the edits
    settings.splitMegabytes = 1;
    settings.stopBelowMegabytes = SurveySettings::LeastStopBelow;
    view.resize(900, 600);
    view.show();
    view.Show(QStringLiteral("Plan"));
    const auto* files = view.GetPage(QStringLiteral("Plan"))->findChild<PlanFiles*>();
    do
        QApplication::processEvents();
    while (files->IsRestoring());
    std::printf("restored %d %s\n", view.Model().plan.Route().GetCount(),
        qPrintable(view.findChild<ZrToast*>()->Text()));
    std::fflush(stdout);
    Press(view, Qt::Key_A);
    const Work work(view, static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10)));
    return QApplication::exec();
}
