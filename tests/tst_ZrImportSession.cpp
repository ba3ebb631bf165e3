#include "ZrKit/import/ZrImportSession.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrLogItem.h"
#include "import_fixture.h"

#include <QDir>
#include <QtTest/QtTest>

#include <functional>
#include <thread>
#include <unistd.h>

namespace {

/// Everything that a log holds, read straight from its bytes.
struct LogContent
{
    ZrLogHeader header;
    QVector<ZrLogItem> items;
    QVector<QByteArray> payloads;
    bool sound = false;
};

LogContent readLog(const QString& path)
{
    LogContent log;
    const QByteArray bytes = fixture::contentOf(path);
    if (bytes.size() < int(ZrLogHeader::Size))
        return log;
    const u8* begin = reinterpret_cast<const u8*>(bytes.constData());
    log.header = ZrLogHeader::Decode(begin);
    int at = ZrLogHeader::Size;
    while (bytes.size() - at >= int(ZrLogItem::Size)) {
        const ZrLogItem item = ZrLogItem::Decode(begin + at);
        at += ZrLogItem::Size;
        if (item.magic != ZrLogItem::Magic || item.storedSize > u32(bytes.size() - at))
            return log;
        log.items.append(item);
        log.payloads.append(bytes.mid(at, int(item.storedSize)));
        at += int(item.storedSize);
    }
    log.sound = at == bytes.size() && log.header.magic == ZrLogHeader::Magic;
    return log;
}

class ProgressNotes final : public IZrProgress
{
public:
    QVector<int> percents;
    std::function<void(int)> onChange;

    void UpdateProgress(int percent) override
    {
        percents.append(percent);
        if (onChange)
            onChange(percent);
    }

