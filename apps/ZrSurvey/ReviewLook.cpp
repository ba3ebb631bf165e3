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

constexpr int fewColumns = 5;

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

void ReviewLook::Place(const QRect& area)
{
    const int margin = ZrTheme::DpI(12);
    const int gap = ZrTheme::DpI(4);
    const int label = QFontMetrics(ZrTheme::font).height() + ZrTheme::DpI(4);
    const int most = area.width() - 2 * margin;
    const int count = m_palettes.size();
    int slider = std::max(ZrTheme::DpI(72), m_gain->minimumSizeHint().height());
    int width = std::min(std::max(ZrTheme::DpI(520), 400), most);
    int columns = fewColumns;
    int sliderRows = 2;
    const auto above = [&] { return margin + (count + columns - 1) / columns * (PaletteHeight() + gap); };
    const auto high = [&] { return above() + sliderRows * slider + label + RowHeight() + 2 * margin; };
    const QFont small = ZrLegible::Font(13);
    // Where the page is low, the sliders are side by side; where it is lower still, more palettes are in a
    // row of a wider panel.
    if (high() > area.height())
        sliderRows = 1;
    if (high() > area.height()) {
        const int beside = std::max(ZrTheme::DpI(8), 5) + 2; // of a name in its button
        int widest = 1;
        for (const ZrBtn* palette : qAsConst(m_palettes))
            widest = std::max(widest, QFontMetrics(small).horizontalAdvance(palette->text) + beside);
        width = std::min(2 * width, most);
        columns = std::clamp((width - 2 * margin + gap) / (widest + gap), 1, count);
        // Rows that are alike.
        columns = (count + (count + columns - 1) / columns - 1) / ((count + columns - 1) / columns);
    }
    if (high() > area.height())
        slider = std::max((area.height() - high()) / sliderRows + slider, 44);
    const int top = above();
    const int height = std::min(high(), area.height());
    setGeometry(area.right() - width - margin, area.y() + margin / 2, width, height);
    const int swatch = (width - 2 * margin - (columns - 1) * gap) / columns;
    for (int i = 0; i < count; ++i) {
        m_palettes[i]->font = small;
        m_palettes[i]->setGeometry(margin + (i % columns) * (swatch + gap),
            margin + (i / columns) * (PaletteHeight() + gap), swatch, PaletteHeight());
        m_palettes[i]->Changed();
    }
    const int inside = width - 2 * margin;
    if (sliderRows == 2) {
        m_gain->setGeometry(margin, top, inside, slider);
        m_contrast->setGeometry(margin, top + slider, inside, slider);
    } else {
        const int half = (inside - 2 * margin) / 2;
        m_gain->setGeometry(margin, top, half, slider);
        m_contrast->setGeometry(margin + inside - half, top, half, slider);
    }
    m_waterLabel = QRect(margin, top + sliderRows * slider + margin / 2, inside, label);
    const int third = inside / 3;
    for (int kind = 0; kind < m_water.size(); ++kind)
        m_water[kind]->setGeometry(margin + kind * third, m_waterLabel.bottom() + 1, third, RowHeight());
    update();
}

void ReviewLook::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void ReviewLook::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor back = ZrTheme::formBack;
    back.setAlpha(240);
    painter.setPen(QPen(ZrTheme::formBdr, 1));
    painter.setBrush(back);
    painter.drawRoundedRect(rect().adjusted(0, 0, -1, -1), ZrTheme::rxy, ZrTheme::rxy);
    painter.setFont(ZrTheme::font);
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(m_waterLabel, Qt::AlignLeft | Qt::AlignVCenter, tr("Water column"));
}
