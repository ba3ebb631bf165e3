#include "ZrKit/ui/ZrRowForm.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrSlider.h"
#include "ZrUtil/ZrTheme.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QtTest>

namespace {

class Form : public ZrRowForm
{
public:
    using ZrRowForm::ZrRowForm;

    int m_shown = 0;

    ZrBtn* Button(const char* text)
    {
        auto* button = new ZrBtn(Body(), ZrBtn::typeStd);
        button->text = QLatin1String(text);
        return button;
    }

protected:
    void ShowValues() override { ++m_shown; }
};

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace

class tst_ZrRowForm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void cleanup() { m_form.reset(); }

    void empty();
    void rows();
    void names();
    void beside();
    void below();
    void columns();
    void hiddenRows();
    void problems();
    void units();
    void longHelp();
    void rowsThatAreNone();
    void valuesAreShown();
    void scrolls();
    void restyles();
    void everyWidth();

private:
    QRect Place(const QWidget* control) const { return control->geometry(); }

    std::unique_ptr<Form> m_form;
};

void tst_ZrRowForm::init()
{
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetAppSize(1280, 800);
    ZrTheme::SetStdStyle();
    m_form = std::make_unique<Form>(nullptr);
    m_form->resize(800, 600);
}

void tst_ZrRowForm::empty()
{
    m_form->show();
    QCOMPARE(m_form->RowCount(), 0);
    QVERIFY(!m_form->grab().isNull());
    m_form->Restyle();
    m_form->resize(0, 0);
    m_form->resize(10, 10);
}

/// One below the other, in the order added.
void tst_ZrRowForm::rows()
{
    m_form->show();
    int bottom = -1;
    for (int i = 0; i < 4; ++i) {
        ZrBtn* button = m_form->Button("x");
        QCOMPARE(m_form->AddRow(S("Row"), S("What it is about."), {button}, ZrRowForm::beside), i);
        const QRect text = m_form->TextRect(i);
        QVERIFY(!text.isEmpty());
        QVERIFY(text.top() > bottom);
        QVERIFY(Place(button).top() > bottom);
        bottom = std::max(text.bottom(), Place(button).bottom());
        QVERIFY(!text.intersects(Place(button)));
    }
    QCOMPARE(m_form->RowCount(), 4);
}

void tst_ZrRowForm::names()
{
    ZrBtn* plain = m_form->Button("x");
    ZrBtn* named = m_form->Button("y");
    named->setAccessibleName(S("Own"));
    auto* input = new ZrInput(m_form->Body());
    auto* captioned = new ZrInput(m_form->Body());
    captioned->caption = S("Own");
    m_form->AddRow(S("Tiefe äß"), QString(), {plain, named, input, captioned}, ZrRowForm::below);
    QCOMPARE(plain->accessibleName(), S("Tiefe äß"));
    QCOMPARE(named->accessibleName(), S("Own"));
    QCOMPARE(input->caption, S("Tiefe äß"));
    QCOMPARE(captioned->caption, S("Own"));
}

void tst_ZrRowForm::beside()
{
    m_form->show();
    ZrBtn* button = m_form->Button("x");
    const int row = m_form->AddRow(S("Row"), S("Help"), {button}, ZrRowForm::beside);
    QVERIFY(Place(button).left() > m_form->TextRect(row).left());
    QVERIFY(Place(button).right() <= m_form->Body()->width());
    QVERIFY(Place(button).height() >= 44);
    QVERIFY(std::abs(Place(button).width() - ZrTheme::DpI(ZrRowForm::ColumnWidth)) <= 2);
}

void tst_ZrRowForm::below()
{
    m_form->show();
    auto* slider = new ZrSlider(m_form->Body());
    const int row = m_form->AddRow(S("Row"), S("Help"), {slider}, ZrRowForm::below);
    QVERIFY(Place(slider).top() > m_form->TextRect(row).top());
    QVERIFY(Place(slider).width() > m_form->Body()->width() * 3 / 4);
}