    int GetProgress() override { return percents.isEmpty() ? 0 : percents.last(); }
};

/// A table of soundings at \p seconds past 2022-05-30 20:14:00, each as deep as it says.
QByteArray soundings(const QVector<QPair<int, int>>& secondAndDepth)
{
    QByteArray table("Timestamp;Depth\n");
    for (const auto& [second, depth] : secondAndDepth)
        table += QStringLiteral("2022-05-30 20:14:%1;%2\n")
                     .arg(second, 2, 10, QLatin1Char('0'))
                     .arg(depth)
                     .toLatin1();
    return table;
}

QStringList allRealFiles()
{
    QStringList files;
    for (int i = 36; i <= 42; ++i)
        files.append(fixture::data("glider-nav/sea035.12.gli.sub.%1.csv").arg(i));
    files.append(fixture::data("sidescan-xtf/iver2-scotsman-pings0-299.xtf"));
    files.append(fixture::data("nmea-boat/gofree-merrimac.log"));
    files.append(fixture::data("gnss-echosounder/2022.05.30_201358_gnss.txt"));
    files.append(fixture::data("gnss-echosounder/2022.05.30_201358_sonar.txt"));
    return files;
}

/// What lies in \p folder, hidden files included.
QStringList contentOfFolder(const QTemporaryDir& folder)
{
    return QDir(folder.path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

class tst_ZrImportSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void realFilesBecomeOneLog();
    void pingsAreCompressedOnWish();
    void itemsAreMergedByTime();
    void equalTimesKeepTheOrderOfTheFiles();
    void orderInsideAFileIsKept();
    void manyFilesAreMerged();
    void headerSaysTheTimeOfTheFirstItem();
    void existingOutputIsReplaced();
    void progressOnlyChanges();
    void growingFileStaysWithinHundredPercent();
    void emptyFilesAreNoted();
    void nothingAtAll_data();
    void nothingAtAll();
    void badInputs_data();
    void badInputs();
    void namedFormatAndDateReachTheImporters();
    void outputThatIsAnInputIsRefused_data();
    void outputThatIsAnInputIsRefused();
    void unwritableOutput_data();
    void unwritableOutput();
    void cancelBeforeTheStart();
    void cancelOnTheWay();
    void cancelFromAnotherThread();
    void reportsStandInTheOrderOfTheInputs();
    void sessionMayRunAgain();
    void unicodePaths();
};

void tst_ZrImportSession::realFilesBecomeOneLog()
{
    QTemporaryDir folder;
    const QString output = folder.filePath(QStringLiteral("all.log"));
    ZrImportSession session;
    QCOMPARE(session.Run(allRealFiles(), output, nullptr), ZrImportSession::Done);
    QCOMPARE(session.Error(), QString());
    // 2996 glider rows, 300 pings, the boat, fixes, soundings.
    constexpr int Expected = 2 * 2996 + 900 + 9400 + 3601 + 3594;
    QCOMPARE(session.Items(), u64(Expected));
    QCOMPARE(session.Bytes(), u64(QFileInfo(output).size()));
    const LogContent log = readLog(output);
    QVERIFY(log.sound);
    QCOMPARE(log.items.size(), Expected);
    QVector<int> perSource(12, 0);
    for (int i = 0; i < log.items.size(); ++i) {
        QVERIFY(i == 0 || log.items.at(i - 1).time <= log.items.at(i).time);
        QCOMPARE(int(log.items.at(i).compressed), 0);
        ++perSource[log.items.at(i).source];
    }
    QCOMPARE(perSource, QVector<int>({0, 90, 1008, 1024, 1042, 1018, 994, 816, 900, 9400, 3601, 3594}));
    QCOMPARE(log.items.first().time, 1378847588.0); // the sonar line is the oldest
    QCOMPARE(log.items.last().time, 1653945239.384450);
    QCOMPARE(contentOfFolder(folder), QStringList(QStringLiteral("all.log")));
}

void tst_ZrImportSession::pingsAreCompressedOnWish()
{
    QTemporaryDir folder;
    const QStringList inputs(fixture::data("sidescan-xtf/iver2-scotsman-pings0-299.xtf"));
    ZrImportSession session;
    QCOMPARE(session.Run(inputs, folder.filePath(QStringLiteral("raw")), nullptr), ZrImportSession::Done);
    session.compress = true;
    QCOMPARE(session.Run(inputs, folder.filePath(QStringLiteral("small")), nullptr), ZrImportSession::Done);
    const LogContent raw = readLog(folder.filePath(QStringLiteral("raw")));
    const LogContent small = readLog(folder.filePath(QStringLiteral("small")));
    QVERIFY(raw.sound && small.sound);
    QCOMPARE(small.items.size(), 900);
    for (int i = 0; i < small.items.size(); ++i) {
        const bool ping = small.items.at(i).type == u16(krtPing);
        QCOMPARE(small.items.at(i).compressed != 0, ping);
        QCOMPARE(ping ? qUncompress(small.payloads.at(i)) : small.payloads.at(i), raw.payloads.at(i));
    }
}

void tst_ZrImportSession::itemsAreMergedByTime()
{
    QTemporaryDir folder;
    const QStringList inputs
        = {fixture::write(folder, QStringLiteral("a"), soundings({{1, 101}, {4, 104}, {9, 109}})),
            fixture::write(folder, QStringLiteral("b"), soundings({{2, 202}, {3, 203}, {8, 208}})),
            fixture::write(folder, QStringLiteral("c"), soundings({{5, 305}}))};
    const QString output = folder.filePath(QStringLiteral("out"));
    ZrImportSession session;
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::Done);
    const LogContent log = readLog(output);
    QVERIFY(log.sound);
    const QVector<int> sources = {1, 2, 2, 1, 3, 2, 1};
    const QVector<int> seconds = {1, 2, 3, 4, 5, 8, 9};
    QCOMPARE(log.items.size(), sources.size());
    for (int i = 0; i < sources.size(); ++i) {
        QCOMPARE(int(log.items.at(i).source), sources.at(i));
        QCOMPARE(log.items.at(i).time, 1653941640.0 + seconds.at(i));
        QCOMPARE(int(log.items.at(i).type), int(krtDepth));
        QCOMPARE(int(log.items.at(i).format), 1);
    }
}

void tst_ZrImportSession::equalTimesKeepTheOrderOfTheFiles()
{
    QTemporaryDir folder;
    QStringList inputs;
    for (int i = 0; i < 5; ++i)
        inputs.append(fixture::write(folder, QString::number(9 - i), soundings({{1, 1}, {1, 2}, {2, 3}})));
    const QString output = folder.filePath(QStringLiteral("out"));
    ZrImportSession session;
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::Done);
    QVector<int> sources;
    for (const ZrLogItem& item : readLog(output).items)
        sources.append(item.source);
    QCOMPARE(sources, QVector<int>({1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 1, 2, 3, 4, 5}));
}

