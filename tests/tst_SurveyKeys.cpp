// What one key or one touch must not do: end the program or a recording, lose events, or leave a recording
// without its source.

#include "SurveyRecordWindow.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrEntryBtn.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrUtil/ZrFormMgr.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QSignalSpy>

class tst_SurveyKeys : public SurveyRecordWindow
{
    Q_OBJECT

private Q_SLOTS:
    void keysOfPages_data();
    void keysOfPages();
    void keysAtTheStart();
    void spaceIsTheFirstEvent();
    void keysAfterPanels();
    void cancelKeepsTheSource();
    void switchCanBeUndone();
    void halfChosenSourceIsNotOpened();
    void recordingKeepsTheWindow();
    void eventsKeepTheWindow();

private:
    /// What the keyboard would do.
    void Press(int key)
    {
        QVERIFY(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key));
        QCoreApplication::processEvents();
    }

    void Start()
    {
        Open();
        QTRY_VERIFY(HasPosition());
        QTest::mouseClick(Button(QStringLiteral("Record")), Qt::LeftButton);
        QTRY_VERIFY(IsOn());
    }

    ZrBtn* CloseButton()
    {
        for (ZrBtn* button : m_view->findChildren<ZrBtn*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (button->accessibleName() == QStringLiteral("Close"))
                return button;
        }
        return nullptr;
    }

    template <class T> T* Shown()
    {
        for (T* panel : m_view->findChildren<T*>()) {
            if (panel->isVisible())
                return panel;
        }
        return nullptr;
    }

    ZrToast& Toast() { return *m_view->findChild<ZrToast*>(); }

    ZrBtn* Action() { return Toast().findChild<ZrBtn*>(); }
};

void tst_SurveyKeys::keysOfPages_data()
{
    QTest::addColumn<QString>("page");
    for (const char* page : {"Plan", "Record", "Review", "Scene"})
        QTest::newRow(page) << QString::fromLatin1(page);
}

/// Opened by touch, and left again; the keys go to the page, and end nothing.
void tst_SurveyKeys::keysOfPages()
{
    QFETCH(QString, page);
    Open();
    m_view->Show(QStringLiteral("Home"));
    QSignalSpy closed(CloseButton(), &ZrBtn::Clicked);
    const QVector<ZrEntryBtn*> entries = m_view->Page()->findChildren<ZrEntryBtn*>().toVector();
    for (ZrEntryBtn* entry : entries) {
        if (m_view->Page()->Title() != page && entry->Title().contains(page))
            QTest::mouseClick(entry, Qt::LeftButton);
    }
    if (m_view->Page() != m_view->GetPage(page))
        m_view->Show(page);
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(m_view->Page()));
    for (const int key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter})
        Press(key);
    QCOMPARE(m_view->Page(), m_view->GetPage(page));
    QVERIFY(m_view->forms().isHidden());
    m_view->Back();
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(m_view->Page()));
    Press(Qt::Key_Space);
    QCOMPARE(closed.size(), 0);
}

void tst_SurveyKeys::keysAtTheStart()
{
    m_view->resize(1280, 800);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    QApplication::setActiveWindow(m_view.get());
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(m_view->Page()));
    // What had the keys goes while the window has none.
    QApplication::setActiveWindow(nullptr);
    m_view->Show(QStringLiteral("Record"));
    QApplication::setActiveWindow(m_view.get());
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(m_view->Page()));
    // The close button is still reached by who wants it.
    for (int i = 0; i < 60 && !CloseButton()->hasFocus(); ++i)
        Press(Qt::Key_Tab);
    QVERIFY(CloseButton()->hasFocus());
}

void tst_SurveyKeys::spaceIsTheFirstEvent()
{
    Start();
    QSignalSpy closed(CloseButton(), &ZrBtn::Clicked);
    Press(Qt::Key_Space);
    QTRY_COMPARE(Button(QStringLiteral("Target"))->badge, 1);
    Press(Qt::Key_Return);
    QVERIFY(IsOn());
    QCOMPARE(closed.size(), 0);
}

/// Of the page, of the settings, and those that a page leaves behind.
void tst_SurveyKeys::keysAfterPanels()
{
    Start();
    QSignalSpy closed(CloseButton(), &ZrBtn::Clicked);
    QTest::mouseClick(Page().findChild<ZrBtn*>(QStringLiteral("source")), Qt::LeftButton);
    auto* panel = Shown<ZrChoicePanel>();
    QVERIFY(panel && panel->isVisible() && panel->hasFocus());
    Press(Qt::Key_Escape);
    QVERIFY(!panel->isVisible());
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(&Page()));
    m_view->ToggleSettings();
    QVERIFY(m_view->forms().hasFocus());
    m_view->Show(QStringLiteral("Home"));
    QVERIFY(m_view->forms().hasFocus()); // it is in front
    m_view->ToggleSettings();
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(m_view->Page()));
    m_view->Show(QStringLiteral("Record"));
    m_view->Tell(QStringLiteral("something"), QStringLiteral("Undo"), [] {});
    Action()->setFocus(Qt::TabFocusReason);
    Toast().hide();
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(&Page()));
    Press(Qt::Key_Space);
    QTRY_COMPARE(Button(QStringLiteral("Target"))->badge, 1);
    // A button that is switched off while it has the keys.
    Button(QStringLiteral("Target"))->setFocus(Qt::TabFocusReason);
    Button(QStringLiteral("Target"))->setEnabled(false);
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(&Page()));
    QVERIFY(IsOn());
    QCOMPARE(closed.size(), 0);
}

