// Panels over the window: choices, files, messages.

#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

namespace {

/// A panel that can refuse.
class Question : public ZrOverlay
{
public:
    bool m_isRight = true;

    using ZrOverlay::Body;
    using ZrOverlay::m_accept;
    using ZrOverlay::m_cancel;
    using ZrOverlay::Panel;
    using ZrOverlay::ZrOverlay;

protected:
    bool OnAccept() override { return m_isRight; }
};

bool Write(const QString& path, const QByteArray& bytes = "x")
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

ZrBtn* ButtonOf(QWidget& widget, const QString& text)
{
    const auto buttons = widget.findChildren<ZrBtn*>();
    for (ZrBtn* button : buttons) {
        if (button->text == text)
            return button;
    }
    return nullptr;
}

QStringList Titles(const ZrTouchList& list)
{
    QStringList titles;
    for (const ZrListItem& item : list.Items())
        titles.append(item.title);
    return titles;
}

} // namespace

class tst_ZrOverlay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void startsHidden();
    void acceptsAndCancels();
    void tapBesideCancels();
    void refusalKeepsItOpen();
    void disabledButtonRefuses();
    void focusComesBack();
    void followsTheWindow();
    void fitsSmallWindows_data();
    void fitsSmallWindows();
    void nothingReachesWhatIsBelow();
    void problemIsShown();
    void choiceByTap();
    void choiceByKeys();
    void filesOfTheFolder();
    void opensAFolder();
    void opensAFile();
    void savesUnderAName();
    void savingOverAFileIsSaid();
    void badNames_data();
    void badNames();
    void choosesAFolder();
    void missingFolderIsTheOneAbove();
    void goesUp();
    void tooManyFilesAreTold();
    void toastShowsAndGoes();
    void toastActs();
    void toastReplaces();
    void toastOfAnyLength();
    void toastKeepsFree();

private:
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ZrOverlay::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    m_window = std::make_unique<QWidget>();
    m_window->resize(1000, 750);
    m_window->show();
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_ZrOverlay::startsHidden()
{
    Question question(m_window.get(), QStringLiteral("Really?"));
    QVERIFY(!question.isVisible());
    question.Accept();
    question.Cancel();
    question.Open();
    QVERIFY(question.isVisible());
    QCOMPARE(question.geometry(), m_window->rect());
}

void tst_ZrOverlay::acceptsAndCancels()
{
    Question question(m_window.get(), QStringLiteral("Really?"));
    QSignalSpy accepted(&question, &ZrOverlay::Accepted);
    QSignalSpy cancelled(&question, &ZrOverlay::Cancelled);
    question.Open();
    QTest::mouseClick(question.m_accept, Qt::LeftButton);
    QCOMPARE(accepted.count(), 1);
    QVERIFY(!question.isVisible());
    question.Open();
    QTest::mouseClick(question.m_cancel, Qt::LeftButton);
    QCOMPARE(cancelled.count(), 1);
    question.Open();
    QTest::keyClick(&question, Qt::Key_Escape);
    QCOMPARE(cancelled.count(), 2);
    question.Open();
    QTest::keyClick(&question, Qt::Key_Return);
    QCOMPARE(accepted.count(), 2);
}

void tst_ZrOverlay::tapBesideCancels()
{
    Question question(m_window.get(), QString());
    QSignalSpy cancelled(&question, &ZrOverlay::Cancelled);
    question.Open();
    QTest::mouseClick(&question, Qt::LeftButton, {}, question.Panel().center());
    QVERIFY(question.isVisible());
    // A drag out of the panel is no tap beside it.
    QTest::mousePress(&question, Qt::LeftButton, {}, question.Panel().center());
    QTest::mouseRelease(&question, Qt::LeftButton, {}, QPoint(3, 3));
    QVERIFY(question.isVisible());
    QTest::mouseClick(&question, Qt::LeftButton, {}, QPoint(3, 3));
    QCOMPARE(cancelled.count(), 1);
}

void tst_ZrOverlay::refusalKeepsItOpen()
{
    Question question(m_window.get(), QString());
    QSignalSpy accepted(&question, &ZrOverlay::Accepted);
    question.m_isRight = false;
    question.Open();
    question.Accept();
    QVERIFY(question.isVisible());
    QCOMPARE(accepted.count(), 0);
}

void tst_ZrOverlay::disabledButtonRefuses()
{
    Question question(m_window.get(), QString());
    question.SetAcceptEnabled(false);
    question.Open();
    QTest::keyClick(&question, Qt::Key_Return);
    QVERIFY(question.isVisible());
}

