# How every target of the tree is compiled: one place for warnings, sanitizers, the compiler cache and the
# precompiled header that all modules share.

find_program(KELVARA_CCACHE ccache)
if(KELVARA_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${KELVARA_CCACHE}")
endif()

add_library(kelvara_options INTERFACE)
target_compile_options(kelvara_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                       -Woverloaded-virtual -fno-math-errno)
target_compile_definitions(kelvara_options INTERFACE QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII
                           QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
if(KELVARA_SANITIZE STREQUAL "address")
    set(KELVARA_SANITIZE_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
elseif(KELVARA_SANITIZE STREQUAL "thread")
    set(KELVARA_SANITIZE_FLAGS -fsanitize=thread -fno-omit-frame-pointer)
endif()
if(KELVARA_SANITIZE_FLAGS)
    target_compile_options(kelvara_options INTERFACE ${KELVARA_SANITIZE_FLAGS})
    target_link_options(kelvara_options INTERFACE ${KELVARA_SANITIZE_FLAGS})
endif()

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
    if(KELVARA_SANITIZE_FLAGS)
        target_link_options(${target} PUBLIC ${KELVARA_SANITIZE_FLAGS})
    endif()
endfunction()
