#include "apps/ZrSurvey/RecordPage.h"

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrWaterfallOverlay.h"
#include "ZrKit/map/ZrWaterfallPalettes.h"
#include "ZrKit/planning/ZrPlanRecord.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SourceMaker.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace {

constexpr int waterfallLines = 2048;
constexpr int waterfallWidth = 1024; // samples of a side
constexpr int tickMs = 500;
constexpr qint64 megabyte = 1000000;

ZrValueTile* Tile(QWidget* parent, const QString& caption, QVector<ZrValueTile*>& group)
{
    auto* tile = new ZrValueTile(parent, caption);
    group.append(tile);
    return tile;
}

ZrBtn* Button(QWidget* parent, ZrBtn::eType type, const QString& icon, const QString& hint)
{
    auto* button = new ZrBtn(parent, type);
    button->setObjectName(icon);
    if (!icon.isEmpty())
        button->img = QImage(QStringLiteral(":/icons/%1.png").arg(icon));
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    return button;
}

} // namespace

RecordPage::RecordPage(SurveyView& view)
    : SurveyPage(view, tr("Record"))
    , m_waterfall(waterfallLines, waterfallWidth)
    , m_tick(new QTimer(this))
    , m_mapPanel(new ZrMapPanel(this, m_map))
    , m_sonarPanel(new ZrMapPanel(this, m_sonar))
    , m_record(Button(this, ZrBtn::typeAccent, QStringLiteral("record"), tr("Start or stop recording (R)")))
    , m_source(Button(this, ZrBtn::typeStd, QStringLiteral("source"), tr("Choose the source (S)")))
    , m_elapsed(Tile(this, tr("Recorded"), m_figures))
    , m_size(Tile(this, tr("Size"), m_figures))
    , m_rate(Tile(this, tr("Rate"), m_figures))
    , m_free(Tile(this, tr("Free space"), m_figures))
    , m_heading(Tile(this, tr("Heading"), m_instruments))
    , m_depth(Tile(this, tr("Depth"), m_instruments))
    , m_altitude(Tile(this, tr("Altitude"), m_instruments))
    , m_speed(Tile(this, tr("Speed"), m_instruments))
    , m_pitch(Tile(this, tr("Pitch"), m_instruments))
    , m_roll(Tile(this, tr("Roll"), m_instruments))
    , m_fix(Tile(this, tr("Age of fix"), m_instruments))
    , m_note(new ZrInput(this))
    , m_addNote(
          Button(this, ZrBtn::typeStd, QStringLiteral("event"), tr("Add the note as an event (Return)")))
    , m_sources(nullptr)
    , m_ports(nullptr)
    , m_files(nullptr)
{
    m_hasBackground = false;
    m_sonar.m_layers = {&m_sonarLayer};
    m_sonar.m_water = QColor(20, 26, 32);
    m_sonarLayer.SetRing(&m_waterfall.Ring());
    m_sonarLayer.m_isSmooth = true;
    m_sonarPanel->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_sonarPanel->setFocusPolicy(Qt::NoFocus);

    m_follow = AddMapTool(QStringLiteral("follow"), tr("Follow the vehicle (F)"), &RecordPage::ToggleFollow);
    m_follow->checkable = true;
    m_follow->on = true;
    AddMapTool(QStringLiteral("fit"), tr("Show plan and trail (Home)"), &RecordPage::FitMap);
    AddSonarTool(QStringLiteral("palette"), tr("Next palette (P)"), &RecordPage::NextPalette);
    AddSonarTool(QStringLiteral("remove"), tr("Less gain ([)"), &RecordPage::Quieter);
    AddSonarTool(QStringLiteral("add"), tr("More gain (])"), &RecordPage::Louder);
    m_bottom
        = AddSonarTool(QStringLiteral("bottom"), tr("Show the bottom line (O)"), &RecordPage::ToggleBottom);

    m_note->kind = ZrInput::kindText;
    m_note->caption = tr("Note");
    m_note->setPlaceholderText(tr("Note …"));
    m_note->setToolTip(tr("A note for an event (E)"));
    m_addNote->text = tr("Add note");
    m_addNote->setEnabled(false);
    m_record->lines = 1;
    m_source->lines = 2;

    connect(m_record, &ZrBtn::Clicked, this, &RecordPage::ToggleRecording);
    connect(m_source, &ZrBtn::Clicked, this, &RecordPage::ChooseSource);
    connect(m_addNote, &ZrBtn::Clicked, this, &RecordPage::AddNote);
    connect(m_note, &QLineEdit::returnPressed, this, &RecordPage::AddNote);
    connect(m_mapPanel, &ZrMapPanel::Changed, this, &SurveyPage::Changed);
    connect(m_mapPanel, &ZrMapPanel::CameraMoved, this, [this] {
        m_follow->on = m_map.m_isFollowing = false;
        m_follow->update();
    });
    connect(&m_session, &ZrRecordingSession::Updated, this, &RecordPage::OnNews);
    connect(&m_session, &ZrRecordingSession::SourceChanged, this, &RecordPage::ShowSource);
    connect(&m_session, &ZrRecordingSession::RecordingChanged, this, &RecordPage::OnRecording);
    connect(&m_session, &ZrRecordingSession::SpaceMeasured, this, [this](qint64 bytes) {
        m_space = bytes;
        ShowRecording();
    });
    connect(&m_session, &ZrRecordingSession::Failed, &view, &SurveyView::Warn);
    connect(&m_session, &ZrRecordingSession::Trouble, this, &RecordPage::OnTrouble);
    connect(&view.Model().plan, &ZrPlanDocument::Changed, this, [this] {
        ShowPlan();
        if (isVisible())
            Changed();
    });
    connect(&view.Model().feed, &SurveyFeed::Wanted, this, [this] {
        if (m_openKey != SourceMaker::Key(View().Model().settings)
            || m_session.Source() != ZrRecordingSession::sourceOpen)
            OpenSource();
    });
    connect(m_tick, &QTimer::timeout, this, &RecordPage::OnTick);
    m_tick->setObjectName(QStringLiteral("tick"));
    m_tick->start(tickMs);
}

