#pragma once

#include <QVector>
#include <QWidget>

class SurveySettings;
class ZrSlider;

/// A panel over the waterfall for its palette, gain and contrast, which shows at once what is changed.
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
    void mousePressEvent(QMouseEvent* event) override;

private:
    QRect Swatch(int palette) const;

    SurveySettings& m_settings;
    ZrSlider* m_gain;
    ZrSlider* m_contrast;
    QVector<QImage> m_palettes;
    bool m_isLoading = false;
};
