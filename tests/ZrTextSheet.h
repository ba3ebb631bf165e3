#pragma once

// A paint device that shows nothing and notes what is painted on it.

#include <QPaintDevice>
#include <QPaintEngine>
#include <QPen>
#include <QVector>

/// Notes the texts and lines painted on it.
class ZrTextRecorder : public QPaintEngine
{
public:
    struct Text
    {
        QPointF at; ///< on the baseline
        QString text;
        int pixelSize;
        QColor colour;
    };

    QVector<Text> m_texts;
    QVector<QLineF> m_lines;
    QVector<QColor> m_lineColours;

    ZrTextRecorder()
        : QPaintEngine(AllFeatures)
    {
    }

    bool begin(QPaintDevice* /*device*/) override { return true; }

    bool end() override { return true; }

    void updateState(const QPaintEngineState& changed) override
    {
        if (changed.state() & DirtyPen)
            m_pen = changed.pen();
    }

    Type type() const override { return User; }

    void drawPixmap(const QRectF& /*r*/, const QPixmap& /*pm*/, const QRectF& /*sr*/) override { }

    void drawTextItem(const QPointF& p, const QTextItem& item) override
    {
        m_texts.append({p, item.text(), item.font().pixelSize(), m_pen.color()});
    }

    void drawLines(const QLineF* lines, int count) override
    {
        for (int i = 0; i < count; ++i) {
            m_lines.append(lines[i]);
            m_lineColours.append(m_pen.color());
        }
    }

    void drawLines(const QLine* lines, int count) override
    {
        for (int i = 0; i < count; ++i) {
            const QLineF line(lines[i]);
            drawLines(&line, 1);
        }
    }

private:
    QPen m_pen;
};

/// Has no size that matters: 1000 pixels each way, 96 of them in an inch.
class ZrTextSheet : public QPaintDevice
{
public:
    mutable ZrTextRecorder m_recorder;

    QPaintEngine* paintEngine() const override { return &m_recorder; }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
        case PdmHeight:
            return 1000;
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return 96;
        case PdmWidthMM:
        case PdmHeightMM:
            return 265;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return int(devicePixelRatioFScale());
        case PdmDepth:
            return 32;
        case PdmNumColors:
            return 1 << 24;
        default:
            return QPaintDevice::metric(metric);
        }
    }
};