ZrBtn* RecordPage::AddMapTool(const QString& icon, const QString& hint, void (RecordPage::*action)())
{
    ZrBtn* button = Button(this, ZrBtn::typeRound, icon, hint);
    connect(button, &ZrBtn::Clicked, this, action);
    m_mapTools.append(button);
    return button;
}

ZrBtn* RecordPage::AddSonarTool(const QString& icon, const QString& hint, void (RecordPage::*action)())
{
    ZrBtn* button = Button(this, ZrBtn::typeTool, icon, hint);
    connect(button, &ZrBtn::Clicked, this, action);
    m_sonarTools.append(button);
    return button;
}

void RecordPage::zr_initializeGL()
{
    m_map.OnCreate();
    m_sonar.OnCreate();
    ZrWaterfallPalettes::Load(m_sonar);
}

void RecordPage::zr_paintGL()
{
    m_map.Render();
    m_sonarLayer.m_view.rect = QRect(0, 0, m_sonar.m_camera.Width(), m_sonar.m_camera.Height());
    m_sonarLayer.m_view.pixelsPerLine = std::max(1.0, 1.5 * devicePixelRatioF() * ZrTheme::dp);
    m_sonar.Render();
}

void RecordPage::OnPageOpen()
{
    View().Model().isReviewLast = false;
    MakeEventButtons();
    if (m_openKey != SourceMaker::Key(View().Model().settings))
        OpenSource();
    UsePlan();
    ShowPlan();
    MeasureSpace();
    ShowState();
}

void RecordPage::OnColours()
{
    m_map.OnColours();
    SurveyPage::OnColours();
    ShowState();
}

