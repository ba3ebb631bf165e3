#pragma once

#include "ZrUtil/ZrTypes.h"

/// What a line of a `ZrChBuffer` carries beside its bytes: 24 bytes, of which the buffer writes the time
/// only.
struct ZrChEntry
{
    u32 user0; ///< the caller's
    u32 user1; ///< the caller's
    float time; ///< of the line, as handed to `ZrChBuffer::AddData`
    u32 user3; ///< the caller's
    u32 user4; ///< the caller's
    u32 user5; ///< the caller's
};

static_assert(sizeof(ZrChEntry) == 24, "the layout of the entry is fixed");
