#pragma once

/// Exit codes of every verb. A signal gives 128 plus its number, so Ctrl-C gives 130.
enum eExit : int
{
    exDone = 0,
    exUsage = 1, ///< wrong command line
    exBadInput = 2, ///< the input cannot be read or is damaged
    exBadOutput = 3, ///< the output cannot be written
    exLost = 4 ///< done, but not everything could be saved
};
