#pragma once

#include <QVector>
#include <QWidget>

class SurveySettings;
class ZrBtn;
class ZrSlider;

/// A panel for the palette of the waterfall, its gain, contrast and what is shown of the water column. The
/// waterfall, which shows at once what is changed, stays in sight above it.
class ReviewLook : public QWidget
{
    Q_OBJECT

public:
    ReviewLook(QWidget* parent, SurveySettings& settings);

    /// At the lower edge of \p area, as wide as it and \p least pixels high.
    void Place(const QRect& area, int least);
    void Load(); ///< what the settings say

Q_SIGNALS:
    void Changed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override; ///< which is not for what is below

private:
    void ShowChosen();
    int ControlsWidth() const;

    SurveySettings& m_settings;
    ZrSlider* m_gain;
    ZrSlider* m_contrast;
    QVector<ZrBtn*> m_water; ///< by `ZrSonarBlanking::eKind`
    QVector<ZrBtn*> m_palettes; ///< by `ZrSonarPalette::Names`
    QRect m_waterLabel;
    bool m_isLoading = false;
};
