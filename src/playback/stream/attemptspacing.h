#pragma once

#include <QElapsedTimer>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>

/// How servers are asked again that have failed: soon, and then less and less often, but for good, because
/// whoever hears what is in hand decides for how long it is worth trying.
namespace AttemptSpacing {
/// How long a server may take to answer.
inline constexpr std::chrono::milliseconds answerTime{5000};

/// How long to wait for the next attempt, after so many that have failed in a row; the last one began with
/// `since`, which is not valid where there was none.
inline std::chrono::milliseconds waitFor(int failures, const QElapsedTimer &since)
{
    using std::chrono::milliseconds;
    constexpr std::array<milliseconds, 4> pauses{milliseconds(250), milliseconds(500), milliseconds(1000),
                                                 milliseconds(2000)};
    const auto index = std::min(static_cast<std::size_t>(std::max(failures, 0)), pauses.size() - 1);
    const auto passed = since.isValid() ? milliseconds(since.elapsed()) : pauses.back();
    return std::max(milliseconds(0), pauses.at(index) - passed);
}
} // namespace AttemptSpacing
