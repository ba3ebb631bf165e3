// Every text on every page goes through the translators: with one that writes Greek letters for Latin ones
// nothing else that can be read is left on the screen but data, units and names.

#include "DrawnText.h"
#include "SurveyWindow.h"
#include "ZrKit/ui/ZrRowForm.h"
#include "ZrUtil/ZrBtn.h"

#include <QTranslator>

namespace {

/// Writes all letters of translated texts in Greek, placeholders stay.
class GreekTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }

    QString translate(
        const char* /*context*/, const char* text, const char* /*disambiguation*/, int n) const override
    {
        QString result = QString::fromUtf8(text);
        result.replace(QStringLiteral("%n"), QString::number(n));
        for (int i = 0; i < result.size(); ++i) {
            const QChar c = result.at(i);
            if (i > 0 && result.at(i - 1) == QLatin1Char('%'))
                continue; // "%L1"
            if (c >= QLatin1Char('a') && c <= QLatin1Char('z'))
                result[i] = QChar(0x3B1 + (c.unicode() - 'a') % 24);
            else if (c >= QLatin1Char('A') && c <= QLatin1Char('Z'))
                result[i] = QChar(0x391 + (c.unicode() - 'A') % 16);
        }
        return result;
    }
};

} // namespace

class tst_SurveyTranslation : public SurveyWindow
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void pages_data();
    void pages();
    void forms();
    void toolTips();
    void catchesWhatIsNot();

private:
    static QStringList Latin(const QSet<QString>& texts);
    static QSet<QString> Drawn(QWidget& widget);

    GreekTranslator m_translator;
};

void tst_SurveyTranslation::initTestCase()
{
    QCoreApplication::installTranslator(&m_translator);
}

void tst_SurveyTranslation::init()
{
    Open();
}

void tst_SurveyTranslation::cleanup()
{
    Close();
}

/// Texts with a Latin word that is neither a unit of the library, nor the name of a product or a folder.
QStringList tst_SurveyTranslation::Latin(const QSet<QString>& texts)
{
    static const QSet<QString> data = {QStringLiteral("ZrSurvey"), ZrUnits::GetLongLengthUnits(),
        ZrUnits::GetSpeedUnits(), QStringLiteral("OpenGL"), QStringLiteral("Qt")};
    QStringList latin;
    for (const QString& text : texts) {
        if (text.contains(QLatin1Char('/')) && !text.contains(QLatin1Char(' ')))
            continue; // a path, or a unit such as m/s
        if (text.contains(QStringLiteral("Aufnahmen")))
            continue; // the folder of the recordings
        const QStringList words
            = text.split(QRegularExpression(QStringLiteral("[^A-Za-z]+")), Qt::SkipEmptyParts);
        for (const QString& word : words) {
            if (word.size() > 1 && !data.contains(word)) {
                latin.append(text);
                break;
            }
        }
    }
    latin.sort();
    return latin;
}

QSet<QString> tst_SurveyTranslation::Drawn(QWidget& widget)
{
    QSet<QString> texts;
    for (const DrawnText& drawn : TextDevice::Of(widget, QWidget::DrawChildren))
        texts.insert(drawn.text);
    return texts;
}

void tst_SurveyTranslation::pages_data()
{
    QTest::addColumn<QString>("page");
    for (const char* page : {"Home", "Plan", "Record", "Review", "Scene"})
        QTest::newRow(page) << QString::fromLatin1(page);
}

void tst_SurveyTranslation::pages()
{
    QFETCH(QString, page);
    m_view->Show(page);
    Settle();
    QSet<QString> texts;
    for (QWidget* child : m_view->findChildren<QWidget*>()) {
        if (child->isVisible() && !child->visibleRegion().isEmpty())
            texts += Drawn(*child);
    }
    QVERIFY2(texts.size() >= 3, qPrintable(QStringList(texts.values()).join(QLatin1Char('|'))));
    QCOMPARE(Latin(texts).join(QLatin1Char('\n')), QString());
}

void tst_SurveyTranslation::forms()
{
    QSet<QString> texts;
    for (ZrForm* form : m_view->forms().m_forms) {
        if (!qobject_cast<ZrRowForm*>(form))
            continue; // those of the library have its own texts
        form->resize(800, 2000);
        for (QWidget* child : form->findChildren<QWidget*>())
            texts += Drawn(*child);
    }
    QVERIFY(texts.size() > 20);
    QCOMPARE(Latin(texts).join(QLatin1Char('\n')), QString());
}

void tst_SurveyTranslation::toolTips()
{
    for (const char* page : {"Plan", "Record", "Review", "Scene"})
        m_view->Show(QString::fromLatin1(page));
    QSet<QString> texts;
    for (QWidget* child : m_view->findChildren<QWidget*>()) {
        texts.insert(child->toolTip());
        texts.insert(child->accessibleName());
    }
    QVERIFY(texts.size() > 30);
    QCOMPARE(Latin(texts).join(QLatin1Char('\n')), QString());
}

void tst_SurveyTranslation::catchesWhatIsNot()
{
    ZrBtn button(m_view.get(), ZrBtn::typeStd);
    button.text = QStringLiteral("Left behind");
    button.resize(300, 80);
    button.Changed();
    button.show();
    QCOMPARE(Latin(Drawn(button)).join(QLatin1Char(' ')), QStringLiteral("Left behind"));
}

QTEST_MAIN(tst_SurveyTranslation)
#include "tst_SurveyTranslation.moc"
