// zr log simulate: every option by what the log holds, and the log read by the other verbs.

#include "ZrRouteRun.h"

#include <QImage>

#include <signal.h>

namespace {

const QByteArray shortPlan = "# route {\"linked\": true, \"speed\": 1.5, \"prefix\": \"Plan\"}\n"
                             "name\tlat\tlong\n"
                             "A\t48.48\t-68.515\n"
                             "B\t48.4803\t-68.515\n";

const QByteArray longPlan = "# route {\"linked\": true, \"speed\": 0.5, \"prefix\": \"Plan\"}\n"
                            "name\tlat\tlong\n"
                            "A\t48\t-68.515\n"
                            "B\t49\t-68.515\n";

/// Options that make small logs soon.
const QStringList small{S("--samples"), S("64"), S("--rate"), S("2")};

} // namespace

class tst_zr_log_simulate : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        m_folder.Renew();
        QVERIFY(WriteWhole(Plan(), shortPlan));
    }

    void text();
    void json();
    void optionsReachTheLog();
    void sameEachTime();
    void otherVerbsReadIt();
    void imageShowsTheSeabed();
    void targetIsMeasured();
    void wrongOptions_data();
    void wrongOptions();
    void badPlans_data();
    void badPlans();
    void currentTooStrong();
    void outputs();
    void fullDisk();
    void interrupted();
    void realTime();

private:
    QString Plan() const { return m_folder.Path("Plan ü.txt"); }

    QString Out() const { return m_folder.Path("out.log"); }

    ToolResult Simulate(const QStringList& options)
    {
        return RunLog(QStringList{S("simulate"), Plan(), Out()} + options);
    }

    /// Makes the plan one whose waypoints have identities of their own; in a list they get new ones each
    /// time.
    void KeepIdentities()
    {
        const QString json = m_folder.Path("plan.json");
        QCOMPARE(RunRoute({S("convert"), Plan(), json}).code, 0);
        QVERIFY(QFile::remove(Plan()));
        QVERIFY(QFile::rename(json, Plan()));
    }

    QJsonObject TypeOf(int type, int sub)
    {
        for (const QJsonValue value : RunLog({S("info"), Out(), S("--json")}).Json()[S("types")].toArray()) {
            if (value[S("type")].toInt() == type && value[S("sub")].toInt() == sub)
                return value.toObject();
        }
        return {};
    }

    ToolFolder m_folder;
};

void tst_zr_log_simulate::text()
{
    const ToolResult result = Simulate(small);
    QVERIFY2(result.code == 0, result.Text().constData());
    QCOMPARE(result.err, QByteArray());
    const QStringList lines = result.Lines();
    QCOMPARE(lines.size(), 6);
    QVERIFY(lines[0].startsWith(S("Plan        %1, 33.3").arg(Plan())));
    QCOMPARE(lines[1], S("First       2021-03-03T14:05:09.000Z"));
    QVERIFY(lines[2].startsWith(S("Last        2021-03-03T14:05:31.")));
    QCOMPARE(lines[3], S("Pings       45"));
    QCOMPARE(lines[4], S("Targets     8"));
    QVERIFY(lines[5].startsWith(S("Written     %1: ").arg(Out())));
}

