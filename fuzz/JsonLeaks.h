#pragma once

/// What the leak checker is not to report: Qt 5.15 loses a list or object of a JSON text whose key comes
/// again. For programs of one source file.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libQt5Core";
}
