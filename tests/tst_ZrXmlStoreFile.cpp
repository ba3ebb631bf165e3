#include "XmlChecks.h"
#include "ZrUtil/ZrXmlStore.h"

namespace {

const QByteArray declaration = "<?xml version=\"1.0\" ?>\n";

QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

/// The second line of a file: saved at \p time.
QByteArray HeadLine(const QDateTime& time)
{
    return "<XmlStore name=\"" + time.toString().toLatin1() + "\">\n";
}

/// Whether \p text is a declaration, a head line of a moment from \p from to now, and \p rest.
bool IsFile(const QByteArray& text, const QDateTime& from, const QByteArray& rest)
{
    const QDateTime now = QDateTime::currentDateTime();
    for (QDateTime time = from; time <= now.addSecs(1); time = time.addSecs(1))
        if (text == declaration + HeadLine(time) + rest)
            return true;
    qWarning("Not as expected: %s", text.constData());
    return false;
}

/// A file in the inside of one object of one set.
QByteArray InObject(const QByteArray& lines)
{
    return declaration
        + "<XmlStore name=\"x\">\n\t<Settings name=\"S\">\n\t\t<Object name=\"O\" type=\"T\">\n" + lines
        + "\t\t</Object>\n\t</Settings>\n</XmlStore>\n";
}

QStringList List(std::initializer_list<const char*> lines)
{
    QStringList list;
    for (const char* line : lines)
        list.append(Latin1(line));
    return list;
}

const QStringList emptyObject = List({"set S", "object O of T"});

} // namespace

class tst_ZrXmlStoreFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void savedBytes();
    void savedEmptyStore();
    void emptyObjectsAreNotWritten();
    void nothingIsEscaped();
    void textsAreLatin1();
    void zeroByteEndsASavedText();
    void conversionsInTextsAreWrittenAsTheyStand();
    void saveReplacesALongerFile();
    void saveMessages_data();
    void saveMessages();
    void saveToFullDevice_data();
    void saveToFullDevice();
    void loadMessages_data();
    void loadMessages();
    void loadFailureLeavesTheStore();
    void emptyFile();
    void firstLineIsSkipped_data();
    void firstLineIsSkipped();
    void linesOutsideSets_data();
    void linesOutsideSets();
    void linesInSets_data();
    void linesInSets();
    void linesInObjects_data();
    void linesInObjects();
    void lineEndsAndBlanksAreTrimmed();
    void longLines_data();
    void longLines();
    void zeroByteEndsALoadedLine();
    void latin1IsLoaded();
    void quoteCutsAValue();
    void emptyTextsAreNotLoaded();
    void newlineInATextStartsALine();
    void repeatedNames();
    void loadAddsToTheStore();
    void unclosedBlocks();
    void roundTrip();
    void fileCutAnywhere();
    void fileWithAnyByteDamaged();
    void bigFile();

private:
    QString Path(const char* name = "settings.xml") const { return m_dir.filePath(Latin1(name)); }

    void Write(const QByteArray& text) const
    {
        QFile file(Path());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        QCOMPARE(file.write(text), qint64(text.size()));
    }

    /// What a store holds after loading \p text.
    QStringList Loaded(const QByteArray& text) const
    {
        Write(text);
        ZrXmlStore store(false);
        const DebugLines lines;
        if (!store.Load(Path()))
            return QStringList(QStringLiteral("(not loaded)"));
        if (lines.Get() != QStringList(DebugLines::Shown(QStringLiteral("Read settings file: ") + Path())))
            return QStringList(QStringLiteral("(other messages)")) + lines.Get();
        return Contents(store);
    }

    const QTemporaryDir m_dir;
};

