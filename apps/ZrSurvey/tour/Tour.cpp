#include "apps/ZrSurvey/tour/Tour.h"

#include "ZrKit/ui/ZrToast.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyPage.h"
#include "apps/ZrSurvey/SurveyView.h"
#include "apps/ZrSurvey/tour/TourStations.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include <cstdio>

namespace {

const char reportName[] = "tour.txt";
const char unfinished[] = "ZrSurvey is on tour\n"; ///< the report until the end, and of one that was ended

/// Of an earlier tour.
bool IsReport(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    static const QRegularExpression station(QStringLiteral("^(ok |BAD)  [0-9]{2} "));
    const QByteArray first = file.readLine(80);
    return first == unfinished || station.match(QString::fromUtf8(first)).hasMatch();
}

/// Those that a tour has written: each has its notes beside it.
void RemovePictures(QDir& dir)
{
    const auto names = dir.entryList({QStringLiteral("[0-9][0-9]-*.json")}, QDir::Files);
    for (const QString& notes : names) {
        if (!TourPicture::IsNotes(dir.filePath(notes)))
            continue;
        dir.remove(notes.chopped(5) + QStringLiteral(".png"));
        dir.remove(notes);
    }
}

} // namespace

Tour::Tour(const QString& folder, const QString& line)
    : m_folder(QDir(folder).absolutePath())
    , m_line(line.isEmpty() ? DefaultLine() : QFileInfo(line).absoluteFilePath())
{
}

Tour::~Tour() = default;

QString Tour::DefaultLine()
{
    const QString name = QStringLiteral("data/sidescan-xtf/iver2-scotsman-pings0-299.xtf");
    const QString program = QCoreApplication::applicationDirPath();
    const QStringList folders{program + QStringLiteral("/../../.."),
        program + QStringLiteral("/../share/ZrSurvey"), QDir::currentPath()};
    for (const QString& folder : folders) {
        const QFileInfo file(QDir(folder).filePath(name));
        if (file.isFile())
            return file.canonicalFilePath();
    }
    return {};
}

