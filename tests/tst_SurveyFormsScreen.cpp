// The forms of the application on the screen: their places, their colours, and how they are scrolled.

#include "SurveyFormsWindow.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrFormFrame.h"
#include "apps/ZrSurvey/FormDisplay.h"
#include "apps/ZrSurvey/FormRecording.h"
#include "apps/ZrSurvey/FormSonar.h"
#include "apps/ZrSurvey/FormSources.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QScrollArea>
#include <QScrollBar>

class tst_SurveyFormsScreen : public SurveyFormsWindow
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Open(); }

    void cleanup() { Close(); }

    void layout_data();
    void layout();
    void inputsAreReadable_data();
    void inputsAreReadable();
    void namesFit_data();
    void namesFit();
    void pageBehind();
    void scrolls();
};

void tst_SurveyFormsScreen::layout_data()
{
    QTest::addColumn<int>("scale");
    QTest::addColumn<QSize>("size");
    for (const int scale : {2, 0, -2}) {
        for (const QSize& size : {QSize(900, 600), QSize(1280, 800), QSize(1920, 1080), QSize(2560, 1440)})
            QTest::addRow("%+d %dx%d", scale, size.width(), size.height()) << scale << size;
    }
}

void tst_SurveyFormsScreen::layout()
{
    QFETCH(int, scale);
    QFETCH(QSize, size);
    SetScale(scale);
    m_view->resize(size);
    Settle();
    QCOMPARE(m_view->size(), size);
    for (ZrForm* form : qAsConst(m_view->forms().m_forms)) {
        const QByteArray name = form->m_name.toUtf8();
        m_view->ShowSettings(form->m_name);
        Settle();
        if (!form->m_isTiered)
            QVERIFY2(
                !form->m_tab.isEmpty() && m_view->forms().rect().contains(form->m_tab), name.constData());
        auto* rows = qobject_cast<ZrRowForm*>(form);
        if (!rows)
            continue;
        const int last = qobject_cast<FormSources*>(form) ? SurveySettings::LastSource : 0;
        for (int source = 0; source <= last; ++source) {
            if (last > 0)
                Click(Button(*form, SurveySource::Name(source)));
            QVERIFY2(Misplaced(*rows->Body()).isEmpty(), qPrintable(Misplaced(*rows->Body())));
            QVERIFY2(rows->Body()->width() <= form->width(), name.constData());
            for (int row = 0; row < rows->RowCount(); ++row) {
                const QRect text = rows->TextRect(row);
                if (text.isEmpty())
                    continue;
                QVERIFY2(rows->Body()->rect().contains(text), name.constData());
                for (const QWidget* child :
                    rows->Body()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
                    if (child->isVisible())
                        QVERIFY2(!child->geometry().intersects(text), name.constData());
                }
            }
            for (const ZrBtn* button : rows->Body()->findChildren<ZrBtn*>()) {
                if (!button->isVisible())
                    continue;
                QVERIFY2(button->height() >= 44 && button->width() >= 44, qPrintable(button->text));
                const double wide = QFontMetricsF(button->font).horizontalAdvance(button->text);
                QVERIFY2(wide <= button->textRect.width() + 0.5, qPrintable(button->text));
            }
        }
    }
}

void tst_SurveyFormsScreen::inputsAreReadable_data()
{
    QTest::addColumn<int>("scheme");
    QTest::newRow("day") << int(ZrColourScheme::day);
    QTest::newRow("dusk") << int(ZrColourScheme::dusk);
    QTest::newRow("night") << int(ZrColourScheme::night);
}

