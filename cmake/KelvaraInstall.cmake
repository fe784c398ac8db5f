# What is installed: shared libraries made of the tree's modules with their headers, CMake packages and pkg-config files,
# and programs. Tests, benchmarks, demo and programs link the modules themselves, as they look inside.
#
# Components: runtime (the library), specimen (the library of invented cards, for hosts' tests), dev, tools.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
include(PublicHeaders)

# Counts the breaks of the binary interface. Hosts that were linked with one number are never given another one.
set(KELVARA_ABI_VERSION 0)

set(KELVARA_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/kelvara")
set(KELVARA_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/Kelvara")
file(RELATIVE_PATH KELVARA_PREFIX_FROM_PKGCONFIG "/p/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/p")
string(REGEX REPLACE "/$" "" KELVARA_PREFIX_FROM_PKGCONFIG "${KELVARA_PREFIX_FROM_PKGCONFIG}")

# Everything that is installed has been built when this is.
add_custom_target(kelvara_products ALL)

# A shared library lib<Library>.so made of modules, found as Kelvara::<name>. What its modules link privately stays
# private; modules of one library never go into another one as well, which would double their state.
#   kelvara_product(<name> LIBRARY <Library> COMPONENT <component> DESCRIPTION <sentence>
#                   MODULES targets… [OPTIONAL targets that not every machine can build…]
#                   HEADERS files… PUBLIC libs… PKG_REQUIRES packages…)
function(kelvara_product name)
    cmake_parse_arguments(arg "" "LIBRARY;COMPONENT;DESCRIPTION" "MODULES;OPTIONAL;HEADERS;PUBLIC;PKG_REQUIRES" ${ARGN})
    foreach(module IN LISTS arg_OPTIONAL)
        if(TARGET ${module})
            list(APPEND arg_MODULES ${module})
        endif()
    endforeach()
    string(TOLOWER "${name}" target)
    set(target kelvara_shared_${target})
    set(script "${CMAKE_CURRENT_BINARY_DIR}/${arg_LIBRARY}.map")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/Symbols.map.in" "${script}" @ONLY)

    # The objects themselves rather than the archives: a linker takes from those only what it misses, and nothing
    # misses compiled-in resources.
    list(TRANSFORM arg_MODULES REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
    add_library(${target} SHARED ${objects})
    add_library(Kelvara::${name} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        AUTOMOC OFF AUTORCC OFF LINKER_LANGUAGE CXX
        EXPORT_NAME ${name} OUTPUT_NAME ${arg_LIBRARY} VERSION ${PROJECT_VERSION} SOVERSION ${KELVARA_ABI_VERSION}
        LINK_DEPENDS "${script}" VERIFY_INTERFACE_HEADER_SETS ON)
    target_link_libraries(${target} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_MODULES})
    target_link_options(${target} PRIVATE "LINKER:--version-script=${script}" LINKER:-z,defs)
    target_compile_features(${target} INTERFACE cxx_std_20)
    target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${arg_HEADERS})
    add_dependencies(kelvara_products ${target})

    install(TARGETS ${target} EXPORT ${arg_LIBRARY}
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ${arg_COMPONENT} NAMELINK_COMPONENT dev
        FILE_SET HEADERS DESTINATION "${KELVARA_INSTALL_INCLUDEDIR}" COMPONENT dev)
    install(EXPORT ${arg_LIBRARY} NAMESPACE Kelvara:: FILE ${arg_LIBRARY}Targets.cmake
        DESTINATION "${KELVARA_INSTALL_CMAKEDIR}" COMPONENT dev)

    string(REGEX REPLACE "(.)([A-Z])" "\\1-\\2" package "${arg_LIBRARY}")
    string(TOLOWER "${package}" package)
    list(JOIN arg_PKG_REQUIRES ", " requires)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/kelvara.pc.in" "${CMAKE_CURRENT_BINARY_DIR}/${package}.pc" @ONLY)
    install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${package}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
        COMPONENT dev)
endfunction()

# A program for integrators, built with everything else that is installed, and its page of the manual.
function(kelvara_installed_program target)
    install(TARGETS ${target} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
    get_target_property(name ${target} OUTPUT_NAME)
    if(NOT name)
        set(name ${target})
    endif()
    install(FILES "${PROJECT_SOURCE_DIR}/Tools/Package/man/${name}.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1"
        COMPONENT tools)
    add_dependencies(kelvara_products ${target})
endfunction()

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/KelvaraConfig.cmake.in"
    "${CMAKE_CURRENT_BINARY_DIR}/KelvaraConfig.cmake" INSTALL_DESTINATION "${KELVARA_INSTALL_CMAKEDIR}")
# Before 1.0 the interface may change with the second number.
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/KelvaraConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/KelvaraConfig.cmake" "${CMAKE_CURRENT_BINARY_DIR}/KelvaraConfigVersion.cmake"
    DESTINATION "${KELVARA_INSTALL_CMAKEDIR}" COMPONENT dev)
