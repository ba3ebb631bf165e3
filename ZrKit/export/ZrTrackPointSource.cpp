#include "ZrKit/export/ZrTrackPointSource.h"

ZrTrackPointSource::~ZrTrackPointSource() = default;