bool RecordPage::OnKey(int key, Qt::KeyboardModifiers modifiers)
{
    if (modifiers != Qt::NoModifier)
        return false;
    if (key >= Qt::Key_1 && key < Qt::Key_1 + m_events.size()) {
        AddEvent(m_eventLabels[key - Qt::Key_1]);
        return true;
    }
    switch (key) {
    case Qt::Key_R:
        ToggleRecording();
        return true;
    case Qt::Key_S:
        ChooseSource();
        return true;
    case Qt::Key_E:
        m_note->setFocus(Qt::ShortcutFocusReason);
        return true;
    case Qt::Key_Space:
        if (!m_eventLabels.isEmpty())
            AddEvent(m_eventLabels.first());
        return true;
    case Qt::Key_F:
        m_follow->on = !m_follow->on;
        m_follow->update();
        ToggleFollow();
        return true;
    case Qt::Key_Home:
        FitMap();
        return true;
    case Qt::Key_P:
        NextPalette();
        return true;
    case Qt::Key_O:
        ToggleBottom();
        return true;
    case Qt::Key_BracketLeft:
        Quieter();
        return true;
    case Qt::Key_BracketRight:
        Louder();
        return true;
    default:
        return false;
    }
}

void RecordPage::ToggleRecording()
{
    if (m_session.IsRecording()) {
        m_session.Stop();
        return;
    }
    const SurveySettings& settings = View().Model().settings;
    ZrRecorder::Options options;
    options.dir = settings.recordDir;
    options.prefix = settings.recordPrefix;
    options.stopBelow = settings.stopBelowMegabytes * megabyte;
    options.warnBelow = 2 * options.stopBelow;
    options.splitBytes = settings.splitMegabytes * megabyte;
    options.splitSeconds = 60.0 * settings.splitMinutes;
    options.plan = ZrPlanRecord::Encode(SourceMaker::PlanOf(settings, View().Model().plan.Route()));
    m_session.Start(options);
}

void RecordPage::OnRecording()
{
    if (m_session.Recording() == ZrRecordingSession::recordingOff) {
        UsePlan();
        View().Model().recording.End();
        const QString file = m_session.Status().file;
        if (!file.isEmpty() && m_session.Status().seconds > 0.0)
            View().Tell(
                tr("Recording stopped: %1").arg(file), tr("Review"), [this, file] { View().OpenLog(file); });
    }
    if (m_session.Recording() == ZrRecordingSession::recordingStarting) {
        for (ZrBtn* button : qAsConst(m_events))
            button->badge = 0;
        m_addNote->badge = 0;
    }
    EnableEvents();
    ShowState();
}

void RecordPage::EnableEvents()
{
    const bool isOn = m_session.IsRecording();
    for (ZrBtn* button : qAsConst(m_events))
        button->setEnabled(isOn);
    m_addNote->setEnabled(isOn);
}

void RecordPage::OnTrouble(const QString& message)
{
    // Those of the source begin with its name, which is not told yet while it is being opened.
    const int end = message.indexOf(QLatin1String(": "));
    if (end >= 0
        && (m_session.Source() == ZrRecordingSession::sourceOpening
            || message.left(end) == m_session.SourceText())) {
        const QString text = message.mid(end + 2).section(QLatin1Char(';'), 0, 0);
        m_trouble = text == QLatin1String("connected") ? QString() : text;
        ShowSource();
    }
    View().Tell(message);
}

void RecordPage::ToggleFollow()
{
    m_map.m_isFollowing = m_follow->on;
    ShowState();
}

void RecordPage::FitMap()
{
    m_follow->on = m_map.m_isFollowing = false;
    m_follow->update();
    m_map.FitAll();
    Changed();
}

void RecordPage::AddEvent(const QString& label)
{
    // Told by a number on the button: a strip of text would lie over the buttons.
    if (!m_session.AddEvent(label))
        return;
    const int index = m_eventLabels.indexOf(label);
    ZrBtn* button = index >= 0 ? m_events[index] : m_addNote;
    ++button->badge;
    button->update();
}

