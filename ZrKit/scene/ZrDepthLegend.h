#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>
#include <QVector>
#include <QWidget>

/// What the colours of depths mean: a scale with numbers in the units in force, to be laid over a scene.
///
/// \code
/// legend->SetRange(scene.Shallowest(), scene.Deepest());
/// legend->resize(legend->sizeHint());
/// scene.m_contourStep = legend->Step(); // lines on the floor where the numbers are
/// \endcode
///
/// Units are read at every painting; `Restyle` after a change of theirs, or of the scale of the theme.
/// Fingers and mouse go through it. GUI thread only.
class ZR_KIT_EXPORT ZrDepthLegend : public QWidget
{
    Q_OBJECT

public:
    /// A number beside the scale.
    struct Label
    {
        double depth = 0.0; ///< metres
        QRect rect; ///< of the widget
        QString text;
    };

    ZrDepthLegend(QWidget* parent, const QString& caption);

    /// Metres below the surface; nothing is shown of numbers that are not finite or in the wrong order.
    void SetRange(double shallow, double deep);

    bool HasRange() const { return m_shallow < m_deep; }

    double Shallow() const { return m_shallow; } ///< metres; NaN without a range

    double Deep() const { return m_deep; }

    double Step() const; ///< metres between the numbers; 0 without a range

    QVector<Label> Labels() const; ///< from the shallowest on

    QRect BarRect() const; ///< of the colours, the shallowest at the top

    void Restyle();
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString Caption() const; ///< with the unit

    QString m_caption;
    double m_shallow;
    double m_deep;
};
