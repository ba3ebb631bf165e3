#pragma once

#include "apps/ZrSurvey/tour/TourHand.h"
#include "apps/ZrSurvey/tour/TourLog.h"
#include "apps/ZrSurvey/tour/TourPicture.h"

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

struct SurveyModel;

/// Drives the application by events through its whole main job, station by station, looks after each whether
/// all is as it must be, and ends where it is not.
///
/// \code
/// Tour tour(folder, line);
/// if (!tour.Prepare())
///     return tell(tour.Error());
/// SurveyView view(tour.DataDir());
/// return tour.Run(view); // 0, or 2 when anything was not as expected
/// \endcode
///
/// The folder gets a picture of each station with its notes, "exports", "data" (settings, draft, recordings)
/// and "tour.txt", what was printed. A folder is refused when it is neither empty nor of an earlier tour, as
/// its "tour.txt" tells, and when one of these three is a link. Of an earlier tour the pictures with their
/// notes are deleted, "exports" and "data" with all that is in them, and nothing else.
class Tour : public QObject
{
    Q_OBJECT

public:
    /// \param line a side-scan line in XTF form
    Tour(const QString& folder, const QString& line);
    ~Tour() override;

    /// The line that comes with the program; empty when it is not found.
    static QString DefaultLine();

    bool Prepare(); ///< makes the folder; false with the reason in `Error`
    int Run(SurveyView& view);

    QString Error() const { return m_error; }

    QString DataDir() const { return m_folder + QStringLiteral("/data"); }

    QString Recordings() const { return DataDir() + QStringLiteral("/recordings"); }

    QString Exports() const { return m_folder + QStringLiteral("/exports"); }

    QString Line() const { return m_line; }

    /// \name For the stations
    /// @{
    SurveyView& View() const { return *m_view; }

    TourHand& Hand() const { return *m_hand; }

    SurveyModel& Model() const;

    template <class T> T& Page(const char* name) const { return static_cast<T&>(PageOf(name)); }

    /// Does \p what, under a number and \p name, and takes the picture of it.
    void Station(const QString& name, const std::function<void()>& what);

    /// What is not the same every time in the picture of this station; see `TourPicture`.
    void Changes(const QWidget& widget, const QRect& part = QRect()) { m_picture->Changes(widget, part); }

    /// Notes what is not so; the station goes on.
    void Expect(bool isSo, const QString& expected, const QString& found);
    void Expect(qint64 found, qint64 expected, const QString& what);
    void ExpectWithin(double found, double least, double most, const QString& what);
    void ExpectPage(const char* name);
    void ExpectToast(const QString& part); ///< that a message has told in this station
    void ExpectFile(const QString& path, qint64 leastBytes = 1);
    /// @}

private:
    QWidget& PageOf(const char* name) const;
    void Watch();
    void Say(const QString& line);
    void LookAround();

    QString m_folder;
    QString m_line;
    QString m_error;
    SurveyView* m_view = nullptr;
    std::unique_ptr<TourHand> m_hand;
    std::unique_ptr<TourPicture> m_picture;
    TourLog m_log;
    int m_number = 0;
    bool m_isOver = false; ///< a station was not as expected
    bool m_isGood = true;
    QStringList m_flaws; ///< of the station
    QStringList m_toasts; ///< told in the station
    QStringList m_warnings; ///< likewise, of warnings and errors
    QString m_report;
};