/// The letters against what is behind them, in the picture of the line.
void tst_SurveyFormsScreen::inputsAreReadable()
{
    QFETCH(int, scheme);
    m_view->SetColours(scheme);
    auto* form = Shown<FormRecording>();
    ZrInput* input = Input(*form, QStringLiteral("Keep free, MB"));
    const auto contrast = [input] {
        input->clearFocus();
        Settle();
        const QImage image = input->grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QColor behind = image.pixelColor(image.width() * 3 / 4, image.height() / 2);
        double most = 1.0;
        for (int y = image.height() / 4; y < image.height() * 3 / 4; ++y) {
            for (int x = image.width() / 20; x < image.width() / 2; ++x)
                most = std::max(most, Contrast(image.pixelColor(x, y), behind));
        }
        return most;
    };
    const double before = contrast();
    QVERIFY2(before >= 4.5, qPrintable(QString::number(before)));
    Type(input, QStringLiteral("8888"));
    const double valid = contrast();
    QVERIFY2(valid >= 4.5, qPrintable(QString::number(valid)));
    Type(input, QStringLiteral("8888x"));
    const double wrong = contrast();
    QVERIFY2(wrong >= 4.5, qPrintable(QString::number(wrong)));
}

void tst_SurveyFormsScreen::namesFit_data()
{
    layout_data();
}

/// The forms lie within the window with room around them, and no name of a tab is cut.
void tst_SurveyFormsScreen::namesFit()
{
    QFETCH(int, scale);
    QFETCH(QSize, size);
    SetScale(scale);
    m_view->resize(size);
    Settle();
    m_view->ShowSettings(QString());
    const ZrFormMgr& forms = m_view->forms();
    const QRect free = m_view->rect().adjusted(8, 44, -8, -8);
    QVERIFY(free.contains(forms.geometry()));
    const QFontMetrics metrics(ZrTheme::fontLarge);
    QVERIFY(ZrTheme::fontLarge.pixelSize() >= 14);
    for (const ZrForm* form : forms.m_forms) {
        if (form->m_isTiered)
            continue;
        const QRect room = form->m_tab.adjusted(ZrTheme::DpI(64), 0, -ZrTheme::DpI(12), 0);
        const QRect name
            = metrics.boundingRect(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, form->m_name);
        QVERIFY2(room.contains(name), qPrintable(form->m_name));
    }
}

/// Dark behind forms that want to be read, as it is behind those whose effect it shows.
void tst_SurveyFormsScreen::pageBehind()
{
    auto* frame = m_view->findChild<ZrFormFrame*>();
    QVERIFY(frame->isHidden());
    for (ZrForm* form : qAsConst(m_view->forms().m_forms)) {
        m_view->ShowSettings(form->m_name);
        Settle();
        QVERIFY(frame->isVisible());
        QCOMPARE(frame->geometry(), m_view->rect());
        const bool isLive = qobject_cast<FormSonar*>(form) || qobject_cast<FormDisplay*>(form);
        QVERIFY2(frame->IsDark() != isLive, qPrintable(form->m_name));
    }
    m_view->ShowSettings(Form<FormRecording>()->m_name);
    QTest::mouseClick(
        frame, Qt::LeftButton, Qt::NoModifier, QPoint(m_view->width() - 4, m_view->height() - 4));
    QVERIFY(m_view->forms().isHidden());
    QVERIFY(frame->isHidden());
}

void tst_SurveyFormsScreen::scrolls()
{
    SetScale(2);
    m_view->resize(900, 600);
    Settle();
    auto* form = Shown<FormRecording>();
    auto* area = form->findChild<QScrollArea*>();
    QVERIFY(form->Body()->height() > area->viewport()->height());
    const QPoint from(4, area->viewport()->height() - 4);
    const QPoint at = form->Body()->mapFrom(area->viewport(), from);
    QTest::mousePress(form->Body(), Qt::LeftButton, Qt::NoModifier, at);
    SendMove(*form->Body(), at - QPoint(0, 100));
    QCOMPARE(area->verticalScrollBar()->value(), 100);
    QTest::mouseRelease(form->Body(), Qt::LeftButton, Qt::NoModifier, at - QPoint(0, 100));
    // The Tab key brings what has the focus into view.
    ZrInput* last = form->findChildren<ZrInput*>().last();
    Input(*form, QStringLiteral("Name"))->setFocus();
    for (int i = 0; i < 20 && !last->hasFocus(); ++i)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY(last->hasFocus());
    QVERIFY(area->viewport()->rect().contains(QRect(last->mapTo(area->viewport(), QPoint()), last->size())));
}

GL_TEST_MAIN(tst_SurveyFormsScreen)
#include "tst_SurveyFormsScreen.moc"
