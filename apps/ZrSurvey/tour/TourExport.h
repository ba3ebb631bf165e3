#pragma once

#include <QByteArray>
#include <QPointF>
#include <QString>
#include <QVector>

class Tour;

/// Exports from the page "Review" as a person makes them, and reads what is in the files.
class TourExport
{
public:
    explicit TourExport(Tour& tour)
        : m_tour(tour)
    {
    }

    QString Path(const QString& name) const; ///< in the folder of exports
    void Write(const QString& kind, const QString& name) const; ///< and waits until it is there
    QByteArray Read(const QString& name) const;

    /// The positions of a track in any of its forms: longitude, latitude, degrees.
    QVector<QPointF> Track(const QString& name) const;

    void ExpectPicture(const QString& name, int leastWidth) const; ///< that shows something

private:
    Tour& m_tour;
};