void tst_zr_log_simulate::json()
{
    const ToolResult result = Simulate(
        small + QStringList{S("--json"), S("--targets"), S("3"), S("--start"), S("2024-05-30T08:00:00Z")});
    QVERIFY2(result.code == 0, result.Text().constData());
    const QJsonObject json = result.Json();
    QCOMPARE(json[S("plan")].toString(), Plan());
    QCOMPARE(json[S("out")].toString(), Out());
    QCOMPARE(json[S("first_time")].toDouble(), 1717056000.0);
    QVERIFY(Near(json[S("last_time")].toDouble(), 1717056022.2, 0.5));
    QVERIFY(Near(json[S("path_length")].toDouble(), 33.36, 0.02));
    QCOMPARE(json[S("pings")].toInt(), 45);
    QCOMPARE(json[S("bytes")].toDouble(), static_cast<double>(QFileInfo(Out()).size()));
    QVERIFY(json[S("error")].isNull());
    const QJsonArray targets = json[S("targets")].toArray();
    QCOMPARE(targets.size(), 3);
    QCOMPARE(targets[0][S("kind")].toString(), S("cylinder"));
    QCOMPARE(targets[1][S("kind")].toString(), S("block"));
    QCOMPARE(targets[2][S("kind")].toString(), S("wreck"));
    for (const QJsonValue target : targets) {
        QVERIFY(Near(target[S("latitude")].toDouble(), 48.48015, 0.0004));
        QVERIFY(target[S("height")].toDouble() > 0.0);
        QVERIFY(target[S("length")].toDouble() > 0.0);
        QVERIFY(target[S("width")].toDouble() > 0.0);
    }
    const QJsonObject info = RunLog({S("info"), Out(), S("--json")}).Json();
    QCOMPARE(info[S("created")].toDouble(), 1717056000.0);
    QCOMPARE(info[S("first_time")].toDouble(), 1717056000.0);
    QCOMPARE(info[S("items")].toInt(), json[S("items")].toInt());
}

void tst_zr_log_simulate::optionsReachTheLog()
{
    const ToolResult result = Simulate({S("--samples"), S("128"), S("--rate"), S("4"), S("--range"), S("75"),
        S("--speed"), S("3"), S("--depth"), S("40"), S("--relief"), S("0"), S("--altitude"), S("12"),
        S("--no-errors"), S("--current"), S("180,1")});
    QVERIFY2(result.code == 0, result.Text().constData());
    const QJsonObject info = RunTool({S("sonar"), S("info"), Out(), S("--json")}).Json();
    const QByteArray text = RunTool({S("sonar"), S("info"), Out()}).out;
    QVERIFY2(text.contains("4.00 pings/s"), text);
    QVERIFY2(text.contains("port          67      128      75.00 m"), text);
    // 3 m/s against a metre a second.
    QVERIFY2(text.contains("Speed       2.00 m/s"), text);
    QVERIFY2(text.contains("Altitude    12.00 m"), text);
    QVERIFY2(text.contains("Depth       28.00 m"), text);
    QVERIFY(!info.isEmpty());

    QCOMPARE(Simulate(small + QStringList{S("--no-sonar"), S("--force")}).code, 0);
    QVERIFY(TypeOf(17, 0).isEmpty());
    QVERIFY(!TypeOf(16, 0).isEmpty());
    QCOMPARE(Simulate(small + QStringList{S("--compress"), S("--force")}).code, 0);
    QCOMPARE(TypeOf(17, 0)[S("compressed")].toInt(), 45);
    QCOMPARE(Simulate(small + QStringList{S("--dropout"), S("1"), S("--force")}).code, 0);
    QVERIFY(TypeOf(18, 0)[S("count")].toInt() < 22);
}

void tst_zr_log_simulate::sameEachTime()
{
    KeepIdentities();
    QCOMPARE(Simulate(small).code, 0);
    const QByteArray first = ReadWhole(Out());
    QVERIFY(first.size() > 10000);
    QCOMPARE(Simulate(small + QStringList{S("--force")}).code, 0);
    QCOMPARE(ReadWhole(Out()), first);
    QCOMPARE(Simulate(small + QStringList{S("--force"), S("--seed"), S("2")}).code, 0);
    QVERIFY(ReadWhole(Out()) != first);
    QCOMPARE(Simulate(small + QStringList{S("--force"), S("--seed"), S("18446744073709551615")}).code, 0);
}

