#pragma once

#include <QWindow>
#include <QtTest>

/// Touches for the window in which \p widget lies; their positions are those of a widget that is named with
/// each.
///
/// A touch that is sent to a child widget itself names no window. The display is then asked which one lies
/// there, and where a window of another program covers it the touch is lost. Touches of a screen always name
/// theirs.
inline QTest::QTouchEventSequence TouchOn(QWidget* widget, QTouchDevice* device, bool commitsItself = true)
{
    return QTest::touchEvent(widget->window()->windowHandle(), device, commitsItself);
}
