#pragma once

#include <QLibrary>

/// Sets `function` to the one of that name in `library`. Whether there is one; the type is the caller's
/// promise.
template <class Function>
bool findFunction(QLibrary &library, const char *name, Function &function)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    return function != nullptr;
}