void tst_ZrOverlay::focusComesBack()
{
    QLineEdit edit(m_window.get());
    edit.show();
    m_window->activateWindow();
    edit.setFocus();
    QTRY_VERIFY(edit.hasFocus());
    Question question(m_window.get(), QString());
    question.Open();
    QVERIFY(question.hasFocus());
    question.Cancel();
    QVERIFY(edit.hasFocus());
}

void tst_ZrOverlay::followsTheWindow()
{
    Question question(m_window.get(), QString());
    question.Open();
    m_window->resize(1200, 900);
    QTRY_COMPARE(question.size(), QSize(1200, 900));
    QVERIFY(question.rect().contains(question.Panel()));
}

void tst_ZrOverlay::fitsSmallWindows_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<float>("dp");
    for (const QSize& size : {QSize(900, 600), QSize(2560, 1440), QSize(640, 480)}) {
        for (const float dp : {0.5F, 1.0F, 1.5F})
            QTest::addRow("%d at %g", size.width(), double(dp)) << size << dp;
    }
}

void tst_ZrOverlay::fitsSmallWindows()
{
    QFETCH(QSize, size);
    QFETCH(float, dp);
    ZrTheme::dp = dp;
    ZrTheme::SetStdStyle();
    m_window->resize(size);
    Question question(m_window.get(), QStringLiteral("Really?"));
    question.Open();
    QVERIFY(question.rect().contains(question.Panel()));
    for (const ZrBtn* button : {question.m_accept, question.m_cancel}) {
        QVERIFY(question.Panel().contains(button->geometry()));
        QVERIFY(button->height() >= 44);
    }
    QVERIFY(!question.m_accept->geometry().intersects(question.m_cancel->geometry()));
    QVERIFY(question.Body().bottom() < question.m_accept->y());
    QVERIFY(question.Body().height() > 0);
}

void tst_ZrOverlay::nothingReachesWhatIsBelow()
{
    ZrBtn below(m_window.get(), ZrBtn::typeStd);
    below.setGeometry(m_window->rect());
    below.show();
    QSignalSpy clicked(&below, &ZrBtn::Clicked);
    Question question(m_window.get(), QString());
    question.Open();
    QCOMPARE(m_window->childAt(QPoint(3, 3)), static_cast<QWidget*>(&question));
    QTest::keyClick(&question, Qt::Key_Space);
    QCOMPARE(clicked.count(), 0);
}

void tst_ZrOverlay::problemIsShown()
{
    Question question(m_window.get(), QString());
    question.Open();
    const QImage before = question.grab().toImage();
    question.SetProblem(QStringLiteral("0 to 6000 m"));
    QCOMPARE(question.Problem(), QStringLiteral("0 to 6000 m"));
    QVERIFY(question.grab().toImage() != before);
}

void tst_ZrOverlay::choiceByTap()
{
    ZrChoicePanel choice(m_window.get(), QStringLiteral("Palette"));
    QVector<ZrListItem> items(3);
    items[0].title = QStringLiteral("grey");
    items[1].title = QStringLiteral("copper");
    items[2].title = QStringLiteral("hot");
    choice.SetItems(items, 1);
    QSignalSpy chosen(&choice, &ZrChoicePanel::Chosen);
    choice.Open();
    auto* list = choice.findChild<ZrTouchList*>();
    QCOMPARE(list->Current(), 1);
    QTest::mouseClick(
        list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(2, 0)).center());
    QTRY_COMPARE(chosen.count(), 1);
    QCOMPARE(chosen[0][0].toInt(), 2);
    QVERIFY(!choice.isVisible());
}

void tst_ZrOverlay::choiceByKeys()
{
    ZrChoicePanel choice(m_window.get(), QStringLiteral("Palette"));
    choice.SetItems(QVector<ZrListItem>(3), 0);
    QSignalSpy chosen(&choice, &ZrChoicePanel::Chosen);
    choice.Open();
    QTest::keyClick(&choice, Qt::Key_Down);
    QTest::keyClick(&choice, Qt::Key_Return);
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen[0][0].toInt(), 1);
    choice.Open();
    QTest::keyClick(&choice, Qt::Key_Escape);
    QCOMPARE(chosen.count(), 1);
}

void tst_ZrOverlay::filesOfTheFolder()
{
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("Ordner 港")));
    QVERIFY(Write(m_dir->filePath(QStringLiteral("a.log"))));
    QVERIFY(Write(m_dir->filePath(QStringLiteral("b.txt"))));
    QVERIFY(Write(m_dir->filePath(QStringLiteral(".hidden.log"))));
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetSuffixes({QStringLiteral("log")});
    files.SetFolder(m_dir->path());
    files.Open();
    auto* list = files.findChildren<ZrTouchList*>()[1];
    QCOMPARE(Titles(*list), QStringList({QStringLiteral("Ordner 港"), QStringLiteral("a.log")}));
    // What it is for, and where one is.
    const QString folder = QDir(m_dir->path()).dirName();
    QCOMPARE(files.accessibleName(), QStringLiteral("Open – ") + folder);
    files.SetPurpose(QStringLiteral("Import"));
    QCOMPARE(files.accessibleName(), QStringLiteral("Import – ") + folder);
    files.SetPurpose(QString());
    QCOMPARE(files.accessibleName(), folder);
}

