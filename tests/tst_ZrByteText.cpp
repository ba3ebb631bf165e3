// Numbers of bytes for people.

#include "ZrKit/ui/ZrByteText.h"

#include <QtTest>

#include <cmath>
#include <limits>

class tst_ZrByteText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void text_data();
    void text();
    void unknown_data();
    void unknown();
    void threeDigits();
};

void tst_ZrByteText::text_data()
{
    QTest::addColumn<double>("bytes");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("unit");
    const auto row = [](double bytes, const char* value, const char* unit) {
        QTest::addRow("%.17g", bytes) << bytes << QString::fromLatin1(value) << QString::fromLatin1(unit);
    };
    row(0.0, "0", "B");
    row(-0.0, "0", "B");
    row(0.4, "0", "B");
    row(1.0, "1", "B");
    row(999.0, "999", "B");
    row(999.4, "999", "B");
    row(999.5, "1.00", "kB");
    row(1000.0, "1.00", "kB");
    row(1024.0, "1.02", "kB");
    row(9994.0, "9.99", "kB");
    row(9996.0, "10.0", "kB");
    row(12400.0, "12.4", "kB");
    row(99940.0, "99.9", "kB");
    row(99960.0, "100", "kB");
    row(999400.0, "999", "kB");
    row(999600.0, "1.00", "MB");
    row(12.4e6, "12.4", "MB");
    row(999.6e6, "1.00", "GB");
    row(12.4e9, "12.4", "GB");
    row(999.6e9, "1.00", "TB");
    row(12.4e12, "12.4", "TB");
    row(1e15, "1000", "TB"); // the last unit
    row(1.2345e16, "12345", "TB");
}

void tst_ZrByteText::text()
{
    QFETCH(double, bytes);
    QFETCH(QString, value);
    QFETCH(QString, unit);
    const ZrByteText text = ZrByteText::Of(bytes);
    QCOMPARE(text.value, value);
    QCOMPARE(text.unit, unit);
    QCOMPARE(text.Text(), value + QLatin1Char(' ') + unit);
}

void tst_ZrByteText::unknown_data()
{
    QTest::addColumn<double>("bytes");
    QTest::newRow("below 0") << -1.0;
    QTest::newRow("a hair below 0") << -std::numeric_limits<double>::denorm_min();
    QTest::newRow("NaN") << std::nan("");
    QTest::newRow("infinite") << HUGE_VAL;
    QTest::newRow("-infinite") << -HUGE_VAL;
}

void tst_ZrByteText::unknown()
{
    QFETCH(double, bytes);
    const ZrByteText text = ZrByteText::Of(bytes);
    QCOMPARE(text.value, QString());
    QCOMPARE(text.unit, QString());
    QCOMPARE(text.Text(), QString());
}

/// From a thousand on up to the last unit there are three digits, and what they say is right to half of the
/// last one.
void tst_ZrByteText::threeDigits()
{
    const QStringList units{QStringLiteral("B"), QStringLiteral("kB"), QStringLiteral("MB"),
        QStringLiteral("GB"), QStringLiteral("TB")};
    for (double bytes = 1000.0; bytes < 9.99e14; bytes *= 1.00037) {
        const ZrByteText text = ZrByteText::Of(bytes);
        QCOMPARE(QString(text.value).remove(QLatin1Char('.')).size(), 3);
        const double shown = text.value.toDouble() * std::pow(1000.0, units.indexOf(text.unit));
        QVERIFY2(std::fabs(shown - bytes) <= 0.00501 * bytes, qPrintable(text.Text()));
    }
}

QTEST_GUILESS_MAIN(tst_ZrByteText)
#include "tst_ZrByteText.moc"