void RecordPage::AddNote()
{
    const QString text = m_note->QLineEdit::text().trimmed();
    if (text.isEmpty()) {
        m_note->setFocus(Qt::OtherFocusReason);
        return;
    }
    AddEvent(text);
    if (m_session.Recording() == ZrRecordingSession::recordingOn)
        m_note->SetText(QString());
    m_note->clearFocus();
}

void RecordPage::MakeEventButtons()
{
    const QStringList& labels = View().Model().settings.eventLabels;
    if (m_eventLabels == labels)
        return;
    m_eventLabels = labels;
    for (ZrBtn* button : qAsConst(m_events))
        button->deleteLater();
    m_events.clear();
    for (const QString& label : labels) {
        const QString key = m_events.isEmpty() ? tr("1 or space") : QString::number(m_events.size() + 1);
        ZrBtn* button
            = Button(this, ZrBtn::typeStd, QString(), tr("Add the event \"%1\" (%2)").arg(label, key));
        button->text = label;
        connect(button, &ZrBtn::Clicked, this, [this, label] { AddEvent(label); });
        button->setEnabled(m_session.IsRecording());
        button->show();
        m_events.append(button);
    }
    Place();
}

void RecordPage::Place()
{
    const int gap = Gap();
    QRect area = Content().adjusted(gap, gap, -gap, -gap);
    const int bar = ZrTheme::DpI(88);
    PlaceBar(QRect(area.x(), area.y(), area.width(), bar));
    const int events = std::max(ZrTheme::DpI(72), 44);
    PlaceEvents(QRect(area.x(), area.bottom() + 1 - events, area.width(), events));
    area.adjust(0, bar + gap, 0, -events - gap);
    const int column = ZrTheme::DpI(168);
    PlaceInstruments(QRect(area.x(), area.y(), column, area.height()));
    area.setLeft(area.left() + column + gap);
    const int sonar = area.width() * 2 / 5;
    m_map.m_pixelFactor = qRound(devicePixelRatioF());
    m_mapPanel->setGeometry(area.adjusted(0, 0, -sonar - gap, 0));
    PlaceSonar(QRect(area.right() + 1 - sonar, area.y(), sonar, area.height()));
    const int side = std::max(ZrTheme::DpI(64), 44);
    const QRect mapArea = m_mapPanel->geometry();
    int y = mapArea.y() + gap;
    for (ZrBtn* tool : qAsConst(m_mapTools)) {
        tool->setGeometry(mapArea.right() + 1 - side - gap, y, side, side);
        tool->Changed();
        y += side + gap;
    }
}

void RecordPage::PlaceSonar(const QRect& area)
{
    const int side = std::max(ZrTheme::DpI(64), 44);
    m_sonarHead = QRect(area.x(), area.y(), area.width(), side);
    m_sonarPanel->setGeometry(area.adjusted(0, side, 0, 0));
    int x = area.right() + 1 - static_cast<int>(m_sonarTools.size()) * side;
    for (ZrBtn* tool : qAsConst(m_sonarTools)) {
        tool->setGeometry(x, area.y(), side, side);
        tool->Changed();
        x += side;
    }
}

void RecordPage::PlaceBar(const QRect& area)
{
    const int gap = Gap();
    const int record = ZrTheme::DpI(240);
    const int source = ZrTheme::DpI(264);
    m_record->setGeometry(area.x(), area.y(), record, area.height());
    m_record->font = ZrTheme::fontLarge;
    m_record->Changed();
    m_source->setGeometry(area.right() + 1 - source, area.y(), source, area.height());
    m_source->Changed();
    const int count = m_figures.size();
    const int room = area.width() - record - source - (count + 1) * gap;
    int x = area.x() + record + gap;
    for (int i = 0; i < count; ++i) {
        const int width = room * (i + 1) / count - room * i / count;
        m_figures[i]->setGeometry(x, area.y(), width, area.height());
        x += width + gap;
    }
}

