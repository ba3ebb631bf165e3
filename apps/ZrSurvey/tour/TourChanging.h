#pragma once

class SurveyPage;
class Tour;

/// What of the pictures is not the same every time: the clock, the machine, and the moment at which the tour
/// touches what moves. All else is, and its pictures are compared with golden ones.
namespace tour {

void title_changes(Tour& tour, const SurveyPage& page); ///< the name of a recording is the time of its begin

void home_changes(Tour& tour); ///< free space, and the folder of the recordings

/// The figures of the recording; while it \p isRunning also all that moves.
void record_changes(Tour& tour, bool isRunning);

/// Of the review of what the simulator has run. It runs the same every time, but the recording begins when
/// the button is pressed, and events are where the vehicle was when theirs were. What playing and the range
/// do to these parts the stations look at themselves; see `TourShot`.
void recorded_changes(Tour& tour);

/// Where the simulator was a given time before its end: the same echoes every time.
void show_same_place(Tour& tour);

} // namespace tour
