#include "ZrInputChecks.h"

#include <memory>

using input::U;

/// Controls in other units, geographic styles and grids.
class tst_ZrInputRecalc : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsAnew_data();
    void showsAnew();
    void readsImperial_data();
    void readsImperial();
    void showsPositions_data();
    void showsPositions();
    void leavesGridPositionsEmpty();
    void leavesWhatIsUpdating();
    void emitsNothing();
    void parsesBackRoundedValues();
    void goesOverAllControls();
    void survivesRemovalByListeners();
    void closesKeyboards();

private:
    std::unique_ptr<ZrTabletState> m_state;
    std::unique_ptr<QWidget> m_top;
};

void tst_ZrInputRecalc::init()
{
    m_state = std::make_unique<ZrTabletState>();
    ZrUnits::SetToMetric();
    ZrUnits::SetGeoStyle(eGeoDMSFrac);
    m_top = std::make_unique<QWidget>();
}

void tst_ZrInputRecalc::cleanup()
{
    m_top.reset();
    m_state.reset();
}

void tst_ZrInputRecalc::showsAnew_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("metric");
    QTest::addColumn<QString>("imperial");
    QTest::addColumn<QString>("unit");
    QTest::newRow("integer") << 0 << 7.0 << "7"
                             << "7"
                             << "";
    QTest::newRow("double") << 1 << 7.0 << "7.00"
                            << "7.00"
                            << "";
    QTest::newRow("float") << 2 << 7.0 << "7.00"
                           << "7.00"
                           << "";
    QTest::newRow("tiny length") << 6 << 1.0 << "1000.00"
                                 << "39.37"
                                 << "in";
    QTest::newRow("short length") << 7 << 1.0 << "1.00"
                                  << "3.28"
                                  << "ft";
    QTest::newRow("long length") << 8 << 10000.0 << "10.00"
                                 << "6.21"
                                 << "mi";
    QTest::newRow("speed") << 9 << 1.0 << "1.00"
                           << "1.94"
                           << "kts";
    QTest::newRow("temperature") << 10 << 100.0 << "100.00"
                                 << "212.00" << U("°F");
    QTest::newRow("easting") << 11 << 500000.0 << "500000.00"
                             << "1640416.67"
                             << "ftE";
    QTest::newRow("northing") << 12 << 1200.0 << "1200.00"
                              << "3937.00"
                              << "ftN";
}

void tst_ZrInputRecalc::showsAnew()
{
    QFETCH(int, kind);
    QFETCH(double, value);
    QFETCH(QString, metric);
    QFETCH(QString, imperial);
    QFETCH(QString, unit);
    ZrInput in(m_top.get());
    in.kind = kind;
    in.SetValue(value);
    QCOMPARE(in.QLineEdit::text(), metric);
    ZrUnits::SetToImperial();
    QCOMPARE(in.QLineEdit::text(), metric);
    ZrInput::RecalcAllInputs();
    QCOMPARE(in.QLineEdit::text(), imperial);
    QCOMPARE(in.text, imperial);
    QCOMPARE(in.UnitText(), unit);
    QVERIFY(!in.updating);
    // 6.21 miles are what was read back.
    ZrUnits::SetToMetric();
    ZrInput::RecalcAllInputs();
    QCOMPARE(in.QLineEdit::text(), kind == ZrInput::kindLongLength ? QStringLiteral("9.99") : metric);
}

void tst_ZrInputRecalc::readsImperial_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("inches") << 6 << "39.37008" << 1.0;
    QTest::newRow("feet") << 7 << "3.28084" << 1.0;
    QTest::newRow("miles") << 8 << "0.621371" << 1000.0;
    QTest::newRow("knots") << 9 << "1.94384" << 1.0;
    QTest::newRow("°F") << 10 << "32" << 0.0;
    QTest::newRow("grid feet") << 11 << "1640416.6667" << 500000.0;
    QTest::newRow("double") << 1 << "3.5" << 3.5;
}

