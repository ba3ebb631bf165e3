#pragma once

// Mesh files for tests.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

/// An OBJ file that lives as long as the object.
class ObjFile
{
public:
    ObjFile() = default;

    explicit ObjFile(const QByteArray& text) { Write(text); }

    /// The path; empty when the file cannot be written.
    QString Write(const QByteArray& text)
    {
        QFile file(Path());
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            return QString();
        return Path();
    }

    QString Path() const { return m_folder.filePath(QStringLiteral("mesh äß.obj")); }

    QString Missing() const { return m_folder.filePath(QStringLiteral("missing.obj")); }

    QString Folder() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

/// One triangle whose corners differ in position, texture coordinate and normal.
inline const QByteArray objTriangle = "o hull\n"
                                      "v 1 2 3\nv -1.5 2e1 .5\nv 7. 8 9\n"
                                      "vt 0.25 0.75\nvt 1 0\n"
                                      "vn 0 0 1\nvn 0 1 0\n"
                                      "f 1/1/1 2/2/2 3/1/2\n";
