#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrArea.h"
#include "ZrKit/planning/ZrPathPiece.h"
#include "ZrKit/planning/ZrRouteFinding.h"

#include <QString>

#include <atomic>
#include <vector>

class ZrPlaneArea;
class ZrRoutePath;
class ZrWpt;
class ZrWpts;

/// The part of `ZrRouteCheck` that holds a path against areas. Refers to all that it is built with; findings
/// are appended.
class ZR_KIT_EXPORT ZrAreaCheck
{
public:
    /// \p margin in metres; one that is negative or not finite is a finding and counts as 0. Once \p cancel
    /// is true, no further piece of the path is looked at; it may be null.
    ZrAreaCheck(const ZrWpts& route, const ZrRoutePath& path, double margin,
        std::vector<ZrRouteFinding>& findings, const std::atomic<bool>* cancel = nullptr);

    /// The path must stay inside. \p index from 0, for the text where the area has no name.
    void CheckFence(const ZrArea& area, int index) { Check(area, index, true); }

    /// The path must stay outside.
    void CheckNoGo(const ZrArea& area, int index) { Check(area, index, false); }

    /// Name of a waypoint in texts: its own, or "point 3" for one without at index 2.
    static QString NameOf(const ZrWpt& wpt, int index);

private:
    /// Degrees of latitude and longitude; longitudes count from the middle of the path and do not wrap.
    struct Box
    {
        double south = 90.0;
        double north = -90.0;
        double west = 720.0;
        double east = -720.0;

        void Add(double lat, double lng);
        void Widen(double metres);
        double Bow() const;
        bool Meets(const Box& other) const;
        bool FitsPlane() const;
    };

    void Check(const ZrArea& area, int index, bool isFence);
    bool HasCorners(const ZrArea& area);
    Box BoxOf(const ZrArea& area) const;
    bool IsSound(const ZrPlaneArea& plane);
    void CheckPiece(const ZrPlaneArea& plane, const ZrPathPiece& piece);
    void AddFarFence();
    void AddBad(const QString& text);
    void AddPiece(const ZrPathPiece& piece, double fraction, ZrRouteFinding::eCode code, const QString& text);

    const ZrRoutePath& m_path;
    double m_margin; ///< metres
    const std::atomic<bool>* m_cancel;
    std::vector<ZrRouteFinding>& m_findings;
    std::vector<const ZrWpt*> m_wpts;
    std::vector<ZrPathPiece> m_pieces; ///< of the path, and those of length 0 for waypoints that none touches
    Box m_box; ///< of the path with its margin
    bool m_isFence = false; ///< of the area that is being checked
    QString m_area; ///< its name in texts
};
