#pragma once

// The texts that a widget draws: what, how large, and where.

#include <QFontInfo>
#include <QFontMetricsF>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QSet>
#include <QVector>
#include <QWidget>

#include <climits>

struct DrawnText
{
    QString text;
    int pixels = 0; ///< size of its font
    QRectF ink; ///< what the letters cover, pixels of the widget
    QRectF room; ///< beyond which nothing shows
};

/// Keeps the texts that are drawn.
class TextEngine : public QPaintEngine
{
public:
    TextEngine()
        : QPaintEngine(QPaintEngine::AllFeatures)
    {
    }

    bool begin(QPaintDevice* /*device*/) override { return true; }

    bool end() override { return true; }

    void updateState(const QPaintEngineState& /*state*/) override { }

    void drawPixmap(const QRectF& /*r*/, const QPixmap& /*pixmap*/, const QRectF& /*part*/) override { }

    void drawPath(const QPainterPath& /*path*/) override { }

    void drawPolygon(const QPointF* /*points*/, int /*count*/, PolygonDrawMode /*mode*/) override { }

    void drawTextItem(const QPointF& at, const QTextItem& item) override
    {
        DrawnText drawn;
        drawn.text = item.text();
        const QTransform& to = painter()->deviceTransform();
        drawn.pixels = qRound(QFontInfo(item.font()).pixelSize() * to.m22());
        const QFontMetricsF metrics(item.font(), paintDevice());
        // Across, the advance: what surrounds the letters is rounded to whole pixels.
        const QRectF tight = metrics.tightBoundingRect(item.text());
        drawn.ink = to.mapRect(QRectF(at.x(), at.y() + tight.top(), item.width(), tight.height()));
        drawn.room = QRectF(0, 0, paintDevice()->width(), paintDevice()->height());
        if (painter()->hasClipping())
            drawn.room &= to.mapRect(painter()->clipBoundingRect());
        texts.append(drawn);
    }

    Type type() const override { return QPaintEngine::User; }

    QVector<DrawnText> texts;
};

class TextDevice : public QPaintDevice
{
public:
    explicit TextDevice(QSize size)
        : m_size(size)
    {
    }

    QPaintEngine* paintEngine() const override { return &m_engine; }

    const QVector<DrawnText>& Texts() const { return m_engine.texts; }

    /// Those of \p widget alone, without its children.
    static QVector<DrawnText> Of(QWidget& widget, QWidget::RenderFlags flags = {})
    {
        TextDevice device(widget.size());
        widget.render(&device, QPoint(), QRegion(), flags);
        return device.Texts();
    }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
            return m_size.width();
        case PdmHeight:
            return m_size.height();
        case PdmWidthMM:
            return m_size.width() / 4;
        case PdmHeightMM:
            return m_size.height() / 4;
        case PdmNumColors:
            return INT_MAX;
        case PdmDepth:
            return 32;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        default:
            return 96;
        }
    }

private:
    QSize m_size;
    mutable TextEngine m_engine;
};