void tst_ZrImportSession::orderInsideAFileIsKept()
{
    // A clock that was set back: each file keeps its own order, and the other file goes on between.
    QTemporaryDir folder;
    const QStringList inputs
        = {fixture::write(folder, QStringLiteral("a"), soundings({{10, 1}, {5, 1}, {20, 1}})),
            fixture::write(folder, QStringLiteral("b"), soundings({{7, 2}, {12, 2}}))};
    const QString output = folder.filePath(QStringLiteral("out"));
    ZrImportSession session;
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::Done);
    QVector<double> times;
    for (const ZrLogItem& item : readLog(output).items)
        times.append(item.time - 1653941640.0);
    QCOMPARE(times, QVector<double>({7, 10, 5, 12, 20}));
    QCOMPARE(session.Reports().at(0).backwards, u64(1));
}

void tst_ZrImportSession::manyFilesAreMerged()
{
    QTemporaryDir folder;
    QStringList inputs;
    for (int i = 0; i < 60; ++i)
        inputs.append(fixture::write(folder, QString::number(i), soundings({{59 - i, 1}, {59, 2}})));
    const QString output = folder.filePath(QStringLiteral("out"));
    ZrImportSession session;
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::Done);
    const LogContent log = readLog(output);
    QCOMPARE(log.items.size(), 120);
    for (int i = 0; i < 59; ++i)
        QCOMPARE(int(log.items.at(i).source), 60 - i);
    for (int i = 1; i < 120; ++i)
        QVERIFY(log.items.at(i - 1).time <= log.items.at(i).time);
}

void tst_ZrImportSession::headerSaysTheTimeOfTheFirstItem()
{
    QTemporaryDir folder;
    const QStringList inputs = {fixture::write(folder, QStringLiteral("a"), soundings({{9, 1}})),
        fixture::write(folder, QStringLiteral("b"), soundings({{3, 1}}))};
    const QString output = folder.filePath(QStringLiteral("out"));
    ZrImportSession session;
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::Done);
    QCOMPARE(readLog(output).header.created, 1653941643.0);
}

void tst_ZrImportSession::existingOutputIsReplaced()
{
    QTemporaryDir folder;
    const QStringList inputs(fixture::write(folder, QStringLiteral("a"), soundings({{9, 1}})));
    const QString output = fixture::write(folder, QStringLiteral("out"), QByteArray(100000, 'x'));
    ZrImportSession session;
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::Done);
    QVERIFY(readLog(output).sound);
    QCOMPARE(readLog(output).items.size(), 1);
}

void tst_ZrImportSession::progressOnlyChanges()
{
    QTemporaryDir folder;
    ProgressNotes progress;
    ZrImportSession session;
    QCOMPARE(session.Run(allRealFiles(), folder.filePath(QStringLiteral("out")), &progress),
        ZrImportSession::Done);
    QVERIFY(progress.percents.size() > 30 && progress.percents.size() <= 101);
    QCOMPARE(progress.percents.first(), 0);
    QCOMPARE(progress.percents.last(), 100);
    for (int i = 1; i < progress.percents.size(); ++i)
        QVERIFY(progress.percents.at(i - 1) < progress.percents.at(i));
}

void tst_ZrImportSession::growingFileStaysWithinHundredPercent()
{
    QTemporaryDir folder;
    QVector<QPair<int, int>> rows;
    for (int i = 0; i < 5000; ++i)
        rows.append({i % 60, i});
    const QString input = fixture::write(folder, QStringLiteral("a"), soundings(rows));
    ProgressNotes progress;
    progress.onChange = [&](int percent) {
        // Somebody still writes to the file while it is read.
        QFile file(input);
        if (percent == 50 && file.open(QIODevice::Append))
            file.write(soundings(rows).mid(16));
    };
    ZrImportSession session;
    QCOMPARE(session.Run({input}, folder.filePath(QStringLiteral("out")), &progress), ZrImportSession::Done);
    QCOMPARE(progress.percents.last(), 100);
    QCOMPARE(*std::max_element(progress.percents.begin(), progress.percents.end()), 100);
    QVERIFY(session.Items() > 5000);
}