void tst_zr_log_simulate::otherVerbsReadIt()
{
    QCOMPARE(Simulate(small).code, 0);
    const ToolResult check = RunLog({S("check"), Out(), S("--json")});
    QCOMPARE(check.code, 0);
    QCOMPARE(check.Json()[S("problem_count")].toInt(), 0);
    QCOMPARE(check.Json()[S("backward_jumps")].toInt(), 0);
    const ToolResult track = RunLog({S("track"), Out(), m_folder.Path("t.gpx"), S("--json")});
    QVERIFY2(track.code == 0, track.Text().constData());
    QVERIFY(track.Json()[S("points")].toInt() >= 220);
    const ToolResult plan = RunLog({S("plan"), Out(), m_folder.Path("p.xml")});
    QVERIFY2(plan.code == 0, plan.Text().constData());
    QCOMPARE(WptNames(ReadRoute(m_folder.Path("p.xml"))), (QStringList{S("A"), S("B")}));
    QCOMPARE(
        RunTool({S("sonar"), S("mosaic"), Out(), m_folder.Path("m.png"), S("--resolution"), S("1")}).code, 0);
}

void tst_zr_log_simulate::imageShowsTheSeabed()
{
    QCOMPARE(Simulate({S("--range"), S("40"), S("--samples"), S("400"), S("--rate"), S("10"), S("--relief"),
                          S("0"), S("--no-errors")})
                 .code,
        0);
    const ToolResult image = RunTool({S("sonar"), S("image"), Out(), m_folder.Path("i.png"), S("--gain"),
        S("none"), S("--palette"), S("linear"), S("--no-speed-correction"), S("--contrast"), S("0:20000")});
    QVERIFY2(image.code == 0, image.Text().constData());
    const QImage picture(m_folder.Path("i.png"));
    QCOMPARE(picture.width(), 800);
    QVERIFY(picture.height() >= 220);
    const auto mean = [&picture](int from, int to) {
        double sum = 0.0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = from; x < to; ++x)
                sum += qGray(picture.pixel(x, y));
        }
        return sum / ((to - from) * picture.height());
    };
    // Ten pixels a metre, the sonar in the middle, 8 m above the floor: water, first echo, floor that fades.
    // Both sides together, as mud and rock make a difference on one.
    const auto band = [&mean](int from, int to) {
        return (mean(400 + from, 400 + to) + mean(400 - to, 400 - from)) / 2.0;
    };
    QVERIFY(mean(415, 476) < 3.0);
    QVERIFY(mean(324, 385) < 3.0);
    QVERIFY(mean(482, 500) > 60.0);
    QVERIFY(mean(300, 318) > 60.0);
    const QString bands = S("%1 %2 %3").arg(band(82, 100)).arg(band(120, 220)).arg(band(300, 400));
    QVERIFY2(band(82, 100) > 1.5 * band(120, 220), qPrintable(bands));
    QVERIFY2(band(120, 220) > 1.5 * band(300, 400), qPrintable(bands));
    QVERIFY(band(300, 400) > 3.0);
}

void tst_zr_log_simulate::targetIsMeasured()
{
    // The one block of the log: its place and height by `zr sonar target`, from the shadow in the samples.
    const ToolResult result = Simulate({S("--targets"), S("2"), S("--json"), S("--relief"), S("0.3"),
        S("--no-errors"), S("--samples"), S("1000"), S("--seed"), S("4")});
    QVERIFY2(result.code == 0, result.Text().constData());
    const QJsonObject block = result.Json()[S("targets")].toArray()[1].toObject();
    QCOMPARE(block[S("kind")].toString(), S("block"));
    const double metresEast = 111320.0 * std::cos(48.48 * 3.14159265 / 180.0);
    const double out = (block[S("longitude")].toDouble() + 68.515) * metresEast;
    QVERIFY(out < 0.0); // to port of a vehicle that goes north
    const double share = (block[S("latitude")].toDouble() - 48.48) / 0.0003;
    const int line = static_cast<int>(share * result.Json()[S("pings")].toInt());
    // Where the geometry puts the far edge of the top and the end of the shadow, 5 cm a sample.
    const double height = block[S("height")].toDouble();
    const double reach = std::min(block[S("length")].toDouble(), block[S("width")].toDouble()) / 2.0;
    const double top = std::hypot(-out + reach, 8.0 - height);
    const double end = top * 8.0 / (8.0 - height);
    const ToolResult measured = RunTool({S("sonar"), S("target"), Out(), S("--side"), S("port"), S("--line"),
        QString::number(line), S("--column"), QString::number(std::lround(top / 0.05)), S("--shadow-column"),
        QString::number(std::lround(end / 0.05)), S("--json")});
    QVERIFY2(measured.code == 0, measured.Text().constData());
    const QJsonObject target = measured.Json();
    QVERIFY(Near((target[S("latitude")].toDouble() - block[S("latitude")].toDouble()) * 111200.0, 0.0, 1.0));
    QVERIFY(Near(
        (target[S("longitude")].toDouble() - block[S("longitude")].toDouble()) * metresEast, -reach, 1.0));
    QVERIFY(Near(target[S("height")].toDouble() / height, 1.0, 0.2));
}

