#include "ZrKit/records/ZrNmeaSentence.h"

#include <QtTest/QtTest>

#include <cmath>

class tst_ZrNmeaSentence : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesSentenceApart_data();
    void takesSentenceApart();
    void realLinesAreAccepted_data();
    void realLinesAreAccepted();
    void fieldsKeepTheirBytes();
    void refuses_data();
    void refuses();
    void everyFlippedBitIsNoticed();
    void cutAnywhereNeverParsesAsMore();
    void longestLine();
    void errorMayBeNull();
    void fieldOutsideIsEmpty();
    void numbers_data();
    void numbers();
    void numbersDoNotFollowTheLocale();
    void checksum_data();
    void checksum();
};

void tst_ZrNmeaSentence::takesSentenceApart_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("talker");
    QTest::addColumn<QByteArray>("formatter");
    QTest::addColumn<int>("fieldCount");
    QTest::addColumn<bool>("hasChecksum");
    QTest::addColumn<bool>("encapsulated");
    const QByteArray gll = "$GPGLL,6005.071,N,02332.346,E,095559,A,D*43";
    const QByteArray ais = "!AIVDM,1,1,1,,13aI8e?P00PGpU:NR6s00?vT2000,0,0*1C";
    const auto row = [](const char* name, const QByteArray& line, const char* talker, const char* formatter,
                         int count, bool hasChecksum, bool encapsulated) {
        QTest::newRow(name) << line << QByteArray(talker) << QByteArray(formatter) << count << hasChecksum
                            << encapsulated;
    };
    row("plain", gll, "GP", "GLL", 7, true, false);
    row("encapsulated", ais, "AI", "VDM", 7, true, true);
    row("lower-case checksum", "$IIHDT,,T*0c", "II", "HDT", 2, true, false);
    row("carriage return and line feed", gll + "\r\n", "GP", "GLL", 7, true, false);
    row("line feed", gll + "\n", "GP", "GLL", 7, true, false);
    row("carriage return", gll + "\r", "GP", "GLL", 7, true, false);
    row("blanks around", "  \t" + gll + "  \r\n", "GP", "GLL", 7, true, false);
    row("tag block", "\\s:station,c:1577836800*77\\" + gll, "GP", "GLL", 7, true, false);
    row("two tag blocks", "\\g:1-2-34*5E\\\\s:r3*11\\" + gll + "\r\n", "GP", "GLL", 7, true, false);
    row("tag block and blanks", " \\s:x*22\\ " + gll, "GP", "GLL", 7, true, false);
    row("tag block before encapsulated", "\\s:x\\" + ais, "AI", "VDM", 7, true, true);
    row("empty tag block", "\\\\" + gll, "GP", "GLL", 7, true, false);
    row("no checksum", "$HEHDT,123.4,T", "HE", "HDT", 2, false, false);
    row("no fields", "$GPGLL", "GP", "GLL", 0, false, false);
    row("one empty field", "$GPGLL,", "GP", "GLL", 1, false, false);
    row("only empty fields", "$GPGSV,,,,,,,,,,,,,,,,,,,*79", "GP", "GSV", 19, true, false);
    row("proprietary", "$PGRMZ,246,f,3*1B", "P", "GRMZ", 3, true, false);
    row("proprietary of a maker of one letter", "$PX", "P", "X", 0, false, false);
    row("proprietary encapsulated", "!PABC,1", "P", "ABC", 1, false, true);
    row("query", "$CCGPQ,GGA*2B", "CC", "GPQ", 1, true, false);
    row("short formatter", "$GPX,1", "GP", "X", 1, false, false);
    row("long formatter", "$GPWXYZ12,1", "GP", "WXYZ12", 1, false, false);
    row("letters of a digit", "$U4GLL,1", "U4", "GLL", 1, false, false);
    row("reserved characters in a field", "$GPTXT,a$b!c\\d^e~", "GP", "TXT", 1, false, false);
}