void tst_SurveyKeys::cancelKeepsTheSource()
{
    Start();
    QSignalSpy edited(m_view.get(), &SurveyView::SettingsChanged);
    QSignalSpy source(&Page().Session(), &ZrRecordingSession::SourceChanged);
    QTest::mouseClick(Page().findChild<ZrBtn*>(QStringLiteral("source")), Qt::LeftButton);
    auto* panel = Shown<ZrChoicePanel>();
    QVERIFY(panel && panel->isVisible());
    panel->Accept();
    Q_EMIT panel->Chosen(SurveySource::replay);
    auto* files = Shown<ZrFilePanel>();
    QVERIFY(files);
    QCOMPARE(m_view->Model().settings.source, int(SurveySource::simulator));
    files->Cancel();
    const auto items = Page().Session().Status().items;
    QTRY_VERIFY(Page().Session().Status().items > items + 200);
    QCOMPARE(m_view->Model().settings.source, int(SurveySource::simulator));
    QCOMPARE(edited.size(), 0);
    QCOMPARE(source.size(), 0);
    QVERIFY(IsOn());
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(&Page()));
}

void tst_SurveyKeys::switchCanBeUndone()
{
    m_view->Model().settings.udpPort = 0; // any free one
    Start();
    QTest::mouseClick(Page().findChild<ZrBtn*>(QStringLiteral("source")), Qt::LeftButton);
    auto* panel = Shown<ZrChoicePanel>();
    QVERIFY(panel);
    panel->Accept();
    Q_EMIT panel->Chosen(SurveySource::udp);
    QCOMPARE(m_view->Model().settings.source, int(SurveySource::udp));
    QVERIFY(Toast().isVisible());
    QVERIFY2(Toast().Text().contains(QStringLiteral("UDP port 0")), qPrintable(Toast().Text()));
    QCOMPARE(Action()->text, QStringLiteral("Undo"));
    QTest::mouseClick(Action(), Qt::LeftButton);
    QCOMPARE(m_view->Model().settings.source, int(SurveySource::simulator));
    const auto items = Page().Session().Status().items;
    QTRY_VERIFY(Page().Session().Status().items > items + 200);
    QVERIFY(IsOn());
}

/// One that the settings name without its file yet: not below a recording.
void tst_SurveyKeys::halfChosenSourceIsNotOpened()
{
    Start();
    QSignalSpy source(&Page().Session(), &ZrRecordingSession::SourceChanged);
    m_view->Model().settings.source = SurveySource::nmeaFile;
    QSignalSpy ticks(Page().findChild<QTimer*>(QStringLiteral("tick")), &QTimer::timeout);
    QTRY_VERIFY(ticks.size() > 2);
    QCOMPARE(source.size(), 0);
    Page().Session().Stop();
    QTRY_VERIFY(IsOff());
    QTRY_COMPARE(Page().Session().Source(), ZrRecordingSession::sourceFailed);
}

void tst_SurveyKeys::recordingKeepsTheWindow()
{
    Start();
    QTest::mouseClick(CloseButton(), Qt::LeftButton);
    QVERIFY(IsOn());
    QVERIFY(Toast().isVisible());
    Toast().hide();
    QVERIFY(!m_view->close()); // as the window manager
    QVERIFY(m_view->isVisible());
    QVERIFY(IsOn());
    QVERIFY(Toast().isVisible());
    QCOMPARE(Action()->text, QStringLiteral("Stop and close"));
    // Space is still the first event; the action is one Tab away.
    Press(Qt::Key_Space);
    QTRY_COMPARE(Button(QStringLiteral("Target"))->badge, 1);
    QVERIFY(IsOn());
    Press(Qt::Key_Tab);
    QVERIFY(Action()->hasFocus());
    Press(Qt::Key_Return);
    QTRY_VERIFY(!m_view->isVisible());
    QVERIFY(IsOff());
    QCOMPARE(EventsOf(Logs().value(0)).count(QStringLiteral("Target")), 1);
}

void tst_SurveyKeys::eventsKeepTheWindow()
{
    Open();
    ZrLogEvt event;
    event.text = QStringLiteral("Target");
    m_view->Model().unsaved.Add(QStringLiteral("/none/a.log"), {event}, QStringLiteral("the disk is full"));
    QVERIFY(!m_view->close());
    QVERIFY(m_view->isVisible());
    QVERIFY2(
        Toast().Text().startsWith(QStringLiteral("1 event is in memory only")), qPrintable(Toast().Text()));
    QCOMPARE(Action()->text, QStringLiteral("Close anyway"));
    QTest::mouseClick(CloseButton(), Qt::LeftButton);
    QVERIFY(m_view->isVisible());
    Press(Qt::Key_Tab);
    QVERIFY(Action()->hasFocus());
    Press(Qt::Key_Space);
    QTRY_VERIFY(!m_view->isVisible());
}

GL_TEST_MAIN(tst_SurveyKeys)
#include "tst_SurveyKeys.moc"
