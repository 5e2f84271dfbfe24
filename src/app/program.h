#pragma once

#include "directory/keyed/stationdirectory.h"
#include "mainwindow/mainwindow.h"
#include "session/radiosession.h"
#include "settings/storedsettings.h"

/// The radio and its window, made and connected here and nowhere else. Main thread.
struct Program
{
    /// Backend and state must outlive the program.
    Program(const DirectoryService &service, Backend &backend, StateFile &state);

    StoredSettings settings;
    StationDirectory directory;
    RadioSession session;
    MainWindow window;
};