void tst_ZrNmeaSentence::takesSentenceApart()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, talker);
    QFETCH(QByteArray, formatter);
    QFETCH(int, fieldCount);
    QFETCH(bool, hasChecksum);
    QFETCH(bool, encapsulated);
    ZrNmeaSentence sentence;
    QString error;
    QVERIFY2(ZrNmeaSentence::Parse(line, sentence, &error), qPrintable(error));
    QCOMPARE(sentence.talker, talker);
    QCOMPARE(sentence.formatter, formatter);
    QCOMPARE(sentence.fields.size(), fieldCount);
    QCOMPARE(sentence.hasChecksum, hasChecksum);
    QCOMPARE(sentence.encapsulated, encapsulated);
    QCOMPARE(error, QString());
}

void tst_ZrNmeaSentence::realLinesAreAccepted_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("last");
    const auto row = [](const char* line, const char* first, const char* last) {
        QTest::newRow(QByteArray(line).mid(1, 5).constData())
            << QByteArray(line) << QByteArray(first) << QByteArray(last);
    };
    // Two boats; the first logs with empty fields throughout.
    row("$IIVHW,,T,,M,06.11,N,11.31,K*51", "", "K");
    row("$IIVPW,4.71,N,,*03", "4.71", "");
    row("$IIVTG,224.44,T,224.44,M,5.81,N,,,D*68", "224.44", "D");
    row("$IIMWV,338,R,13.41,N,A*2C", "338", "A");
    row("$IIVWT,039,L,08.10,N,04.17,M,,*2B", "039", "");
    row("$IIHDT,,T*0C", "", "T");
    row("$GPWCV,,N,,D*5F", "", "D");
    row("$GPXTE,A,A,,R,N,D*06", "A", "D");
    row("$GPZDA,095559,,,,00,*4D", "095559", "");
    row("$IIDBT,034.25,f,010.44,M,005.64,F*27", "034.25", "F");
    row("$IIVDR,,,,,,N*0E", "", "N");
    row("$GPRMC,195719,A,5310.8115,N,00525.7025,E,0.0,0.0,160414,0.7,E,A*10", "195719", "A");
    row("$IIXDR,C,C,10.7,C,AIRTEMP,A,0.5,D,HEEL,A,-1.-3,D,TRIM,P,1.026,B,BARO,A,A,-4.-3,D,RUDDER*18", "C",
        "RUDDER");
    // A multiplexer that was fed with its own output: longer than the standard allows, but sound.
    row("$SDVLW,$SDVLW,,N,322.0,N,$SDVLW,$SDVLW,,N,322.0,N,2328.9,N,$SDVLW,$SDVLW,,N,322.0,N,$SDVLW,$SDVLW,,"
        "N,322.0,N,2328.9,N,2315.4,N*59",
        "$SDVLW", "N");
}

void tst_ZrNmeaSentence::realLinesAreAccepted()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, last);
    ZrNmeaSentence sentence;
    QString error;
    QVERIFY2(ZrNmeaSentence::Parse(line, sentence, &error), qPrintable(error));
    QVERIFY(sentence.hasChecksum);
    QCOMPARE(sentence.talker + sentence.formatter, line.mid(1, 5));
    QCOMPARE(sentence.fields.first(), first);
    QCOMPARE(sentence.fields.last(), last);
    QCOMPARE(sentence.fields.size(), line.count(','));
}

void tst_ZrNmeaSentence::fieldsKeepTheirBytes()
{
    ZrNmeaSentence sentence;
    QVERIFY(ZrNmeaSentence::Parse("$GPTXT, a b ,,~,0.10", sentence, nullptr));
    QCOMPARE(sentence.fields, (QList<QByteArray>{" a b ", "", "~", "0.10"}));
}

