# Include arrows run one way only: each folder may use itself and those that its list names. Libmpv's header stays
# in its own module.
#
# Usage: cmake -DSOURCES=DIR -P includes.cmake

cmake_minimum_required(VERSION 3.25)

set(rooms app mainwindow ui playback settings model directory)
set(app_allowed app mainwindow ui playback settings model directory)
set(mainwindow_allowed mainwindow ui playback settings model directory)
set(ui_allowed ui playback settings model directory)
set(playback_allowed playback model directory)
set(settings_allowed settings model directory)
set(model_allowed model directory)
set(directory_allowed directory)

set(faults 0)
set(seen 0)
foreach(room IN LISTS rooms)
    file(GLOB_RECURSE files "${SOURCES}/${room}/*.h" "${SOURCES}/${room}/*.cpp")
    foreach(file IN LISTS files)
        file(STRINGS "${file}" includes REGEX "^#include [\"<]")
        foreach(include IN LISTS includes)
            math(EXPR seen "${seen} + 1")
            if(include MATCHES "mpv/client\\.h" AND NOT file MATCHES "/playback/mpv/")
                message("${file}: ${include}: only playback/mpv knows libmpv")
                math(EXPR faults "${faults} + 1")
            endif()
            if(include MATCHES "^#include \"([a-z]+)/" AND CMAKE_MATCH_1 IN_LIST rooms
               AND NOT CMAKE_MATCH_1 IN_LIST ${room}_allowed)
                message("${file}: ${include}: ${room} must not use ${CMAKE_MATCH_1}")
                math(EXPR faults "${faults} + 1")
            elseif(include MATCHES "\"\\.\\./")
                message("${file}: ${include}: includes name their folder")
                math(EXPR faults "${faults} + 1")
            endif()
        endforeach()
    endforeach()
endforeach()

if(seen EQUAL 0)
    message(FATAL_ERROR "no includes found below ${SOURCES}")
endif()
if(faults GREATER 0)
    message(FATAL_ERROR "${faults} include arrows run the wrong way")
endif()
message("${seen} includes, all arrows run one way")