bool Tour::Prepare()
{
    const auto fail = [this](const QString& error) {
        m_error = error;
        return false;
    };
    QDir dir(m_folder);
    if (QFileInfo(m_folder).exists() && !QFileInfo(m_folder).isDir())
        return fail(tr("%1 is no folder").arg(m_folder));
    if (!dir.mkpath(QStringLiteral(".")))
        return fail(tr("The folder %1 cannot be made").arg(m_folder));
    const QString reportPath = dir.filePath(QString::fromLatin1(reportName));
    const bool isOurs = IsReport(reportPath);
    if (!isOurs && !dir.isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
        return fail(tr("The folder %1 is not empty and not of an earlier tour").arg(m_folder));
    for (const QString& part : {reportPath, DataDir(), Exports()}) {
        // What lies behind a link is not the tour's.
        if (QFileInfo(part).isSymLink())
            return fail(tr("%1 is a link").arg(part));
    }
    if (m_line.isEmpty())
        return fail(
            tr("The side-scan line that comes with the program is not found; name one with --tour-line"));
    if (!QFileInfo(m_line).isFile() || !QFileInfo(m_line).isReadable())
        return fail(tr("The side-scan line %1 cannot be read").arg(m_line));
    QFile report(reportPath);
    if (!report.open(QIODevice::WriteOnly) || report.write(unfinished) < 0 || !report.flush())
        return fail(tr("The folder %1 cannot be written to. %2").arg(m_folder, report.errorString()));
    RemovePictures(dir);
    for (const QString& part : {DataDir(), Exports()}) {
        if (!QDir(part).removeRecursively() || !dir.mkpath(part))
            return fail(tr("The folder %1 cannot be made anew").arg(part));
    }
    return true;
}

SurveyModel& Tour::Model() const
{
    return m_view->Model();
}

QWidget& Tour::PageOf(const char* name) const
{
    return *m_view->GetPage(QString::fromLatin1(name));
}

/// What the program tells, whoever made it do so.
void Tour::Watch()
{
    const auto toasts = m_view->findChildren<ZrToast*>();
    for (ZrToast* toast : toasts) {
        connect(toast, &ZrToast::Shown, this, [this](int kind, const QString& text) {
            m_toasts.append(text);
            if (kind != ZrToast::info)
                m_warnings.append(text);
        });
    }
}

int Tour::Run(SurveyView& view)
{
    QElapsedTimer clock;
    clock.start();
    m_view = &view;
    m_hand = std::make_unique<TourHand>(view);
    m_picture = std::make_unique<TourPicture>(view);
    // Pictures do not depend on when they are taken.
    QApplication::setCursorFlashTime(0);
    m_log.Start(DataDir() + QStringLiteral("/log"));
    // The folders of a machine on which the program was used before.
    Model().settings.recordDir = Recordings();
    view.set_last_path(QFileInfo(m_line).absolutePath());
    Watch();
    view.show();
    using Part = void (*)(Tour&);
    for (const Part part : {&tour::home, &tour::line, &tour::plan_area, &tour::plan_edit, &tour::plan_files,
             &tour::record, &tour::review, &tour::recording_exports, &tour::sonar, &tour::exports,
             &tour::scene, &tour::settings, &tour::home_again})
        part(*this);
    Say(QStringLiteral("%1  %2 stations  %3 s")
            .arg(m_isGood ? QStringLiteral("ok") : QStringLiteral("NOT AS EXPECTED"))
            .arg(m_number)
            .arg(static_cast<double>(clock.elapsed()) / 1000.0, 0, 'f', 1));
    QSaveFile report(m_folder + QLatin1Char('/') + QLatin1String(reportName));
    if (!report.open(QIODevice::WriteOnly) || report.write(m_report.toUtf8()) < 0 || !report.commit()) {
        std::fprintf(stderr, "%s\n", qPrintable(report.errorString()));
        return 2;
    }
    m_view = nullptr;
    return m_isGood ? 0 : 2;
}

void Tour::Say(const QString& line)
{
    m_report += line + QLatin1Char('\n');
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

void Tour::Station(const QString& name, const std::function<void()>& what)
{
    if (m_isOver)
        return;
    const QString number = QStringLiteral("%1").arg(++m_number, 2, 10, QLatin1Char('0'));
    QElapsedTimer clock;
    clock.start();
    m_flaws.clear();
    m_picture->Clear();
    try {
        what();
        m_hand->Settle();
    } catch (const TourFailure& failure) {
        Expect(false, failure.expected, failure.found);
    }
    LookAround();
    const bool isGood = m_flaws.isEmpty();
    const QString picture
        = number + QLatin1Char('-') + name + (isGood ? QString() : QStringLiteral("-failed"));
    const QString unsaved = m_picture->Save(m_folder + QLatin1Char('/') + picture);
    if (!unsaved.isEmpty())
        Expect(false, QStringLiteral("a picture in %1").arg(unsaved), QStringLiteral("it cannot be written"));
    const double seconds = static_cast<double>(clock.elapsed()) / 1000.0;
    Say(QStringLiteral("%1  %2 %3 %4 s")
            .arg(m_flaws.isEmpty() ? QStringLiteral("ok ") : QStringLiteral("BAD"), number,
                name.leftJustified(20))
            .arg(seconds, 5, 'f', 1));
    for (const QString& flaw : qAsConst(m_flaws))
        Say(QStringLiteral("     ") + flaw);
    m_isGood = m_isGood && m_flaws.isEmpty();
    // What follows would be of no use.
    m_isOver = m_isOver || !m_isGood;
    m_toasts.clear();
    m_warnings.clear();
}

/// Nobody asked for a warning.
void Tour::LookAround()
{
    for (const QString& warning : qAsConst(m_warnings))
        Expect(false, QStringLiteral("no warning on the screen"), warning);
    const QStringList lines = m_log.Take();
    for (const QString& line : lines)
        Expect(false, QStringLiteral("no warning in the log"), line);
}

void Tour::Expect(bool isSo, const QString& expected, const QString& found)
{
    if (!isSo)
        m_flaws.append(QStringLiteral("expected: %1; found: %2").arg(expected, found));
}

void Tour::Expect(qint64 found, qint64 expected, const QString& what)
{
    Expect(found == expected, QStringLiteral("%1: %2").arg(what).arg(expected), QString::number(found));
}

void Tour::ExpectWithin(double found, double least, double most, const QString& what)
{
    Expect(found >= least && found <= most, QStringLiteral("%1: %2 to %3").arg(what).arg(least).arg(most),
        QString::number(found, 'g', 9));
}

void Tour::ExpectPage(const char* name)
{
    const QString shown = m_view->Page() ? m_view->m_pages.key(m_view->Page()) : QStringLiteral("none");
    Expect(shown == QLatin1String(name), QStringLiteral("the page %1").arg(QLatin1String(name)), shown);
    Expect(m_view->Page() && m_view->Page()->isVisible(), QStringLiteral("the page is visible"),
        QStringLiteral("it is not"));
}

void Tour::ExpectToast(const QString& part)
{
    m_hand->Wait([this, &part] { return !m_toasts.filter(part).isEmpty(); }, 3000);
    Expect(!m_toasts.filter(part).isEmpty(), QStringLiteral("the message \"%1\"").arg(part),
        m_toasts.isEmpty() ? QStringLiteral("none") : m_toasts.join(QStringLiteral(" / ")));
}

void Tour::ExpectFile(const QString& path, qint64 leastBytes)
{
    const QFileInfo file(path);
    Expect(file.isFile() && file.size() >= leastBytes,
        QStringLiteral("%1 of %2 bytes or more").arg(file.fileName()).arg(leastBytes),
        file.isFile() ? QStringLiteral("%1 bytes").arg(file.size()) : QStringLiteral("no such file"));
}
