#include "apps/ZrSurvey/ReviewLook.h"

#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrKit/ui/ZrPaletteBtn.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrSlider.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SurveySettings.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int fewColumns = 5; ///< of palettes, at least

/// A palette and its name.
int PaletteHeight()
{
    return std::max(ZrTheme::DpI(56), 44);
}

int RowHeight()
{
    return std::max(ZrTheme::DpI(44), 44);
}

} // namespace

ReviewLook::ReviewLook(QWidget* parent, SurveySettings& settings)
    : QWidget(parent)
    , m_settings(settings)
    , m_gain(new ZrSlider(this))
    , m_contrast(new ZrSlider(this))
{
    hide();
    m_gain->text = tr("Gain");
    m_gain->unit = tr("dB");
    m_gain->places = 1;
    m_gain->SetRange(-20.0, 20.0);
    m_gain->SetStep(0.5);
    m_contrast->text = tr("Contrast");
    m_contrast->places = 2;
    m_contrast->SetRange(0.25, 4.0);
    m_contrast->SetStep(0.05);
    const auto tell = [this] {
        if (m_isLoading)
            return;
        m_settings.gain = m_gain->Value();
        m_settings.contrast = m_contrast->Value();
        Q_EMIT Changed();
    };
    connect(m_gain, &ZrSlider::ValueChanged, this, tell);
    connect(m_contrast, &ZrSlider::ValueChanged, this, tell);
    for (const QString& name : {tr("As recorded"), tr("No pulse"), tr("Dark")}) {
        auto* button = new ZrBtn(this, ZrBtn::typeStd);
        button->text = name;
        button->setAccessibleName(tr("Water column: %1").arg(name));
        button->setToolTip(tr("What is shown of the water column (W goes through them)"));
        const int kind = m_water.size();
        connect(button, &ZrBtn::Clicked, this, [this, kind] {
            m_settings.blanking = kind;
            ShowChosen();
            Q_EMIT Changed();
        });
        m_water.append(button);
    }
    for (const QString& name : ZrSonarPalette::Names()) {
        auto* button = new ZrPaletteBtn(this, name);
        button->setToolTip(tr("Palette: %1").arg(button->text));
        const int palette = m_palettes.size();
        connect(button, &ZrBtn::Clicked, this, [this, palette] {
            m_settings.palette = palette;
            ShowChosen();
            Q_EMIT Changed();
        });
        m_palettes.append(button);
    }
    setAccessibleName(tr("Palette, gain and contrast"));
}

void ReviewLook::Load()
{
    m_isLoading = true;
    m_gain->SetValue(m_settings.gain);
    m_contrast->SetValue(m_settings.contrast);
    m_isLoading = false;
    ShowChosen();
    update();
}

void ReviewLook::ShowChosen()
{
    for (int kind = 0; kind < m_water.size(); ++kind) {
        m_water[kind]->on = kind == m_settings.blanking;
        m_water[kind]->Changed();
    }
    const int current = std::clamp(m_settings.palette, 0, static_cast<int>(m_palettes.size()) - 1);
    for (int i = 0; i < m_palettes.size(); ++i) {
        m_palettes[i]->on = i == current;
        m_palettes[i]->Changed();
    }
}

/// Palettes at the left, in as few rows as leave the sliders room beside them; a low strip, so that what is
/// above stays in sight.
void ReviewLook::Place(const QRect& area, int least)
{
    const int margin = ZrTheme::DpI(12);
    const int gap = ZrTheme::DpI(4);
    const int between = 2 * margin;
    const int inside = area.width() - 2 * margin;
    const int count = m_palettes.size();
    const QFont small = ZrLegible::Font(13);
    const QFontMetrics names(small);
    int widest = 1;
    for (const ZrBtn* palette : qAsConst(m_palettes))
        widest = std::max(widest, names.horizontalAdvance(palette->text) + std::max(ZrTheme::DpI(8), 5) + 2);
    const int controlsLeast = ControlsWidth();
    int rows = 0;
    int columns = count;
    int left = 0;
    do {
        ++rows;
        columns = (count + rows - 1) / rows;
        left = columns * (widest + gap) - gap;
    } while (left + between + controlsLeast > inside && columns > fewColumns);
    // What is left over is for both.
    const int spare = std::max(inside - left - between - controlsLeast, 0);
    left = std::min(left + spare / 2, inside - between - std::min(controlsLeast, inside / 2));
    const int label = QFontMetrics(ZrTheme::font).height() + ZrTheme::DpI(4);
    const int slider = m_gain->minimumSizeHint().height();
    const int palettes = rows * (PaletteHeight() + gap) - gap;
    const int controls = slider + gap + label + RowHeight();
    const int needed = std::max(palettes, controls) + 2 * ZrTheme::DpI(8);
    const int height = std::min(std::max(needed, least), area.height());
    setGeometry(area.x(), area.bottom() + 1 - height, area.width(), height);
    const int swatch = (left - (columns - 1) * gap) / columns;
    for (int i = 0; i < count; ++i) {
        m_palettes[i]->font = small;
        m_palettes[i]->setGeometry(margin + (i % columns) * (swatch + gap),
            (height - palettes) / 2 + (i / columns) * (PaletteHeight() + gap), swatch, PaletteHeight());
        m_palettes[i]->Changed();
    }
    const int x = margin + left + between;
    const int room = inside - left - between;
    const int top = (height - controls) / 2;
    const int half = (room - between) / 2;
    m_gain->setGeometry(x, top, half, slider);
    m_contrast->setGeometry(x + room - half, top, half, slider);
    m_waterLabel = QRect(x, top + slider + gap, room, label);
    const int third = room / 3;
    for (int kind = 0; kind < m_water.size(); ++kind)
        m_water[kind]->setGeometry(x + kind * third, m_waterLabel.bottom() + 1, third, RowHeight());
    update();
}

/// What the sliders beside each other and the buttons below them need.
int ReviewLook::ControlsWidth() const
{
    const QFontMetrics metrics(ZrTheme::ctrlFont);
    const int slider = std::max(metrics.horizontalAdvance(m_contrast->text + QStringLiteral("  0.00")),
        metrics.horizontalAdvance(m_gain->text + QStringLiteral("  -20.0 ") + m_gain->unit));
    int button = 0;
    for (const ZrBtn* water : m_water)
        button = std::max(button, metrics.horizontalAdvance(water->text) + 2 * ZrTheme::DpI(10));
    return std::max({2 * slider + 2 * ZrTheme::DpI(12), 3 * button, 2 * m_gain->minimumSizeHint().width()});
}

void ReviewLook::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void ReviewLook::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // Opaque: scales and curves below would be read as its own.
    QColor back = ZrTheme::formBack;
    back.setAlpha(255);
    painter.setPen(QPen(ZrTheme::formBdr, 1));
    painter.setBrush(back);
    painter.drawRoundedRect(rect().adjusted(0, 0, -1, -1), ZrTheme::rxy, ZrTheme::rxy);
    painter.setFont(ZrTheme::font);
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(m_waterLabel, Qt::AlignLeft | Qt::AlignVCenter, tr("Water column"));
}