void tst_ZrOverlay::opensAFolder()
{
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("sub")));
    QVERIFY(Write(m_dir->filePath(QStringLiteral("sub/c.log"))));
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(m_dir->path());
    files.Open();
    auto* list = files.findChildren<ZrTouchList*>()[1];
    Q_EMIT list->Chosen(0);
    QCOMPARE(files.Folder(), m_dir->filePath(QStringLiteral("sub")));
    QCOMPARE(Titles(*list), QStringList(QStringLiteral("c.log")));
    QVERIFY(files.isVisible());
}

void tst_ZrOverlay::opensAFile()
{
    QVERIFY(Write(m_dir->filePath(QStringLiteral("c.log"))));
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(m_dir->path());
    QSignalSpy chosen(&files, &ZrFilePanel::FileChosen);
    files.Open();
    files.Accept();
    QVERIFY(files.isVisible());
    QVERIFY(!files.Problem().isEmpty());
    auto* list = files.findChildren<ZrTouchList*>()[1];
    QTest::mouseClick(
        list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(0, 0)).center());
    QTRY_COMPARE(chosen.count(), 1);
    QCOMPARE(chosen[0][0].toString(), m_dir->filePath(QStringLiteral("c.log")));
    QVERIFY(!files.isVisible());
}

void tst_ZrOverlay::savesUnderAName()
{
    ZrFilePanel files(m_window.get(), QStringLiteral("Save"));
    files.SetMode(ZrFilePanel::saveFile);
    files.SetSuffixes({QStringLiteral("gpx"), QStringLiteral("kml")});
    files.SetFolder(m_dir->path());
    files.SetFileName(QStringLiteral("Plan ä"));
    QSignalSpy chosen(&files, &ZrFilePanel::FileChosen);
    files.Open();
    files.Accept();
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen[0][0].toString(), m_dir->filePath(QStringLiteral("Plan ä.gpx")));
    files.SetFileName(QStringLiteral("b.KML"));
    files.Open();
    files.Accept();
    QCOMPARE(chosen[1][0].toString(), m_dir->filePath(QStringLiteral("b.KML")));
}

void tst_ZrOverlay::savingOverAFileIsSaid()
{
    QVERIFY(Write(m_dir->filePath(QStringLiteral("a.gpx"))));
    ZrFilePanel files(m_window.get(), QStringLiteral("Save"));
    files.SetMode(ZrFilePanel::saveFile);
    files.SetSuffixes({QStringLiteral("gpx")});
    files.SetFolder(m_dir->path());
    files.Open();
    files.SetFileName(QStringLiteral("a"));
    QCOMPARE(files.Problem(), QStringLiteral("a.gpx will be replaced"));
    files.SetFileName(QStringLiteral("b"));
    QVERIFY(files.Problem().isEmpty());
}

void tst_ZrOverlay::badNames_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"", "   ", "a/b.gpx", "..", "."})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_ZrOverlay::badNames()
{
    QFETCH(QString, name);
    ZrFilePanel files(m_window.get(), QStringLiteral("Save"));
    files.SetMode(ZrFilePanel::saveFile);
    files.SetFolder(m_dir->path());
    QSignalSpy chosen(&files, &ZrFilePanel::FileChosen);
    files.Open();
    files.SetFileName(name);
    QVERIFY(!files.Problem().isEmpty());
    files.Accept();
    QCOMPARE(chosen.count(), 0);
    QVERIFY(files.isVisible());
}

void tst_ZrOverlay::choosesAFolder()
{
    QVERIFY(Write(m_dir->filePath(QStringLiteral("a.gpx"))));
    ZrFilePanel files(m_window.get(), QStringLiteral("Folder"));
    files.SetMode(ZrFilePanel::chooseFolder);
    files.SetFolder(m_dir->path());
    QSignalSpy chosen(&files, &ZrFilePanel::FileChosen);
    files.Open();
    QVERIFY(files.findChildren<ZrTouchList*>()[1]->Items().isEmpty());
    files.Accept();
    QCOMPARE(chosen[0][0].toString(), m_dir->path());
}