/// So many in a line, all of one size.
void tst_ZrRowForm::columns()
{
    m_form->show();
    QVector<QWidget*> buttons;
    for (int i = 0; i < 5; ++i)
        buttons.append(m_form->Button("x"));
    m_form->AddRow(S("Row"), QString(), buttons, ZrRowForm::below, 2);
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(buttons[i]->height(), buttons[0]->height());
        // What is left of the last pixel goes to one of them.
        QVERIFY(std::abs(buttons[i]->width() - buttons[0]->width()) <= 1);
        QCOMPARE(buttons[i]->x(), buttons[i % 2]->x());
        if (i % 2 == 1)
            QCOMPARE(buttons[i]->y(), buttons[i - 1]->y());
        if (i >= 2)
            QVERIFY(buttons[i]->y() > buttons[i - 2]->geometry().bottom());
    }
    QVERIFY(buttons[1]->x() > buttons[0]->geometry().right());
}

void tst_ZrRowForm::hiddenRows()
{
    m_form->show();
    ZrBtn* first = m_form->Button("x");
    ZrBtn* second = m_form->Button("y");
    const int row = m_form->AddRow(S("First"), S("Help"), {first}, ZrRowForm::beside);
    const int next = m_form->AddRow(S("Second"), S("Help"), {second}, ZrRowForm::beside);
    const QRect before = Place(second);
    m_form->ShowRow(row, false);
    QVERIFY(!m_form->IsRowShown(row));
    QVERIFY(!first->isVisible());
    QVERIFY(m_form->TextRect(row).isEmpty());
    QVERIFY(Place(second).y() < before.y());
    QVERIFY(!m_form->TextRect(next).isEmpty());
    m_form->ShowRow(row, true);
    QVERIFY(first->isVisible());
    QCOMPARE(Place(second), before);
}

void tst_ZrRowForm::problems()
{
    m_form->show();
    ZrBtn* button = m_form->Button("x");
    const int row = m_form->AddRow(S("Port"), S("The port."), {button}, ZrRowForm::beside);
    const QImage right = m_form->grab().toImage();
    m_form->SetProblem(row, S("1 to 65535"));
    QCOMPARE(m_form->Problem(row), S("1 to 65535"));
    QCOMPARE(m_form->Help(row), S("The port."));
    const QImage wrong = m_form->grab().toImage();
    QVERIFY(wrong != right);
    // In the colour of errors: redder somewhere than anything was.
    const auto has = [](const QImage& image) {
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if ((image.pixel(x, y) | 0xff000000U) == ZrTheme::errorCol.rgb())
                    return true;
            }
        }
        return false;
    };
    QVERIFY(has(wrong) && !has(right));
    m_form->SetProblem(row, QString());
    QCOMPARE(m_form->grab().toImage(), right);
}

/// In the input's right end, clear of its text, and in the words of the keyboard on the screen.
void tst_ZrRowForm::units()
{
    auto* input = new ZrInput(m_form->Body());
    const int row = m_form->AddRow(S("Size"), S("Help"), {input}, ZrRowForm::beside);
    QCOMPARE(input->caption, S("Size"));
    QCOMPARE(m_form->Unit(row), QString());
    const int before = input->textMargins().right();
    m_form->SetUnit(row, S("MB"));
    QCOMPARE(m_form->Unit(row), S("MB"));
    QCOMPARE(input->caption, S("Size, MB"));
    const int small = input->textMargins().right();
    QVERIFY(small > before);
    QWidget* sign = input->findChildren<QWidget*>().last();
    QCOMPARE(sign->geometry(), QRect(input->width() - small, 0, small, input->height()));
    const QImage with = input->grab().toImage();
    m_form->SetUnit(row, S("nautical miles"));
    QVERIFY(input->textMargins().right() > small);
    QVERIFY(input->grab().toImage() != with);
    // A touch goes to the input.
    QVERIFY(sign->testAttribute(Qt::WA_TransparentForMouseEvents));
    m_form->resize(m_form->width() + 100, m_form->height());
    QCOMPARE(sign->geometry().right(), input->width() - 1);
    m_form->SetUnit(row, QString());
    QCOMPARE(input->caption, S("Size"));
    QCOMPARE(input->textMargins().right(), before);
    // A row without an input has none.
    const int other = m_form->AddRow(S("Other"), S("Help"), {m_form->Button("B")}, ZrRowForm::beside);
    m_form->SetUnit(other, S("MB"));
    m_form->SetUnit(-1, S("MB"));
    m_form->SetUnit(99, S("MB"));
    QCOMPARE(m_form->Unit(other), QString());
    QCOMPARE(m_form->Unit(99), QString());
}

