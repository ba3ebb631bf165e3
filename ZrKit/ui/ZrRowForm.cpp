#include "ZrKit/ui/ZrRowForm.h"

#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrRadio.h"
#include "ZrUtil/ZrTheme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace {

/// Between the parts of a row.
int Gap()
{
    return std::max(ZrTheme::DpI(8), 4);
}

int LineHeight(const QFont& font)
{
    return QFontMetrics(font).height();
}

} // namespace

/// What scrolls: paints the texts, and is dragged by a finger beside the controls.
class ZrRowForm::Panel : public QWidget
{
public:
    explicit Panel(ZrRowForm& form)
        : m_form(form)
    {
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        m_form.PaintRows(painter);
    }

    void mousePressEvent(QMouseEvent* event) override
    {
        m_pressY = event->globalY();
        m_pressValue = m_form.m_scroll->verticalScrollBar()->value();
    }

    void mouseMoveEvent(QMouseEvent* event) override
    {
        if (event->buttons() & Qt::LeftButton)
            m_form.m_scroll->verticalScrollBar()->setValue(m_pressValue + m_pressY - event->globalY());
    }

private:
    ZrRowForm& m_form;
    int m_pressY = 0;
    int m_pressValue = 0;
};

/// In the right end of an input, which keeps its text clear of it.
class ZrRowForm::UnitSign : public QWidget
{
public:
    explicit UnitSign(ZrInput& input)
        : QWidget(&input)
        , m_input(input)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        show();
    }

    const QString& Text() const { return m_text; }

    void SetText(const QString& text)
    {
        m_text = text;
        // As who cannot see it reads it with the value.
        m_input.setAccessibleDescription(text);
        Place();
    }

    void Place()
    {
        const int wide
            = m_text.isEmpty() ? 0 : QFontMetrics(ZrLegible::Font(18)).horizontalAdvance(m_text) + 3 * Gap();
        m_input.setTextMargins(0, 0, wide, 0);
        setGeometry(m_input.width() - wide, 0, wide, m_input.height());
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.setFont(ZrLegible::Font(18));
        painter.setPen(ZrTheme::bodyCol);
        painter.drawText(rect().adjusted(0, 0, -2 * Gap(), 0), Qt::AlignRight | Qt::AlignVCenter, m_text);
    }

private:
    ZrInput& m_input;
    QString m_text;
};

ZrRowForm::ZrRowForm(QWidget* parent)
    : ZrForm(parent)
    , m_scroll(new QScrollArea(this))
    , m_panel(new Panel(*this))
{
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_scroll->setWidget(m_panel);
    // The form behind shows through.
    m_scroll->viewport()->setAutoFillBackground(false);
    m_panel->setAutoFillBackground(false);
}

QWidget* ZrRowForm::Body() const
{
    return m_panel;
}

int ZrRowForm::AddRow(
    const QString& title, const QString& help, const QVector<QWidget*>& controls, ePlace place, int columns)
{
    for (QWidget* control : controls) {
        auto* input = qobject_cast<ZrInput*>(control);
        if (input && input->caption.isEmpty())
            input->caption = title;
        if (!input && control->accessibleName().isEmpty())
            control->setAccessibleName(title);
        control->show();
    }
    Row row;
    row.title = title;
    row.help = help;
    row.controls = controls;
    row.place = place;
    row.columns = columns > 0 ? columns : std::max(controls.size(), 1);
    m_rows.append(row);
    Place();
    return m_rows.size() - 1;
}

void ZrRowForm::ShowRow(int row, bool isShown)
{
    if (row < 0 || row >= m_rows.size() || m_rows[row].isShown == isShown)
        return;
    m_rows[row].isShown = isShown;
    for (QWidget* control : qAsConst(m_rows[row].controls))
        control->setVisible(isShown);
    Place();
}

bool ZrRowForm::IsRowShown(int row) const
{
    return row >= 0 && row < m_rows.size() && m_rows[row].isShown;
}

void ZrRowForm::SetHelp(int row, const QString& help)
{
    if (row < 0 || row >= m_rows.size() || m_rows[row].help == help)
        return;
    m_rows[row].help = help;
    Place();
}

QString ZrRowForm::Help(int row) const
{
    return m_rows.value(row).help;
}

void ZrRowForm::SetUnit(int row, const QString& unit)
{
    if (row < 0 || row >= m_rows.size() || Unit(row) == unit)
        return;
    auto* input = qobject_cast<ZrInput*>(m_rows[row].controls.value(0));
    if (!input)
        return;
    if (!m_rows[row].unit)
        m_rows[row].unit = new UnitSign(*input);
    m_rows[row].unit->SetText(unit);
    const QString& title = m_rows[row].title;
    input->caption = unit.isEmpty() ? title : QStringLiteral("%1, %2").arg(title, unit);
}

QString ZrRowForm::Unit(int row) const
{
    const QPointer<UnitSign> unit = m_rows.value(row).unit;
    return unit ? unit->Text() : QString();
}

void ZrRowForm::SetProblem(int row, const QString& problem)
{
    if (row < 0 || row >= m_rows.size() || m_rows[row].problem == problem)
        return;
    m_rows[row].problem = problem;
    Place();
}

QString ZrRowForm::Problem(int row) const
{
    return m_rows.value(row).problem;
}

QRect ZrRowForm::TextRect(int row) const
{
    return IsRowShown(row) ? m_rows[row].text : QRect();
}

void ZrRowForm::ShowValues() { }

