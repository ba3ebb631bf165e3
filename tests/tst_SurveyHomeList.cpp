// The recordings of the home page: previews that are made without anybody having opened them, and folders of
// thousands.

#include "SurveyWindow.h"
#include "ZrKit/review/ZrRecordingList.h"
#include "ZrKit/review/ZrRecordingPreviews.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrSurveyLog.h"

#include <QScrollBar>

#include <atomic>
#include <cstdarg>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <thread>

using survey::S;

namespace {

/// Files of the folder of recordings that are opened, by whom.
std::atomic<bool> isCounting{false};
std::atomic<int> openedHere{0};
std::atomic<int> openedElsewhere{0};
std::thread::id gui;

void Count(const char* path)
{
    if (!isCounting || !path || !std::strstr(path, "/Aufnahmen ") || !std::strstr(path, ".log"))
        return;
    ++(std::this_thread::get_id() == gui ? openedHere : openedElsewhere);
}

} // namespace

// In place of the system's, which it calls.
extern "C" __attribute__((visibility("default"))) int open64(const char* path, int flags, ...)
{
    std::va_list rest;
    va_start(rest, flags);
    const int mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, int) : 0;
    va_end(rest);
    Count(path);
    static const auto real = reinterpret_cast<int (*)(const char*, int, ...)>(dlsym(RTLD_NEXT, "open64"));
    return real(path, flags, mode);
}

class tst_SurveyHomeList : public SurveyWindow
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void previewsAreMade();
    void damagedShowsASign();
    void notWhileRecording();
    void longNames();
    void thousands();

private:
    SurveyPage* Home() { return static_cast<SurveyPage*>(m_view->GetPage(S("Home"))); }

    ZrTouchList* List() { return Home()->findChild<ZrTouchList*>(); }

    ZrRecordingPreviews* Previews() { return Home()->findChild<ZrRecordingPreviews*>(); }

    void Make(const QString& name, double created, const QByteArray& bytes);
    void Look();
    void Rest();
};

void tst_SurveyHomeList::init()
{
    gui = std::this_thread::get_id();
    isCounting = false;
    Open();
    QVERIFY(QDir().mkpath(Recordings()));
}

void tst_SurveyHomeList::cleanup()
{
    Close();
}

void tst_SurveyHomeList::Make(const QString& name, double created, const QByteArray& bytes)
{
    QByteArray time;
    AppendLe(time, created);
    QVERIFY(WriteWhole(Recordings() + QLatin1Char('/') + name, Patched(bytes, 40, time)));
}

/// As coming back to the page does.
void tst_SurveyHomeList::Look()
{
    m_view->Show(S("Plan"));
    m_view->GoHome();
    Settle();
}

/// Until nothing is listed or made any more.
void tst_SurveyHomeList::Rest()
{
    auto* list = Home()->findChild<ZrRecordingList*>();
    QTRY_VERIFY_WITH_TIMEOUT(!list->IsListing() && !Previews()->IsWorking(), 60000);
    Settle();
}

/// Nobody has opened them; coming back to the page is enough.
void tst_SurveyHomeList::previewsAreMade()
{
    Make(S("a.log"), 1000.0, survey::SurveyLog(30).Bytes());
    Make(S("b ä.log"), 2000.0, survey::SurveyLog(30).Bytes());
    Make(S("none.log"), 500.0, LogBytes().Bytes());
    Look();
    QTRY_COMPARE(List()->Items().size(), 3);
    QTRY_COMPARE(Previews()->Tries(), 3);
    Rest();
    QTRY_VERIFY(HasColour(List()->m_picture(0), ZrTheme::waypoint));
    QVERIFY(HasColour(List()->m_picture(1), ZrTheme::waypoint));
    QVERIFY(!HasColour(List()->m_picture(2), ZrTheme::waypoint));
    // Those that are not there any more have none.
    QVERIFY(List()->m_picture(-1).isNull());
    QVERIFY(List()->m_picture(3).isNull());
    // What was made stays made.
    Look();
    Rest();
    QCOMPARE(Previews()->Tries(), 3);
    m_view->SetColours(2);
    Settle();
    QVERIFY(HasColour(List()->m_picture(0), ZrTheme::waypoint));
}

