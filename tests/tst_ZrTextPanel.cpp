#include "ZrKit/ui/ZrTextPanel.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"

#include <QSignalSpy>
#include <QtTest>

class tst_ZrTextPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void cleanup() { m_window.reset(); }

    void asks();
    void takes();
    void refuses();
    void takesByKey();
    void cancels();
    void asksAgain();
    void withoutTaker();
    void everySize();
    void secondLine();

private:
    std::unique_ptr<QWidget> m_window;
    ZrTextPanel* m_panel = nullptr;
    QStringList m_taken;
};

void tst_ZrTextPanel::init()
{
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    m_taken.clear();
    m_window = std::make_unique<QWidget>();
    m_window->resize(1280, 800);
    m_panel = new ZrTextPanel(m_window.get());
    m_panel->hide();
    m_window->show();
    QApplication::setActiveWindow(m_window.get());
}

void tst_ZrTextPanel::asks()
{
    m_panel->Ask(QStringLiteral("Go to"), QStringLiteral("12:34"), QStringLiteral("12 äß"), {});
    QVERIFY(m_panel->isVisible());
    QCOMPARE(m_panel->geometry(), m_window->rect());
    const auto& line = static_cast<QLineEdit&>(m_panel->Input());
    QCOMPARE(line.text(), QStringLiteral("12 äß"));
    QCOMPARE(line.selectedText(), line.text());
    QCOMPARE(line.accessibleName(), QStringLiteral("Go to"));
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(&m_panel->Input()));
    QCOMPARE(m_panel->Problem(), QString());
    QVERIFY(!m_panel->grab().isNull());
}

void tst_ZrTextPanel::takes()
{
    QSignalSpy accepted(m_panel, &ZrOverlay::Accepted);
    m_panel->Ask(QStringLiteral("Name"), QString(), QString(), [this](const QString& text) {
        m_taken << text;
        return QString();
    });
    QTest::keyClicks(&m_panel->Input(), QStringLiteral("wreck"));
    m_panel->Accept();
    QCOMPARE(m_taken, QStringList({QStringLiteral("wreck")}));
    QVERIFY(!m_panel->isVisible());
    QCOMPARE(accepted.size(), 1);
}

/// It stays and says why, until something else is typed.
void tst_ZrTextPanel::refuses()
{
    QSignalSpy accepted(m_panel, &ZrOverlay::Accepted);
    m_panel->Ask(QStringLiteral("Name"), QString(), QString(), [this](const QString& text) {
        m_taken << text;
        return text.isEmpty() ? QStringLiteral("A name") : QString();
    });
    m_panel->Accept();
    QVERIFY(m_panel->isVisible());
    QCOMPARE(m_panel->Problem(), QStringLiteral("A name"));
    QCOMPARE(accepted.size(), 0);
    QTest::keyClicks(&m_panel->Input(), QStringLiteral("b"));
    QCOMPARE(m_panel->Problem(), QString());
    m_panel->Accept();
    QVERIFY(!m_panel->isVisible());
    QCOMPARE(m_taken, QStringList({QString(), QStringLiteral("b")}));
}

void tst_ZrTextPanel::takesByKey()
{
    m_panel->Ask(QStringLiteral("Name"), QString(), QStringLiteral("old"), [this](const QString& text) {
        m_taken << text;
        return QString();
    });
    QTest::keyClicks(&m_panel->Input(), QStringLiteral("new")); // in place of what is selected
    QTest::keyClick(&m_panel->Input(), Qt::Key_Return);
    QCOMPARE(m_taken, QStringList({QStringLiteral("new")}));
    QVERIFY(!m_panel->isVisible());
}

void tst_ZrTextPanel::cancels()
{
    QSignalSpy cancelled(m_panel, &ZrOverlay::Cancelled);
    const auto take = [this](const QString& text) {
        m_taken << text;
        return QString();
    };
    m_panel->Ask(QStringLiteral("Name"), QString(), QStringLiteral("a"), take);
    QTest::keyClick(&m_panel->Input(), Qt::Key_Escape);
    QVERIFY(!m_panel->isVisible());
    m_panel->Ask(QStringLiteral("Name"), QString(), QStringLiteral("a"), take);
    // Beside the panel.
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, QPoint(3, 3));
    QVERIFY(!m_panel->isVisible());
    QCOMPARE(cancelled.size(), 2);
    QVERIFY(m_taken.isEmpty());
}

