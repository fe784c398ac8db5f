# How every target of the tree is compiled: one place for warnings, sanitizers, the compiler cache and precompiled
# headers.

find_program(KELVARA_CCACHE ccache)
if(KELVARA_CCACHE)
    # Without these it takes no file with a precompiled header.
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env "CCACHE_SLOPPINESS=pch_defines,time_macros"
        "${KELVARA_CCACHE}")
endif()

add_library(kelvara_options INTERFACE)
target_compile_options(kelvara_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                       -Woverloaded-virtual -fno-math-errno -pthread)
if(CMAKE_UNITY_BUILD)
    # What one file names may well be hidden in another; builds of single files look for it.
    target_compile_options(kelvara_options INTERFACE -Wno-shadow $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endif()
target_compile_definitions(kelvara_options INTERFACE QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII
                           QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
if(KELVARA_SANITIZE STREQUAL "address")
    set(KELVARA_SANITIZE_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
elseif(KELVARA_SANITIZE STREQUAL "thread")
    set(KELVARA_SANITIZE_FLAGS -fsanitize=thread -fno-omit-frame-pointer)
endif()
if(KELVARA_SANITIZE_FLAGS)
    # What the sanitizers put in between makes GCC take an empty optional's value for one that is used.
    target_compile_options(kelvara_options INTERFACE ${KELVARA_SANITIZE_FLAGS} -Wno-maybe-uninitialized)
    target_link_options(kelvara_options INTERFACE ${KELVARA_SANITIZE_FLAGS})
endif()

# One precompiled header for all modules and one for all test programs (which are compiled as programs, not as
# libraries): most of a file's time is Qt's and the standard library's headers.
#   kelvara_precompile(<name> <option> LIBS libs… HEADERS headers…)
function(kelvara_precompile name option)
    cmake_parse_arguments(arg "" "" "LIBS;HEADERS" ${ARGN})
    file(WRITE "${CMAKE_BINARY_DIR}/${name}.cpp" "// Nothing but its precompiled header is of use.\n")
    add_library(${name} OBJECT "${CMAKE_BINARY_DIR}/${name}.cpp")
    set_target_properties(${name} PROPERTIES AUTOMOC OFF POSITION_INDEPENDENT_CODE OFF)
    target_compile_options(${name} PRIVATE ${option})
    target_link_libraries(${name} PRIVATE kelvara_options ${arg_LIBS})
    target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
endfunction()
set(KELVARA_COMMON_HEADERS <algorithm> <array> <atomic> <chrono> <cmath> <functional> <map> <memory> <optional>
    <string> <variant> <vector> <QImage> <QString> <QStringList>)

# Static library from every .cpp of the calling folder and of the named folders in it.
#   kelvara_module(<target> [FOLDERS names…] [PUBLIC libs…] [PRIVATE libs…])
function(kelvara_module target)
    cmake_parse_arguments(arg "" "" "FOLDERS;PUBLIC;PRIVATE" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
    foreach(folder IN LISTS arg_FOLDERS)
        file(GLOB more CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp"
             "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.h")
        list(APPEND sources ${more})
    endforeach()
    add_library(${target} STATIC ${sources})
    target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}")
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
    target_include_directories(${target} SYSTEM PRIVATE ${OpenCV_INCLUDE_DIRS})
    target_link_libraries(${target} PUBLIC ${arg_PUBLIC} PRIVATE kelvara_options ${arg_PRIVATE})
    target_precompile_headers(${target} REUSE_FROM kelvara_headers)
    if(KELVARA_SANITIZE_FLAGS)
        target_link_options(${target} PUBLIC ${KELVARA_SANITIZE_FLAGS})
    endif()
endfunction()
