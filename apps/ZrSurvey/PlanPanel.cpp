#include "apps/ZrSurvey/PlanPanel.h"

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SurveyPage.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <memory>
#include <utility>

PlanPanel::PlanPanel(SurveyView& view, QWidget* parent)
    : QWidget(parent)
    , m_view(view)
{
}

int PlanPanel::Gap() const
{
    return std::max(ZrTheme::DpI(8), 4);
}

ZrInput* PlanPanel::AddField(const QString& caption, int kind, const std::function<void(double)>& apply)
{
    auto* field = new ZrInput(this);
    field->kind = kind;
    field->caption = caption;
    field->installEventFilter(this);
    if (kind == ZrInput::kindText)
        field->setMaxLength(80);
    // A value is taken when it is complete: each key would be a step to undo.
    const auto isGiven = std::make_shared<bool>(false);
    const auto take = [this, field, isGiven, apply] {
        if (!std::exchange(*isGiven, false))
            return;
        const QString refusal
            = field->kind == ZrInput::kindText ? QString() : field->RefusalText(field->QLineEdit::text());
        field->setModified(false);
        if (refusal.isEmpty())
            apply(field->value);
        else
            m_view.Warn(QStringLiteral("%1: %2").arg(field->caption, refusal));
    };
    connect(field, &ZrInput::NewInput, this, [isGiven, take] {
        *isGiven = true;
        if (ZrTheme::tabletMode)
            take();
    });
    connect(field, &ZrInput::editingFinished, this, take);
    return field;
}

ZrBtn* PlanPanel::AddButton(
    const QString& icon, const QString& text, const QString& hint, const std::function<void()>& run)
{
    auto* button = new ZrBtn(this, ZrBtn::typeStd);
    button->setObjectName(icon);
    if (!icon.isEmpty())
        button->img = QImage(QStringLiteral(":/icons/%1.png").arg(icon));
    button->text = text;
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    connect(button, &ZrBtn::Clicked, this, run);
    return button;
}

int PlanPanel::PlaceFields(const QVector<QWidget*>& fields, int y, bool isWide)
{
    const int columns = isWide ? 1 : 2;
    const int caption = ZrTheme::DpI(24);
    const int height = std::max(ZrTheme::DpI(56), 44);
    const int wide = (width() - 2 * Margin() - (columns - 1) * Gap()) / columns;
    int column = 0;
    for (QWidget* field : fields) {
        if (column == 0)
            y += caption;
        field->setGeometry(Margin() + column * (wide + Gap()), y, wide, height);
        column = (column + 1) % columns;
        if (column == 0)
            y += height + Gap();
    }
    return column == 0 ? y : y + height + Gap();
}

int PlanPanel::PlaceRow(const QVector<ZrBtn*>& buttons, int y, float height)
{
    const int tall = std::max(ZrTheme::DpI(height), 44);
    const int count = buttons.size();
    const int wide = (width() - 2 * Margin() - (count - 1) * Gap()) / count;
    for (int i = 0; i < count; ++i) {
        buttons[i]->setGeometry(Margin() + i * (wide + Gap()), y, wide, tall);
        buttons[i]->Changed();
    }
    return y + tall + Gap();
}

void PlanPanel::Restyle()
{
    Place();
    update();
}

void PlanPanel::resizeEvent(QResizeEvent* /*event*/)
{
    Place();
}

void PlanPanel::mousePressEvent(QMouseEvent* event)
{
    // The map below is not touched through it.
    event->accept();
}

void PlanPanel::keyPressEvent(QKeyEvent* event)
{
    // Return in a field takes its value and nothing else.
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QWidget::keyPressEvent(event);
}

/// What was typed is taken back in the field until it is taken, and in the plan then.
bool PlanPanel::eventFilter(QObject* watched, QEvent* event)
{
    const auto* field = qobject_cast<const ZrInput*>(watched);
    if (event->type() == QEvent::KeyPress && field && !field->isModified() && m_view.Page()) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool isUndo = key.modifiers().testFlag(Qt::ControlModifier)
            && (key.key() == Qt::Key_Z || key.key() == Qt::Key_Y);
        if (isUndo)
            return m_view.Page()->OnKey(key.key(), key.modifiers());
    }
    return QWidget::eventFilter(watched, event);
}

void PlanPanel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setFont(ZrTheme::font);
    painter.setPen(ZrTheme::bodyCol);
    const auto fields = findChildren<ZrInput*>(QString(), Qt::FindDirectChildrenOnly);
    for (const ZrInput* field : fields) {
        if (!field->isVisible())
            continue;
        QString text = field->caption;
        if (!field->UnitText().isEmpty())
            text += QStringLiteral(" (%1)").arg(field->UnitText());
        const QRect at = field->geometry();
        const QRect line(at.x(), at.y() - ZrTheme::DpI(24), at.width(), ZrTheme::DpI(22));
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
            painter.fontMetrics().elidedText(text, Qt::ElideRight, line.width()));
    }
}
