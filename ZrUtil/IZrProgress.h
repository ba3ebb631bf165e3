#pragma once

/// Where long work reports how far it is. Implemented by progress panels, the command line and tests.
///
/// The caller of a long function owns the object; a null pointer means that nobody wants to know. The calls
/// come on the thread that does the work. Not deleted through this interface.
class IZrProgress
{
public:
    /// \p percent of the work is done, 0 to 100 in ordinary cases.
    virtual void UpdateProgress(int percent) = 0;

    /// The percentage last reported.
    virtual int GetProgress() = 0;

protected:
    ~IZrProgress() = default;
};
