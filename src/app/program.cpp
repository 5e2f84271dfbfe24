#include "app/program.h"

Program::Program(const DirectoryService &service, Backend &backend, StateFile &state)
    : directory(service, [this] { return settings.queryLimit(); })
    , session(directory, backend,
              {.timeout = [this] { return settings.timeout(); },
               .userAgent = [this] { return settings.userAgent(); }})
    , window(session, settings, backend, state)
{
}