void tst_zr_log_simulate::wrongOptions_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* option, const char* value, const char* message) {
        QTest::newRow((QByteArray(option) + ' ' + value).constData())
            << QStringList{S(option), S(value)} << S(message);
    };
    row("--speed-factor", "51", "\"51\" is no number of times real time from 1 to 50, or max");
    row("--speed-factor", "nan", "\"nan\" is no number of times real time from 1 to 50, or max");
    row("--speed-factor", "0", "\"0\" is no number of times real time from 1 to 50, or max");
    row("--current", "90", "\"90\" is no current: SET,DRIFT in degrees and m/s, as in 90,0.3");
    row("--current", "400,1", "\"400\" is no number of degrees from -360 to 360");
    row("--current", "90,-1", "\"-1\" is no number of m/s from 0 to 100");
    row("--current", "90,nan", "\"nan\" is no number of m/s from 0 to 100");
    row("--seed", "-1", "\"-1\" is no count");
    row("--range", "1e9", "\"1e9\" is no number of metres from 1 to 1000");
    row("--range", "inf", "\"inf\" is no number of metres from 1 to 1000");
    row("--rate", "0", "\"0\" is no number of hertz from 0.1 to 100");
    row("--samples", "15", "\"15\" is no number of samples from 16 to 16384");
    row("--samples", "99.5", "\"99.5\" is no whole number");
    row("--targets", "10001", "\"10001\" is no number of targets from 0 to 10000");
    row("--speed", "1e6", "\"1e6\" is no number of m/s from 0.05 to 50");
    row("--altitude", "-1", "\"-1\" is no number of metres from 0 to 11000");
    row("--depth", "20000", "\"20000\" is no number of metres from 0 to 11000");
    row("--dropout", "2", "\"2\" is no number of share from 0 to 1");
    row("--start", "yesterday", "\"yesterday\" is no time");
    row("--what", "1", "");
}

void tst_zr_log_simulate::wrongOptions()
{
    QFETCH(QStringList, options);
    QFETCH(QString, message);
    const ToolResult result = Simulate(options);
    QCOMPARE(result.code, 1);
    QVERIFY2(QString::fromUtf8(result.err).contains(message), result.Text().constData());
    QVERIFY(!QFile::exists(Out()));
}

void tst_zr_log_simulate::badPlans_data()
{
    QTest::addColumn<QByteArray>("plan");
    QTest::addColumn<QString>("message");
    QTest::newRow("one waypoint") << QByteArray("name\tlat\tlong\nA\t48\t-68\n")
                                  << S("The plan has only one waypoint: there is no way to go");
    QTest::newRow("one place") << QByteArray("name\tlat\tlong\nA\t48\t-68\nB\t48\t-68\n")
                               << S("All waypoints of the plan lie in one place");
    QTest::newRow("around the world") << QByteArray("name\tlat\tlong\nA\t0\t0\nB\t0\t150\n")
                                      << S("The waypoints of the plan lie too far apart");
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("damaged") << QByteArray("\x01\x02\xFF{{", 5) << QString();
}

