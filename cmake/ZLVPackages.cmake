# Debian packages, a component of the installation each: `cpack` in a build directory makes them, and
# scripts/packages does so from scratch and looks at what comes out.
if(NOT (ZLV_INSTALL AND PROJECT_IS_TOP_LEVEL AND BUILD_SHARED_LIBS AND ZLV_LINUX AND ZLV_GTK AND ZLV_C
        AND ZLV_TESTING AND ZLV_APPLICATIONS))
  return()
endif()

set(CPACK_PACKAGE_CONTACT "ZolvaCheckoutKit maintainers <maintainers@zolvacheckoutkit.example>"
    CACHE STRING "Who answers for the packages, with an address")
set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # or it comes before each package's own
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE zolvacheckoutkit)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR}/ZolvaCheckoutKit ${PROJECT_BINARY_DIR}/ZolvaCheckoutKit/Platform/Linux)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)  # on the very version

set(packaging ${PROJECT_SOURCE_DIR}/Packaging)
set(packages ${PROJECT_BINARY_DIR}/Packaging)
file(READ LICENSE license)
string(REGEX MATCH "Copyright \\(c\\) ([^\n]+)" holder "${license}")
string(REGEX REPLACE "^(20[0-9]+) " "\\1, " holder "${CMAKE_MATCH_1}")
string(REGEX REPLACE ".*\nCopyright[^\n]*\n\n" "" license "${license}")
string(STRIP "${license}" license)
string(REPLACE "\n\n" "\n.\n" license "${license}")
string(REPLACE "\n" "\n " license " ${license}")

# Every package's changelog; its day is the source's, where that is told.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${packaging}/changelog.in ${packages}/changelog @ONLY)
execute_process(COMMAND gzip -9nf ${packages}/changelog COMMAND_ERROR_IS_FATAL ANY)

# zlv_package(COMPONENT NAME SECTION section SUMMARY line DESCRIPTION text [DEPENDS component...]
# [RECOMMENDS packages] [SUGGESTS packages] [MULTI_ARCH value] [NOTICES name...]): the package NAME of
# a component of the installation. NOTICES tell what other projects' code is compiled in.
function(zlv_package component name)
  cmake_parse_arguments(PARSE_ARGV 2 arg ""
    "SECTION;SUMMARY;DESCRIPTION;RECOMMENDS;SUGGESTS;MULTI_ARCH" "DEPENDS;NOTICES")
  string(TOUPPER ${component} upper)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
  set(CPACK_COMPONENT_${upper}_DEPENDS ${arg_DEPENDS} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${arg_SUMMARY}\n${arg_DESCRIPTION}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${arg_SECTION} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_RECOMMENDS "${arg_RECOMMENDS}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SUGGESTS "${arg_SUGGESTS}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_MULTIARCH "${arg_MULTI_ARCH}" PARENT_SCOPE)  # from CMake 3.31 on

  configure_file(${packaging}/copyright.in ${packages}/${name}/copyright @ONLY)
  foreach(notice IN LISTS arg_NOTICES)
    file(READ ${packaging}/notices/${notice} text)
    file(APPEND ${packages}/${name}/copyright "\n${text}")
  endforeach()
  install(FILES ${packages}/${name}/copyright ${packages}/changelog.gz
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
          COMPONENT ${component} EXCLUDE_FROM_ALL)
  if(EXISTS ${packaging}/lintian/${component})
    install(FILES ${packaging}/lintian/${component} RENAME ${name}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
            COMPONENT ${component} EXCLUDE_FROM_ALL)
  endif()
endfunction()

set(interface ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(what "ZolvaCheckoutKit lets an application's users pay with their Zolva e-wallet: it
links, enquires and unlinks wallet accounts and creates charges through the
merchant's own server, and shows the wallet's pages.\n\n")
set(interface ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(notices boost)
if(ZLV_FAST_FLOAT_INCLUDE_DIR)
  list(APPEND notices fast_float)
endif()

zlv_package(runtime libzolvacheckoutkit${interface} SECTION libs MULTI_ARCH same
  NOTICES ${notices}
  RECOMMENDS ca-certificates
  SUMMARY "checkout with a Zolva e-wallet (shared libraries)"
  DESCRIPTION "${what}This package has the libraries, for C++ and C, that applications run with.")
zlv_package(development libzolvacheckoutkit-dev SECTION libdevel MULTI_ARCH same
  NOTICES ${notices}
  DEPENDS runtime
  SUGGESTS "libboost1.81-dev, libgtest-dev, qt6-base-dev, zolvacheckoutkit-tools"
  SUMMARY "checkout with a Zolva e-wallet (development files)"
  DESCRIPTION "${what}This package has what applications in C++ and C are built with: headers,
the files of CMake and pkg-config, and the test kit, a static library with a
sandbox server in memory.")
zlv_package(common libzolvacheckoutkit-common SECTION libs MULTI_ARCH foreign
  SUMMARY "checkout with a Zolva e-wallet (translations)"
  DESCRIPTION "${what}This package has the translations of what the libraries say to users.")
set(CPACK_DEBIAN_COMMON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_COMMON_PACKAGE_SHLIBDEPS OFF)
zlv_package(gtk-runtime libzolvacheckoutkit-gtk${interface} SECTION libs MULTI_ARCH same
  DEPENDS runtime
  SUMMARY "checkout with a Zolva e-wallet (GTK backend)"
  DESCRIPTION "${what}This package has the library that shows the pages inside a GTK 4 application's
own window, by WebKitGTK.")
# Not of this version only: those of two versions share the newer translations.
set(CPACK_DEBIAN_GTK-RUNTIME_PACKAGE_DEPENDS "libzolvacheckoutkit-common (>= ${PROJECT_VERSION})")
zlv_package(gtk-development libzolvacheckoutkit-gtk-dev SECTION libdevel MULTI_ARCH same
  DEPENDS development gtk-runtime
  RECOMMENDS libgtk-4-dev
  SUMMARY "checkout with a Zolva e-wallet (GTK development files)"
  DESCRIPTION "${what}This package has what GTK 4 applications are built with.")
zlv_package(tools zolvacheckoutkit-tools SECTION devel MULTI_ARCH foreign
  NOTICES boost cli11
  DEPENDS runtime
  SUMMARY "checkout with a Zolva e-wallet (console and sandbox)"
  DESCRIPTION "${what}This package has the program zolva: a sandbox to try an application with, a
host for the terminal, and a doctor that holds a merchant's server to the
contract.")

foreach(component IN ITEMS RUNTIME GTK-RUNTIME)
  set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA ${packaging}/triggers)
endforeach()
include(CPack)
