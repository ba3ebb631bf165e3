#pragma once

#include "CliRoute.h"
#include "ZrKit/planning/ZrSurveyCorridorSettings.h"
#include "ZrKit/planning/ZrSurveyPatternSettings.h"

/// What `zr route survey` is asked for.
struct CliSurvey : cli::RouteOptions
{
    std::string in; ///< areas, or the guide of a corridor
    bool corridor = false;
    std::string area; ///< name of the area in `in`
    std::string box; ///< metres around the bounding box of `in`
    std::string spacing;
    std::string heading;
    std::string overshoot;
    std::string radius;
    std::string corner;
    std::string order;
    std::string cross;
    std::string alternate;
    std::string ends;
    std::string margin;
    std::string minLength;
    std::string left;
    std::string right;
    bool noCentre = false;
    bool noLoops = false;
    std::string speed;
    std::string z;
    std::string zType;
    std::string name;

    ZrSurveyPatternSettings PatternSettings() const;
    ZrSurveyCorridorSettings CorridorSettings() const;

    /// Adds the options to \p verb.
    void AddTo(CLI::App& verb);

private:
    void SetCommon(ZrSurveySettings& settings) const;
};
