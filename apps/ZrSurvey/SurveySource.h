#pragma once

#include <QCoreApplication>
#include <QString>

class SurveySettings;

/// Where the vehicle's data can come from.
struct SurveySource
{
    Q_DECLARE_TR_FUNCTIONS(SurveySource)

public:
    enum eKind : int
    {
        simulator = 0,
        udp = 1,
        tcp = 2,
        serial = 3,
        nmeaFile = 4,
        replay = 5
    };

    static constexpr int Count = 6;

    static QString Name(int kind); ///< "Simulator"; empty for one that is none
    static QString Describe(const SurveySettings& settings); ///< the one chosen: "UDP port 10110"
};