void tst_ZrInputRecalc::readsImperial()
{
    QFETCH(int, kind);
    QFETCH(QString, text);
    QFETCH(double, value);
    ZrUnits::SetToImperial();
    ZrInput in(m_top.get());
    in.kind = kind;
    in.setText(text);
    QVERIFY2(std::fabs(in.value - value) < 1e-4, qPrintable(QString::number(in.value, 'g', 12)));
    // The range is in metres, whatever is shown.
    in.SetRange(value - 1.0, value + 0.5);
    QCOMPARE(in.OnValidate(text), 1);
    in.SetRange(value + 0.5, value + 1.0);
    QCOMPARE(in.OnValidate(text), 0);
}

void tst_ZrInputRecalc::showsPositions_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("lat");
    QTest::addColumn<QString>("lng");
    QTest::newRow("0") << 0 << U("+51.12345679°") << U("-4.20000000°");
    QTest::newRow("1") << 1 << U("+51° 7.40741'") << U("-4° 12.00000'");
    QTest::newRow("2") << 2 << U("+51° 7' 24\"") << U("-4° 12' 0\"");
    QTest::newRow("3") << 3 << U("+51° 7' 24.444\"") << U("-4° 12' 0.000\"");
    QTest::newRow("4") << 4 << U("51.12345679° N") << U("4.20000000° W");
    QTest::newRow("5") << 5 << U("51° 7.40741' N") << U("4° 12.00000' W");
    QTest::newRow("6") << 6 << U("51° 7' 24\" N") << U("4° 12' 0\" W");
    QTest::newRow("7") << 7 << U("51° 7' 24.444\" N") << U("4° 12' 0.000\" W");
}

void tst_ZrInputRecalc::showsPositions()
{
    QFETCH(int, style);
    QFETCH(QString, lat);
    QFETCH(QString, lng);
    ZrInput a(m_top.get());
    ZrInput b(m_top.get());
    a.kind = ZrInput::kindLat;
    b.kind = ZrInput::kindLng;
    a.SetValue(51.123456789);
    b.SetValue(-4.2);
    a.value = 51.123456789;
    b.value = -4.2;
    ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
    ZrInput::RecalcAllInputs();
    QCOMPARE(a.text, a.QLineEdit::text());
    // Minutes of -4.2 fall short of 12 in binary.
    QVERIFY2(a.text == lat, qPrintable(a.text));
    double v = 0.0;
    QCOMPARE(b.GetStrValue(b.text, v), ZrInput::valid);
    QVERIFY(std::fabs(v + 4.2) < 2e-4);
    QCOMPARE(b.text, ZrUnits::GetLngString(-4.2));
    if (style != 2 && style != 6)
        QCOMPARE(b.text, lng);
    QCOMPARE(a.styleSheet(), QStringLiteral("QLineEdit { background-color : #515151;}"));
}

/// In the grid style positions have no text of their own: pages show grid controls instead.
void tst_ZrInputRecalc::leavesGridPositionsEmpty()
{
    ZrInput a(m_top.get());
    ZrInput b(m_top.get());
    a.kind = ZrInput::kindLat;
    b.kind = ZrInput::kindLng;
    a.SetValue(51.5);
    b.SetValue(-4.5);
    ZrUnits::SetGeoStyle(eGeoUTM);
    ZrInput::RecalcAllInputs();
    QCOMPARE(a.text, QString());
    QCOMPARE(b.text, QStringLiteral("Error"));
    QCOMPARE(a.value, 51.5);
    QCOMPARE(b.value, -4.5);
    QCOMPARE(a.styleSheet(), QStringLiteral("QLineEdit { background-color : #aa0000;}"));
    ZrUnits::SetGeoStyle(eGeoDeg);
    ZrInput::RecalcAllInputs();
    QCOMPARE(a.text, U("51.50000000° N"));
    QCOMPARE(b.text, U("4.50000000° W"));
}

