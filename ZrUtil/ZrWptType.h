#pragma once

/// Kinds of points that `ZrWpts::Add` draws in a colour of their own; other values of `ZrWpt::type` keep the
/// default colour.
enum eZrWptType : int
{
    eZrWptBlue = 0, ///< drawn blue
    eZrWptRed = 1, ///< drawn red
    eZrWptYellow = 2, ///< drawn yellow
};
