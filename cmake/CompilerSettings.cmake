# One interface target carries the language level, the warnings and the sanitizers of every target of ours.
add_library(corvane_compiler_settings INTERFACE)
target_compile_features(corvane_compiler_settings INTERFACE cxx_std_20)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

target_compile_options(corvane_compiler_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
    -Wold-style-cast -Wcast-align -Wformat=2 -Wimplicit-fallthrough -Wnull-dereference)
if(CORVANE_WARNINGS_AS_ERRORS)
    target_compile_options(corvane_compiler_settings INTERFACE -Werror)
endif()
# GCC 12 reports false null dereferences and restrict overlaps in optimised standard library code.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(corvane_compiler_settings INTERFACE -Wno-null-dereference -Wno-restrict)
endif()
if(CORVANE_SANITIZERS)
    target_compile_options(corvane_compiler_settings INTERFACE
        -fsanitize=${CORVANE_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(corvane_compiler_settings INTERFACE -fsanitize=${CORVANE_SANITIZERS})
endif()