void tst_ZrNmeaSentence::refuses_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("reason");
    const QString start = QStringLiteral("The line does not begin with '$' or '!'.");
    const QString digits = QStringLiteral("The checksum is not two hexadecimal digits.");
    const QString bytes = QStringLiteral("The line holds bytes that are not printable ASCII.");
    const QString address = QStringLiteral("The sentence has no talker and formatter.");
    const QString block = QStringLiteral("The tag block has no end.");
    const QString length = QStringLiteral("The line is longer than 1024 characters.");
    QTest::newRow("empty") << QByteArray() << start;
    QTest::newRow("null") << QByteArray("") << start;
    QTest::newRow("only white space") << QByteArray(" \t\r\n") << start;
    QTest::newRow("no start") << QByteArray("GPGLL,6005.071,N,02332.346,E,095559,A,D*43") << start;
    QTest::newRow("text before the start") << QByteArray("x$HEHDT,1.0,T") << start;
    QTest::newRow("second half of a cut line") << QByteArray("5.071,N,02332.346,E,095559,A,D*43") << start;
    QTest::newRow("tag block alone") << QByteArray("\\s:x*22\\") << start;
    QTest::newRow("tag block without end") << QByteArray("\\s:x*22$HEHDT,1.0,T") << block;
    QTest::newRow("wrong checksum") << QByteArray("$GPGLL,6005.071,N,02332.346,E,095559,A,D*44")
                                    << QStringLiteral("The checksum says 44, the sentence has 43.");
    QTest::newRow("changed digit") << QByteArray("$GPGLL,6005.070,N,02332.346,E,095559,A,D*43")
                                   << QStringLiteral("The checksum says 43, the sentence has 42.");
    QTest::newRow("checksum below 16")
        << QByteArray("$IIHDT,,T*0D") << QStringLiteral("The checksum says 0D, the sentence has 0C.");
    QTest::newRow("no digits") << QByteArray("$IIHDT,,T*") << digits;
    QTest::newRow("one digit") << QByteArray("$IIHDT,,T*C") << digits;
    QTest::newRow("three digits") << QByteArray("$IIHDT,,T*00C") << digits;
    QTest::newRow("no hexadecimal digit") << QByteArray("$IIHDT,,T*0G") << digits;
    QTest::newRow("sign") << QByteArray("$IIHDT,,T*+C") << digits;
    QTest::newRow("blank") << QByteArray("$IIHDT,,T* C") << digits;
    QTest::newRow("text behind the checksum") << QByteArray("$IIHDT,,T*0C,1") << digits;
    QTest::newRow("two lines run together") << QByteArray("$IIHDT,,T*0C$IIHDT,,T*0C") << digits;
    QTest::newRow("two stars") << QByteArray("$IIHDT*,,T*0C") << digits;
    QTest::newRow("start only") << QByteArray("$") << address;
    QTest::newRow("no address") << QByteArray("$,1,2") << address;
    QTest::newRow("talker only") << QByteArray("$GP,1,2") << address;
    QTest::newRow("one letter") << QByteArray("$G,1,2") << address;
    QTest::newRow("P alone") << QByteArray("$P,1,2") << address;
    QTest::newRow("blank in the address") << QByteArray("$GP LL,1") << address;
    QTest::newRow("two starts") << QByteArray("$$GPGLL,1") << address;
    QTest::newRow("zero byte") << QByteArray("$GPGLL,1\0,2", 11) << bytes;
    QTest::newRow("zero byte at the end") << QByteArray("$GPGLL,1\0", 9) << bytes;
    QTest::newRow("tab inside") << QByteArray("$GPGLL,1\t2") << bytes;
    QTest::newRow("line end inside") << QByteArray("$GPGLL,1\r\n$GPGLL,2") << bytes;
    QTest::newRow("delete") << QByteArray("$GPGLL,\x7f") << bytes;
    QTest::newRow("Latin-1") << QByteArray("$GPTXT,caf\xe9") << bytes;
    QTest::newRow("UTF-8") << QByteArray("$GPTXT,caf\xc3\xa9") << bytes;
    QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf$GPGLL,1") << bytes;
    QTest::newRow("not printable in the tag block") << QByteArray("\\s:\x01\\$GPGLL,1") << bytes;
    QTest::newRow("too long") << "$GPTXT," + QByteArray(1018, 'x') << length;
    QTest::newRow("absurdly long") << "$GPTXT," + QByteArray(10000000, ',') << length;
    QTest::newRow("too long by its tag block") << "\\" + QByteArray(1020, 'x') + "\\$GPGLL,1" << length;
}