void tst_ZrXmlStoreFile::savedBytes()
{
    ZrXmlStore store(true);
    ZrXmlSet* first = store.AddSet(QStringLiteral("First set"));
    ZrXmlObj* obj = first->AddObj(QStringLiteral("Obj 1"), QStringLiteral("Type 1"));
    obj->Add(QStringLiteral("Key"), QStringLiteral("a value"));
    obj->Add(QStringLiteral("Empty"), QString());
    obj->Data("line %d", 1);
    obj->Add(QStringLiteral("Late"), QStringLiteral("2"));
    obj->Data("line %d", 2);
    first->AddObj(QStringLiteral("Obj 2"), QString())->Data("only data");
    store.AddSet(QStringLiteral("Empty set"));

    const QDateTime before = QDateTime::currentDateTime();
    QVERIFY(store.Save(Path()));
    QVERIFY(IsFile(ReadFile(Path()), before,
        "\t<Settings name=\"First set\">\n"
        "\t\t<Object name=\"Obj 1\" type=\"Type 1\">\n"
        "\t\t\t<Key val=\"a value\"/>\n"
        "\t\t\t<Empty val=\"\"/>\n"
        "\t\t\t<Late val=\"2\"/>\n"
        "\t\t\t<Data>line 1</Data>\n"
        "\t\t\t<Data>line 2</Data>\n"
        "\t\t</Object>\n"
        "\t\t<Object name=\"Obj 2\" type=\"\">\n"
        "\t\t\t<Data>only data</Data>\n"
        "\t\t</Object>\n"
        "\t</Settings>\n"
        "\t<Settings name=\"Empty set\">\n"
        "\t</Settings>\n"
        "</XmlStore>\n"));
}

void tst_ZrXmlStoreFile::savedEmptyStore()
{
    for (const bool storing : {true, false}) {
        ZrXmlStore store(storing);
        const QDateTime before = QDateTime::currentDateTime();
        QVERIFY(store.Save(Path()));
        QVERIFY(IsFile(ReadFile(Path()), before, "</XmlStore>\n"));
    }
}

void tst_ZrXmlStoreFile::emptyObjectsAreNotWritten()
{
    ZrXmlStore store(true);
    ZrXmlSet* set = store.AddSet(QStringLiteral("S"));
    set->AddObj(QStringLiteral("Empty"), QStringLiteral("T"));
    set->AddObj(QStringLiteral("O"), QStringLiteral("T"))->Add(QStringLiteral("K"), QStringLiteral("v"));
    QVERIFY(store.Save(Path()));
    QVERIFY(!ReadFile(Path()).contains("Empty"));
    ZrXmlStore in(false);
    QVERIFY(in.Load(Path()));
    QCOMPARE(Contents(in), List({"set S", "object O of T", "item K=v"}));
    QVERIFY(!in.Set(QStringLiteral("S"))->Obj(QStringLiteral("Empty"), QStringLiteral("T")));
}

void tst_ZrXmlStoreFile::nothingIsEscaped()
{
    ZrXmlStore store(true);
    ZrXmlObj* obj = store.AddSet(QStringLiteral("<&\">"))->AddObj(QStringLiteral("\""), QStringLiteral(">"));
    obj->Add(QStringLiteral("a b"), QStringLiteral("\"&<>'="));
    obj->Data("%s", "<b>&\"</b>");
    const QDateTime before = QDateTime::currentDateTime();
    QVERIFY(store.Save(Path()));
    QVERIFY(IsFile(ReadFile(Path()), before,
        "\t<Settings name=\"<&\">\">\n"
        "\t\t<Object name=\"\"\" type=\">\">\n"
        "\t\t\t<a b val=\"\"&<>'=\"/>\n"
        "\t\t\t<Data><b>&\"</b></Data>\n"
        "\t\t</Object>\n"
        "\t</Settings>\n"
        "</XmlStore>\n"));
}

void tst_ZrXmlStoreFile::textsAreLatin1()
{
    // u with diaeresis, euro sign, a fish beyond the BMP, y with diaeresis.
    const QString text = QString::fromUtf8("\xC3\xBC\xE2\x82\xAC\xF0\x9F\x90\x9F\xC3\xBF");
    ZrXmlStore store(true);
    ZrXmlObj* obj = store.AddSet(text)->AddObj(text, text);
    obj->Add(text, text);
    obj->Data("%s", text.toUtf8().constData());
    const QDateTime before = QDateTime::currentDateTime();
    QVERIFY(store.Save(Path()));
    QVERIFY(IsFile(ReadFile(Path()), before,
        "\t<Settings name=\"\xFC???\xFF\">\n"
        "\t\t<Object name=\"\xFC???\xFF\" type=\"\xFC???\xFF\">\n"
        "\t\t\t<\xFC???\xFF val=\"\xFC???\xFF\"/>\n"
        "\t\t\t<Data>\xFC???\xFF</Data>\n"
        "\t\t</Object>\n"
        "\t</Settings>\n"
        "</XmlStore>\n"));
}