void tst_ZrOverlay::missingFolderIsTheOneAbove()
{
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(m_dir->filePath(QStringLiteral("no/such/folder")));
    QCOMPARE(files.Folder(), m_dir->path());
    files.SetFolder(QString());
    QCOMPARE(files.Folder(), QDir::homePath());
}

void tst_ZrOverlay::goesUp()
{
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("sub")));
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(m_dir->filePath(QStringLiteral("sub")));
    files.Open();
    QTest::keyClick(&files, Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(files.Folder(), m_dir->path());
    QCOMPARE(files.findChildren<ZrTouchList*>()[1]->Current(), 0);
}

void tst_ZrOverlay::tooManyFilesAreTold()
{
    for (int i = 0; i < ZrFilePanel::MaxEntries + 3; ++i)
        QVERIFY(Write(m_dir->filePath(QString::number(i))));
    ZrFilePanel files(m_window.get(), QStringLiteral("Open"));
    files.SetFolder(m_dir->path());
    files.Open();
    QCOMPARE(files.findChildren<ZrTouchList*>()[1]->Items().size(), ZrFilePanel::MaxEntries);
    QCOMPARE(files.Problem(), QStringLiteral("3 entries are not shown"));
}

void tst_ZrOverlay::toastShowsAndGoes()
{
    ZrToast toast(m_window.get());
    QVERIFY(!toast.isVisible());
    toast.Show(QStringLiteral("Waypoint 7 deleted"));
    QVERIFY(toast.isVisible());
    QCOMPARE(toast.Text(), QStringLiteral("Waypoint 7 deleted"));
    QVERIFY(m_window->rect().contains(toast.geometry()));
    auto* timer = toast.findChild<QTimer*>();
    QCOMPARE(timer->interval(), int(ZrToast::Milliseconds));
    QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection);
    QVERIFY(!toast.isVisible());
    toast.Show(ZrToast::error, QStringLiteral("The disk is full"));
    QCOMPARE(timer->interval(), 2 * int(ZrToast::Milliseconds));
    QTest::mouseClick(&toast, Qt::LeftButton);
    QVERIFY(!toast.isVisible());
}

void tst_ZrOverlay::toastActs()
{
    ZrToast toast(m_window.get());
    int count = 0;
    toast.Show(QStringLiteral("Deleted"), QStringLiteral("Undo"), [&] {
        ++count;
        toast.Show(QStringLiteral("Back again"));
    });
    ZrBtn* undo = ButtonOf(toast, QStringLiteral("Undo"));
    QVERIFY(undo && undo->isVisible() && undo->height() >= 44);
    QTest::mouseClick(undo, Qt::LeftButton);
    QCOMPARE(count, 1);
    QVERIFY(toast.isVisible());
    QCOMPARE(toast.Text(), QStringLiteral("Back again"));
    QVERIFY(!undo->isVisible());
}

/// What lies at the edges stays usable while it is shown, also when that is told meanwhile.
void tst_ZrOverlay::toastKeepsFree()
{
    ZrToast toast(m_window.get());
    toast.Show(QStringLiteral("Waypoint 7 deleted"));
    const QRect before = toast.geometry();
    toast.SetFree(120, 200);
    QVERIFY(toast.geometry().bottom() < m_window->height() - 120);
    QVERIFY(toast.geometry().right() < m_window->width() - 200);
    QVERIFY(m_window->rect().contains(toast.geometry()));
    toast.Show(ZrToast::error, QStringLiteral("The disk is full ").repeated(10));
    QVERIFY(toast.geometry().bottom() < m_window->height() - 120);
    toast.SetFree(-5, -5);
    toast.Show(QStringLiteral("Waypoint 7 deleted"));
    QCOMPARE(toast.geometry(), before);
    // More than there is: it stays in view.
    toast.SetFree(100000);
    QVERIFY(toast.geometry().top() >= 0);
}

void tst_ZrOverlay::toastReplaces()
{
    ZrToast toast(m_window.get());
    int count = 0;
    toast.Show(QStringLiteral("a"), QStringLiteral("Undo"), [&] { ++count; });
    toast.Show(ZrToast::warning, QStringLiteral("b"));
    QCOMPARE(toast.Text(), QStringLiteral("b"));
    for (ZrBtn* button : toast.findChildren<ZrBtn*>())
        QVERIFY(!button->isVisible());
    QCOMPARE(count, 0);
}

void tst_ZrOverlay::toastOfAnyLength()
{
    ZrToast toast(m_window.get());
    toast.Show(QString());
    toast.Show(QString(2000, QLatin1Char('x')) + QStringLiteral(" 港"));
    toast.grab();
    QVERIFY(toast.width() <= m_window->width());
}

QTEST_MAIN(tst_ZrOverlay)
#include "tst_ZrOverlay.moc"