void RecordPage::PlaceInstruments(const QRect& area)
{
    const int gap = Gap();
    const int count = m_instruments.size();
    const int room = area.height() - (count - 1) * gap;
    int y = area.y();
    for (int i = 0; i < count; ++i) {
        const int height = room * (i + 1) / count - room * i / count;
        m_instruments[i]->setGeometry(area.x(), y, area.width(), height);
        y += height + gap;
    }
}

void RecordPage::PlaceEvents(const QRect& area)
{
    const int gap = Gap();
    const int add = ZrTheme::DpI(168);
    const int note = area.width() / 5;
    m_addNote->setGeometry(area.right() + 1 - add, area.y(), add, area.height());
    m_addNote->Changed();
    m_note->setGeometry(area.right() + 1 - add - gap - note, area.y(), note, area.height());
    const int count = m_events.size();
    const int room = area.width() - add - note - (count + 1) * gap;
    int x = area.x();
    for (int i = 0; i < count; ++i) {
        const int width = room * (i + 1) / count - room * i / count;
        m_events[i]->setGeometry(x, area.y(), width, area.height());
        m_events[i]->lines = 2;
        m_events[i]->Changed();
        x += width + gap;
    }
}

void RecordPage::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    // All but the map and the waterfall, which are drawn below.
    const QRegion shown = QRegion(m_mapPanel->geometry()) + m_sonarPanel->geometry();
    painter.setClipRegion(QRegion(rect()) - shown);
    painter.fillRect(rect(), ZrTheme::formBack);
    painter.end();
    SurveyPage::paintEvent(event);
    QPainter over(this);
    PaintSonar(over);
}

void RecordPage::PaintSonar(QPainter& painter) const
{
    painter.setPen(Qt::NoPen);
    painter.fillRect(m_sonarHead, ZrTheme::toolBack);
    const int tools = m_sonarTools.isEmpty() ? m_sonarHead.right() : m_sonarTools.front()->x();
    const QRect label = m_sonarHead.adjusted(Gap(), 0, tools - m_sonarHead.right() - Gap(), 0);
    const QStringList look = SonarText();
    const QRect upper(label.x(), label.y(), label.width(), label.height() / 2);
    painter.setFont(ZrTheme::font);
    const QFontMetrics metrics = painter.fontMetrics();
    painter.setPen(ZrTheme::ctrlCol);
    painter.drawText(upper, Qt::AlignLeft | Qt::AlignBottom,
        metrics.elidedText(look.first(), Qt::ElideRight, label.width()));
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(
        upper.translated(0, label.height() - upper.height()), Qt::AlignLeft | Qt::AlignTop, look.last());

    const QRect sonar = m_sonarPanel->geometry();
    painter.setClipRect(sonar);
    if (m_waterfall.Ring().End() <= 0) {
        painter.setPen(QColor(160, 170, 180));
        painter.drawText(sonar, Qt::AlignCenter | Qt::TextWordWrap, tr("No sonar data"));
        return;
    }
    const double ratio = devicePixelRatioF();
    painter.translate(sonar.topLeft());
    painter.scale(1.0 / ratio, 1.0 / ratio);
    const ZrWaterfallLayout& layout = m_sonarLayer.Layout();
    if (View().Model().settings.bottom)
        ZrWaterfallOverlay::PaintBottom(painter, layout, 1.2 * ratio);
    QFont font = ZrTheme::font;
    font.setPixelSize(qRound(ZrLegible::Px(14) * ratio));
    ZrWaterfallOverlay::PaintScale(painter, layout, font);
    // The brightest thing on the screen would take the eyes their night sight.
    if (ZrColourScheme::Current() == ZrColourScheme::night)
        painter.fillRect(layout.View().rect, QColor(30, 0, 0, 150));
}

/// The event buttons and the note.
int RecordPage::FreeBelow() const
{
    return height() - m_note->y();
}