void tst_ZrXmlStoreFile::zeroByteEndsASavedText()
{
    ZrXmlStore store(true);
    const QString text = QStringLiteral("ab") + QChar(0) + QStringLiteral("cd");
    ZrXmlObj* obj = store.AddSet(text)->AddObj(QStringLiteral("O"), text);
    obj->Add(QStringLiteral("K"), text);
    const QDateTime before = QDateTime::currentDateTime();
    QVERIFY(store.Save(Path()));
    QVERIFY(IsFile(ReadFile(Path()), before,
        "\t<Settings name=\"ab\">\n"
        "\t\t<Object name=\"O\" type=\"ab\">\n"
        "\t\t\t<K val=\"ab\"/>\n"
        "\t\t</Object>\n"
        "\t</Settings>\n"
        "</XmlStore>\n"));
}

void tst_ZrXmlStoreFile::conversionsInTextsAreWrittenAsTheyStand()
{
    ZrXmlStore store(true);
    const QString text = QStringLiteral("%n%s%1000000d%%");
    ZrXmlObj* obj = store.AddSet(text)->AddObj(text, text);
    obj->Add(text, text);
    obj->data.AddTail(new QString(text));
    const QString path = Path("%s%n%d settings.xml");
    const DebugLines lines;
    QVERIFY(store.Save(path));
    ZrXmlStore in(false);
    QVERIFY(in.Load(path));
    QCOMPARE(Contents(in), Contents(store));
    QCOMPARE(lines.Get(),
        QStringList() << DebugLines::Shown(QStringLiteral("Settings file written to ") + path)
                      << DebugLines::Shown(QStringLiteral("Read settings file: ") + path));
}

void tst_ZrXmlStoreFile::saveReplacesALongerFile()
{
    Write(QByteArray(100000, 'x'));
    const QDateTime before = QDateTime::currentDateTime();
    ZrXmlStore store(true);
    QVERIFY(store.Save(Path()));
    QVERIFY(IsFile(ReadFile(Path()), before, "</XmlStore>\n"));
}

void tst_ZrXmlStoreFile::saveMessages_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("written");
    QTest::newRow("ordinary") << Path("saved.xml") << true;
    QTest::newRow("beyond ASCII") << m_dir.filePath(QString::fromUtf8("\xC3\xBC\xE2\x82\xAC.xml")) << true;
    QTest::newRow("no such directory") << Path("missing/settings.xml") << false;
    QTest::newRow("a directory") << m_dir.path() << false;
    QTest::newRow("a directory, with slash") << m_dir.path() + QLatin1Char('/') << false;
    QTest::newRow("where no file can be made") << QStringLiteral("/proc/settings.xml") << false;
    QTest::newRow("below a file") << QStringLiteral("/dev/null/settings.xml") << false;
    QTest::newRow("name too long") << m_dir.filePath(QString(5000, QLatin1Char('x'))) << false;
}

void tst_ZrXmlStoreFile::saveMessages()
{
    QFETCH(QString, path);
    QFETCH(bool, written);
    ZrXmlStore store(true);
    const DebugLines lines;
    QCOMPARE(store.Save(path), written);
    const QString text = written ? QStringLiteral("Settings file written to ")
                                 : QStringLiteral("Cannot write to settings file ");
    QCOMPARE(lines.Get(), QStringList(DebugLines::Shown(text + path)));
    QCOMPARE(QFileInfo(path).isFile(), written);
}

void tst_ZrXmlStoreFile::saveToFullDevice_data()
{
    QTest::addColumn<int>("items");
    QTest::newRow("little: fails on closing") << 1;
    QTest::newRow("much: fails on writing") << 100000;
}

void tst_ZrXmlStoreFile::saveToFullDevice()
{
    QFETCH(int, items);
    const QString full = QStringLiteral("/dev/full");
    ZrXmlStore store(true);
    ZrXmlObj* obj = store.AddSet(QStringLiteral("S"))->AddObj(QStringLiteral("O"), QStringLiteral("T"));
    for (int i = 0; i < items; ++i)
        obj->Add(QStringLiteral("K"), QStringLiteral("v"));
    const DebugLines lines;
    QVERIFY(!store.Save(full));
    QCOMPARE(lines.Get(),
        QStringList(DebugLines::Shown(QStringLiteral("Cannot write to settings file /dev/full"))));
}

void tst_ZrXmlStoreFile::loadMessages_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("read");
    Write(declaration);
    QTest::newRow("ordinary") << Path() << true;
    QTest::newRow("empty device") << QStringLiteral("/dev/null") << true;
    QTest::newRow("opens, but cannot be read") << QStringLiteral("/proc/self/mem") << true;
    QTest::newRow("missing") << Path("missing.xml") << false;
    QTest::newRow("missing, with conversions") << Path("%s%n.xml") << false;
    QTest::newRow("missing directory") << Path("missing/settings.xml") << false;
    QTest::newRow("a directory") << m_dir.path() << false;
}

