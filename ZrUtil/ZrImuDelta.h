#pragma once

/// One reading of an inertial sensor, as `ZrUtil::ImuUpdateHPR` takes it: five single-precision numbers.
///
/// | Index | Meaning |
/// |-------|---------|
/// | 0, 1, 2 | acceleration along x, y, z, in any unit as long as it is the same for all three |
/// | 3 | integrated rotation angle in radians that is blended with the second accelerometer angle |
/// | 4 | integrated rotation angle in radians that is blended with the first accelerometer angle |
///
/// A plain aggregate: `const ZrImuDelta d { 0.0f, 0.0f, 9.81f, 0.01f, 0.0f };`
struct ZrImuDelta
{
    float values[5] = {}; ///< the numbers in the order of the table

    /// The number at \p i, which must be 0 to 4; it is not checked.
    float operator[](int i) const { return values[i]; }

    /// The same, to be written.
    float& operator[](int i) { return values[i]; }
};
