// A button that leads somewhere: what it shows, in which room.

#include "ZrKit/ui/ZrEntryBtn.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrCtrlLook.h"

#include <QFontMetricsF>
#include <QSignalSpy>
#include <QtTest>

namespace {

/// Leftmost and rightmost column with a pixel of \p colour; -1 and -1 for none.
std::pair<int, int> ColumnsOf(const QImage& image, const QColor& colour)
{
    std::pair<int, int> columns(-1, -1);
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y).rgb() != colour.rgb())
                continue;
            columns.first = columns.first < 0 ? x : columns.first;
            columns.second = x;
        }
    }
    return columns;
}

int TopOf(const QImage& image, const QColor& colour)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).rgb() == colour.rgb())
                return y;
        }
    }
    return -1;
}

QImage Icon()
{
    QImage icon(48, 48, QImage::Format_ARGB32);
    icon.fill(Qt::white);
    return icon;
}

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace

class tst_ZrEntryBtn : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void tellsAssistiveTechnologies();
    void sizeFollowsTheScale();
    void partsHaveTheirColours();
    void titlesAreInLine();
    void hintGoesFirst();
    void longTextsStayInside();
    void isClicked();
    void noRoom();

private:
    std::unique_ptr<ZrThemeState> m_theme;
    QColor m_title{250, 10, 20};
    QColor m_hint{20, 240, 30};
    QColor m_icon{30, 40, 230};
};

void tst_ZrEntryBtn::init()
{
    m_theme.reset();
    m_theme = std::make_unique<ZrThemeState>();
    ZrTheme::ctrlCol = m_title;
    ZrTheme::bodyCol = m_hint;
    ZrTheme::ctrlCheckCol = m_icon;
}

void tst_ZrEntryBtn::tellsAssistiveTechnologies()
{
    const ZrEntryBtn button(nullptr, S("Pläne"), S("3 files"));
    QCOMPARE(button.Title(), S("Pläne"));
    QCOMPARE(button.accessibleName(), S("Pläne"));
    QCOMPARE(button.accessibleDescription(), S("3 files"));
}

void tst_ZrEntryBtn::sizeFollowsTheScale()
{
    const ZrEntryBtn button(nullptr, S("Plan"), QString());
    QCOMPARE(button.sizeHint(), QSize(280, 96));
    ZrTheme::dp = 2.0F;
    QCOMPARE(button.sizeHint(), QSize(560, 192));
    ZrTheme::dp = 0.25F;
    QCOMPARE(button.sizeHint().height(), ZrCtrlLook::smallestTarget);
}

/// The icon at the left, then the title, and the hint below it.
void tst_ZrEntryBtn::partsHaveTheirColours()
{
    ZrEntryBtn button(nullptr, S("HHHH"), S("HHHH"));
    button.resize(button.sizeHint());
    QVERIFY(!HasColour(Painted(button), m_icon));
    button.icon = Icon();
    const QImage image = Painted(button);
    const auto icon = ColumnsOf(image, m_icon);
    const auto title = ColumnsOf(image, m_title);
    const auto hint = ColumnsOf(image, m_hint);
    QCOMPARE(icon.first, 24);
    QVERIFY(icon.second - icon.first >= 40);
    QVERIFY(title.first > icon.second && hint.first > icon.second);
    QVERIFY(title.second > title.first && hint.second > hint.first);
    QVERIFY(TopOf(image, m_hint) > TopOf(image, m_title) + QFontMetricsF(ZrTheme::fontLarge).capHeight());
}

/// Whatever the icon and the hint, titles of buttons of one height begin at the same column.
void tst_ZrEntryBtn::titlesAreInLine()
{
    QVector<int> columns;
    for (const bool hasIcon : {false, true}) {
        for (const char* hint : {"", "HH"}) {
            ZrEntryBtn button(nullptr, S("HHHH"), S(hint));
            button.resize(button.sizeHint());
            if (hasIcon)
                button.icon = Icon();
            columns.append(ColumnsOf(Painted(button), m_title).first);
        }
    }
    QVERIFY(columns.first() > 0);
    QCOMPARE(columns, QVector<int>(4, columns.first()));
}

/// Without room for both lines the title has the middle to itself.
void tst_ZrEntryBtn::hintGoesFirst()
{
    const int both = static_cast<int>(
        std::ceil(QFontMetricsF(ZrTheme::fontLarge).height() + QFontMetricsF(ZrTheme::font).height()));
    ZrEntryBtn button(nullptr, S("HHHH"), S("HHHH"));
    button.resize(280, both);
    QVERIFY(HasColour(Painted(button), m_hint));
    button.resize(280, both - 2);
    const QImage alone = Painted(button);
    QVERIFY(!HasColour(alone, m_hint));
    ZrEntryBtn without(nullptr, S("HHHH"), QString());
    without.resize(280, both - 2);
    QCOMPARE(alone, Painted(without));
}

void tst_ZrEntryBtn::longTextsStayInside()
{
    ZrEntryBtn button(nullptr, QString(100, QLatin1Char('H')), QString(100, QLatin1Char('H')));
    button.resize(280, 96);
    const QImage image = Painted(button);
    QVERIFY(ColumnsOf(image, m_title).second > 200);
    QVERIFY(ColumnsOf(image, m_title).second < 280 - 12);
    QVERIFY(ColumnsOf(image, m_hint).second > 200);
    QVERIFY(ColumnsOf(image, m_hint).second < 280 - 12);
}

void tst_ZrEntryBtn::isClicked()
{
    ZrEntryBtn button(nullptr, S("Plan"), S("3 files"));
    button.resize(280, 96);
    button.show();
    QSignalSpy clicked(&button, &ZrBtn::Clicked);
    QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(5, 5));
    QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(270, 90));
    QCOMPARE(clicked.count(), 2);
    button.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&button, Qt::Key_Space);
    QCOMPARE(clicked.count(), 3);
}

void tst_ZrEntryBtn::noRoom()
{
    ZrEntryBtn button(nullptr, S("HHHH"), S("HHHH"));
    button.icon = Icon();
    for (const QSize& size : {QSize(1, 1), QSize(20, 300), QSize(500, 6), QSize(70, 96)}) {
        button.resize(size);
        QCOMPARE(Painted(button).size(), size);
    }
}

QTEST_MAIN(tst_ZrEntryBtn)
#include "tst_ZrEntryBtn.moc"