void tst_ZrXmlStoreFile::loadMessages()
{
    QFETCH(QString, path);
    QFETCH(bool, read);
    ZrXmlStore store(false);
    const DebugLines lines;
    QCOMPARE(store.Load(path), read);
    const QString text
        = read ? QStringLiteral("Read settings file: ") : QStringLiteral("Cannot open settings file: ");
    QCOMPARE(lines.Get(), QStringList(DebugLines::Shown(text + path)));
    QVERIFY(store.IsEmpty());
}

void tst_ZrXmlStoreFile::loadFailureLeavesTheStore()
{
    ZrXmlStore store(false);
    store.AddSet(QStringLiteral("A"));
    QVERIFY(!store.Load(Path("missing.xml")));
    QCOMPARE(Contents(store), List({"set A"}));
    const DebugLines lines;
    QVERIFY(!store.Load(QString()));
    QVERIFY(!store.Save(QString()));
    QVERIFY(lines.Get().contains(DebugLines::Shown(QStringLiteral("Cannot open settings file: "))));
    QVERIFY(lines.Get().contains(DebugLines::Shown(QStringLiteral("Cannot write to settings file "))));
}

void tst_ZrXmlStoreFile::emptyFile()
{
    QCOMPARE(Loaded(QByteArray()), QStringList());
    QCOMPARE(Loaded("\n\n\n"), QStringList());
    QCOMPARE(Loaded(QByteArray(3000, '\0')), QStringList());
}

void tst_ZrXmlStoreFile::firstLineIsSkipped_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("contents");
    const QByteArray set = "<Settings name=\"S\">\n";
    QTest::newRow("a set in the first line") << set << QStringList();
    QTest::newRow("a set in the second line") << "\n" + set << List({"set S"});
    QTest::newRow("1,022 characters") << QByteArray(1022, 'x') + "\n" + set << List({"set S"});
    QTest::newRow("1,023 characters") << QByteArray(1023, 'x') + "\n" + set << List({"set S"});
    QTest::newRow("the rest of a longer line is examined") << QByteArray(1023, 'x') + set << List({"set S"});
    QTest::newRow("not where the limit falls into it") << QByteArray(1022, 'x') + set << QStringList();
}

void tst_ZrXmlStoreFile::firstLineIsSkipped()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, contents);
    QCOMPARE(Loaded(text), contents);
}

void tst_ZrXmlStoreFile::linesOutsideSets_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("contents");
    const auto row = [](const char* line, const QStringList& contents) {
        QTest::newRow(line) << QByteArray(line) << contents;
    };
    const QStringList opened = List({"set S"});
    const QStringList none;
    row("<Settings name=\"S\">", opened);
    row("<Settings name=\"S\"", opened);
    row("<Settings name=\"S\"/> and more", opened);
    row("<Settingsname=\"S\">", opened);
    row("<Settings \t name=\"S\">", opened);
    row("<Settings\v\fname=\"S\">", opened);
    row("\v\f<Settings name=\"S\">", opened);
    row("<Settings name=\"a b <c>\">", List({"set a b <c>"}));
    row("<Settings name=\"S", none);
    row("<Settings name=\"\">", none);
    row("<Settings name='S'>", none);
    row("<Settings name =\"S\">", none);
    row("<Settings id=\"1\" name=\"S\">", none);
    row("<settings name=\"S\">", none);
    row("< Settings name=\"S\">", none);
    row("x<Settings name=\"S\">", none);
    row("<Settings", none);
    row("<XmlStore name=\"S\">", none);
    row("</XmlStore>", none);
    row("</Settings>", none);
    row("<Object name=\"O\" type=\"T\">", none);
    row("<K val=\"v\"/>", none);
    row("<Data>x</Data>", none);
    row("", none);
}

void tst_ZrXmlStoreFile::linesOutsideSets()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, contents);
    QCOMPARE(Loaded(declaration + line + "\n"), contents);
    QCOMPARE(Loaded(declaration + line), contents);
}

