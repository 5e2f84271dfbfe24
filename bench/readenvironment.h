#pragma once

#include "app/environment.h"

#include <cstdio>
#include <cstdlib>

/// What the environment sets; ends the program with a line on standard error where it cannot be used.
inline Environment readEnvironment()
{
    const auto environment = Environment::from(QProcessEnvironment::systemEnvironment());
    if (const auto *refusal = std::get_if<QString>(&environment)) {
        std::fprintf(stderr, "%s\n", qPrintable(*refusal));
        std::exit(2);
    }
    return std::get<Environment>(environment);
}
