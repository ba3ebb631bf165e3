// Undo and redo of what is drawn, cleared and detected.

#include "ZrKit/sonar/ZrBottomHistory.h"
#include "ZrKit/sonar/ZrBottomLine.h"

#include <QtTest/QtTest>

#include <cmath>
#include <memory>
#include <random>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t farAway = std::numeric_limits<std::size_t>::max();

QString Text(const ZrBottomLine& line)
{
    QStringList all;
    for (std::size_t i = 0; i < line.Count(); ++i)
        all << QString::number(line.Altitude(i)) + (line.IsEdited(i) ? QStringLiteral("*") : QString());
    return all.join(QLatin1Char(' '));
}

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace

class tst_ZrBottomHistory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void nothingYet();
    void draw();
    void stroke();
    void strokeEnds_data();
    void strokeEnds();
    void clear();
    void detect();
    void replace();
    void noSteps();
    void redoIsForgotten();
    void clean();
    void limits();
    void anyOrder();

private:
    ZrBottomLine m_line;
    std::unique_ptr<ZrBottomHistory> m_history;
};

void tst_ZrBottomHistory::init()
{
    m_line = ZrBottomLine();
    m_line.SetFound({9.0, 9.0, 9.0, 9.0, unknown});
    m_history = std::make_unique<ZrBottomHistory>(m_line);
}

void tst_ZrBottomHistory::nothingYet()
{
    QVERIFY(!m_history->CanUndo());
    QVERIFY(!m_history->CanRedo());
    QVERIFY(!m_history->Undo());
    QVERIFY(!m_history->Redo());
    QCOMPARE(m_history->UndoName(), QString());
    QCOMPARE(m_history->RedoName(), QString());
    QCOMPARE(m_history->Steps(), 0);
    QCOMPARE(m_history->Bytes(), i64(0));
    QVERIFY(m_history->IsClean());
    ZrBottomLine none;
    ZrBottomHistory ofNone(none);
    QVERIFY(!ofNone.Draw(0, 1.0, 0, 1.0));
    QVERIFY(!ofNone.Clear(0, farAway));
    QVERIFY(!ofNone.SetFound({}));
}

void tst_ZrBottomHistory::draw()
{
    QVERIFY(m_history->Draw(3, 4.0, 1, 2.0));
    m_history->CloseStroke();
    QVERIFY(m_history->Draw(3, 1.0, 8, 1.0));
    QCOMPARE(Text(m_line), S("9 2* 3* 1* 1*"));
    QCOMPARE(m_history->Steps(), 2);
    QCOMPARE(m_history->UndoName(), S("Draw bottom line"));
    QVERIFY(m_history->Undo());
    QCOMPARE(Text(m_line), S("9 2* 3* 4* nan"));
    QCOMPARE(m_history->RedoName(), S("Draw bottom line"));
    QVERIFY(m_history->Undo());
    QCOMPARE(Text(m_line), S("9 9 9 9 nan"));
    QVERIFY(!m_history->Undo());
    QVERIFY(m_history->Redo());
    QCOMPARE(Text(m_line), S("9 2* 3* 4* nan"));
    QVERIFY(m_history->Redo());
    QCOMPARE(Text(m_line), S("9 2* 3* 1* 1*"));
    QVERIFY(!m_history->Redo());
}

/// A stroke over pings that were edited before, to and fro.
void tst_ZrBottomHistory::stroke()
{
    QVERIFY(m_history->Draw(0, 5.0, 1, 5.0));
    m_history->CloseStroke();
    QVERIFY(m_history->Draw(2, 1.0, 3, 1.0));
    QVERIFY(m_history->Draw(3, 1.0, 4, 2.0));
    QVERIFY(m_history->Draw(4, 2.0, 1, 2.0));
    QVERIFY(!m_history->Draw(4, 2.0, 1, 2.0)); // the mouse rests
    QVERIFY(m_history->Draw(1, 2.0, 0, 3.0));
    QCOMPARE(Text(m_line), S("3* 2* 2* 2* 2*"));
    QCOMPARE(m_history->Steps(), 2);
    QVERIFY(m_history->Undo());
    QCOMPARE(Text(m_line), S("5* 5* 9 9 nan"));
    QVERIFY(m_history->Redo());
    QCOMPARE(Text(m_line), S("3* 2* 2* 2* 2*"));
}