void tst_ZrXmlStoreFile::linesInSets_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("contents");
    const auto row = [](const char* line, const QStringList& contents) {
        QTest::newRow(line) << QByteArray(line) << contents;
    };
    // The set is followed by an object of the set, if the line leaves the set open, and by another set, which
    // opens only if the line closed the first.
    const QStringList ignored = List({"set S", "object last of T"});
    const QStringList opened = List({"set S", "object O of T"});
    row("<Object name=\"O\" type=\"T\">", opened);
    row("<Object name=\"O\" type=\"T\"", opened);
    row("<Object name=\"O\" type=\"T\"/>", opened);
    row("<Objectname=\"O\"type=\"T\">", opened);
    row("<Object  name=\"O\" \t type=\"T\">", opened);
    row("<Object name=\"a b\" type=\"<>\">", List({"set S", "object a b of <>"}));
    row("<Object name=\"\" type=\"T\">", ignored);
    row("\v<Object name=\"O\" type=\"T\">", ignored);
    row("<Object name=\"O\" type=\"\">", ignored);
    row("<Object name=\"O\">", ignored);
    row("<Object name=\"O\" type=\"T", ignored);
    row("<Object name=\"O", ignored);
    row("<Object type=\"T\" name=\"O\">", ignored);
    row("<object name=\"O\" type=\"T\">", ignored);
    row("<Settings name=\"Z\">", ignored);
    row("</Object>", ignored);
    row("<K val=\"v\"/>", ignored);
    row("<Data>x</Data>", ignored);
    row("</Settings >", ignored);
    row("</Settings>x", ignored);
    row("</Settings>\v", ignored);
    row("</settings>", ignored);
    row("</Settings>", List({"set S", "set Y"}));
    row(" \t</Settings> \t\r", List({"set S", "set Y"}));
}

void tst_ZrXmlStoreFile::linesInSets()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, contents);
    QCOMPARE(Loaded(declaration + "<Settings name=\"S\">\n" + line
                 + "\n<Object name=\"last\" type=\"T\">\n<Settings name=\"Y\">\n"),
        contents);
}

void tst_ZrXmlStoreFile::linesInObjects_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("contents");
    const auto row = [](const char* line, const char* thing = nullptr) {
        QTest::newRow(line) << QByteArray(line) << (thing ? List({thing}) : QStringList());
    };
    row("<K val=\"v\"/>", "item K=v");
    row("<K val=\"v\">", "item K=v");
    row("<K val=\"v\"", "item K=v");
    row("<K val=\"v\" other=\"w\"/>", "item K=v");
    row("<K val=\"a b\"/>", "item K=a b");
    row("<K val=\" \"/>", "item K= ");
    row("<K val=\"<>=&\"/>", "item K=<>=&");
    row("<K val=\"a\"b\"/>", "item K=a");
    row("<  K val=\"v\"/>", "item K=v");
    row("<K\t  val=\"v\"/>", "item K=v");
    row("<K\v\fval=\"v\"/>", "item K=v");
    row("<K<> val=\"v\"/>", "item K<>=v");
    row("<%n%s val=\"%n%s\"/>", "item %n%s=%n%s");
    row("<!-- val=\"x\" -->", "item !--=x");
    row("<Data> val=\"x\"</Data>", "item Data>=x");
    row("<Data val=\"x\">y</Data>", "item Data=x");
    row("<Object val=\"x\">", "item Object=x");
    row("<K val=\"v");
    row("<K val=\"\"/>");
    row("<K val=''/>");
    row("<K val = \"v\"/>");
    row("<K Val=\"v\"/>");
    row("<K other=\"w\" val=\"v\"/>");
    row("<Kval=\"v\"/>");
    row("<a name val=\"v\"/>");
    row("\v<K val=\"v\"/>");
    row("K val=\"v\"/>");
    row("< val=\"v\"/>");
    row("<");
    row("<K");
    row("<K val");
    row("");

    row("<Data>some text</Data>", "data some text");
    row("<Data> a = \"b\" </Data>", "data  a = \"b\" ");
    row("<Data>%n%s</Data>", "data %n%s");
    row("<Data>a<b>c</Data>", "data a");
    row("<Data>a<", "data a");
    row("<Data></Data>");
    row("<Data>a");
    row("<Data>");
    row("<data>a</data>");
    row("<Data >a</Data>");
    row("< Data>a</Data>");

    row("<Settings name=\"Z\">");
    row("</Settings>");
    row("<Object name=\"P\" type=\"T\">");
    row("</Object>x");
    row("</object>");
    row("</Object>\f");
}