void tst_zr_log_simulate::badPlans()
{
    QFETCH(QByteArray, plan);
    QFETCH(QString, message);
    QVERIFY(WriteWhole(Plan(), plan));
    const ToolResult result = Simulate(small);
    QVERIFY2(result.code == 2, result.Text().constData());
    QVERIFY(result.err.startsWith("zr: " + Plan().toUtf8()));
    QVERIFY2(QString::fromUtf8(result.err).contains(message), result.Text().constData());
    QVERIFY(!QFile::exists(Out()));
}

void tst_zr_log_simulate::currentTooStrong()
{
    const ToolResult result = Simulate(small + QStringList{S("--current"), S("180,2"), S("--json")});
    QCOMPARE(result.code, 2);
    const QString message
        = S("The current of 2.00 m/s is too strong for the vehicle, which makes 1.50 m/s on "
            "the way to waypoint 2");
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: %2\n").arg(Plan(), message));
    QCOMPARE(result.Json()[S("error")].toString(), message);
    QCOMPARE(RunLog({S("check"), Out()}).code, 0);
}

void tst_zr_log_simulate::outputs()
{
    QVERIFY(WriteWhole(Out(), "old"));
    QVERIFY(Simulate(small).code != 0);
    QCOMPARE(ReadWhole(Out()), QByteArray("old"));
    QCOMPARE(RunLog({S("simulate"), Plan(), Plan(), S("--force")}).code, 1);
    QCOMPARE(ReadWhole(Plan()), shortPlan);
    QCOMPARE(RunLog({S("simulate"), Plan(), m_folder.Path("none/out.log")}).code, 3);
    QCOMPARE(RunLog({S("simulate"), Plan(), m_folder.Path(), S("--force")}).code, 3);
    QCOMPARE(RunLog({S("simulate"), m_folder.Path("none.txt"), m_folder.Path("x.log")}).code, 2);
    QCOMPARE(RunLog({S("simulate"), Plan()}).code, 1);
}

void tst_zr_log_simulate::fullDisk()
{
    const ToolResult result
        = RunLogLimited({S("simulate"), Plan(), Out(), S("--samples"), S("4096")}, 512 * 1024);
    QVERIFY2(result.code == 3, result.Text().constData());
    QVERIFY(result.err.startsWith("zr: Cannot write " + Out().toUtf8()));
    QCOMPARE(Names(m_folder.Path()).size(), 1);
}

void tst_zr_log_simulate::interrupted()
{
    QVERIFY(WriteWhole(Plan(), longPlan));
    QProcess process;
    process.start(ToolPath(), {S("log"), S("simulate"), Plan(), Out(), S("--speed-factor"), S("1")});
    QVERIFY(process.waitForStarted(toolPatience));
    // It writes when it holds a file in the folder open, which has a temporary name or none.
    const QDir open(S("/proc/%1/fd").arg(process.processId()));
    const auto isWriting = [&] {
        for (const QString& name : open.entryList(QDir::Files | QDir::System)) {
            if (QFile::symLinkTarget(open.filePath(name)).startsWith(m_folder.Path()))
                return true;
        }
        return false;
    };
    QTRY_VERIFY_WITH_TIMEOUT(isWriting(), toolPatience);
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    QVERIFY(process.waitForFinished(toolPatience));
    QCOMPARE(process.exitCode(), 130);
    QCOMPARE(Names(m_folder.Path()).size(), 1);
}

void tst_zr_log_simulate::realTime()
{
    KeepIdentities();
    // 33 m at 3 m/s, 50 times faster than real time: the same log.
    const QStringList quick = small + QStringList{S("--speed"), S("3"), S("--force")};
    QCOMPARE(Simulate(quick).code, 0);
    const QByteArray log = ReadWhole(Out());
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(Simulate(quick + QStringList{S("--speed-factor"), S("50")}).code, 0);
    QVERIFY(timer.elapsed() >= 210); // 11 s / 50
    QCOMPARE(ReadWhole(Out()), log);
}

QTEST_GUILESS_MAIN(tst_zr_log_simulate)
#include "tst_zr_log_simulate.moc"
