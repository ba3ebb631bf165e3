#include "Dive.h"

#include <algorithm>
#include <cmath>

Dive::Dive(int number_)
    : number(number_)
{
    constexpr int seconds = 2400;
    const double start = 1620036000.0 + number * 86400.0;
    for (int i = 0; i < seconds; ++i) {
        if (i > 1500 && i < 1560)
            continue;
        const double minutes = i / 60.0;
        const double floor
            = 34.0 + 4.0 * number + 3.0 * std::sin(minutes / 3.0 + number) + std::sin(minutes * 1.7);
        const double reached = std::min({1.0, minutes / 4.0, (40.0 - minutes) / 4.0});
        times->Append(start + i);
        seabed.Append(static_cast<float>(floor));
        depth.Append(static_cast<float>(reached * (floor - 6.0 - 0.3 * std::cos(minutes * 5.0))));
        // Lines to and fro.
        heading.Append(static_cast<float>(
            70.0 + (static_cast<int>(minutes / 5.0) % 2 == 0 ? 0.0 : 180.0) + 4.0 * std::sin(minutes * 2.0)));
    }
    for (const double minutes : {4.0, 17.5, 31.0})
        events.push_back(start + minutes * 60.0);
}