void tst_ZrXmlStoreFile::linesInObjects()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, contents);
    // The last item shows that the object is still open.
    QCOMPARE(Loaded(InObject(line + "\n<last val=\"1\"/>\n")),
        emptyObject
            + (contents.value(0).startsWith(QLatin1String("data")) ? List({"item last=1"}) + contents
                                                                   : contents + List({"item last=1"})));
}

void tst_ZrXmlStoreFile::lineEndsAndBlanksAreTrimmed()
{
    QByteArray text = InObject("\t\t\t<K val=\"v\"/>\n\t\t\t<Data>d</Data>\n");
    const QStringList expected = emptyObject + List({"item K=v", "data d"});
    QCOMPARE(Loaded(text), expected);
    QCOMPARE(Loaded(QByteArray(text).replace("\n", "\r\n")), expected);
    QCOMPARE(Loaded(QByteArray(text).replace("\t", "")), expected);
    QCOMPARE(Loaded(QByteArray(text).replace("\n", " \t \r \n \r\t")), expected);
    QCOMPARE(Loaded(text.left(text.size() - 1)), expected);
    // A CR within a line is part of it.
    QCOMPARE(Loaded(InObject("<K val=\"a\rb\"/>\n")), emptyObject + List({"item K=a\rb"}));
}

void tst_ZrXmlStoreFile::longLines_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QStringList>("things");
    const auto item = [](int length) {
        // <K val="..."/> of so many characters in all
        return "<K val=\"" + QByteArray(length - 11, 'v') + "\"/>";
    };
    const auto found = [](int length) {
        return QStringList(QStringLiteral("item K=") + QString(length - 11, QLatin1Char('v')));
    };
    QTest::newRow("1,022 characters") << item(1022) + "\n" << found(1022);
    QTest::newRow("1,023 characters") << item(1023) + "\n" << found(1023);
    QTest::newRow("1,024: the quote is still read") << item(1024) + "\n" << found(1024);
    QTest::newRow("1,025: the quote is still read") << item(1025) + "\n" << found(1025);
    QTest::newRow("1,026: the quote is beyond the limit") << item(1026) + "\n" << QStringList();
    QTest::newRow("1,022 and CR LF") << item(1022) + "\r\n" << found(1022);
    QTest::newRow("1,023 and CR LF") << item(1023) + "\r\n" << found(1023);
    QTest::newRow("1,100") << item(1100) + "\n" << QStringList();
    QTest::newRow("data of 1,100") << "<Data>" + QByteArray(1087, 'd') + "</Data>\n" << QStringList();
    QTest::newRow("the second piece forms an item") << QByteArray(1023, 'x') + "<L val=\"w\"/>\n"
                                                    << List({"item L=w"});
    QTest::newRow("both pieces form an item") << item(1023) + "<L val=\"w\"/>\n"
                                              << found(1023) + List({"item L=w"});
    QTest::newRow("the third piece forms data") << QByteArray(2046, 'x') + "<Data>d</Data>\n"
                                                << List({"data d"});
    QTest::newRow("blanks count") << QByteArray(1023, ' ') + "<L val=\"w\"/>\n" << List({"item L=w"});
    QTest::newRow("a million characters") << QByteArray(1000000, 'x') + "\n" << QStringList();
}

void tst_ZrXmlStoreFile::longLines()
{
    QFETCH(QByteArray, lines);
    QFETCH(QStringList, things);
    QCOMPARE(Loaded(InObject(lines)), emptyObject + things);
}

void tst_ZrXmlStoreFile::zeroByteEndsALoadedLine()
{
    const auto withZero = [](QByteArray text) { return text.replace('0', QByteArray(1, '\0')); };
    QCOMPARE(Loaded(InObject(withZero("<K val=\"v\"/>0<L val=\"w\"/>\n"))), emptyObject + List({"item K=v"}));
    QCOMPARE(
        Loaded(InObject(withZero("<K val=\"v0w\"/>\n<L val=\"w\"/>\n"))), emptyObject + List({"item L=w"}));
    QCOMPARE(Loaded(InObject(withZero("0<K val=\"v\"/>\n"))), emptyObject);
    // The blanks before the zero byte are at the end of the line.
    QCOMPARE(Loaded(InObject(withZero("</Object> \t0x\n<K val=\"v\"/>\n"))), emptyObject);
}

void tst_ZrXmlStoreFile::latin1IsLoaded()
{
    QCOMPARE(Loaded(InObject("<\xC4 val=\"\xFC\xFF\"/>\n<Data>\xE9</Data>\n")),
        emptyObject + List({"item \xC4=\xFC\xFF", "data \xE9"}));
    // Neither a blank nor an end of line beyond ASCII is white space.
    QCOMPARE(Loaded(InObject("<a\xA0"
                             "b\x85 val=\"v\"/>\n")),
        emptyObject
            + List({"item a\xA0"
                    "b\x85=v"}));
}

