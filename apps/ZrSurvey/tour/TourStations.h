#pragma once

class Tour;

/// The stations of the tour, by what they are about, in the order in which they are gone through.
namespace tour {

void home(Tour& tour); ///< what there is before anything was done
void line(Tour& tour); ///< the side-scan line is imported, its track exported
void plan_area(Tour& tour); ///< over the track an area is drawn, and survey lines over it
void plan_edit(Tour& tour); ///< waypoints are moved, inserted, given properties
void plan_files(Tour& tour); ///< saved, and exported in every form
void record(Tour& tour); ///< the plan is run by the simulator and recorded
void review(Tour& tour); ///< that recording is gone through
void recording_exports(Tour& tour); ///< a part of that recording and all of it, read back
void sonar(Tour& tour); ///< the look of the side-scan line, its events, a target that is measured
void exports(Tour& tour); ///< everything that the review offers
void scene(Tour& tour); ///< the vehicle in 3D
void settings(Tour& tour); ///< units, scale, colours
void home_again(Tour& tour); ///< with previews of what was recorded

} // namespace tour