void tst_SurveyHomeList::damagedShowsASign()
{
    Make(S("broken.log"), 1000.0, survey::SurveyLog(10).Bytes().left(90));
    WriteWhole(Recordings() + S("/no log.log"), QByteArray(100, 'x'));
    Look();
    QTRY_COMPARE(List()->Items().size(), 2);
    Rest();
    for (int row = 0; row < 2; ++row) {
        QCOMPARE(List()->Items()[row].detail, S("Damaged"));
        QVERIFY(HasColour(List()->m_picture(row), ZrTheme::errorCol));
    }
    const int tries = Previews()->Tries();
    QCOMPARE(tries, 2);
    for (int i = 0; i < 3; ++i) {
        Look();
        Rest();
    }
    QCOMPARE(Previews()->Tries(), tries);
}

void tst_SurveyHomeList::notWhileRecording()
{
    m_view->Model().recording.Set({});
    for (int i = 0; i < 3; ++i)
        Make(S("%1.log").arg(i), 1000.0 + i, survey::SurveyLog(30).Bytes());
    Look();
    QTRY_COMPARE(List()->Items().size(), 3);
    Rest();
    QCOMPARE(Previews()->Tries(), 0);
    // At its end they are made.
    m_view->Model().recording.End();
    QTRY_COMPARE(Previews()->Tries(), 3);
    Rest();
    // One that begins ends the work.
    for (int i = 3; i < 23; ++i)
        Make(S("%1.log").arg(i), 1000.0 + i, survey::SurveyLog(500).Bytes());
    Look();
    QTRY_VERIFY(Previews()->Tries() > 3);
    m_view->Model().recording.Set({});
    QTRY_VERIFY(!Previews()->IsWorking());
    const int tries = Previews()->Tries();
    Rest();
    QCOMPARE(Previews()->Tries(), tries);
}

void tst_SurveyHomeList::longNames()
{
    const QString name = S("Überfahrt 港 ") + QString(60, QChar(u'Ä')); // 2 bytes each
    Make(name + S(".log"), 1000.0, survey::SurveyLog(30).Bytes());
    Look();
    QTRY_COMPARE(List()->Items().size(), 1);
    QCOMPARE(List()->Items()[0].title, name);
    QCOMPARE(List()->horizontalScrollBar()->maximum(), 0);
}

/// After a restart the first frame waits for none of them; the latest are there before all others, and all in
/// the end. None is opened on the thread of the screen, and none twice.
void tst_SurveyHomeList::thousands()
{
    constexpr int count = 2000;
    const QByteArray bytes = survey::SurveyLog(2).Bytes();
    for (int i = 0; i < count; ++i)
        Make(S("dive %1.log").arg(i, 4, 10, QLatin1Char('0')), 1000.0 + i, bytes);
    // The items tell their own times; as they would of recordings made one after the other.
    for (int i = 0; i < count; ++i) {
        LogBytes log;
        for (int k = 0; k < 2; ++k) {
            survey::Nav nav;
            nav.latitude = 44.0 + 0.001 * k;
            nav.longitude = -63.0;
            log.Add(survey::NavItem(survey::startTime + 100.0 * i + k, nav));
        }
        Make(S("dive %1.log").arg(i, 4, 10, QLatin1Char('0')), survey::startTime + 100.0 * i, log.Bytes());
    }
    openedHere = openedElsewhere = 0;
    isCounting = true;
    Restart();
    auto* recordings = Home()->findChild<ZrRecordingList*>();
    QTRY_VERIFY(!List()->Items().isEmpty());
    QCOMPARE(List()->Items()[0].title, S("dive 1999"));
    QTRY_COMPARE_WITH_TIMEOUT(List()->Items().size(), count, 60000);
    QCOMPARE(List()->Items()[count - 1].title, S("dive 0000"));
    List()->scrollToBottom();
    Settle();
    QVERIFY(List()->viewport()->rect().contains(List()->visualRect(List()->model()->index(count - 1, 0))));
    Rest();
    QCOMPARE(openedHere.load(), 0);
    QVERIFY(openedElsewhere >= count); // the count counts
    // Listed again, none is opened but those that have been given an index, or are given one now.
    QTRY_VERIFY(Previews()->Tries() >= 100);
    Rest();
    Look();
    Rest();
    const int looks = recordings->Looks();
    openedElsewhere = 0;
    Look();
    Rest();
    QCOMPARE(recordings->Looks(), looks);
    QCOMPARE(openedElsewhere.load(), 0);
    QCOMPARE(openedHere.load(), 0);
}

GL_TEST_MAIN(tst_SurveyHomeList)
#include "tst_SurveyHomeList.moc"
