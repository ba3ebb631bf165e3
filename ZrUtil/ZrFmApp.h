#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrForm.h"

class ZrBtn;
class ZrCheck;
class ZrRadio;

/// The settings form that every application has: units, style of positions, display scale, tablet mode.
///
/// Changes take effect at once, in every input control and in the view. Where the form is not high enough for
/// its controls, dragging its background or the wheel scrolls them. GUI thread only.
class ZR_UTIL_EXPORT ZrFmApp : public ZrForm
{
    Q_OBJECT

public:
    int m_scale = 0; ///< display scale: 2 largest controls ... −2 smallest

    explicit ZrFmApp(QWidget* parent);

    void settings(zr::ZrSetModule& module) override; ///< "ScaleValue"; loading it applies it

public Q_SLOTS:
    void OnUom(int index); ///< 0 metric, 1 imperial
    void OnCs(int index); ///< 0 degrees, minutes, seconds; 1 and minutes; 2 decimal degrees; 3 UTM
    void OnSmallest(); ///< the smallest design size, with the largest controls: 1024 × 640
    void OnSmall(); ///< 1280 × 800
    void OnDefault(); ///< 1440 × 900
    void OnLarge(); ///< 1680 × 1050
    void OnLargest(); ///< 1920 × 1200

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override; ///< scrolls, where there is not enough room
    void mousePressEvent(QMouseEvent* event) override; ///< begins to scroll by dragging
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    static int TextHeight();
    static int BtnHeight();
    int ScrollRange() const;
    void ScrollTo(int y);
    void Place();
    ZrBtn* AddScaleBtn(const QString& text, const QString& name, int scale);
    void SetScale(int width, int height, int scale);
    void ApplyScale(int scale);
    void ShowScale();
    void ShowChoices();

    ZrBtn* m_scaleBtns[5]; ///< from +2 to −2
    ZrRadio* m_units;
    ZrRadio* m_style;
    ZrCheck* m_tablet;
    int m_rows[4] = {}; ///< heights from line to line, real pixels
    int m_scroll = 0; ///< of the contents, above the upper edge
    int m_pressY = 0; ///< of a drag, global
    int m_pressScroll = 0;
};
