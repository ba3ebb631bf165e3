#pragma once

namespace zr {

/// Direction of a settings pass.
///
/// A value outside these two is neither loading nor storing: items are left alone, and sub-items are visited
/// as when loading.
enum ePersistMode : int
{
    ePersistLoading = 0, ///< values are read from the settings into the objects
    ePersistStoring = 1, ///< values are written from the objects into the settings
};

} // namespace zr
