#include "apps/ZrSurvey/ReviewLook.h"

#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrSlider.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SurveySettings.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int columns = 7;

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
            ShowWater();
            Q_EMIT Changed();
        });
        m_water.append(button);
    }
    for (const QString& name : ZrSonarPalette::Names()) {
        ZrSonarPalette palette;
        palette.Load(name);
        QImage image(256, 1, QImage::Format_RGB32);
        for (int i = 0; i < 256; ++i)
            image.setPixel(i, 0, palette.Colour(i));
        m_palettes.append(image);
    }
    setAccessibleName(tr("Palette, gain and contrast"));
}

void ReviewLook::Load()
{
    m_isLoading = true;
    m_gain->SetValue(m_settings.gain);
    m_contrast->SetValue(m_settings.contrast);
    m_isLoading = false;
    ShowWater();
    update();
}

void ReviewLook::ShowWater()
{
    for (int kind = 0; kind < m_water.size(); ++kind) {
        m_water[kind]->on = kind == m_settings.blanking;
        m_water[kind]->Changed();
    }
}

QRect ReviewLook::Swatch(int palette) const
{
    const int margin = ZrTheme::DpI(12);
    const int gap = ZrTheme::DpI(8);
    const int width = (this->width() - 2 * margin - (columns - 1) * gap) / columns;
    return {margin + (palette % columns) * (width + gap), margin + (palette / columns) * (RowHeight() + gap),
        width, RowHeight()};
}

void ReviewLook::Place(const QRect& area)
{
    const int margin = ZrTheme::DpI(12);
    const int slider = std::max(ZrTheme::DpI(72), m_gain->minimumSizeHint().height());
    const int rows = (m_palettes.size() + columns - 1) / columns;
    const int top = margin + rows * (RowHeight() + ZrTheme::DpI(8));
    const int width = std::min(std::max(ZrTheme::DpI(520), 400), area.width() - 2 * margin);
    const int label = QFontMetrics(ZrTheme::font).height() + ZrTheme::DpI(4);
    const int height = std::min(top + 2 * slider + label + RowHeight() + 2 * margin, area.height());
    setGeometry(area.right() - width - margin, area.y() + margin / 2, width, height);
    m_gain->setGeometry(margin, top, width - 2 * margin, slider);
    m_contrast->setGeometry(margin, top + slider, width - 2 * margin, slider);
    m_waterLabel = QRect(margin, top + 2 * slider + margin / 2, width - 2 * margin, label);
    const int third = (width - 2 * margin) / 3;
    for (int kind = 0; kind < m_water.size(); ++kind)
        m_water[kind]->setGeometry(margin + kind * third, m_waterLabel.bottom() + 1, third, RowHeight());
    update();
}

void ReviewLook::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    for (int i = 0; i < m_palettes.size(); ++i) {
        if (!Swatch(i).contains(event->pos()))
            continue;
        m_settings.palette = i;
        update();
        Q_EMIT Changed();
        return;
    }
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
    painter.setRenderHint(QPainter::Antialiasing, false);
    const int current = std::clamp(m_settings.palette, 0, static_cast<int>(m_palettes.size()) - 1);
    for (int i = 0; i < m_palettes.size(); ++i) {
        const QRect swatch = Swatch(i);
        painter.drawImage(swatch, m_palettes[i]);
        const bool isOn = i == current;
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(isOn ? ZrTheme::ctrlCol : ZrTheme::ctrlOutlineCol, isOn ? 3 : 1));
        painter.drawRect(swatch.adjusted(0, 0, -1, -1));
        if (isOn) {
            // The mark that does not go by colour.
            const QPoint corners[] = {swatch.bottomLeft(), swatch.bottomLeft() + QPoint(ZrTheme::DpI(14), 0),
                swatch.bottomLeft() - QPoint(0, ZrTheme::DpI(14))};
            painter.setBrush(ZrTheme::ctrlCol);
            painter.drawPolygon(corners, 3);
        }
    }
    painter.setFont(ZrTheme::font);
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(m_waterLabel, Qt::AlignLeft | Qt::AlignVCenter, tr("Water column"));
}
