#pragma once

#include "ZrUnitsState.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrInputDlg.h"
#include "ZrUtil/ZrTheme.h"

#include <QApplication>
#include <QMouseEvent>
#include <QStringList>
#include <QtTest>

/// Sets the standard theme at a scale with tablet mode on, and puts everything back.
class ZrTabletState
{
public:
    explicit ZrTabletState(float dp = 1.0F)
    {
        ZrTheme::dp = dp;
        ZrTheme::SetStdStyle();
        ZrTheme::tabletMode = true;
        ZrInputDlg::s_keepInside = false;
    }

    ZrTabletState(const ZrTabletState&) = delete;
    ZrTabletState& operator=(const ZrTabletState&) = delete;

    ~ZrTabletState()
    {
        ZrInputDlg::s_keepInside = false;
        ZrTheme::tabletMode = false;
        ZrTheme::dp = 1.0F;
        ZrTheme::SetStdStyle();
    }

private:
    ZrUnitsState m_units;
};

/// Keeps what is written to the debug output while it lives.
class ZrDebugLines
{
public:
    ZrDebugLines()
    {
        Lines().clear();
        m_before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& line) { Lines() += line; });
    }

    ZrDebugLines(const ZrDebugLines&) = delete;
    ZrDebugLines& operator=(const ZrDebugLines&) = delete;

    ~ZrDebugLines() { qInstallMessageHandler(m_before); }

    static QStringList& Lines()
    {
        static QStringList lines;
        return lines;
    }

private:
    QtMessageHandler m_before;
};

namespace input {

inline void Mouse(QWidget& w, QEvent::Type type, const QPoint& p, Qt::MouseButton button = Qt::LeftButton)
{
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : button;
    QMouseEvent event(
        type, p, w.mapToGlobal(p), type == QEvent::MouseMove ? Qt::NoButton : button, held, Qt::NoModifier);
    QApplication::sendEvent(&w, &event);
}

/// The keyboard shown in \p top, null when there is none.
inline ZrInputDlg* Shown(QWidget& top)
{
    ZrInputDlg* shown = nullptr;
    for (ZrInputDlg* dlg : top.findChildren<ZrInputDlg*>()) {
        if (dlg->isVisible())
            shown = dlg;
    }
    return shown;
}

/// The keyboard that a press on \p control opens.
inline ZrInputDlg* Press(ZrInput& control)
{
    QTest::mouseClick(&control, Qt::LeftButton);
    return Shown(*control.window());
}

inline QPoint KeyAt(const ZrInputDlg& dlg, eZriAction action, QChar c = QChar())
{
    for (const ZrInputItem& item : dlg.Items()) {
        if (item.action == action && (action != zriKey || item.ch == c))
            return item.rect.center();
    }
    return {};
}

inline void Click(ZrInputDlg& dlg, eZriAction action)
{
    const QPoint p = KeyAt(dlg, action);
    QVERIFY2(!p.isNull(), qPrintable(QString::number(action)));
    QTest::mouseClick(&dlg, Qt::LeftButton, Qt::NoModifier, p);
}

/// Types \p text by clicks on its keys.
inline void Type(ZrInputDlg& dlg, const QString& text)
{
    for (const QChar c : text) {
        const QPoint p = KeyAt(dlg, zriKey, c);
        QVERIFY2(!p.isNull(), qPrintable(QStringLiteral("no key for ") + c));
        QTest::mouseClick(&dlg, Qt::LeftButton, Qt::NoModifier, p);
    }
}

inline QString U(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace input
