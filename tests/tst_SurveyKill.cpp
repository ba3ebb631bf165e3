// The promise of the application to its user: when it dies while it plans and records, nothing is lost but
// the moment of its death. A program that does both is killed, again and again, on the same folder.

#include "ZrKit/planning/ZrPlanDocument.h"
#include "ZrKit/review/ZrLogCheck.h"
#include "ZrUtil/ZrPlayer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <cstdio>
#include <random>

namespace {

constexpr int rounds = 6;

/// Edits after which a life ends, at most: in planning, the beginning of a recording, or the midst of it.
constexpr unsigned longestLife = 50;

/// And so many milliseconds later, at most.
constexpr unsigned latestEnd = 150;

/// Edits of the last milliseconds may not be in the draft: what it may lag behind, and as much again for a
/// machine with much else to do.
constexpr qint64 lag = 2 * (ZrPlanDocument::DraftMostMilliseconds + ZrPlanDocument::DraftMilliseconds);

/// What a life has told.
struct Report
{
    int restored = -1;
    QString offer;
    QVector<QPair<qint64, int>> edits; ///< ms, waypoints
    qint64 items = 0;

    explicit Report(const QByteArray& output)
    {
        for (const QByteArray& line : output.split('\n')) {
            const QByteArrayList words = line.split(' ');
            if (words[0] == "restored" && words.size() > 1) {
                restored = words[1].toInt();
                offer = QString::fromUtf8(line.mid(line.indexOf(' ', 9) + 1));
            } else if (words[0] == "edit" && words.size() == 3) {
                edits.append({words[1].toLongLong(), words[2].toInt()});
            } else if (words[0] == "items" && words.size() == 2) {
                items = std::max(items, words[1].toLongLong());
            }
        }
    }

    /// Waypoints that must be in the draft.
    int Kept() const
    {
        int kept = edits.isEmpty() ? 0 : edits.first().second; // which is written at once
        for (const auto& edit : edits) {
            if (edit.first <= edits.last().first - lag)
                kept = edit.second;
        }
        return kept;
    }
};

/// Lets the program live on \p dir until it has edited so often, and \p ms longer; all that it told, but for
/// a line that was cut off by its end.
QByteArray LiveAndDie(const QString& dir, unsigned seed, int edits, unsigned ms)
{
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QStringLiteral(ZR_BIN_DIR "/survey_kill_main"), {dir, QString::number(seed)});
    QByteArray output;
    QElapsedTimer timer;
    timer.start();
    while (output.count("\nedit ") < edits && timer.elapsed() < 100000) {
        if (!process.waitForReadyRead(1000) && process.state() == QProcess::NotRunning)
            return {};
        output += process.readAllStandardOutput();
    }
    QThread::msleep(ms);
    process.kill();
    process.waitForFinished();
    output += process.readAllStandardOutput();
    return output.left(output.lastIndexOf('\n') + 1);
}

} // namespace

class tst_SurveyKill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsLost();

private:
    int DraftCount();
    qint64 CheckLog(const QString& path);

    QTemporaryDir m_dir;
};

/// The waypoints of the draft; -1 when there is none, or none that can be read.
int tst_SurveyKill::DraftCount()
{
    ZrPlanDocument plan(m_dir.filePath(QStringLiteral("plan-draft.json")));
    return plan.HasDraft() && plan.RestoreDraft() ? plan.Route().GetCount() : -1;
}

/// The items that play; -1 when something is wrong but for an item at the end that was being written.
qint64 tst_SurveyKill::CheckLog(const QString& path)
{
    ZrLogCheck check;
    if (!check.Run(path)) {
        qWarning("%s", qPrintable(check.Error()));
        return -1;
    }
    const auto size = static_cast<u64>(QFileInfo(path).size());
    for (const ZrLogCheck::Problem& problem : check.Problems()) {
        if (problem.pos + problem.length < size) {
            qWarning("%s: %s", qPrintable(path), qPrintable(problem.text));
            return -1;
        }
    }
    ZrPlayer player;
    if (!player.OpenFile(path))
        return -1;
    qint64 played = 0;
    connect(&player, &ZrPlayer::NewPayload, this, [&played] { ++played; });
    while (player.ReadNextItem(true)) { }
    return played == static_cast<qint64>(check.Items()) ? played : -1;
}

void tst_SurveyKill::nothingIsLost()
{
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    qInfo("seed %u", seed);
    const QDir logs(m_dir.filePath(QStringLiteral("logs")));
    QStringList known;
    qint64 itemsInAll = 0;
    int inDraft = 0;
    for (int round = 0; round < rounds; ++round) {
        // One life is long enough for a recording in any case.
        const unsigned edits = round == 0 ? longestLife : 1 + random() % longestLife;
        const unsigned ms = random() % latestEnd;
        const Report report(
            LiveAndDie(m_dir.path(), seed + static_cast<unsigned>(round), static_cast<int>(edits), ms));
        const QByteArray where
            = QStringLiteral("round %1, %2 edits and %3 ms").arg(round).arg(edits).arg(ms).toLatin1();
        QVERIFY2(!report.edits.isEmpty(), where.constData());

        // What the life before has left was offered again.
        QVERIFY2(report.restored == inDraft,
            qPrintable(QStringLiteral("%1 of %2 waypoints").arg(report.restored).arg(inDraft)));
        if (round > 0)
            QVERIFY2(report.offer.contains(QLatin1String("was not saved")), qPrintable(report.offer));

        inDraft = DraftCount();
        QVERIFY2(inDraft >= report.Kept() && inDraft <= report.edits.last().second + 1,
            qPrintable(QStringLiteral("%1: %2 in the draft, %3 to be, %4 told")
                           .arg(QString::fromLatin1(where))
                           .arg(inDraft)
                           .arg(report.Kept())
                           .arg(report.edits.last().second)));

        qint64 items = 0;
        const QStringList names = logs.entryList({QStringLiteral("*.log")}, QDir::Files, QDir::Name);
        for (const QString& name : names) {
            if (known.contains(name) || logs.entryInfoList({name}).first().size() == 0)
                continue;
            const qint64 played = CheckLog(logs.filePath(name));
            QVERIFY2(played >= 0, qPrintable(name));
            items += played;
        }
        known = names;
        QVERIFY2(items >= report.items,
            qPrintable(QStringLiteral("%1: %2 items play of %3")
                           .arg(QString::fromLatin1(where))
                           .arg(items)
                           .arg(report.items)));
        itemsInAll += items;

        // Settings that were being written are those of before or those of after.
        QFile settings(m_dir.filePath(QStringLiteral("settings.json")));
        if (settings.open(QIODevice::ReadOnly))
            QVERIFY(QJsonDocument::fromJson(settings.readAll()).isObject());
    }
    qInfo("%lld items, %d waypoints", itemsInAll, inDraft);
    QVERIFY(itemsInAll > 0);
}

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        std::puts("SKIP: no display");
        return 77;
    }
    QCoreApplication app(argc, argv);
    tst_SurveyKill test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_SurveyKill.moc"