void ZrRowForm::Restyle()
{
    for (const Row& row : qAsConst(m_rows)) {
        for (QWidget* control : row.controls) {
            if (auto* button = qobject_cast<ZrBtn*>(control))
                button->Changed();
            if (auto* radio = qobject_cast<ZrRadio*>(control)) {
                radio->itemHeight = LineHeight(ZrTheme::font) * 3 / 2;
                radio->UseTouchHeight();
            }
            control->update();
        }
    }
    Place();
}

void ZrRowForm::resizeEvent(QResizeEvent* event)
{
    ZrForm::resizeEvent(event);
    Restyle();
}

void ZrRowForm::showEvent(QShowEvent* event)
{
    ZrForm::showEvent(event);
    ShowValues();
    Restyle();
}

QString ZrRowForm::Said(const Row& row)
{
    return row.problem.isEmpty() ? row.help : row.problem;
}

/// Of the sign in front of a problem.
int ZrRowForm::MarkWidth(const Row& row)
{
    return row.problem.isEmpty() ? 0 : LineHeight(ZrTheme::bodyFont) + Gap();
}

/// Of each control of the row.
int ZrRowForm::ControlHeight(const Row& row)
{
    int height = std::max(ZrCtrlLook::smallestTarget, ZrTheme::DpI(52));
    for (const QWidget* control : row.controls)
        height = std::max(height, control->sizeHint().height());
    return height;
}

/// Gives every row its place, one below the other, and the panel its height.
void ZrRowForm::Place()
{
    m_scroll->setGeometry(rect());
    // The bar takes its room whether it is there or not: nothing jumps when a row more is shown.
    const int width = std::max(this->width() - m_scroll->verticalScrollBar()->sizeHint().width(), 1);
    int y = 0;
    for (Row& row : m_rows) {
        if (row.isShown)
            y = PlaceRow(row, y, width);
    }
    m_panel->resize(width, std::max(y, 1));
    m_scroll->verticalScrollBar()->setSingleStep(std::max(ZrTheme::DpI(40), 1));
    m_panel->update();
}

int ZrRowForm::PlaceRow(Row& row, int y, int width)
{
    const int gap = Gap();
    const bool hasControls = !row.controls.isEmpty();
    const bool isBeside = hasControls && row.place == beside;
    const int side = isBeside ? std::min(ZrTheme::DpI(ColumnWidth), width / 2) : width;
    const int textWidth = isBeside ? width - side - 2 * gap : width;
    int textHeight = row.title.isEmpty() ? 0 : LineHeight(ZrTheme::fontLarge);
    const QString said = Said(row);
    if (!said.isEmpty()) {
        const QRect room(0, 0, std::max(textWidth - MarkWidth(row), 1), 100000);
        textHeight += (textHeight > 0 ? gap / 2 : 0)
            + QFontMetrics(ZrTheme::bodyFont)
                  .boundingRect(room, Qt::AlignLeft | Qt::TextWordWrap, said)
                  .height();
    }
    const int lines = (row.controls.size() + row.columns - 1) / row.columns;
    const int each = ControlHeight(row);
    const int controls = hasControls ? lines * (each + gap) - gap : 0;
    const int top = y + gap * 3 / 2;
    int bottom = 0;
    if (isBeside) {
        const int inner = std::max(textHeight, controls);
        row.text = QRect(0, top + (inner - textHeight) / 2, textWidth, textHeight);
        PlaceControls(row, QRect(width - side, top + (inner - controls) / 2, side, controls), each);
        bottom = top + inner;
    } else {
        row.text = QRect(0, top, textWidth, textHeight);
        const int under = top + textHeight + (textHeight > 0 && hasControls ? gap : 0);
        PlaceControls(row, QRect(0, under, width, controls), each);
        bottom = under + controls;
    }
    row.line = bottom + gap * 3 / 2;
    return row.line + 1;
}

void ZrRowForm::PlaceControls(const Row& row, const QRect& area, int each) const
{
    const int gap = Gap();
    const auto edge = [&](int column) { return area.x() + column * (area.width() + gap) / row.columns; };
    for (int i = 0; i < row.controls.size(); ++i) {
        const int column = i % row.columns;
        const int y = area.y() + i / row.columns * (each + gap);
        row.controls[i]->setGeometry(edge(column), y, edge(column + 1) - edge(column) - gap, each);
    }
    if (row.unit)
        row.unit->Place();
}

void ZrRowForm::PaintRows(QPainter& painter) const
{
    for (const Row& row : m_rows) {
        if (!row.isShown)
            continue;
        QRect text = row.text;
        if (!row.title.isEmpty()) {
            painter.setFont(ZrTheme::fontLarge);
            painter.setPen(ZrTheme::titleCol);
            const QRect title(text.x(), text.y(), text.width(), LineHeight(ZrTheme::fontLarge));
            ZrCtrlLook::PaintText(painter, title, row.title, Qt::AlignLeft);
            text.setTop(title.bottom() + 1 + Gap() / 2);
        }
        const bool isProblem = !row.problem.isEmpty();
        if (isProblem) {
            const int side = LineHeight(ZrTheme::bodyFont);
            const QImage sign(QStringLiteral(":/icons/error.png"));
            ZrCtrlLook::PaintIcon(
                painter, QRectF(text.topLeft(), QSizeF(side, side)), sign, ZrTheme::errorCol);
            text.setLeft(text.left() + MarkWidth(row));
        }
        painter.setFont(ZrTheme::bodyFont);
        painter.setPen(isProblem ? ZrTheme::errorCol : ZrTheme::bodyCol);
        painter.drawText(text, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, Said(row));
        painter.fillRect(QRect(0, row.line, m_panel->width(), 1), ZrTheme::gridCol);
    }
}