void tst_ZrXmlStoreFile::quoteCutsAValue()
{
    ZrXmlStore out(true);
    ZrXmlObj* obj = out.AddSet(QStringLiteral("S"))->AddObj(QStringLiteral("O"), QStringLiteral("T"));
    obj->Add(QStringLiteral("K"), QStringLiteral("12\" pipe"));
    QVERIFY(out.Save(Path()));
    ZrXmlStore in(false);
    QVERIFY(in.Load(Path()));
    QCOMPARE(Contents(in), emptyObject + List({"item K=12"}));
}

void tst_ZrXmlStoreFile::emptyTextsAreNotLoaded()
{
    ZrXmlStore out(true);
    ZrXmlSet* set = out.AddSet(QStringLiteral("S"));
    ZrXmlObj* obj = set->AddObj(QStringLiteral("O"), QStringLiteral("T"));
    obj->Add(QStringLiteral("K"), QString());
    obj->Add(QStringLiteral("L"), QStringLiteral("w"));
    obj->Data("%s", "");
    set->AddObj(QStringLiteral("P"), QString())->Add(QStringLiteral("K"), QStringLiteral("v"));
    set->AddObj(QString(), QStringLiteral("T"))->Add(QStringLiteral("K"), QStringLiteral("v"));
    out.AddSet(QString())->AddObj(QStringLiteral("O"), QStringLiteral("T"))->Data("x");
    QVERIFY(out.Save(Path()));
    ZrXmlStore in(false);
    QVERIFY(in.Load(Path()));
    QCOMPARE(Contents(in), emptyObject + List({"item L=w"}));
}

void tst_ZrXmlStoreFile::newlineInATextStartsALine()
{
    ZrXmlStore out(true);
    ZrXmlObj* obj = out.AddSet(QStringLiteral("S"))->AddObj(QStringLiteral("O"), QStringLiteral("T"));
    obj->Add(QStringLiteral("K"), QStringLiteral("v\"/>\n<L val=\"w"));
    QVERIFY(out.Save(Path()));
    ZrXmlStore in(false);
    QVERIFY(in.Load(Path()));
    QCOMPARE(Contents(in), emptyObject + List({"item K=v", "item L=w"}));
}

void tst_ZrXmlStoreFile::repeatedNames()
{
    const QByteArray object = "<Object name=\"O\" type=\"T\">\n<K val=\"1\"/>\n<K val=\"2\"/>\n</Object>\n";
    const QByteArray again = "<Object name=\"O\" type=\"U\">\n<K val=\"3\"/>\n</Object>\n";
    Write(declaration + "<Settings name=\"S\">\n" + object + again + "</Settings>\n<Settings name=\"Z\">\n"
        + "</Settings>\n<Settings name=\"S\">\n" + again + "</Settings>\n");
    ZrXmlStore store(false);
    QVERIFY(store.Load(Path()));
    QCOMPARE(Contents(store), emptyObject + List({"item K=1", "item K=2", "item K=3", "item K=3", "set Z"}));

    ZrXmlObj* obj = store.Set(QStringLiteral("S"))->Obj(QStringLiteral("O"), QStringLiteral("T"));
    QString found;
    for (int i = 0; i < 5; ++i) {
        QString value;
        obj->Item(QStringLiteral("K"), value);
        found += value;
    }
    QCOMPARE(found, QStringLiteral("12331"));
}

void tst_ZrXmlStoreFile::loadAddsToTheStore()
{
    Write(InObject("<K val=\"v\"/>\n<Data>d</Data>\n"));
    ZrXmlStore store(true);
    store.AddSet(QStringLiteral("A"));
    QVERIFY(store.Load(Path()));
    QVERIFY(store.Load(Path()));
    QCOMPARE(
        Contents(store), List({"set A"}) + emptyObject + List({"item K=v", "item K=v", "data d", "data d"}));
    QVERIFY(store.IsStoring());
}