void tst_ZrBottomHistory::strokeEnds_data()
{
    QTest::addColumn<QString>("by");
    for (const char* by : {"close", "clear", "detect", "clean", "undo and redo", "reset"})
        QTest::newRow(by) << QString::fromLatin1(by);
}

void tst_ZrBottomHistory::strokeEnds()
{
    QFETCH(QString, by);
    QVERIFY(m_history->Draw(0, 1.0, 0, 1.0));
    int steps = 2;
    if (by == S("close")) {
        m_history->CloseStroke();
    } else if (by == S("clear")) {
        QVERIFY(!m_history->Clear(4, 4));
    } else if (by == S("detect")) {
        QVERIFY(!m_history->SetFound(m_line.Found()));
    } else if (by == S("clean")) {
        m_history->SetClean();
    } else if (by == S("undo and redo")) {
        QVERIFY(m_history->Undo() && m_history->Redo());
    } else {
        m_history->Reset();
        QCOMPARE(m_history->Steps(), 0);
        steps = 1;
    }
    QVERIFY(m_history->Draw(1, 1.0, 1, 1.0));
    QCOMPARE(m_history->Steps(), steps);
}

void tst_ZrBottomHistory::clear()
{
    QVERIFY(m_history->Draw(0, 1.0, 4, 1.0));
    QVERIFY(m_history->Clear(farAway, 3));
    QCOMPARE(Text(m_line), S("1* 1* 1* 9 nan"));
    QCOMPARE(m_history->UndoName(), S("Clear bottom line"));
    QVERIFY(m_history->Clear(1, 0));
    QCOMPARE(Text(m_line), S("9 9 1* 9 nan"));
    QVERIFY(m_history->Undo() && m_history->Undo());
    QCOMPARE(Text(m_line), S("1* 1* 1* 1* 1*"));
    QVERIFY(m_history->Redo() && m_history->Redo());
    QCOMPARE(Text(m_line), S("9 9 1* 9 nan"));
}

void tst_ZrBottomHistory::detect()
{
    QVERIFY(m_history->Draw(1, 1.0, 4, 1.0));
    QVERIFY(m_history->SetFound({7.0, 7.0, 7.0})); // edits at the end go with their pings
    QCOMPARE(Text(m_line), S("7 1* 1*"));
    QCOMPARE(m_history->UndoName(), S("Detect bottom line"));
    QVERIFY(m_history->Undo());
    QCOMPARE(Text(m_line), S("9 1* 1* 1* 1*"));
    QVERIFY(m_history->Redo());
    QCOMPARE(Text(m_line), S("7 1* 1*"));
}

/// What a detection found in a stretch takes the place of all that was there.
void tst_ZrBottomHistory::replace()
{
    m_history->Draw(1, 5.0, 3, 5.0);
    const QString drawn = Text(m_line);
    const std::vector<double> found{7.0, 8.0};
    QVERIFY(m_history->Replace(2, found));
    QCOMPARE(Text(m_line), S("9 5* 7 8 nan"));
    QCOMPARE(m_history->UndoName(), S("Detect bottom line"));
    QVERIFY(m_history->Undo());
    QCOMPARE(Text(m_line), drawn);
    QVERIFY(m_history->Redo());
    QCOMPARE(Text(m_line), S("9 5* 7 8 nan"));
    // The same once more is no step; nor is what lies behind the end, or nothing.
    const int steps = m_history->Steps();
    QVERIFY(!m_history->Replace(2, found));
    QVERIFY(!m_history->Replace(5, found));
    QVERIFY(!m_history->Replace(farAway, found));
    QVERIFY(!m_history->Replace(0, std::vector<double>()));
    QCOMPARE(m_history->Steps(), steps);
    // Of what sticks out the part within counts.
    QVERIFY(m_history->Replace(4, found));
    QCOMPARE(Text(m_line), S("9 5* 7 8 7"));
    QCOMPARE(m_line.Count(), std::size_t(5));
}

void tst_ZrBottomHistory::noSteps()
{
    QVERIFY(m_history->Draw(0, 1.0, 1, 1.0));
    m_history->CloseStroke();
    QVERIFY(!m_history->Draw(0, 1.0, 1, 1.0)); // as it was
    QVERIFY(!m_history->Draw(0, -1.0, 1, 1.0));
    QVERIFY(!m_history->Draw(0, unknown, 1, 1.0));
    QVERIFY(!m_history->Draw(5, 1.0, farAway, 1.0));
    QVERIFY(!m_history->Clear(2, 3));
    QVERIFY(!m_history->Clear(5, farAway));
    QVERIFY(!m_history->SetFound({9.0, 9.0, 9.0, 9.0, unknown}));
    QCOMPARE(m_history->Steps(), 1);
}

