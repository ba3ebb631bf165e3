#pragma once

#include "ZrUtil/ZrXmlStore.h"

#include <QtTest/QtTest>

#include <clocale>
#include <cstdio>
#include <cstring>

/// Collects what goes to the Qt message stream while it lives. Used by one thread.
class DebugLines
{
public:
    DebugLines()
    {
        s_lines.clear();
        s_former = qInstallMessageHandler(&DebugLines::Take);
    }

    ~DebugLines() { qInstallMessageHandler(s_former); }

    DebugLines(const DebugLines&) = delete;
    DebugLines& operator=(const DebugLines&) = delete;

    /// The lines so far. What is no debug message says so.
    static QStringList Get() { return s_lines; }

    /// How `ZrConsole::Debug` shows \p text under id 0.
    static QString Shown(const QString& text) { return QStringLiteral("Debug  0 :  \"%1\"").arg(text); }

private:
    static void Take(QtMsgType type, const QMessageLogContext&, const QString& text)
    {
        s_lines.append(type == QtDebugMsg ? text : QStringLiteral("not a debug line: ") + text);
    }

    static inline QStringList s_lines;
    static inline QtMessageHandler s_former = nullptr;
};

/// An object of a store that is being read, ready for items.
struct LoadingObj
{
    ZrXmlStore store{false};
    ZrXmlObj* obj = store.AddSet(QStringLiteral("S"))->AddObj(QStringLiteral("O"), QStringLiteral("T"));
};

/// The items of \p obj as "name=value", in order.
inline QStringList Items(const ZrXmlObj& obj)
{
    QStringList items;
    for (ZrListPos* pos = obj.GetHeadPos(); pos;) {
        const ZrXmlItem* item = obj.GetNext(pos);
        items.append(item->name + QLatin1Char('=') + item->value);
    }
    return items;
}

/// The data lines of \p obj, in order.
inline QStringList DataLines(const ZrXmlObj& obj)
{
    QStringList lines;
    for (ZrListPos* pos = obj.data.GetHeadPos(); pos;)
        lines.append(*obj.data.GetNext(pos));
    return lines;
}

/// Everything that \p store holds, one line per thing, in order, none of it left out.
inline QStringList Contents(const ZrXmlStore& store)
{
    QStringList all;
    for (ZrListPos* setPos = store.GetHeadPos(); setPos;) {
        const ZrXmlSet* set = store.GetNext(setPos);
        all.append(QStringLiteral("set ") + set->name);
        for (ZrListPos* pos = set->GetHeadPos(); pos;) {
            const ZrXmlObj* obj = set->GetNext(pos);
            all.append(QStringLiteral("object ") + obj->name + QStringLiteral(" of ") + obj->type);
            for (const QString& item : Items(*obj))
                all.append(QStringLiteral("item ") + item);
            for (const QString& line : DataLines(*obj))
                all.append(QStringLiteral("data ") + line);
        }
    }
    return all;
}

inline QString Latin1(const char* text)
{
    return QString::fromLatin1(text);
}

/// Sets a process locale with a decimal comma while it lives.
///
/// Where no such locale is installed it makes one: a file in the format in which the GNU C library keeps the
/// numeric part of a locale, found through LOCPATH.
class CommaLocale
{
public:
    CommaLocale()
    {
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "nl_NL.UTF-8", "da_DK.UTF-8"})
            if (std::setlocale(LC_NUMERIC, name) && HasComma())
                return;
        QDir(m_dir.path()).mkdir(QStringLiteral("comma"));
        QFile file(m_dir.filePath(QStringLiteral("comma/LC_NUMERIC")));
        if (!file.open(QIODevice::WriteOnly) || file.write(NumericPart()) < 0)
            return;
        file.close();
        qputenv("LOCPATH", QFile::encodeName(m_dir.path()));
        std::setlocale(LC_NUMERIC, "comma");
    }

    ~CommaLocale()
    {
        std::setlocale(LC_NUMERIC, "C");
        if (m_hadLocPath)
            qputenv("LOCPATH", m_locPath);
        else
            qunsetenv("LOCPATH");
    }

    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    /// Whether printf of the calling thread writes a decimal comma.
    static bool HasComma()
    {
        char text[8];
        std::snprintf(text, sizeof text, "%g", 1.5);
        return std::strcmp(text, "1,5") == 0;
    }

private:
    /// Decimal comma, no thousands separator, no grouping, the first two as wide characters, UTF-8.
    static QByteArray NumericPart()
    {
        QByteArray part;
        const auto word
            = [&part](quint32 value) { part.append(reinterpret_cast<const char*>(&value), sizeof value); };
        word(0x20031115U ^ quint32(LC_NUMERIC));
        word(6);
        for (const quint32 offset : {32U, 34U, 35U, 36U, 40U, 44U})
            word(offset);
        part.append(",\0\0\0", 4);
        word(',');
        word(0);
        part.append("UTF-8", 6);
        return part;
    }

    const bool m_hadLocPath = qEnvironmentVariableIsSet("LOCPATH");
    const QByteArray m_locPath = qgetenv("LOCPATH");
    const QTemporaryDir m_dir;
};