void tst_ZrInputRecalc::leavesWhatIsUpdating()
{
    ZrInput a(m_top.get());
    ZrInput b(m_top.get());
    a.kind = b.kind = ZrInput::kindShortLength;
    a.SetValue(1.0);
    b.SetValue(1.0);
    a.updating = true;
    ZrUnits::SetToImperial();
    ZrInput::RecalcAllInputs();
    QCOMPARE(a.text, QStringLiteral("1.00"));
    QCOMPARE(a.QLineEdit::text(), QStringLiteral("1.00"));
    QVERIFY(a.updating);
    QCOMPARE(b.text, QStringLiteral("3.28"));

    // Text controls and kinds that are none keep a text that would be shown otherwise.
    ZrInput c(m_top.get());
    for (int kind : {0, 1, 2, 3, 13, -1}) {
        c.kind = kind;
        c.SetText(QStringLiteral("007"));
        ZrInput::RecalcAllInputs();
        QCOMPARE(c.QLineEdit::text(), QStringLiteral("007"));
    }
}

void tst_ZrInputRecalc::emitsNothing()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindShortLength;
    in.SetValue(1.0);
    int news = 0;
    int changes = 0;
    connect(&in, &ZrInput::NewInput, this, [&news] { ++news; });
    connect(&in, &QLineEdit::textChanged, this, [&] {
        ++changes;
        QVERIFY(in.updating);
    });
    ZrUnits::SetToImperial();
    ZrInput::RecalcAllInputs();
    QCOMPARE(changes, 1);
    QCOMPARE(news, 0);
}

/// The value is what the text shown says, also after a change of units.
void tst_ZrInputRecalc::parsesBackRoundedValues()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindShortLength;
    in.SetValue(1.0);
    ZrUnits::SetToImperial();
    ZrInput::RecalcAllInputs();
    QCOMPARE(in.value, 3.28 / 3.28084);
}

void tst_ZrInputRecalc::goesOverAllControls()
{
    std::vector<std::unique_ptr<ZrInput>> all;
    for (int i = 0; i < 200; ++i) {
        all.push_back(std::make_unique<ZrInput>(m_top.get()));
        all.back()->kind = ZrInput::kindShortLength;
        all.back()->SetValue(i);
    }
    all[100].reset();
    all[0].reset();
    ZrUnits::SetToImperial();
    ZrInput::RecalcAllInputs();
    for (int i = 1; i < 200; ++i) {
        if (i != 100)
            QCOMPARE(all[static_cast<std::size_t>(i)]->text, QString::number(i * 3.28084, 'f', 2));
    }
}

void tst_ZrInputRecalc::survivesRemovalByListeners()
{
    ZrInput a(m_top.get());
    auto b = std::make_unique<ZrInput>(m_top.get());
    ZrInput c(m_top.get());
    for (ZrInput* in : {&a, b.get(), &c}) {
        in->kind = ZrInput::kindShortLength;
        in->SetValue(1.0);
    }
    std::unique_ptr<ZrInput> added;
    connect(&a, &QLineEdit::textChanged, this, [&] {
        b.reset();
        added = std::make_unique<ZrInput>(m_top.get());
        for (int i = 0; i < 50; ++i)
            delete new ZrInput(m_top.get());
    });
    ZrUnits::SetToImperial();
    ZrInput::RecalcAllInputs();
    QVERIFY(!b);
    QCOMPARE(c.text, QStringLiteral("3.28"));
    QVERIFY(ZrInput::s_inputs == (std::vector<ZrInput*>{&a, &c, added.get()}));
}

/// "10" typed as metres must not be taken as feet.
void tst_ZrInputRecalc::closesKeyboards()
{
    m_top->show();
    ZrInput depth(m_top.get());
    depth.kind = ZrInput::kindShortLength;
    depth.SetValue(1.0);
    depth.show();
    ZrInputDlg* dlg = input::Press(depth);
    QVERIFY(dlg);
    int cancelled = 0;
    connect(dlg, &ZrInputDlg::Cancelled, this, [&cancelled] { ++cancelled; });
    input::Type(*dlg, QStringLiteral("10"));
    ZrUnits::SetToImperial();
    ZrInput::RecalcAllInputs();
    QVERIFY(!dlg->isVisible());
    QCOMPARE(cancelled, 1);
    QCOMPARE(depth.text, QStringLiteral("3.28"));
}

QTEST_MAIN(tst_ZrInputRecalc)
#include "tst_ZrInputRecalc.moc"
