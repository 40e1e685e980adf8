# What every target of this project is compiled with, and how a library target is made.
include(GNUInstallDirs)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(ZLV_DEVELOPER)
  add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
endif()

# zlv_library(NAME COMPONENT SOURCES...): a library ZolvaCheckoutKit::COMPONENT.
function(zlv_library name component)
  add_library(${name} ${ARGN})
  add_library(ZolvaCheckoutKit::${component} ALIAS ${name})
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_include_directories(${name} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  set_target_properties(${name} PROPERTIES
    EXPORT_NAME ${component} VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  set_property(GLOBAL APPEND PROPERTY ZLV_LIBRARIES ${name})
endfunction()