void tst_ZrBottomHistory::redoIsForgotten()
{
    QVERIFY(m_history->Draw(0, 1.0, 0, 1.0));
    QVERIFY(m_history->Undo());
    QVERIFY(m_history->Draw(1, 2.0, 1, 2.0));
    QVERIFY(!m_history->CanRedo());
    QCOMPARE(m_history->Steps(), 1);
    QVERIFY(m_history->Undo());
    QCOMPARE(Text(m_line), S("9 9 9 9 nan"));
}

void tst_ZrBottomHistory::clean()
{
    QVERIFY(m_history->Draw(0, 1.0, 0, 1.0));
    QVERIFY(!m_history->IsClean());
    m_history->SetClean();
    QVERIFY(m_history->IsClean());
    QVERIFY(m_history->Undo());
    QVERIFY(!m_history->IsClean());
    QVERIFY(m_history->Redo());
    QVERIFY(m_history->IsClean());
    QVERIFY(m_history->Undo());
    QVERIFY(m_history->Draw(1, 2.0, 1, 2.0)); // the clean state can no longer be reached
    QVERIFY(!m_history->IsClean());
    QVERIFY(m_history->Undo());
    QVERIFY(!m_history->IsClean());
    m_history->Reset();
    QVERIFY(m_history->IsClean());
    QCOMPARE(m_history->Steps(), 0);
}

void tst_ZrBottomHistory::limits()
{
    ZrBottomHistory three(m_line, {3, 1000000});
    for (int i = 1; i <= 5; ++i) {
        QVERIFY(three.Draw(0, i, 0, i));
        three.CloseStroke();
    }
    QCOMPARE(three.Steps(), 3);
    QVERIFY(three.Undo() && three.Undo() && three.Undo());
    QVERIFY(!three.Undo());
    QVERIFY(!three.IsClean()); // that was two steps earlier
    QCOMPARE(Text(m_line), S("2* 9 9 9 nan"));
    ZrBottomHistory few(m_line, {1000, 1});
    QVERIFY(few.Draw(0, 5.0, 4, 5.0));
    few.CloseStroke();
    QVERIFY(few.Bytes() > 1);
    QVERIFY(few.Draw(0, 6.0, 4, 6.0));
    QCOMPARE(few.Steps(), 1); // the last one remains
    QVERIFY(few.Undo());
    QCOMPARE(Text(m_line), S("5* 5* 5* 5* 5*"));
    ZrBottomHistory whole(m_line, {1000, 1});
    QVERIFY(whole.SetFound(std::vector<double>(1000, 2.0)));
    QVERIFY(whole.Bytes() > 16000); // as much as its lines
}

/// Whatever was done, undo leads back through the same states, and redo forward.
void tst_ZrBottomHistory::anyOrder()
{
    std::mt19937 random(5);
    const auto below = [&](unsigned end) { return random() % end; };
    QStringList states{Text(m_line)};
    for (int i = 0; i < 150; ++i) {
        bool changed = false;
        switch (below(3)) {
        case 0:
            // In this order, whatever the compiler does with arguments.
            {
                const std::size_t first = below(7);
                const double from = below(9);
                const std::size_t last = below(7);
                changed = m_history->Draw(first, from, last, below(9));
            }
            m_history->CloseStroke();
            break;
        case 1:
            changed = m_history->Clear(below(7), 3);
            break;
        default:
            changed = m_history->SetFound(std::vector<double>(4 + static_cast<unsigned>(i) % 3, below(9)));
        }
        QCOMPARE(changed, m_history->Steps() == states.size());
        QVERIFY(changed || Text(m_line) == states.last());
        if (changed)
            states << Text(m_line);
    }
    QCOMPARE(m_history->Steps(), states.size() - 1);
    for (int i = states.size() - 2; i >= 0; --i) {
        QVERIFY(m_history->Undo());
        QCOMPARE(Text(m_line), states[i]);
    }
    QVERIFY(m_history->IsClean());
    for (int i = 1; i < states.size(); ++i) {
        QVERIFY(m_history->Redo());
        QCOMPARE(Text(m_line), states[i]);
    }
}

QTEST_APPLESS_MAIN(tst_ZrBottomHistory)
#include "tst_ZrBottomHistory.moc"