void tst_ZrImportSession::emptyFilesAreNoted()
{
    QTemporaryDir folder;
    const QStringList inputs = {fixture::write(folder, QStringLiteral("a"), QByteArray()),
        fixture::write(folder, QStringLiteral("b"), soundings({{9, 1}})),
        fixture::write(folder, QStringLiteral("c"), QByteArray())};
    const QString output = folder.filePath(QStringLiteral("out"));
    ZrImportSession session;
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::Done);
    QCOMPARE(session.Items(), u64(1));
    QCOMPARE(int(readLog(output).items.first().source), 2);
    QCOMPARE(session.Reports().size(), 3);
    QCOMPARE(session.Reports().at(0).path, inputs.at(0));
    QCOMPARE(session.Reports().at(0).notes.value(QStringLiteral("the file is empty")), u64(1));
    QCOMPARE(session.Reports().at(1).items, u64(1));
}

void tst_ZrImportSession::nothingAtAll_data()
{
    QTest::addColumn<QList<QByteArray>>("contents");
    QTest::newRow("empty") << QList<QByteArray>({""});
    QTest::newRow("empty ones") << QList<QByteArray>({"", "", ""});
    QTest::newRow("header rows") << QList<QByteArray>({"Timestamp;Depth\n", "Timestamp;Depth"});
    QTest::newRow("damaged rows") << QList<QByteArray>({"Timestamp;Depth\nx\ny;z\n", ""});
}

void tst_ZrImportSession::nothingAtAll()
{
    QFETCH(QList<QByteArray>, contents);
    QTemporaryDir folder;
    QStringList inputs;
    for (const QByteArray& content : contents)
        inputs.append(fixture::write(folder, QString::number(inputs.size()), content));
    const QString output = fixture::write(folder, QStringLiteral("out"), "as before");
    const QStringList before = contentOfFolder(folder);
    ZrImportSession session;
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::BadInput);
    QCOMPARE(
        session.Error(), inputs.join(QStringLiteral(", ")) + QStringLiteral(": nothing could be imported"));
    QCOMPARE(session.Items(), u64(0));
    QCOMPARE(session.Bytes(), u64(0));
    QCOMPARE(fixture::contentOf(output), QByteArray("as before"));
    QCOMPARE(contentOfFolder(folder), before);
    QCOMPARE(session.Reports().size(), inputs.size());
}

void tst_ZrImportSession::badInputs_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("words");
    QTest::newRow("missing") << "/nowhere/at all"
                             << "cannot be read";
    QTest::newRow("folder") << QDir::tempPath() << "is a folder";
    QTest::newRow("device") << "/dev/zero"
                            << "is not a regular file";
    QTest::newRow("unknown content") << fixture::data("nmea-boat/SOURCE.txt")
                                     << "no format that can be imported";
}

void tst_ZrImportSession::badInputs()
{
    QFETCH(QString, input);
    QFETCH(QString, words);
    QTemporaryDir folder;
    const QString output = folder.filePath(QStringLiteral("out"));
    const QStringList inputs = {fixture::data("gnss-echosounder/2022.05.30_201358_gnss.txt"), input};
    ZrImportSession session;
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::BadInput);
    QVERIFY2(session.Error().startsWith(input + QLatin1Char(':')) && session.Error().contains(words),
        qPrintable(session.Error()));
    QVERIFY(contentOfFolder(folder).isEmpty());
    QCOMPARE(session.Reports().size(), 2);
    QCOMPARE(session.Reports().at(1).path, input);

    QCOMPARE(session.Run({}, output, nullptr), ZrImportSession::BadInput);
    QCOMPARE(session.Error(), QStringLiteral("no file to import is named"));
    QVERIFY(session.Reports().isEmpty());
}