void tst_ZrXmlStoreFile::unclosedBlocks()
{
    const QByteArray text
        = declaration + "<Settings name=\"S\">\n<Object name=\"O\" type=\"T\">\n<K val=\"v\"/>\n";
    const QStringList contents = emptyObject + List({"item K=v"});
    QCOMPARE(Loaded(text), contents);
    QCOMPARE(Loaded(text + "</Object>\n"), contents);
    // An unclosed object swallows what follows, its items too.
    QCOMPARE(
        Loaded(text + "</Settings>\n<Settings name=\"Z\">\n<Object name=\"P\" type=\"T\">\n<L val=\"w\"/>\n"),
        contents + List({"item L=w"}));
    // An unclosed set takes the objects of the next.
    QCOMPARE(Loaded(text
                 + "</Object>\n<Settings name=\"Z\">\n<Object name=\"P\" type=\"T\">\n<L val=\"w\"/>\n"
                   "</Object>\n</Settings>\n"),
        contents + List({"object P of T", "item L=w"}));
}

void tst_ZrXmlStoreFile::roundTrip()
{
    ZrXmlStore out(true);
    for (const char* set : {"Route", "Markers", "a longer name, with = and <>"}) {
        for (const char* name : {"Wpt 0", "Wpt 1"}) {
            ZrXmlObj* obj = out.AddSet(Latin1(set))->AddObj(Latin1(name), QStringLiteral("Waypoint"));
            obj->Add(QStringLiteral("Lat"), "%.10f", 50.25);
            obj->Add(QStringLiteral("Name"),
                Latin1("K\xFCste, S\xFC"
                       "d = 1 < 2"));
            obj->Add(QStringLiteral("Lat"), QStringLiteral("again"));
            obj->Data("%s", "data with \"quotes\" and = signs");
            obj->Data("second");
        }
    }
    QVERIFY(out.Save(Path()));
    ZrXmlStore in(false);
    QVERIFY(in.Load(Path()));
    QCOMPARE(Contents(in), Contents(out));
    for (ZrListPos* setPos = in.GetHeadPos(); setPos;) {
        const ZrXmlSet* set = in.GetNext(setPos);
        QCOMPARE(set->store, &in);
        for (ZrListPos* pos = set->GetHeadPos(); pos;)
            QCOMPARE(static_cast<const ZrXmlSet*>(set->GetNext(pos)->set), set);
    }
    // What was loaded is written as it was, but for the time.
    const QByteArray first = ReadFile(Path());
    QVERIFY(in.Save(Path("again.xml")));
    const QByteArray second = ReadFile(Path("again.xml"));
    QCOMPARE(second.mid(second.indexOf("\t<Settings")), first.mid(first.indexOf("\t<Settings")));
}

void tst_ZrXmlStoreFile::fileCutAnywhere()
{
    const QByteArray text
        = InObject("\t\t\t<Key val=\"value\"/>\n\t\t\t<Other val=\"1\"/>\n\t\t\t<Data>d</Data>\n");
    const QStringList whole = Loaded(text);
    QCOMPARE(whole.size(), 5);
    for (int size = 0; size < text.size(); ++size) {
        const QStringList part = Loaded(text.left(size));
        QCOMPARE(part, whole.mid(0, part.size()));
    }
}

void tst_ZrXmlStoreFile::fileWithAnyByteDamaged()
{
    const QByteArray text = InObject("\t\t\t<Key val=\"value\"/>\n\t\t\t<Data>d</Data>\n");
    for (int i = 0; i < text.size(); ++i) {
        for (const char byte : {'\0', '\n', '"', '<', ' ', '\xFF'}) {
            QByteArray damaged = text;
            damaged[i] = byte;
            const QStringList contents = Loaded(damaged);
            QVERIFY2(contents.size() <= 4 && !contents.contains(QStringLiteral("(not loaded)")),
                qPrintable(contents.join(QLatin1Char('\n'))));
        }
    }
}

void tst_ZrXmlStoreFile::bigFile()
{
    ZrXmlStore out(true);
    ZrXmlSet* set = out.AddSet(QStringLiteral("S"));
    for (int i = 0; i < 500; ++i) {
        ZrXmlObj* obj = set->AddObj(QStringLiteral("Obj %1").arg(i), QStringLiteral("T"));
        for (int k = 0; k < 50; ++k)
            obj->Add(QStringLiteral("Key%1").arg(k), "%d", i * 50 + k);
    }
    QVERIFY(out.Save(Path()));
    ZrXmlStore in(false);
    QVERIFY(in.Load(Path()));
    QCOMPARE(Contents(in), Contents(out));
}

QTEST_GUILESS_MAIN(tst_ZrXmlStoreFile)
#include "tst_ZrXmlStoreFile.moc"
