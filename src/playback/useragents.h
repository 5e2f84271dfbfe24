#pragma once

#include <QLatin1StringView>
#include <array>

/// What the program may call itself to a private station's server; the index is what is stored.
constexpr std::array<QLatin1StringView, 3> userAgents{
    QLatin1StringView{"Mozilla/5.0 (Macintosh; Intel Mac OS X 10_9_3) Plumtide/100.0.0 Version/1.0.0"},
    QLatin1StringView{"Mozilla/5.0 (Macintosh; Intel Mac OS X 10_9_3) AppleWebKit/537.75.14 "
                      "(KHTML, like Gecko) Version/7.0.3 Safari/7046A194A"},
    QLatin1StringView{"Mozilla/5.0 (Windows NT 6.3; rv:36.0) Gecko/20100101 Firefox/36.0"},
};