void tst_ZrNmeaSentence::refuses()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, reason);
    ZrNmeaSentence sentence;
    QVERIFY(ZrNmeaSentence::Parse("!AIVDM,7*4C", sentence, nullptr));
    QString error;
    QVERIFY(!ZrNmeaSentence::Parse(line, sentence, &error));
    QCOMPARE(error, reason);
    QCOMPARE(sentence.talker, QByteArray("AI"));
    QCOMPARE(sentence.formatter, QByteArray("VDM"));
    QCOMPARE(sentence.fields, QList<QByteArray>{"7"});
    QVERIFY(sentence.hasChecksum);
    QVERIFY(sentence.encapsulated);
}

void tst_ZrNmeaSentence::everyFlippedBitIsNoticed()
{
    const QByteArray line = "$GPGLL,6005.071,N,02332.346,E,095559,A,D*43";
    const int star = line.indexOf('*');
    int refused = 0;
    for (int i = 0; i < line.size(); ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            QByteArray damaged = line;
            damaged[i] = static_cast<char>(damaged[i] ^ (1 << bit));
            ZrNmeaSentence sentence;
            const bool taken = ZrNmeaSentence::Parse(damaged, sentence, nullptr);
            // Only a damaged '*' can pass: the sentence then has no checksum.
            QVERIFY2(!taken || (i == star && !sentence.hasChecksum), damaged.constData());
            refused += taken ? 0 : 1;
        }
    }
    QVERIFY(refused >= (line.size() - 1) * 8);
}

void tst_ZrNmeaSentence::cutAnywhereNeverParsesAsMore()
{
    const QByteArray line = "$IIMWV,338,R,13.41,N,A*2C";
    for (int size = 0; size < line.size(); ++size) {
        // Memory of its own, so that a sanitizer sees a read behind the end.
        const std::vector<char> memory(line.begin(), line.begin() + size);
        ZrNmeaSentence sentence;
        const bool taken
            = ZrNmeaSentence::Parse(QByteArray::fromRawData(memory.data(), size), sentence, nullptr);
        QCOMPARE(taken, size >= 4 && size <= line.indexOf('*'));
        QVERIFY(!sentence.hasChecksum);
        QVERIFY(sentence.fields.size() <= 5);
    }
}

void tst_ZrNmeaSentence::longestLine()
{
    const QByteArray line = "$GPTXT," + QByteArray(1017, 'x');
    QCOMPARE(line.size(), ZrNmeaSentence::MaxLength);
    ZrNmeaSentence sentence;
    QVERIFY(ZrNmeaSentence::Parse(line, sentence, nullptr));
    QCOMPARE(sentence.Field(0), QByteArray(1017, 'x'));
    // White space around does not count.
    QVERIFY(ZrNmeaSentence::Parse(QByteArray(5000, ' ') + line + "\r\n", sentence, nullptr));
}

void tst_ZrNmeaSentence::errorMayBeNull()
{
    ZrNmeaSentence sentence;
    QVERIFY(!ZrNmeaSentence::Parse("nothing", sentence, nullptr));
    QVERIFY(!ZrNmeaSentence::Parse("$IIHDT,,T*00", sentence, nullptr));
    QVERIFY(sentence.talker.isEmpty());
}

