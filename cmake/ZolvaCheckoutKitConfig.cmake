# find_package(ZolvaCheckoutKit COMPONENTS Linux): the core, always, and the components asked for.
include(CMakeFindDependencyMacro)

foreach(component IN ITEMS Core ${ZolvaCheckoutKit_FIND_COMPONENTS})
  set(ZolvaCheckoutKit_NOT_FOUND_MESSAGE "Its component ${component} is not installed.")
  include("${CMAKE_CURRENT_LIST_DIR}/ZolvaCheckoutKit${component}.cmake" OPTIONAL)
  if(ZolvaCheckoutKit_FIND_REQUIRED_${component} AND NOT ZolvaCheckoutKit_${component}_FOUND)
    set(ZolvaCheckoutKit_FOUND FALSE)
    return()
  endif()
endforeach()
