#pragma once

#include <QPointer>
#include <QRect>
#include <QString>
#include <QVector>
#include <QWidget>

#include <utility>

/// A picture of the window, with a file beside it that tells what of it is the same every time.
///
/// "NAME.json" has "changing", the parts that are not, and "controls", what the user can touch or read there,
/// each with its name; both as [x, y, width, height] in pixels of the picture. Controls that are covered, by
/// an open panel for instance, are left out. GUI thread only.
class TourPicture
{
public:
    explicit TourPicture(QWidget& window)
        : m_window(window)
    {
    }

    void Clear(); ///< all is the same again

    /// What \p widget shows is not the same every time, or the \p part of it, wherever it is when the picture
    /// is taken, and whether it is shown or not.
    void Changes(const QWidget& widget, const QRect& part = QRect());

    /// Takes it: \p path without suffix.
    /// \returns the file that cannot be written; empty when both are
    QString Save(const QString& path) const;

    static bool IsNotes(const QString& path); ///< whether the file is what `Save` writes beside a picture

private:
    QByteArray Notes(double ratio) const;

    QWidget& m_window;
    QVector<std::pair<QPointer<const QWidget>, QRect>> m_changing;
};
