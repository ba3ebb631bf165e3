#include "apps/ZrSurvey/ReviewEvents.h"

#include "ZrKit/geo/ZrPositionShown.h"
#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/survey/ZrTargetEvent.h"
#include "ZrKit/ui/ZrTextPanel.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/ReviewText.h"
#include "apps/ZrSurvey/StateBanner.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace {

constexpr int longestText = 200; ///< characters
const char* const unitsShown = "unitsShown"; ///< property: those that the rows are in

QString Units()
{
    return ZrUnits::shortLengthUnit + QString::number(static_cast<int>(ZrUnits::GetGeoStyle()));
}

ZrBtn* Tool(QWidget* parent, const char* icon, const QString& hint)
{
    auto* button = new ZrBtn(parent, ZrBtn::typeTool);
    button->setObjectName(QString::fromLatin1(icon));
    button->img = QImage(QStringLiteral(":/icons/%1.png").arg(QLatin1String(icon)));
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    return button;
}

} // namespace

ReviewEvents::ReviewEvents(QWidget* parent, SurveyView& view)
    : QWidget(parent)
    , m_view(view)
    , m_banner(new StateBanner(this, view, StateBanner::aboutEvents))
    , m_list(new ZrTouchList(this))
    , m_text(new ZrTextPanel(&view))
    , m_edit(Tool(this, "edit", tr("Edit the event at the cursor (F6)")))
    , m_remove(Tool(this, "delete", tr("Remove the event at the cursor (Del)")))
    , m_undo(Tool(this, "undo", tr("Undo (Ctrl+Z)")))
    , m_redo(Tool(this, "redo", tr("Redo (Ctrl+Y)")))
    , m_close(Tool(this, "cancel", tr("Close the list (Ctrl+L)")))
{
    m_list->m_empty = tr("No events yet. Add one at the cursor with E.");
    connect(m_banner, &ZrBanner::Changed, this, &ReviewEvents::Place);
    connect(m_list, &ZrTouchList::Chosen, this, &ReviewEvents::Chosen);
    connect(m_list, &ZrTouchList::CurrentChanged, this, [this](int row) {
        // By keys; the focus alone chooses nothing.
        if (m_list->selectionModel()->isRowSelected(row, QModelIndex()))
            Q_EMIT Chosen(row);
    });
    connect(m_list, &ZrTouchList::Held, this, &ReviewEvents::Edit);
    connect(m_edit, &ZrBtn::Clicked, this, &ReviewEvents::EditCurrent);
    connect(m_remove, &ZrBtn::Clicked, this, &ReviewEvents::RemoveCurrent);
    connect(m_undo, &ZrBtn::Clicked, this, &ReviewEvents::Undo);
    connect(m_redo, &ZrBtn::Clicked, this, &ReviewEvents::Redo);
    connect(m_close, &ZrBtn::Clicked, this, &ReviewEvents::Closed);
}

void ReviewEvents::Show(ZrSurveyRecording* recording)
{
    m_recording = recording;
    m_cursor = std::numeric_limits<double>::quiet_NaN();
    m_current = 0;
    Fill();
}

/// When it was, then what else is known, in the units in force; a position in a line of its own.
QString ReviewEvents::Lines(const ZrLogEvt& evt) const
{
    const auto beside = [](QStringList texts) {
        texts.removeAll(QString());
        return texts.join(QStringLiteral("  "));
    };
    const auto below = [](const QString& line, const QString& position) {
        return line.isEmpty() ? position : line + QLatin1Char('\n') + position;
    };
    const QString time = ZrTimeText::DateClock(evt.time, 1);
    ZrSonarTarget target;
    if (!ZrTargetEvent::ToTarget(evt, target)) {
        const QString detail = evt.detail.simplified();
        const QString shown = ZrPositionShown::OfDetail(detail);
        return shown == detail ? beside({time, detail}) : below(time, shown);
    }
    // Sizes and the day have no room beside each other, and the day is that of the recording.
    const QString size = review::size_text(target.length, target.width, target.height);
    return below(size.isEmpty() ? time : beside({ZrTimeText::Clock(evt.time, 1), size}),
        review::position_text(target.position.lat, target.position.lng));
}

/// The size in words, and the place.
QString ReviewEvents::Details(const ZrSonarTarget& target) const
{
    QStringList sizes;
    const auto add = [&sizes](const QString& name, double metres) {
        if (std::isfinite(metres))
            sizes << name + QLatin1Char(' ') + review::length_text(metres, 2);
    };
    add(tr("along"), target.length);
    add(tr("across"), target.width);
    add(tr("height"), target.height);
    const QString place = review::position_text(target.position.lat, target.position.lng);
    return sizes.isEmpty() ? place : sizes.join(QStringLiteral(", ")) + QStringLiteral("  ") + place;
}

