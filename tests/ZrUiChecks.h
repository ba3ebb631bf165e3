#pragma once

#include "ZrUtil/ZrTheme.h"

#include <QCoreApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>

#include <cmath>

/// The standard style at a scale; puts back the scale of before at its end.
class ZrThemeState
{
public:
    explicit ZrThemeState(double dp = 1.0)
    {
        ZrTheme::dp = static_cast<float>(dp);
        ZrTheme::SetStdStyle();
    }

    ZrThemeState(const ZrThemeState&) = delete;
    ZrThemeState& operator=(const ZrThemeState&) = delete;

    ~ZrThemeState()
    {
        ZrTheme::dp = m_dp;
        ZrTheme::designWidth = m_designWidth;
        ZrTheme::designHeight = m_designHeight;
        ZrTheme::tabletMode = m_tabletMode;
        ZrTheme::SetStdStyle();
    }

private:
    float m_dp = ZrTheme::dp;
    int m_designWidth = ZrTheme::designWidth;
    int m_designHeight = ZrTheme::designHeight;
    bool m_tabletMode = ZrTheme::tabletMode;
};

/// Lets every painting that waits take place: one may cause the next.
inline void Settle()
{
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

/// Counts how often a widget is painted.
class ZrPaintCounter : public QObject
{
public:
    explicit ZrPaintCounter(QWidget& widget) { widget.installEventFilter(this); }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++m_count;
        return false;
    }

    /// Paintings since the last question, those still waiting included.
    int Take()
    {
        Settle();
        const int count = m_count;
        m_count = 0;
        return count;
    }

private:
    int m_count = 0;
};

/// A mouse event as the window system sends it, with the global position that belongs to \p pos. The widget
/// may be gone afterwards.
inline void SendMouse(QWidget& widget, QEvent::Type type, const QPoint& pos,
    Qt::MouseEventSource source = Qt::MouseEventNotSynthesized)
{
    const bool isMove = type == QEvent::MouseMove;
    const Qt::MouseButton button = isMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    const QPoint global = widget.mapToGlobal(pos);
    QMouseEvent event(
        type, pos, widget.window()->mapFromGlobal(global), global, button, buttons, Qt::NoModifier, source);
    QCoreApplication::sendEvent(&widget, &event);
}

inline void SendPress(
    QWidget& widget, const QPoint& pos, Qt::MouseEventSource source = Qt::MouseEventNotSynthesized)
{
    SendMouse(widget, QEvent::MouseButtonPress, pos, source);
}

inline void SendMove(
    QWidget& widget, const QPoint& pos, Qt::MouseEventSource source = Qt::MouseEventNotSynthesized)
{
    SendMouse(widget, QEvent::MouseMove, pos, source);
}

inline void SendRelease(
    QWidget& widget, const QPoint& pos, Qt::MouseEventSource source = Qt::MouseEventNotSynthesized)
{
    SendMouse(widget, QEvent::MouseButtonRelease, pos, source);
}

inline void SendLeave(QWidget& widget)
{
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&widget, &leave);
}

/// The widget painted on black, \p ratio device pixels for each of its own.
inline QImage Painted(QWidget& widget, double ratio = 1.0)
{
    const QSize size(static_cast<int>(std::ceil(widget.width() * ratio)),
        static_cast<int>(std::ceil(widget.height() * ratio)));
    QImage image(size, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::black);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

/// WCAG 2: relative luminance of a colour, 0 to 1, its alpha ignored.
inline double Luminance(const QColor& colour)
{
    const auto linear = [](double channel) {
        return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

/// WCAG 2: contrast of two colours, 1 to 21.
inline double Contrast(const QColor& a, const QColor& b)
{
    const double lighter = std::max(Luminance(a), Luminance(b));
    const double darker = std::min(Luminance(a), Luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
}

/// Whether any pixel of \p image has the colour.
inline bool HasColour(const QImage& image, const QColor& colour)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).rgb() == colour.rgb())
                return true;
        }
    }
    return false;
}