void tst_ZrImportSession::namedFormatAndDateReachTheImporters()
{
    QTemporaryDir folder;
    const QStringList inputs(
        fixture::write(folder, QStringLiteral("a"), "$GPGLL,6005.071,N,02332.346,E,095559,A,D\n"));
    const QString output = folder.filePath(QStringLiteral("out"));
    ZrImportSession session;
    session.date = QDate(2014, 4, 16);
    session.format = QStringLiteral("nmea");
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::Done);
    QCOMPARE(readLog(output).items.first().time, 1397642159.0);
    session.format = QStringLiteral("xtf");
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::BadInput);
    session.format = QStringLiteral("XTF");
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::BadInput);
    QVERIFY(readLog(output).sound);
}

void tst_ZrImportSession::outputThatIsAnInputIsRefused_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("same name") << 0;
    QTest::newRow("roundabout name") << 1;
    QTest::newRow("symbolic link") << 2;
    QTest::newRow("hard link") << 3;
    QTest::newRow("link to the folder") << 4;
    QTest::newRow("input is the link") << 5;
}

void tst_ZrImportSession::outputThatIsAnInputIsRefused()
{
    QFETCH(int, kind);
    QTemporaryDir folder;
    const QByteArray content = soundings({{9, 1}});
    const QString name = QString::fromUtf8("Tiefe ☃");
    QString input = fixture::write(folder, name, content);
    const QString link = folder.filePath(QStringLiteral("link"));
    QString output = input;
    if (kind == 1) {
        output = folder.path() + QStringLiteral("/./../") + QFileInfo(folder.path()).fileName()
            + QLatin1Char('/') + name;
    } else if (kind == 2 || kind == 5) {
        QVERIFY(QFile::link(input, link));
        output = link;
    } else if (kind == 3) {
        QCOMPARE(::link(QFile::encodeName(input).constData(), QFile::encodeName(link).constData()), 0);
        output = link;
    } else if (kind == 4) {
        QVERIFY(QFile::link(folder.path(), link));
        output = link + QLatin1Char('/') + name;
    }
    if (kind == 5)
        std::swap(input, output);
    const QStringList before = contentOfFolder(folder);
    ZrImportSession session;
    const QString other = fixture::data("gnss-echosounder/2022.05.30_201358_gnss.txt");
    QCOMPARE(session.Run({other, input}, output, nullptr), ZrImportSession::BadOutput);
    QCOMPARE(session.Error(), output + QStringLiteral(": is one of the files to import"));
    QCOMPARE(fixture::contentOf(input), content);
    QCOMPARE(contentOfFolder(folder), before);
}

void tst_ZrImportSession::unwritableOutput_data()
{
    QTest::addColumn<QString>("output");
    QTest::newRow("no such folder") << "nowhere/out.log";
    QTest::newRow("folder") << "folder";
    QTest::newRow("below a file") << "file/out.log";
}

void tst_ZrImportSession::unwritableOutput()
{
    QFETCH(QString, output);
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("folder/full")));
    fixture::write(folder, QStringLiteral("file"), "x");
    const QStringList before = contentOfFolder(folder);
    ZrImportSession session;
    QCOMPARE(session.Run({fixture::data("gnss-echosounder/2022.05.30_201358_gnss.txt")},
                 folder.filePath(output), nullptr),
        ZrImportSession::BadOutput);
    QVERIFY(!session.Error().isEmpty());
    QCOMPARE(session.Items(), u64(0));
    QCOMPARE(contentOfFolder(folder), before);
}

void tst_ZrImportSession::cancelBeforeTheStart()
{
    QTemporaryDir folder;
    const QString output = fixture::write(folder, QStringLiteral("out"), "as before");
    ZrImportSession session;
    session.cancel = true;
    QCOMPARE(session.Run(allRealFiles(), output, nullptr), ZrImportSession::Cancelled);
    QCOMPARE(session.Error(), QStringLiteral("the import was cancelled"));
    QCOMPARE(fixture::contentOf(output), QByteArray("as before"));
    QVERIFY(session.cancel);
    session.cancel = false;
    QCOMPARE(session.Run(allRealFiles(), output, nullptr), ZrImportSession::Done);
}