void ReviewEvents::Fill()
{
    QVector<ZrListItem> items;
    std::vector<double> steady;
    if (m_recording) {
        const ZrEventList& events = m_recording->Events();
        for (std::size_t i = 0; i < events.Count(); ++i) {
            const ZrLogEvt& evt = events.At(i);
            ZrListItem item;
            item.title = evt.text.isEmpty() ? tr("Event") : evt.text.simplified();
            item.subtitle = Lines(evt);
            steady.push_back(m_recording->TimeOf(evt));
            ZrSonarTarget target;
            item.edge = ZrTargetEvent::ToTarget(evt, target) ? ZrTheme::ctrlHighlightCol : ZrTheme::warnCol;
            items.append(item);
        }
    }
    m_list->SetItems(items);
    m_flags = ZrEventFlags(steady);
    const int current = Current();
    const bool isKept = current >= 0 && (m_flags.FlagOf(current) < 0 || IsAtCursor(current));
    SetCurrent(isKept ? current : m_flags.At(m_cursor, AtCursor));
    setProperty(unitsShown, Units());
    const bool hasLog = m_recording != nullptr;
    m_undo->setEnabled(hasLog && m_recording->Events().CanUndo());
    m_redo->setEnabled(hasLog && m_recording->Events().CanRedo());
}

/// What was added or changed is the current one if the cursor is there, else the list shows it.
void ReviewEvents::Reveal(u64 id)
{
    const int event = static_cast<int>(m_recording->Events().IndexOf(id));
    if (IsAtCursor(event))
        SetCurrent(event);
    else
        m_list->scrollTo(m_list->model()->index(event, 0));
}

bool ReviewEvents::Save()
{
    QString error;
    const bool isSaved = m_recording->Events().Save(&error);
    std::vector<ZrLogEvt> unsaved;
    for (std::size_t i = 0; !isSaved && i < m_recording->Events().Count(); ++i)
        unsaved.push_back(m_recording->Events().At(i));
    m_view.Model().unsaved.Set(m_recording->Path(), std::move(unsaved), error);
    if (!isSaved)
        m_view.Warn(tr("The events are not saved. %1").arg(error));
    Fill();
    Q_EMIT Changed();
    if (!isSaved)
        Q_EMIT Unsaved();
    return isSaved;
}

/// Undo is for this change of this recording, not for whatever came last.
void ReviewEvents::TellUndo(const QString& text)
{
    const QString path = m_recording->Path();
    const QString step = m_recording->Events().UndoText();
    m_view.Tell(text, tr("Undo"), [this, path, step] {
        if (m_recording && m_recording->Path() == path && m_recording->Events().UndoText() == step)
            Undo();
    });
}

void ReviewEvents::Add(double steady, const QString& text, const QString& detail)
{
    if (!m_recording || std::isnan(steady))
        return;
    const double time = m_recording->Times()->LogTime(steady);
    const auto add = [this, time, detail](const QString& words) {
        ZrLogEvt evt(time, esUser, words);
        evt.detail = detail;
        Add(evt);
    };
    if (!text.isEmpty()) {
        add(text);
        return;
    }
    m_text->Ask(tr("New event at %1").arg(ZrTimeText::Clock(time, 1)), tr("What happened there?"),
        tr("Remark"), [add](const QString& words) {
            const QString plain = words.simplified();
            if (plain.isEmpty())
                return tr("Type a text");
            if (plain.size() > longestText)
                return tr("At most %1 characters").arg(longestText);
            add(plain);
            return QString();
        });
}

void ReviewEvents::Add(const ZrLogEvt& evt)
{
    if (!m_recording)
        return;
    ZrEventList& events = m_recording->Events();
    const u64 id = events.Add(evt);
    const bool isSaved = Save();
    Reveal(id);
    if (isSaved)
        TellUndo(tr("Event \"%1\" added").arg(evt.text.simplified()));
}

void ReviewEvents::Edit(int row)
{
    if (!m_recording || row < 0 || row >= static_cast<int>(m_recording->Events().Count()))
        return;
    const u64 id = m_recording->Events().Id(static_cast<std::size_t>(row));
    const ZrLogEvt before = m_recording->Events().At(static_cast<std::size_t>(row));
    ZrSonarTarget target;
    const bool isTarget = ZrTargetEvent::ToTarget(before, target);
    const QString shown = isTarget ? QString() : ZrTimeText::DateClock(before.time, 3);
    const QString hint = isTarget
        ? Details(target)
        : tr("The time: 12:34:56.5, 2021-05-03 12:34:56, or +2.5 and -2.5 for seconds later and earlier.");
    m_text->Ask(tr("Edit event"), hint, before.text,
        [this, id, before, shown](const QString& words) { return Change(id, before, words, shown); });
    // A target is where it was marked, and then.
    if (!isTarget)
        m_text->AskMore(tr("Time (UTC)"), shown);
}

