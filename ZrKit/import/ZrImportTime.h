#pragma once

#include "ZrUtil/ZrTypes.h"

#include <cstddef>
#include <string_view>

/// \file
/// Times as foreign files write them. All are UTC unless the text itself names an offset; results are seconds
/// since 1970-01-01T00:00:00 UTC. Not part of the interface for applications.

namespace zr {

/// Seconds since the epoch; NaN when there is no such date (or it lies before 1970) or time of day.
double utc_seconds(int year, int month, int day, int hour, int minute, double second);

/// Reads `yyyy-MM-dd hh:mm:ss` at the beginning of \p text, with 'T' or a space between date and time, any
/// number of decimals, and perhaps `Z` or an offset such as `+02:00`. Returns the characters used, 0 when
/// there is no such time.
std::size_t read_iso_time(std::string_view text, double& time);

/// Reads `dd/MM/yyyy hh:mm:ss`, with any number of decimals, at the beginning of \p text; otherwise like
/// `read_iso_time`.
std::size_t read_day_first_time(std::string_view text, double& time);

/// Reads ten digits (seconds since the epoch) or thirteen (milliseconds), with any number of decimals, at the
/// beginning of \p text; otherwise like `read_iso_time`.
std::size_t read_epoch_time(std::string_view text, double& time);

} // namespace zr