/// A text that needs more lines moves what is below.
void tst_ZrRowForm::longHelp()
{
    m_form->show();
    ZrBtn* first = m_form->Button("x");
    ZrBtn* second = m_form->Button("y");
    const int row = m_form->AddRow(S("First"), S("Short."), {first}, ZrRowForm::beside);
    m_form->AddRow(S("Second"), S("Short."), {second}, ZrRowForm::beside);
    const int before = Place(second).y();
    m_form->SetHelp(row, S("Long words that go on and on. ").repeated(20));
    QVERIFY(Place(second).y() > before);
    QVERIFY(m_form->TextRect(row).bottom() < Place(second).y());
    m_form->SetHelp(row, S("Short."));
    QCOMPARE(Place(second).y(), before);
}

void tst_ZrRowForm::rowsThatAreNone()
{
    m_form->AddRow(S("Row"), S("Help"), {}, ZrRowForm::below);
    for (const int row : {-1, 1, 1000000}) {
        m_form->ShowRow(row, false);
        m_form->SetHelp(row, S("x"));
        m_form->SetProblem(row, S("x"));
        QVERIFY(!m_form->IsRowShown(row));
        QCOMPARE(m_form->Help(row), QString());
        QCOMPARE(m_form->Problem(row), QString());
        QVERIFY(m_form->TextRect(row).isEmpty());
    }
    QVERIFY(m_form->IsRowShown(0));
}

void tst_ZrRowForm::valuesAreShown()
{
    QCOMPARE(m_form->m_shown, 0);
    m_form->show();
    QCOMPARE(m_form->m_shown, 1);
    m_form->hide();
    m_form->show();
    QCOMPARE(m_form->m_shown, 2);
}

void tst_ZrRowForm::scrolls()
{
    for (int i = 0; i < 30; ++i)
        m_form->AddRow(S("Row"), S("Help"), {m_form->Button("x")}, ZrRowForm::beside);
    m_form->show();
    QScrollBar* bar = m_form->findChild<QScrollArea*>()->verticalScrollBar();
    QVERIFY(bar->maximum() > 300);
    // A finger drags the content.
    QWidget* body = m_form->Body();
    QTest::mousePress(body, Qt::LeftButton, Qt::NoModifier, QPoint(30, 300));
    QMouseEvent move(QEvent::MouseMove, QPointF(30, 200), body->mapToGlobal(QPoint(30, 200)), Qt::NoButton,
        Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(body, &move);
    QCOMPARE(bar->value(), 100);
    QTest::mouseRelease(body, Qt::LeftButton, Qt::NoModifier, QPoint(30, 300));
}

void tst_ZrRowForm::restyles()
{
    m_form->resize(1900, 900);
    m_form->show();
    ZrBtn* button = m_form->Button("x");
    m_form->AddRow(S("Row"), S("Help"), {button}, ZrRowForm::beside);
    const int before = Place(button).width();
    ZrTheme::SetAppSize(2560, 1600);
    ZrTheme::SetStdStyle();
    m_form->Restyle();
    QVERIFY(Place(button).width() > before * 3 / 2);
    ZrTheme::SetAppSize(1280, 800);
    ZrTheme::SetStdStyle();
    m_form->Restyle();
    QCOMPARE(Place(button).width(), before);
}

void tst_ZrRowForm::everyWidth()
{
    QVector<QWidget*> all;
    for (int i = 0; i < 4; ++i) {
        ZrBtn* button = m_form->Button("x");
        m_form->AddRow(S("Caption"), S("Some words of help."), {button}, ZrRowForm::beside);
        all.append(button);
    }
    m_form->show();
    for (const int width : {450, 600, 800, 1200}) {
        m_form->resize(width, 500);
        for (int i = 0; i < all.size(); ++i) {
            QVERIFY2(m_form->Body()->rect().contains(all[i]->geometry()), qPrintable(QString::number(width)));
            QVERIFY(!all[i]->geometry().intersects(m_form->TextRect(i)));
            QVERIFY(m_form->Body()->rect().contains(m_form->TextRect(i)));
        }
    }
}

QTEST_MAIN(tst_ZrRowForm)
#include "tst_ZrRowForm.moc"