/// What is wrong; empty when it was changed. The time is that of before unless another one was typed.
QString ReviewEvents::Change(u64 id, const ZrLogEvt& before, const QString& words, const QString& shownTime)
{
    const QString plain = words.simplified();
    if (plain.isEmpty())
        return tr("Type a text");
    if (plain.size() > longestText)
        return tr("At most %1 characters").arg(longestText);
    ZrLogEvt evt = before;
    evt.text = plain;
    const QString typed = m_text->MoreInput().isVisible() ? m_text->More().trimmed() : shownTime;
    if (typed != shownTime) {
        const ZrSteadyTime& times = *m_recording->Times();
        const auto [begin, end] = std::minmax({times.LogTime(times.Begin()), times.LogTime(times.End())});
        QString error;
        if (!ZrTimeText::Parse(typed, {begin, end, before.time}, evt.time, error))
            return error;
    }
    ZrEventList& events = m_recording->Events();
    const bool isCurrent = m_current == id;
    if (!events.Edit(id, evt))
        return {};
    const bool isSaved = Save();
    // The cursor goes along.
    if (isCurrent)
        Q_EMIT Chosen(static_cast<int>(events.IndexOf(id)));
    else
        Reveal(id);
    if (isSaved)
        TellUndo(tr("Event \"%1\" changed").arg(plain));
    return {};
}

void ReviewEvents::Remove(int row)
{
    if (!m_recording || row < 0 || row >= static_cast<int>(m_recording->Events().Count()))
        return;
    const auto at = static_cast<std::size_t>(row);
    const QString text = m_recording->Events().At(at).text.simplified();
    if (!m_recording->Events().Remove(m_recording->Events().Id(at)))
        return;
    if (Save())
        TellUndo(tr("Event \"%1\" removed").arg(text));
}

void ReviewEvents::Undo()
{
    if (m_recording && m_recording->Events().CanUndo()) {
        m_recording->Events().Undo();
        Save();
    }
}

void ReviewEvents::Redo()
{
    if (m_recording && m_recording->Events().CanRedo()) {
        m_recording->Events().Redo();
        Save();
    }
}

void ReviewEvents::EditCurrent()
{
    if (Current() >= 0)
        Edit(Current());
    else if (m_recording)
        m_view.Tell(tr("No event at the cursor"));
}

void ReviewEvents::RemoveCurrent()
{
    if (Current() >= 0)
        Remove(Current());
    else if (m_recording)
        m_view.Tell(tr("No event at the cursor"));
}

bool ReviewEvents::IsAtCursor(int event) const
{
    return m_flags.IsAt(event, m_cursor, AtCursor);
}

void ReviewEvents::SetCursor(double steady)
{
    if (steady == m_cursor)
        return;
    m_cursor = steady;
    const int current = Current();
    if (current >= 0 && IsAtCursor(current))
        return;
    const int event = m_flags.At(m_cursor, AtCursor);
    if (event != current)
        SetCurrent(event);
}

void ReviewEvents::SetCurrent(int event)
{
    const bool isThere = m_recording && event >= 0 && event < static_cast<int>(m_recording->Events().Count());
    m_current = isThere ? m_recording->Events().Id(static_cast<std::size_t>(event)) : 0;
    m_list->SetCurrent(isThere ? event : -1);
    m_edit->setEnabled(isThere);
    m_remove->setEnabled(isThere);
    Q_EMIT CurrentChanged(isThere ? event : -1);
}

int ReviewEvents::Current() const
{
    if (!m_recording || m_current == 0)
        return -1;
    const ZrEventList& events = m_recording->Events();
    const std::size_t event = events.IndexOf(m_current);
    return event < events.Count() ? static_cast<int>(event) : -1;
}

void ReviewEvents::Restyle()
{
    m_list->Restyle();
    m_banner->Restyle();
    Fill();
    Place();
    update();
}

void ReviewEvents::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Place();
}

void ReviewEvents::Place()
{
    const int side = std::max(ZrTheme::DpI(56), 44);
    const int gap = ZrTheme::DpI(8);
    int x = width() - side;
    m_close->setGeometry(x, 0, side, side);
    const int told = m_banner->HeightFor(width() - gap);
    m_banner->setGeometry(0, side, width() - gap, told);
    m_list->setGeometry(0, side + told, width(), std::max(height() - 2 * side - told, 0));
    x = 0;
    for (ZrBtn* button : {m_edit, m_remove, m_undo, m_redo}) {
        button->setGeometry(x, height() - side, side, side);
        x += side + gap;
    }
}

void ReviewEvents::paintEvent(QPaintEvent* /*event*/)
{
    // Nobody tells of units that the library's own form has changed; what was below it is painted anew.
    if (property(unitsShown).toString() != Units())
        QMetaObject::invokeMethod(
            this, [this] { Fill(); }, Qt::QueuedConnection);
    QPainter painter(this);
    painter.fillRect(rect(), ZrTheme::toolBack);
    painter.setFont(ZrTheme::fontLarge);
    painter.setPen(ZrTheme::titleCol);
    painter.drawText(QRect(ZrTheme::DpI(16), 0, width(), m_close->height()), Qt::AlignLeft | Qt::AlignVCenter,
        tr("Events"));
}
