#pragma once

#include <QString>

#include <cstddef>

/// Something about a survey that its planner should know.
struct ZrSurveyFinding
{
    enum eKind : int
    {
        LoopTurn, ///< the next line is closer than two radii: a loop leads to it
        TurnTooTight, ///< no turn of this radius was found to the next line
        BendTooTight, ///< a bend of a corridor has no room for the radius: it is left sharp
        PiecesLeftOut ///< pieces shorter than asked for were left out
    };

    eKind kind = LoopTurn;
    std::size_t line = 0; ///< index among the lines; behind which the turn is, or that has the bend
    QString text; ///< a sentence
};
