#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrSpan.h"

#include <cstddef>
#include <memory>
#include <vector>

/// How high the sonar was above the seabed at each ping: the slant range at which the first echo of the
/// seabed comes back, metres. Found by `ZrBottomTracker`, corrected by hand.
///
/// What was found and what a person has set are kept apart: a hand-made stretch survives another detection,
/// and clearing it brings the detected values back.
///
/// Memory is 8 bytes for each ping, which copies share, and as much once anything was set by hand.
///
/// A plain value, without pings once it was moved from; pings beyond its end, and changes to them, are
/// ignored.
class ZR_KIT_EXPORT ZrBottomLine
{
public:
    ZrBottomLine() = default;
    ZrBottomLine(const ZrBottomLine&) = default;
    ZrBottomLine(ZrBottomLine&& other) noexcept;
    ZrBottomLine& operator=(const ZrBottomLine&) = default;
    ZrBottomLine& operator=(ZrBottomLine&& other) noexcept;
    ~ZrBottomLine() = default;

    /// A line of as many pings, none of them known.
    explicit ZrBottomLine(std::size_t pings);

    std::size_t Count() const { return m_found->size(); }

    /// Metres above the seabed: what was set by hand, else what was found; NaN when neither is known.
    double Altitude(std::size_t ping) const;

    /// Whether the altitude of a ping was set by hand.
    bool IsEdited(std::size_t ping) const;

    const std::vector<double>& Found() const { return *m_found; } ///< ping by ping, NaN where nothing was

    std::vector<double> Edited() const; ///< likewise what was set by hand

    double EditedAltitude(std::size_t ping) const; ///< of one ping, NaN where nothing was

    bool HasEdits() const { return !m_edited.empty(); } ///< false when nothing was ever set by hand

    /// What `Found` gives now, for longer: another detection makes another list.
    const std::shared_ptr<const std::vector<double>>& SharedFound() const { return m_found; }

    /// Takes over what a detection found, NaN where nothing; the number of pings becomes that of \p
    /// altitudes.
    void SetFound(std::vector<double> altitudes);

    /// Draws a straight line by hand from ping \p first at \p from metres to ping \p last at \p to metres,
    /// ends included, in either order. False, and nothing is changed, when a value is negative or not finite
    /// or both pings lie beyond the end.
    bool Draw(std::size_t first, double from, std::size_t last, double to);

    /// Takes back what was set by hand from ping \p first to \p last, in either order.
    void Clear(std::size_t first, std::size_t last);

    /// Sets what was set by hand from ping \p first on, as `Edited` gives it: NaN, or a value that is no
    /// altitude, takes it back.
    void SetEdited(std::size_t first, zr::span<const double> altitudes);

private:
    static const std::shared_ptr<const std::vector<double>>& Nothing();
    void MakeEdits();

    std::shared_ptr<const std::vector<double>> m_found = Nothing(); ///< never null
    std::vector<double> m_edited; ///< NaN where nothing was set; empty before the first time
};
