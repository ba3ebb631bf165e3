#include "ZrKit/review/ZrRecordSource.h"

ZrRecordSource::~ZrRecordSource() = default;