/// Another question has nothing of the one before.
void tst_ZrTextPanel::asksAgain()
{
    m_panel->Ask(QStringLiteral("First"), QStringLiteral("hint"), QStringLiteral("a"),
        [](const QString&) { return QStringLiteral("never"); });
    m_panel->Accept();
    QCOMPARE(m_panel->Problem(), QStringLiteral("never"));
    m_panel->Ask(QStringLiteral("Second"), QString(), QString(), [this](const QString& text) {
        m_taken << text;
        return QString();
    });
    QCOMPARE(m_panel->Problem(), QString());
    QCOMPARE(static_cast<QLineEdit&>(m_panel->Input()).text(), QString());
    m_panel->Accept();
    QCOMPARE(m_taken, QStringList({QString()}));
}

void tst_ZrTextPanel::withoutTaker()
{
    m_panel->Ask(QStringLiteral("Name"), QString(), QString(), {});
    m_panel->Accept();
    QVERIFY(!m_panel->isVisible());
}

void tst_ZrTextPanel::everySize()
{
    m_panel->Ask(QStringLiteral("A question that is long enough for the smallest of windows"),
        QStringLiteral("A hint of several lines, as a person would have it who explains what may be typed "
                       "and what may not, and why."),
        QString(), {});
    for (const QSize& size : {QSize(900, 600), QSize(1280, 800), QSize(2560, 1440)}) {
        m_window->resize(size);
        QCoreApplication::processEvents();
        QCOMPARE(m_panel->size(), size);
        const QRect input = m_panel->Input().geometry();
        QVERIFY(m_panel->rect().contains(input));
        QVERIFY(input.height() >= 44);
        for (const ZrBtn* button : m_panel->findChildren<ZrBtn*>()) {
            if (button->parentWidget() != m_panel)
                continue;
            QVERIFY(m_panel->rect().contains(button->geometry()));
            QVERIFY(!button->geometry().intersects(input));
            QVERIFY(button->height() >= 44 && button->width() >= 44);
        }
    }
}

/// Both lines are checked together; the next question has one again.
void tst_ZrTextPanel::secondLine()
{
    const QString wrong = QStringLiteral("wrong");
    m_panel->Ask(QStringLiteral("Event"), QStringLiteral("hint"), QStringLiteral("wreck"),
        [this, wrong](const QString& text) {
            if (m_panel->More() == wrong)
                return wrong;
            m_taken << text << m_panel->More();
            return QString();
        });
    QVERIFY(!m_panel->MoreInput().isVisible());
    m_panel->AskMore(QStringLiteral("Time"), wrong);
    ZrInput& more = m_panel->MoreInput();
    QVERIFY(more.isVisible());
    QCOMPARE(more.accessibleName(), QStringLiteral("Time"));
    QVERIFY(!more.geometry().intersects(m_panel->Input().geometry()));
    QVERIFY(more.height() >= 44 && m_panel->rect().contains(more.geometry()));
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(&m_panel->Input()));
    QTest::keyClick(&more, Qt::Key_Return);
    QCOMPARE(m_panel->Problem(), wrong);
    QVERIFY(m_panel->isVisible());
    more.setFocus();
    more.selectAll();
    QTest::keyClicks(&more, QStringLiteral("12:34"));
    QCOMPARE(m_panel->Problem(), QString()); // it is being mended
    QTest::keyClick(&more, Qt::Key_Return);
    QVERIFY(!m_panel->isVisible());
    QCOMPARE(m_taken, QStringList({QStringLiteral("wreck"), QStringLiteral("12:34")}));
    m_panel->Ask(QStringLiteral("Name"), QString(), QString(), {});
    QVERIFY(!more.isVisible());
}

QTEST_MAIN(tst_ZrTextPanel)
#include "tst_ZrTextPanel.moc"
