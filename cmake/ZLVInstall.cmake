# What is installed: libraries, public headers, the CMake package and the pkg-config modules.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(ZLV_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZolvaCheckoutKit)
set(ZLV_PKG_CONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# zlv_install(COMPONENT [REQUIRES component...] [PACKAGES package...] [PKG_CONFIG module...]
# [IMPORTED prefix]): installs the library ZolvaCheckoutKit::COMPONENT. REQUIRES names the components
# that its headers use; PACKAGES (for CMake) and PKG_CONFIG name what a static library leaves its
# user to link, and IMPORTED what pkg_check_modules calls those modules where CMake has no package.
function(zlv_install component)
  if(NOT ZLV_INSTALL)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "IMPORTED" "REQUIRES;PACKAGES;PKG_CONFIG")
  if(BUILD_SHARED_LIBS)
    unset(arg_PACKAGES)
    unset(arg_PKG_CONFIG)
    unset(arg_IMPORTED)
  endif()

  get_target_property(target ZolvaCheckoutKit::${component} ALIASED_TARGET)
  get_target_property(library ${target} OUTPUT_NAME)
  if(NOT library)
    set(library ${target})
  endif()
  install(TARGETS ${target} EXPORT ${target} FILE_SET HEADERS)
  install(EXPORT ${target} NAMESPACE ZolvaCheckoutKit:: DESTINATION ${ZLV_PACKAGE_DIR}
          FILE ZolvaCheckoutKit${component}Targets.cmake)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/ZolvaCheckoutKitComponent.cmake.in
                 ${PROJECT_BINARY_DIR}/ZolvaCheckoutKit${component}.cmake @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/ZolvaCheckoutKit${component}.cmake
          DESTINATION ${ZLV_PACKAGE_DIR})

  # What a static library needs is in "Requires" and not in "Requires.private": the latter is read
  # only with --static, which goes on to demand everything that those modules were built with.
  string(TOLOWER zolvacheckoutkit-${component} module)
  list(TRANSFORM arg_REQUIRES REPLACE "(.+)" "zolvacheckoutkit-\\1 = ${PROJECT_VERSION}")
  string(TOLOWER "${arg_REQUIRES};${arg_PKG_CONFIG}" requires)
  list(JOIN requires " " requires)
  file(RELATIVE_PATH prefix
       ${CMAKE_INSTALL_PREFIX}/${ZLV_PKG_CONFIG_DIR} ${CMAKE_INSTALL_PREFIX})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/zolvacheckoutkit.pc.in
                 ${PROJECT_BINARY_DIR}/${module}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${module}.pc DESTINATION ${ZLV_PKG_CONFIG_DIR})
endfunction()

write_basic_package_version_file(ZolvaCheckoutKitConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
if(ZLV_INSTALL)
  install(FILES cmake/ZolvaCheckoutKitConfig.cmake
                ${PROJECT_BINARY_DIR}/ZolvaCheckoutKitConfigVersion.cmake
          DESTINATION ${ZLV_PACKAGE_DIR})
endif()
