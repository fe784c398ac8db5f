# Debian packages, one a component: `./run package`. Libraries that are linked become dependencies by themselves
# (dpkg-shlibdeps); written down here is only what they cannot tell.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelvara)
set(CPACK_PACKAGE_VENDOR Kelvara)
set(CPACK_PACKAGE_CONTACT "Kelvara developers <developers@kelvara.invalid>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime specimen dev tools)
if(TARGET kelvara_local_conference)
    list(APPEND CPACK_COMPONENTS_ALL localconference)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Tells packages of programs that were linked with the library what they depend on.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

# A Debian package and its licence, where Debian looks for it.
#   kelvara_package(<component> <name> <section> <description>)
macro(kelvara_package component name section description)
    string(TOUPPER "${component}" upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME "${name}")
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION "${section}")
    set(CPACK_COMPONENT_${upper}_DESCRIPTION "${description}")
    install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${name}" RENAME copyright
        COMPONENT ${component})
endmacro()

kelvara_package(runtime "libkelvara${KELVARA_ABI_VERSION}" libs
"Identity-verification capture library on Qt 6
One widget guides a person over a live camera preview through photographing a
Turkish identity card, taking a selfie, reading the card's contactless chip and
joining a video call.")
kelvara_package(specimen "libkelvara-specimen${KELVARA_ABI_VERSION}" libs
"Invented identity cards and pictures of them
Prints cards marked SPECIMEN and photographs them, with the truth beside the
picture: what tests of applications hold before the capture library's cameras.")
if(TARGET kelvara_local_conference)
    kelvara_package(localconference "libkelvara-local-conference${KELVARA_ABI_VERSION}" libs
"A video conference server in the host's own process
Stands in for the real server in tests of applications with the capture
library: a real call with a drawn representative, and trouble on demand.")
    set(localconference ", libkelvara-local-conference${KELVARA_ABI_VERSION} (= ${PROJECT_VERSION})")
endif()
kelvara_package(dev libkelvara-dev libdevel
"Identity-verification capture library on Qt 6 - development files
Headers, CMake packages and pkg-config files of the capture library and of the
library of invented cards.")
kelvara_package(tools kelvara-tools utils
"Looks at pictures and chips of identity documents
The program kelvara prints what the capture library finds in photographs of
cards, and what it reads of chips; kelvara-specimen photographs invented cards.")

# Texts on the screen need letters; nothing links a font, the service of readers, or the plug-in that shows windows.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "fonts-dejavu-core, fonts-noto-color-emoji, pcscd")
set(CPACK_DEBIAN_SPECIMEN_PACKAGE_DEPENDS "fonts-dejavu-core, fonts-ocr-b")
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "fonts-dejavu-core, fonts-ocr-b")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "pcscd")
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
    "libkelvara${KELVARA_ABI_VERSION} (= ${PROJECT_VERSION}), libkelvara-specimen${KELVARA_ABI_VERSION} (= ${PROJECT_VERSION})${localconference}, qt6-base-dev (>= 6.4)")

include(CPack)
