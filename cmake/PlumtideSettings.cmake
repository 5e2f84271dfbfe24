# The compile settings that every target of ours carries, in one interface target, and the functions
# that make our targets.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

find_package(Threads REQUIRED)

add_library(plumtide_settings INTERFACE)
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH source_root)
target_include_directories(plumtide_settings INTERFACE "${source_root}/src")
target_compile_options(plumtide_settings INTERFACE -Wall -Wextra -Wpedantic -Wconversion)
# In a folder that is compiled in one piece clang takes a name of one file to shadow that of another.
target_compile_options(plumtide_settings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wshadow>)
target_link_libraries(plumtide_settings INTERFACE Threads::Threads)
if(PLUMTIDE_WARNINGS_AS_ERRORS)
    target_compile_options(plumtide_settings INTERFACE -Werror)
endif()
if(PLUMTIDE_SANITIZE)
    set(sanitize -fsanitize=${PLUMTIDE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(plumtide_settings INTERFACE ${sanitize})
    target_link_options(plumtide_settings INTERFACE ${sanitize})
endif()
# Text reaches Qt by explicit conversion only, and connections go to members, never to names.
target_compile_definitions(plumtide_settings INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
    QT_NO_FOREACH QT_NO_KEYWORDS QT_STRICT_ITERATORS QT_DISABLE_DEPRECATED_BEFORE=0x060400)

# plumtide_library(NAME SOURCES... [LINKS...]): the static library of one folder.
function(plumtide_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC plumtide_settings ${ARG_LINKS})
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
endfunction()
