// What the tool does differently on a terminal: the progress bar, and the hex dump of a payload.

#include "ZrTerminalRun.h"

class tst_zr_log_terminal : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init();

    void barIsDrawnAndErased_data();
    void barIsDrawnAndErased();
    void barLeavesRoomForMessages();
    void noBarInAFile();
    void noBarBetweenTheLinesOfAListing();
    void barBesideAListingIntoAFile();
    void payloadIsDumpedInHex();

private:
    ToolFolder m_folder;
    QString m_in;
    QString m_out;
};

void tst_zr_log_terminal::init()
{
    m_folder.Renew();
    m_in = m_folder.Path("in.log");
    m_out = m_folder.Path("out");
    LogBytes log;
    for (int i = 0; i < 1000; ++i)
        log.Add(MakeItem(2, "some text"));
    QVERIFY(WriteWhole(m_in, log.Bytes()));
}

void tst_zr_log_terminal::barIsDrawnAndErased_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("label");
    QTest::newRow("info") << QStringList{S("info"), S("IN")} << QByteArray("Reading");
    QTest::newRow("census") << QStringList{S("census"), S("IN"), S("OUT")} << QByteArray("Counting");
    QTest::newRow("filter") << QStringList{S("filter"), S("IN"), S("OUT"), S("--types"), S("2")}
                            << QByteArray("Copying");
    QTest::newRow("cut") << QStringList{S("cut"), S("IN"), S("OUT"), S("--from"), S("0%"), S("--to"),
        S("90%")} << QByteArray("Finding positions");
}

void tst_zr_log_terminal::barIsDrawnAndErased()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, label);
    arguments.replaceInStrings(QRegularExpression(S("^IN$")), m_in);
    arguments.replaceInStrings(QRegularExpression(S("^OUT$")), m_out);
    TerminalRun run(false, true);
    const ToolResult result = run.Run(arguments);
    QVERIFY2(result.code == 0, result.Text());
    QVERIFY(!result.out.isEmpty());
    QVERIFY2(
        run.seen.contains('\r' + label + "  [####################....................]  50 %"), run.seen);
    QVERIFY2(run.seen.endsWith("\r\033[K"), run.seen);
    QVERIFY(!run.seen.contains('\n'));
    // Results do not depend on where messages go.
    QVERIFY(!result.out.contains('\r'));
}

void tst_zr_log_terminal::barLeavesRoomForMessages()
{
    QVERIFY(AppendTo(m_in, "rest"));
    TerminalRun run(false, true);
    const ToolResult result = run.Run({S("info"), m_in});
    QCOMPARE(result.code, 2);
    QVERIFY2(run.seen.contains("\r\033[Kzr: "), run.seen);
    QVERIFY2(run.seen.endsWith(")\r\n"), run.seen);
}

void tst_zr_log_terminal::noBarInAFile()
{
    TerminalRun run(true, false);
    const ToolResult result = run.Run({S("info"), m_in});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.err, QByteArray());
    QVERIFY(run.seen.startsWith("Log  "));
    QVERIFY(!run.seen.contains('['));
}

void tst_zr_log_terminal::noBarBetweenTheLinesOfAListing()
{
    TerminalRun run(true, true);
    const ToolResult result = run.Run({S("items"), m_in});
    QCOMPARE(result.code, 0);
    QVERIFY(!run.seen.contains('['));
    QCOMPARE(run.seen.count('\n'), 1001);
}

void tst_zr_log_terminal::barBesideAListingIntoAFile()
{
    TerminalRun run(false, true);
    const ToolResult result = run.Run({S("items"), m_in});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.out.count('\n'), 1001);
    QVERIFY(run.seen.contains("\rReading  ["));
    QVERIFY(run.seen.endsWith("\r\033[K"));
}

void tst_zr_log_terminal::payloadIsDumpedInHex()
{
    TerminalRun hex(true, false);
    QCOMPARE(hex.Run({S("dump"), m_in, S("--at"), S("48")}).code, 0);
    QCOMPARE(hex.seen,
        QByteArray("00000000  73 6f 6d 65 20 74 65 78  74                       |some text|\r\n"
                   "00000009\r\n"));
    // Asked for as stored, it is not dressed up even there.
    TerminalRun raw(true, false);
    QCOMPARE(raw.Run({S("dump"), m_in, S("--at"), S("48"), S("--raw")}).code, 0);
    QCOMPARE(raw.seen, QByteArray("some text"));
}

QTEST_GUILESS_MAIN(tst_zr_log_terminal)
#include "tst_zr_log_terminal.moc"