void tst_ZrImportSession::cancelOnTheWay()
{
    QTemporaryDir folder;
    const QString output = fixture::write(folder, QStringLiteral("out"), "as before");
    ZrImportSession session;
    ProgressNotes progress;
    progress.onChange = [&session](int percent) { session.cancel = percent >= 40; };
    QCOMPARE(session.Run(allRealFiles(), output, &progress), ZrImportSession::Cancelled);
    QVERIFY(progress.percents.last() >= 40 && progress.percents.last() < 60);
    QCOMPARE(session.Items(), u64(0));
    QCOMPARE(fixture::contentOf(output), QByteArray("as before"));
    QCOMPARE(contentOfFolder(folder), QStringList(QStringLiteral("out")));
    QVERIFY(session.Reports().first().items > 0);
}

void tst_ZrImportSession::cancelFromAnotherThread()
{
    QTemporaryDir folder;
    QStringList inputs;
    for (int i = 0; i < 40; ++i)
        inputs += allRealFiles();
    ZrImportSession session;
    std::atomic<bool> begun{false};
    ProgressNotes progress;
    progress.onChange = [&begun](int) { begun = true; };
    std::thread other([&] {
        while (!begun)
            std::this_thread::yield();
        session.cancel = true;
    });
    const ZrImportSession::eResult result
        = session.Run(inputs, folder.filePath(QStringLiteral("out")), &progress);
    begun = true;
    other.join();
    QCOMPARE(result, ZrImportSession::Cancelled);
    QVERIFY(contentOfFolder(folder).isEmpty());
}

void tst_ZrImportSession::reportsStandInTheOrderOfTheInputs()
{
    QTemporaryDir folder;
    ZrImportSession session;
    QCOMPARE(
        session.Run(allRealFiles(), folder.filePath(QStringLiteral("out")), nullptr), ZrImportSession::Done);
    QStringList formats;
    u64 items = 0;
    for (const ZrImportReport& report : session.Reports()) {
        formats.append(report.format);
        items += report.items;
    }
    QCOMPARE(formats.join(QLatin1Char(' ')),
        QStringLiteral("glider glider glider glider glider glider glider xtf nmea gnss gnss"));
    QCOMPARE(items, session.Items());
    for (int i = 0; i < allRealFiles().size(); ++i) {
        QCOMPARE(session.Reports().at(i).path, allRealFiles().at(i));
        QCOMPARE(session.Reports().at(i).bytes, u64(QFileInfo(allRealFiles().at(i)).size()));
    }
}

void tst_ZrImportSession::sessionMayRunAgain()
{
    QTemporaryDir folder;
    const QStringList inputs(fixture::write(folder, QStringLiteral("a"), soundings({{9, 1}})));
    const QString output = folder.filePath(QStringLiteral("out"));
    ZrImportSession session;
    QCOMPARE(session.Run({QStringLiteral("/nowhere")}, output, nullptr), ZrImportSession::BadInput);
    QCOMPARE(session.Run(inputs, output, nullptr), ZrImportSession::Done);
    QVERIFY(session.Error().isEmpty());
    QCOMPARE(session.Reports().size(), 1);
    QCOMPARE(session.Run({QStringLiteral("/nowhere")}, output, nullptr), ZrImportSession::BadInput);
    QCOMPARE(session.Items(), u64(0));
    QVERIFY(readLog(output).sound);
}

void tst_ZrImportSession::unicodePaths()
{
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QString::fromUtf8("Мission – 海底")));
    const QString input
        = fixture::write(folder, QString::fromUtf8("Мission – 海底/Ærø.csv"), soundings({{9, 1}}));
    const QString output = folder.filePath(QString::fromUtf8("Мission – 海底/☃.log"));
    ZrImportSession session;
    QCOMPARE(session.Run({input}, output, nullptr), ZrImportSession::Done);
    QVERIFY(readLog(output).sound);
}

QTEST_GUILESS_MAIN(tst_ZrImportSession)
#include "tst_ZrImportSession.moc"
