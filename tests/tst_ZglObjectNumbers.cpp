#include "ObjFile.h"
#include "ZrUtil/ZglObject.h"
#include "ZrUtil/ZrObjReader.h"

#include <QtTest/QtTest>

#include <cstring>
#include <random>

/// Numbers in mesh files are those of `QString::toFloat` and `QString::toInt`, to the last bit, and what
/// these refuse is refused.
class tst_ZglObjectNumbers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void floatSpellings_data();
    void floatSpellings();
    void allShortFloats();
    void floatsOfAllSizes();
    void boundsOfFloats_data();
    void boundsOfFloats();
    void indexSpellings_data();
    void indexSpellings();
    void allShortIndices();

private:
    void CheckFloat(const QByteArray& word);
    void CheckIndex(const QByteArray& word);

    ObjFile m_file;
};

namespace {

quint32 Bits(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// All words of 1 to \p length characters of \p alphabet.
QVector<QByteArray> WordsOf(const QByteArray& alphabet, int length)
{
    QVector<QByteArray> words{QByteArray()};
    int begin = 0;
    for (int n = 0; n < length; ++n) {
        const int end = words.size();
        for (int i = begin; i < end; ++i)
            for (const char c : alphabet)
                words << words[i] + c;
        begin = end;
    }
    words.removeFirst();
    return words;
}

} // namespace

void tst_ZglObjectNumbers::CheckFloat(const QByteArray& word)
{
    bool ok = false;
    const float expected = QString::fromUtf8(word.constData(), word.size()).toFloat(&ok);
    ZglObject object;
    m_file.Write("v 0 " + word + " 0\nvt 0 0\nvn 0 0 1\nf 1/1/1 1/1/1 1/1/1\n");
    QVERIFY2(ZglObject::LoadObj(m_file.Path(), object) == ok, word);
    if (ok && expected == expected)
        QVERIFY2(Bits(object.m_vertices[0].y()) == Bits(expected), word);
    else if (ok)
        QVERIFY2(object.m_vertices[0].y() != object.m_vertices[0].y(), word);
}

void tst_ZglObjectNumbers::floatSpellings_data()
{
    QTest::addColumn<QByteArray>("word");
    for (const char* word :
        {"+1", "+.5", "-0", "-0.0", "1.", ".", "-.", "1e", "1e+", "e5", ".e5", "1.e5", "1e5.", "1e05", "1E5",
            "1E+05", "1e0000000005", "0e999", "1e-999", "0x10", "1f", "1.5f", "0b1", "1_0", "1,5", "1'000",
            "1,000.5", "--1", "+-1", "1-", "nan", "NaN", "-nan", "+nan", "nan(1)", "inf", "-inf", "+inf",
            "INF", "infinity", "-infinity", "Inf", "1\t", "\t1", "\t", "1\v", "\f1", "1\x1f", "1\xC2\xA0",
            "\xE2\x88\x92"
            "1",
            "\xE2\x80\x93"
            "1",
            "\xD9\xA1",
            "1\xE2\x80\x89"
            "5",
            "\xEF\xBC\x91", "1\xFF", "1%", "1;2", "1/2", "1e1e1", "0000000000000000000000001",
            "00000000000000000000000.5",
            "1.0000000000000000000000000000000000000000000000000000000000000000000000000001",
            "0.00000000000000000000000000000000000000000000000000000000000000000000000000001e60",
            "123456789012345678", "1234567890123456789", "12345678901234567890", "9007199254740993",
            "9007199254740993e-3", "1e22", "1e23", "123456789e22", "0.1e-22"})
        QTest::newRow(word) << QByteArray(word);
    QTest::newRow("a zero byte behind") << QByteArray("1\0", 2);
    QTest::newRow("a zero byte before") << QByteArray("\0001", 2);
    QTest::newRow("many digits") << QByteArray("0.") + QByteArray(100000, '3');
}

void tst_ZglObjectNumbers::floatSpellings()
{
    QFETCH(QByteArray, word);
    CheckFloat(word);
}

void tst_ZglObjectNumbers::allShortFloats()
{
    for (const QByteArray& word : WordsOf("05.e+-", 5)) {
        CheckFloat(word);
        if (QTest::currentTestFailed())
            return;
    }
}

void tst_ZglObjectNumbers::floatsOfAllSizes()
{
    std::mt19937 random(20240620);
    std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
    std::uniform_int_distribution<int> power(-50, 38);
    std::uniform_int_distribution<int> precision(0, 20);
    QVector<float> expected;
    QByteArray text;
    for (int i = 0; i < 100000; ++i) {
        const double value
            = i % 3 == 0 ? mantissa(random) * 100.0 : mantissa(random) * std::pow(10.0, power(random));
        const char format = "feg"[i % 3];
        const QByteArray word = QByteArray::number(value, format, precision(random));
        bool ok = false;
        const float number = QString::fromLatin1(word).toFloat(&ok);
        if (!ok)
            continue;
        expected << number;
        text += "v " + word + " 0 0\nf " + QByteArray::number(expected.size()) + "/1/1 1/1/1 1/1/1\n";
    }
    QVERIFY(expected.size() > 80000);
    ZglObject object;
    QVERIFY(ZglObject::LoadObj(m_file.Write("vt 0 0\nvn 0 0 1\n" + text), object));
    for (int i = 0; i < expected.size(); ++i)
        QCOMPARE(Bits(object.m_vertices[static_cast<std::size_t>(3 * i)].x()), Bits(expected[i]));
}

/// Between the largest float and the one that rounding would make of a number lie numbers that are refused.
void tst_ZglObjectNumbers::boundsOfFloats_data()
{
    QTest::addColumn<QByteArray>("word");
    for (const char* word : {"3.4028234e38", "3.4028235e38", "3.40282346638528859811704183484516925440e+38",
             "3.40282346638528859811704183484516925441e+38", "3.402823466385288600e38",
             "3.4028235677973366e38", "340282346638528859811704183484516925440", "1.17549435e-38",
             "1.1754943508222875e-38", "1e-38", "1e-45", "7e-46", "7.1e-46", "1.4e-45", "1e-46",
             "0.0000001e-38", "16777217", "16777216.5", "16777219", "1.00000005960464477539",
             "1.00000005960464477540", "8388608.5"}) {
        QTest::newRow(word) << QByteArray(word);
        const QByteArray negative = QByteArray("-") + word;
        QTest::newRow(negative) << negative;
    }
}

void tst_ZglObjectNumbers::boundsOfFloats()
{
    QFETCH(QByteArray, word);
    CheckFloat(word);
}

void tst_ZglObjectNumbers::CheckIndex(const QByteArray& word)
{
    bool ok = false;
    const int expected = QString::fromUtf8(word.constData(), word.size()).toInt(&ok);
    static const QByteArray positions = [] {
        QByteArray text;
        for (int i = 1; i < 20; ++i)
            text += "v " + QByteArray::number(i) + " 0 0\n";
        return text;
    }();
    ZrObjReader reader;
    ZglObject object;
    m_file.Write(positions + "vt 0 0\nvn 0 0 1\nf 1/1/1 " + word + "/1/1 1/1/1\n");
    const bool read = reader.Read(m_file.Path(), object);
    QVERIFY2(read == (ok && expected >= 1 && expected < 20), word);
    if (read)
        QVERIFY2(object.m_vertices[1].x() == static_cast<float>(expected), word);
    else if (ok)
        QVERIFY2(reader.Detail().startsWith(QStringLiteral("There is no position %1,").arg(expected)), word);
    else
        QVERIFY2(reader.Detail().contains(QStringLiteral("is not position/texture/normal")), word);
}

void tst_ZglObjectNumbers::indexSpellings_data()
{
    QTest::addColumn<QByteArray>("word");
    for (const char* word : {"1", "+1", "-1", "0", "-0", "+0", "007", "00000000000000000012", "2147483647",
             "2147483648", "-2147483648", "-2147483649", "999999999", "1000000000", "4294967297",
             "18446744073709551617", "99999999999999999999999999", "1.0", "1e0", "0x1", "1,000", "1'0", "+-1",
             "--1", "++1", "+", "-", "1\t", "\t1", "\v3", "1\xC2\xA0",
             "\xE2\x88\x92"
             "1",
             "\xD9\xA1", "\xEF\xBC\x91", "1\xFF", "a", "1a"})
        QTest::newRow(word) << QByteArray(word);
    QTest::newRow("a zero byte behind") << QByteArray("1\0", 2);
    QTest::newRow("empty") << QByteArray();
}

void tst_ZglObjectNumbers::indexSpellings()
{
    QFETCH(QByteArray, word);
    CheckIndex(word);
}

void tst_ZglObjectNumbers::allShortIndices()
{
    for (const QByteArray& word : WordsOf("012+-.e", 4)) {
        CheckIndex(word);
        if (QTest::currentTestFailed())
            return;
    }
}

QTEST_GUILESS_MAIN(tst_ZglObjectNumbers)
#include "tst_ZglObjectNumbers.moc"
