#pragma once

/// One node of a `ZrLstMgd` or a `ZrLstPtr`, and at the same time the position that callers keep and pass
/// back.
///
/// A position stays valid until its node is removed. Some operations change which item a node holds
/// (`ZrLstMgd::Invert`, `Swap`, `ShiftUp`, `ShiftDn`, `ShiftToHead`, `SetAt`), none replaces the node itself.
struct ZrListPos
{
    ZrListPos* prev = nullptr; ///< preceding node, null at the head
    ZrListPos* next = nullptr; ///< following node, null at the tail
    void* data = nullptr; ///< the item; null only where a caller stored null
};
