#include "apps/ZrSurvey/ReviewBottom.h"

#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrWorkPanel.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

/// Over the picture, which is dark by day too.
const QColor foundColour(64, 224, 255);
const QColor drawnColour(255, 210, 60);

ZrBtn* Tool(QWidget* parent, const char* icon, const QString& hint)
{
    auto* button = new ZrBtn(parent, ZrBtn::typeTool);
    button->img = QImage(QStringLiteral(":/icons/%1.png").arg(QLatin1String(icon)));
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    return button;
}

ZrBtn* Text(QWidget* parent, ZrBtn::eType type, const QString& text, const QString& hint)
{
    auto* button = new ZrBtn(parent, type);
    button->text = text;
    button->setToolTip(hint);
    button->setAccessibleName(text);
    return button;
}

int Side()
{
    return std::max(ZrTheme::DpI(48), 44);
}

} // namespace

ReviewBottom::ReviewBottom(QWidget* parent, SurveyView& view, ZrWaterfallPanel& panel)
    : QWidget(parent)
    , m_view(view)
    , m_panel(panel)
    , m_work(new ZrWorkPanel(&view))
    , m_undo(Tool(this, "undo", tr("Undo (Ctrl+Z)")))
    , m_redo(Tool(this, "redo", tr("Redo (Ctrl+Y)")))
    , m_detect(Tool(this, "sonar", tr("Detect the line anew in what is in view (D)")))
    , m_clear(Tool(this, "delete", tr("Take back what was drawn in view (Del)")))
    , m_done(Text(this, ZrBtn::typeAccent, tr("Done"), tr("End the correction (Esc)")))
{
    hide();
    setAccessibleName(tr("Correct the bottom line"));
    m_sideButtons = {Text(this, ZrBtn::typeStd, tr("P"),
                         tr("The detection listens to port alone (Shift+D goes through them)")),
        Text(this, ZrBtn::typeStd, tr("P+S"),
            tr("The detection listens to both sides together (Shift+D goes through them)")),
        Text(this, ZrBtn::typeStd, tr("S"),
            tr("The detection listens to starboard alone (Shift+D goes through them)"))};
    for (int i = 0; i < m_sideButtons.size(); ++i)
        connect(m_sideButtons[i], &ZrBtn::Clicked, this, [this, i] { SetSides(i); });
    connect(m_undo, &ZrBtn::Clicked, this, &ReviewBottom::Undo);
    connect(m_redo, &ZrBtn::Clicked, this, &ReviewBottom::Redo);
    connect(m_detect, &ZrBtn::Clicked, this, &ReviewBottom::Detect);
    connect(m_clear, &ZrBtn::Clicked, this, &ReviewBottom::TakeBack);
    connect(m_done, &ZrBtn::Clicked, this, [this] { SetOn(false); });
    connect(&panel, &ZrWaterfallPanel::Drawn, this, &ReviewBottom::OnDrawn);
    connect(&m_editor, &ZrBottomEditor::Changed, this, [this](qint64 first, qint64 end) {
        Update();
        Q_EMIT LineChanged(first, end);
    });
    connect(&m_editor, &ZrBottomEditor::SaveFailed, this, [this](const QString& error) {
        m_view.Warn(
            tr("The bottom line is not saved, it is here as long as the recording is open. %1").arg(error));
    });
    connect(&m_editor, &ZrBottomEditor::Tracked, this, [this](bool isChanged) {
        if (!isChanged && !m_editor.Tracker().IsCancelled())
            m_view.Tell(tr("The detection finds the same line"));
    });
    SetSides(bothSides);
}

ReviewBottom::~ReviewBottom()
{
    m_editor.SetRecording(nullptr);
}

void ReviewBottom::Show(const std::shared_ptr<ZrSurveyRecording>& recording)
{
    SetOn(false);
    // What is still to be saved of the one before is, and a message may tell that it was not.
    m_editor.SetRecording(recording);
    m_recording = recording;
    Update();
}

void ReviewBottom::SetOn(bool on)
{
    const bool isOn = on && m_editor.IsThere();
    const bool isNew = isOn != m_isOn;
    if (!isOn)
        m_editor.EndStroke();
    m_isOn = isOn;
    m_isDrawing = false;
    m_panel.m_isPointing = isOn;
    setVisible(isOn);
    if (isOn)
        raise();
    Update();
    if (!isNew)
        return;
    Q_EMIT OnChanged();
    // Once the page has its place, of which the hint keeps clear.
    if (isOn)
        m_view.Tell(tr("Draw along the first echo of the sea floor, on either side"));
}

void ReviewBottom::SetSides(int sides)
{
    m_sides = sides;
    for (int i = 0; i < m_sideButtons.size(); ++i) {
        m_sideButtons[i]->on = i == sides;
        m_sideButtons[i]->Changed();
    }
}

void ReviewBottom::Undo()
{
    m_editor.Undo();
}

void ReviewBottom::Redo()
{
    m_editor.Redo();
}

void ReviewBottom::TakeBack()
{
    const auto [first, last] = InView();
    if (!m_editor.Clear(first, last))
        m_view.Tell(tr("Nothing was drawn in what is in view"));
}

void ReviewBottom::Detect()
{
    const auto [first, last] = InView();
    if (m_editor.IsTracking() || !m_editor.IsThere())
        return;
    m_work->Begin(m_editor.Tracker(), tr("Detecting the bottom line"));
    m_editor.Track(first, last, {m_sides != starboardAlone, m_sides != portAlone});
}

