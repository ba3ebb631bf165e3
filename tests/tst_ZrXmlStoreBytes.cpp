// The file form of the settings store in bytes: the same as in files.

#include "XmlChecks.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QFile>
#include <QTemporaryDir>

namespace {

const char* const bytes
    = "<?xml?>\n"
      "<Settings name=\"A\">\n<Object name=\"o\" type=\"t\">\n<K val=\"1\"/>\n</Object>\n"
      "<Object name=\"o\" type=\"other\">\n<L val=\"2\"/>\n</Object>\n</Settings>\n"
      "<Settings name=\"B\">\n<Object name=\"o\" type=\"t\">\n<K val=\"3\"/>\n</Object>\n</Settings>\n"
      "<Settings name=\"A\">\n<Object name=\"o\" type=\"t\">\n<M val=\"4\"/>\n</Object>\n</Settings>\n";

/// Everything that \p store holds, an object a line.
QStringList Text(const ZrXmlStore& store)
{
    QStringList all;
    for (ZrListPos* setPos = store.GetHeadPos(); setPos;) {
        const ZrXmlSet* set = store.GetNext(setPos);
        for (ZrListPos* pos = set->GetHeadPos(); pos;) {
            const ZrXmlObj* obj = set->GetNext(pos);
            all << set->name + QLatin1Char(' ') + obj->name + QLatin1Char(' ') + obj->type + QLatin1Char(' ')
                    + Items(*obj).join(QLatin1Char(','));
        }
    }
    return all;
}

} // namespace

class tst_ZrXmlStoreBytes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sameAsFiles();
    void sameNamesAreTheSame();
    void loadingAdds();
    void manyObjects();
};

void tst_ZrXmlStoreBytes::sameAsFiles()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("store.xml"));
    ZrXmlStore store(false);
    store.LoadFileForm(bytes);
    QVERIFY(store.Save(path));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    // The second line holds the date.
    const auto withoutDate
        = [](QByteArray text) { return text.remove(text.indexOf("<XmlStore"), text.indexOf('\n', 30)); };
    QCOMPARE(withoutDate(store.FileForm()), withoutDate(file.readAll()));
    ZrXmlStore fromFile(false);
    QVERIFY(fromFile.Load(path));
    QCOMPARE(Text(fromFile), Text(store));
}

void tst_ZrXmlStoreBytes::sameNamesAreTheSame()
{
    ZrXmlStore store(false);
    store.LoadFileForm(bytes);
    QCOMPARE(Text(store), (QStringList{QStringLiteral("A o t K=1,L=2,M=4"), QStringLiteral("B o t K=3")}));
    QVERIFY(store.GetHead()->store == &store && store.GetHead()->GetHead()->set == store.GetHead());
    store.LoadFileForm(QByteArray());
    QCOMPARE(Text(store).size(), 2);
}

/// Into the first of equal names that the store already holds.
void tst_ZrXmlStoreBytes::loadingAdds()
{
    ZrXmlStore store(false);
    store.AddSet(QStringLiteral("B"))->AddObj(QStringLiteral("o"), QStringLiteral("former"));
    store.AddTail(new ZrXmlSet(QStringLiteral("B"), &store));
    store.GetHead()->AddTail(new ZrXmlObj(QStringLiteral("o"), QStringLiteral("second"), store.GetHead()));
    store.LoadFileForm(bytes);
    QCOMPARE(Text(store),
        (QStringList{QStringLiteral("B o former K=3"), QStringLiteral("B o second "),
            QStringLiteral("A o t K=1,L=2,M=4")}));
}

/// In order, and soon: a search through all for each of these would take 5,000,000,000 comparisons.
void tst_ZrXmlStoreBytes::manyObjects()
{
    QByteArray many = "<?xml?>\n<Settings name=\"A\">\n";
    for (int i = 0; i < 100000; ++i)
        many += "<Object name=\"" + QByteArray::number(i) + "\" type=\"t\">\n<K val=\"1\"/>\n</Object>\n";
    ZrXmlStore store(false);
    store.LoadFileForm(many);
    const ZrXmlSet* set = store.GetHead();
    QCOMPARE(set->GetCount(), 100000);
    int i = 0;
    for (ZrListPos* pos = set->GetHeadPos(); pos; ++i)
        QCOMPARE(set->GetNext(pos)->name, QString::number(i));
}

QTEST_GUILESS_MAIN(tst_ZrXmlStoreBytes)
#include "tst_ZrXmlStoreBytes.moc"
