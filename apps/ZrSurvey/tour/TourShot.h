#pragma once

#include <QImage>
#include <QRect>

#include <vector>

class Tour;
class QWidget;
class ReviewPage;

/// What the page "Review" showed at a moment, to be held against a later one: that what cannot be the same
/// every time, and so is not compared with a golden picture, changes when and where it must.
class TourShot
{
public:
    /// Takes it.
    TourShot(const Tour& tour, ReviewPage& page);

    /// Notes each pane in which nothing is other now than in \p before: map, waterfall, plots and time line
    /// all show where the cursor is.
    void ExpectMoved(Tour& tour, const TourShot& before, const QString& when) const;

    /// Notes it when the band from A to B does not stand in the time line, or anything else of that has
    /// changed since \p without, which had none and the cursor where it is.
    void ExpectRange(Tour& tour, const TourShot& without) const;

private:
    struct Pane
    {
        QString name;
        QImage image;
    };

    static std::vector<int> OtherColumns(const QImage& a, const QImage& b);

    ReviewPage& m_page;
    std::vector<Pane> m_panes; ///< the time line last
    double m_ratio = 1.0; ///< pixels of a picture for each of the window
};
