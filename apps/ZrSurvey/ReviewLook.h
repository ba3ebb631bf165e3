#pragma once

#include <QVector>
#include <QWidget>

class SurveySettings;
class ZrBtn;
class ZrSlider;

/// A panel over the waterfall for its palette, gain, contrast and what is shown of the water column, which
/// shows at once what is changed.
class ReviewLook : public QWidget
{
    Q_OBJECT

public:
    ReviewLook(QWidget* parent, SurveySettings& settings);

    void Place(const QRect& area); ///< the part of the page that it may cover
    void Load(); ///< what the settings say

Q_SIGNALS:
    void Changed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override; ///< which is not for what is below

private:
    void ShowChosen();

    SurveySettings& m_settings;
    ZrSlider* m_gain;
    ZrSlider* m_contrast;
    QVector<ZrBtn*> m_water; ///< by `ZrSonarBlanking::eKind`
    QVector<ZrBtn*> m_palettes; ///< by `ZrSonarPalette::Names`
    QRect m_waterLabel;
    bool m_isLoading = false;
};
