# zlv_part(FOLDER DEFAULT DESCRIPTION): the option ZLV_ and the folder's name, and the folder below
# ZolvaCheckoutKit where that is on.
function(zlv_part folder default description)
  cmake_path(GET folder FILENAME name)
  string(TOUPPER ZLV_${name} option)
  option(${option} "${description}" ${default})
  if(${option})
    add_subdirectory(ZolvaCheckoutKit/${folder})
  endif()
endfunction()

# zlv_library(NAME COMPONENT SOURCES...): a library ZolvaCheckoutKit::COMPONENT. Its public headers
# are those that stand in its directory itself, and the ports beside the core.
function(zlv_library name component)
  file(GLOB headers CONFIGURE_DEPENDS *.h Platform/*.h)
  add_library(${name} ${ARGN})
  add_library(ZolvaCheckoutKit::${component} ALIAS ${name})
  target_sources(${name} PUBLIC
    FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${headers})
  target_compile_features(${name} PUBLIC cxx_std_20)
  if(WIN32 AND BUILD_SHARED_LIBS)
    target_compile_definitions(${name} PUBLIC ZLV_SHARED)  # see ZLVExport.h
  elseif(NOT WIN32 AND NOT APPLE)
    set(map ${PROJECT_SOURCE_DIR}/ZolvaCheckoutKit/exports.map)
    target_link_options(${name} PRIVATE LINKER:--version-script=${map})
    set_property(TARGET ${name} PROPERTY LINK_DEPENDS ${map})
  endif()
  # Until 1.0 every minor version may change the binary interface.
  set_target_properties(${name} PROPERTIES
    EXPORT_NAME ${component}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    VERIFY_INTERFACE_HEADER_SETS ${ZLV_TESTS})
endfunction()