std::pair<std::size_t, std::size_t> ReviewBottom::InView() const
{
    const std::vector<ZrWaterfallLayout::Row>& rows = m_panel.Layout().Rows();
    if (rows.empty())
        return {0, 0};
    return {static_cast<std::size_t>(std::max<i64>(rows.back().line, 0)),
        static_cast<std::size_t>(std::max<i64>(rows.front().line, 0))};
}

void ReviewBottom::OnDrawn(const QPointF& from, const QPointF& to, bool isDone)
{
    if (!m_isOn)
        return;
    if (!m_isDrawing)
        m_last = from;
    m_isDrawing = !isDone;
    const ZrWaterfallPoint a = m_panel.Layout().ToSonar(m_last);
    const ZrWaterfallPoint b = m_panel.Layout().ToSonar(to);
    // Beyond what was recorded the finger draws nothing.
    if (b.IsValid())
        m_last = to;
    if (a.IsValid() && b.IsValid() && m_editor.Draw(a.ping, a.slantRange, b.ping, b.slantRange))
        m_panel.update();
    if (isDone)
        m_editor.EndStroke();
}

void ReviewBottom::Update()
{
    const auto show = [](ZrBtn& button, bool enabled) {
        button.setEnabled(enabled);
        button.Changed();
    };
    show(*m_undo, m_editor.CanUndo());
    show(*m_redo, m_editor.CanRedo());
    m_panel.update();
    update();
}

void ReviewBottom::Paint(QPainter& painter, const ZrWaterfallLayout& layout)
{
    if (!m_recording || !(layout.MetresPerPixel() > 0.0) || layout.IsSlantCorrected())
        return;
    const double middle = layout.View().rect.x() + layout.Columns(sidePort);
    const double ratio = m_panel.devicePixelRatioF();
    const double width = std::max(static_cast<double>(ZrTheme::DpF(m_isOn ? 2.5F : 1.4F)), 1.0) * ratio;
    const ZrBottomLine& line = m_recording->Bottom();
    painter.setRenderHint(QPainter::Antialiasing);
    QPolygonF sides[2];
    bool isDrawn = false; // by hand, what is collected
    const auto draw = [&] {
        painter.setPen(QPen(ZrColourScheme::OverPicture(isDrawn ? drawnColour : foundColour), width));
        for (QPolygonF& side : sides) {
            painter.drawPolyline(side);
            side.clear();
        }
    };
    for (const ZrWaterfallLayout::Row& row : layout.Rows()) {
        const auto ping = static_cast<std::size_t>(std::max<i64>(row.line, 0));
        const double altitude = row.line >= 0 ? line.Altitude(ping) : std::nan("");
        if (std::isnan(altitude)) {
            draw();
            continue;
        }
        const double away = altitude / layout.MetresPerPixel();
        const QPointF at(away, (row.from + row.to) / 2.0);
        const QPointF places[2] = {{middle - at.x(), at.y()}, {middle + at.x(), at.y()}};
        for (int side = 0; side < 2; ++side)
            sides[side].append(places[side]);
        if (line.IsEdited(ping) != isDrawn) {
            draw();
            isDrawn = line.IsEdited(ping);
            for (int side = 0; side < 2; ++side)
                sides[side].append(places[side]);
        }
    }
    draw();
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void ReviewBottom::Restyle()
{
    for (ZrBtn* button : {m_undo, m_redo, m_detect, m_clear, m_done})
        button->Changed();
    for (ZrBtn* button : qAsConst(m_sideButtons))
        button->Changed();
    Place(m_area);
}

/// One row above the scale of ranges, so that it covers little of what is drawn on.
void ReviewBottom::Place(const QRect& area)
{
    m_area = area;
    const int margin = ZrTheme::DpI(8);
    const int gap = ZrTheme::DpI(8);
    const int side = Side();
    const int done = std::max(ZrTheme::DpI(96), 64);
    const int both = std::max(ZrTheme::DpI(80), 64);
    const int wide = 6 * side + both + 4 * gap + done + 2 * margin;
    const int high = side + 2 * margin;
    const int scale = ZrTheme::DpI(28);
    // A narrow waterfall has it stick out to the left, over the map.
    const int left = std::min(area.center().x() - wide / 2, area.right() + 1 - wide);
    setGeometry(std::max(left, 0), std::max(area.bottom() + 1 - high - scale, area.y()), wide, high);
    int x = margin;
    const auto put = [&](ZrBtn* button, int width) {
        button->setGeometry(x, margin, width, side);
        x += width;
    };
    for (int i = 0; i < m_sideButtons.size(); ++i)
        put(m_sideButtons[i], i == bothSides ? both : side);
    x += gap;
    put(m_detect, side);
    x += gap;
    put(m_clear, side);
    x += gap;
    put(m_undo, side);
    put(m_redo, side);
    x += gap;
    put(m_done, done);
}

void ReviewBottom::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor back = ZrTheme::formBack;
    back.setAlpha(235);
    painter.setPen(QPen(ZrTheme::formBdr, 1));
    painter.setBrush(back);
    painter.drawRoundedRect(rect().adjusted(0, 0, -1, -1), ZrTheme::rxy, ZrTheme::rxy);
}
