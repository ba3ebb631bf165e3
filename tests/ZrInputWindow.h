#pragma once

#include "ZrInputChecks.h"

#include <memory>

/// A test with a window of 1280 × 800 pixels in tablet mode, with a page that holds the controls.
class ZrInputWindow : public QObject
{
protected:
    std::unique_ptr<ZrTabletState> m_state;
    std::unique_ptr<QWidget> m_top;
    QWidget* m_page = nullptr;

    void OpenWindow()
    {
        m_state = std::make_unique<ZrTabletState>();
        m_top = std::make_unique<QWidget>();
        m_top->resize(1280, 800);
        m_page = new QWidget(m_top.get());
        m_page->setGeometry(0, 0, 1280, 800);
        m_top->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_top.get()));
        m_top->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_top.get()));
    }

    void CloseWindow()
    {
        m_top.reset();
        m_state.reset();
    }

    ZrInput* Make(int kind, double value)
    {
        auto* in = new ZrInput(m_page);
        in->kind = kind;
        in->SetValue(value);
        in->show();
        return in;
    }

    ZrInput* MakeText(const QString& text)
    {
        auto* in = new ZrInput(m_page);
        in->kind = ZrInput::kindText;
        in->SetText(text);
        in->show();
        return in;
    }
};
