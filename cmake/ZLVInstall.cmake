# What is installed: libraries, public headers, the CMake package and the pkg-config modules. Where it
# goes when packages are made, ZLVPackages says, a component of the installation a package.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(ZLV_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZolvaCheckoutKit)
set(ZLV_PKG_CONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# zlv_find_beside(TARGET DIRECTORY): TARGET, installed to DIRECTORY, finds the kit's shared libraries
# wherever the prefix is moved. In a system's prefix the loader finds them itself.
function(zlv_find_beside target directory)
  if(BUILD_SHARED_LIBS AND NOT DEFINED CMAKE_INSTALL_RPATH AND NOT CMAKE_INSTALL_PREFIX STREQUAL /usr)
    file(RELATIVE_PATH libraries ${CMAKE_INSTALL_PREFIX}/${directory} ${CMAKE_INSTALL_FULL_LIBDIR})
    cmake_path(APPEND origin "$ORIGIN" "${libraries}")
    set_property(TARGET ${target} PROPERTY INSTALL_RPATH ${origin})
  endif()
endfunction()

# zlv_install(COMPONENT [PART part] [REQUIRES component...] [PACKAGES package...]
# [PKG_CONFIG module...] [IMPORTED prefix]): installs the library ZolvaCheckoutKit::COMPONENT, as
# PART's runtime and development when it is apart from the rest. REQUIRES names the components
# that its headers use; PACKAGES (for CMake) and PKG_CONFIG name what a static library leaves its
# user to link, and IMPORTED what pkg_check_modules calls those modules where CMake has no package.
# Further header sets than HEADERS are installed below the component's own directory.
function(zlv_install component)
  if(NOT ZLV_INSTALL)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "PART;IMPORTED" "REQUIRES;PACKAGES;PKG_CONFIG")
  set(runtime ${arg_PART}runtime)
  set(development ${arg_PART}development)
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
  set(includedir ${CMAKE_INSTALL_INCLUDEDIR})
  set(further_includes "")
  set(header_sets FILE_SET HEADERS DESTINATION ${includedir} COMPONENT ${development})
  get_target_property(sets ${target} INTERFACE_HEADER_SETS)
  list(REMOVE_ITEM sets HEADERS)
  foreach(set IN LISTS sets)
    set(directory ${includedir}/ZolvaCheckoutKit/${component})
    list(APPEND header_sets FILE_SET ${set} DESTINATION ${directory} COMPONENT ${development})
    set(further_includes " -I\${prefix}/${directory}")
  endforeach()
  zlv_find_beside(${target} ${CMAKE_INSTALL_LIBDIR})
  install(TARGETS ${target} EXPORT ${target}
          RUNTIME COMPONENT ${runtime}
          LIBRARY COMPONENT ${runtime} NAMELINK_COMPONENT ${development}
          ARCHIVE COMPONENT ${development}
          ${header_sets})
  install(EXPORT ${target} NAMESPACE ZolvaCheckoutKit:: DESTINATION ${ZLV_PACKAGE_DIR}
          FILE ZolvaCheckoutKit${component}Targets.cmake COMPONENT ${development})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/ZolvaCheckoutKitComponent.cmake.in
                 ${PROJECT_BINARY_DIR}/ZolvaCheckoutKit${component}.cmake @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/ZolvaCheckoutKit${component}.cmake
          DESTINATION ${ZLV_PACKAGE_DIR} COMPONENT ${development})

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
  install(FILES ${PROJECT_BINARY_DIR}/${module}.pc DESTINATION ${ZLV_PKG_CONFIG_DIR}
          COMPONENT ${development})
endfunction()

write_basic_package_version_file(ZolvaCheckoutKitConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
if(ZLV_INSTALL)
  install(FILES cmake/ZolvaCheckoutKitConfig.cmake
                ${PROJECT_BINARY_DIR}/ZolvaCheckoutKitConfigVersion.cmake
          DESTINATION ${ZLV_PACKAGE_DIR} COMPONENT development)
endif()