void tst_ZrNmeaSentence::fieldOutsideIsEmpty()
{
    ZrNmeaSentence sentence;
    QVERIFY(ZrNmeaSentence::Parse("$HEHDT,123.4,T", sentence, nullptr));
    QCOMPARE(sentence.Field(0), QByteArray("123.4"));
    QCOMPARE(sentence.Field(1), QByteArray("T"));
    for (const int i : {2, 100, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        QCOMPARE(sentence.Field(i), QByteArray());
        QVERIFY(std::isnan(sentence.Number(i)));
    }
    QVERIFY(std::isnan(ZrNmeaSentence().Number(0)));
}

void tst_ZrNmeaSentence::numbers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("value");
    const double none = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("decimal") << QByteArray("123.25") << 123.25;
    QTest::newRow("leading zeros") << QByteArray("006.50") << 6.5;
    QTest::newRow("negative") << QByteArray("-2") << -2.0;
    QTest::newRow("plus") << QByteArray("+2") << 2.0;
    QTest::newRow("point first") << QByteArray(".5") << 0.5;
    QTest::newRow("point last") << QByteArray("5.") << 5.0;
    QTest::newRow("zero") << QByteArray("0.0") << 0.0;
    QTest::newRow("empty") << QByteArray("") << none;
    QTest::newRow("letters") << QByteArray("A") << none;
    QTest::newRow("nan") << QByteArray("nan") << none;
    QTest::newRow("NaN") << QByteArray("NaN") << none;
    QTest::newRow("inf") << QByteArray("inf") << none;
    QTest::newRow("minus inf") << QByteArray("-inf") << none;
    QTest::newRow("infinity") << QByteArray("infinity") << none;
    QTest::newRow("too large") << QByteArray("1e400") << none;
    QTest::newRow("many digits") << QByteArray(400, '9') << none;
    QTest::newRow("two points") << QByteArray("1.2.3") << none;
    QTest::newRow("two signs, from a real line") << QByteArray("-1.-3") << none;
    QTest::newRow("hexadecimal") << QByteArray("0x10") << none;
    QTest::newRow("unit behind") << QByteArray("12.6C") << none;
    QTest::newRow("minus alone") << QByteArray("-") << none;
    QTest::newRow("dashes") << QByteArray("---") << none;
}

void tst_ZrNmeaSentence::numbers()
{
    QFETCH(QByteArray, text);
    QFETCH(double, value);
    ZrNmeaSentence sentence;
    sentence.fields = {text};
    const double number = sentence.Number(0);
    QCOMPARE(std::isnan(number), std::isnan(value));
    if (!std::isnan(value))
        QCOMPARE(number, value);
}

void tst_ZrNmeaSentence::numbersDoNotFollowTheLocale()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    ZrNmeaSentence sentence;
    sentence.fields = {"1.5", "1,5"};
    const double point = sentence.Number(0);
    const double comma = sentence.Number(1);
    QLocale::setDefault(before);
    QCOMPARE(point, 1.5);
    QVERIFY(std::isnan(comma));
}

void tst_ZrNmeaSentence::checksum_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("sum");
    QTest::newRow("nothing") << QByteArray() << 0;
    QTest::newRow("one byte") << QByteArray("A") << 0x41;
    QTest::newRow("a byte twice") << QByteArray("AA") << 0;
    QTest::newRow("sentence") << QByteArray("GPGLL,6005.071,N,02332.346,E,095559,A,D") << 0x43;
    QTest::newRow("high bytes") << QByteArray("\xff\x0f") << 0xF0;
    QTest::newRow("zero byte counts as nothing") << QByteArray("A\0B", 3) << 0x03;
}

void tst_ZrNmeaSentence::checksum()
{
    QFETCH(QByteArray, body);
    QFETCH(int, sum);
    QCOMPARE(int(ZrNmeaSentence::Checksum(body)), sum);
}

QTEST_GUILESS_MAIN(tst_ZrNmeaSentence)
#include "tst_ZrNmeaSentence.moc"
