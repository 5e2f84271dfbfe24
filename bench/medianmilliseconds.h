#pragma once

#include <QElapsedTimer>
#include <algorithm>
#include <vector>

/// How long `work` takes: the median of nine times.
template <class Work>
double medianMilliseconds(const Work &work)
{
    constexpr int rounds = 9;
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
    return times[rounds / 2];
}
