# Checks every file's includes against the rules below: facade -> core -> ports <- backends, and
# no public header that includes anything but the standard library.
#
#   cmake -D ROOT=project -P CheckIncludes.cmake
cmake_minimum_required(VERSION 3.25)

# Kinds of headers.
set(standard "[a-z_]+")        # C++ headers have no suffix; those of C and of the system do
set(foreign "[a-z].*|CLI/.*")  # anything of the system and of other projects
set(boost "boost/.*")
set(posix "arpa/inet\\.h|poll\\.h|pthread\\.h|strings\\.h|sys/socket\\.h|unistd\\.h")
set(libcurl "curl/curl\\.h")
set(fast_float "fast_float/.*")
set(values "ZolvaCheckoutKit/ZLV(Error|Export|Mappable|OptionalText|URL|Value)\\.h")
set(version "ZolvaCheckoutKit/ZLVVersion\\.h")  # what the library does depends on no release
set(records "ZolvaCheckoutKit/ZLV([A-Za-z]+Records|Vendor)\\.h")
set(facade "ZolvaCheckoutKit/(ZLVClient|ZolvaCheckoutKit)\\.h")
set(core_values "ZolvaCheckoutKit/Core/Values/[A-Za-z]+\\.h")
set(core "ZolvaCheckoutKit/Core/(Analytics|Checkout|Helpers|Models|Network|Values)/[A-Za-z_]+\\.h")
set(ports "ZolvaCheckoutKit/Platform/[A-Za-z]+\\.h")
set(session "ZolvaCheckoutKit/Platform/Curl/ZLVCurl(Options|Session|System)\\.h")
set(session_rules "ZolvaCheckoutKit/Platform/Curl/ZLV(HTTP[A-Za-z]+|IdleLimit|SendOnce|WebURL)\\.h")
set(curl "ZolvaCheckoutKit/Platform/Curl/[A-Za-z]+\\.h")
set(linux "ZolvaCheckoutKit/Platform/Linux/[A-Za-z]+\\.h")
set(linux_internal "ZolvaCheckoutKit/Platform/Linux/Internal/[A-Za-z]+\\.h")
set(gtk "ZolvaCheckoutKit/Platform/GTK/[A-Za-z]+\\.h")
set(gtk_internal "ZolvaCheckoutKit/Platform/GTK/Internal/[A-Za-z]+\\.h")
set(sandbox "Sandbox/[A-Za-z]+\\.h")
set(apps "Apps/.*")

set(errors "")
set(checked "")

# may_include(FILES kinds...): files whose path matches FILES, and that no rule before this one
# matches, may include headers of these kinds only.
function(may_include files)
  list(JOIN ARGN ", " kinds)
  foreach(file IN LISTS all)
    if(file IN_LIST checked OR NOT file MATCHES "^(${files})$")
      continue()
    endif()
    list(APPEND checked ${file})
    file(STRINGS ${ROOT}/${file} includes REGEX "^[ \t]*#[ \t]*include")
    foreach(include IN LISTS includes)
      string(REGEX REPLACE "[^<\"]*[<\"]([^>\"]*).*" "\\1" header "${include}")
      set(allowed FALSE)
      foreach(kind IN LISTS ARGN)
        if(header MATCHES "^(${${kind}})$")
          set(allowed TRUE)
        endif()
      endforeach()
      if(NOT allowed)
        string(APPEND errors "\n  ${file}: ${header}\n    It may include: ${kinds}.")
      endif()
    endforeach()
  endforeach()
  set(checked ${checked} PARENT_SCOPE)
  set(errors "${errors}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE all RELATIVE ${ROOT}
     ${ROOT}/ZolvaCheckoutKit/*.h ${ROOT}/ZolvaCheckoutKit/*.cpp
     ${ROOT}/Sandbox/*.h ${ROOT}/Sandbox/*.cpp ${ROOT}/Apps/*.h ${ROOT}/Apps/*.cpp)

may_include("ZolvaCheckoutKit/ZolvaCheckoutKit\\.h" values version records facade ports)
may_include("ZolvaCheckoutKit/[A-Za-z]+\\.h" standard values records)
may_include("ZolvaCheckoutKit/Core/Client/.*" standard values records facade core ports)
may_include("ZolvaCheckoutKit/Core/Values/ZLVJSONLibrary\\.h" boost)
may_include("ZolvaCheckoutKit/Core/Values/ZLVNumberText\\.cpp" standard core_values fast_float)
may_include("ZolvaCheckoutKit/Core/Values/.*" standard values core_values)
may_include("ZolvaCheckoutKit/Core/.*" standard values records core ports)
may_include("ZolvaCheckoutKit/Platform/[^/]+" standard values ports)
may_include("ZolvaCheckoutKit/Platform/Curl/ZLVWebURL\\.cpp" standard session_rules posix libcurl)
may_include("ZolvaCheckoutKit/Platform/Curl/ZLV(HTTP.*|IdleLimit\\.h|SendOnce\\.h|WebURL\\.h)" standard values ports posix session_rules)
may_include("${session}" standard ports session)
may_include("ZolvaCheckoutKit/Platform/Curl/.*" standard values ports posix libcurl curl)
may_include("ZolvaCheckoutKit/Platform/Linux/[^/]+\\.h" standard values ports linux)
may_include("ZolvaCheckoutKit/Platform/Linux/.*" standard values ports session linux linux_internal foreign)
may_include("ZolvaCheckoutKit/Platform/GTK/[^/]+\\.h" standard values ports linux gtk)
may_include("ZolvaCheckoutKit/Platform/GTK/.*" standard values ports linux gtk gtk_internal foreign)
may_include("Sandbox/.*" standard foreign sandbox)
may_include("Apps/.*" standard foreign values records facade ports linux gtk sandbox apps)

list(REMOVE_ITEM all ${checked})
foreach(file IN LISTS all)
  string(APPEND errors "\n  ${file}: no rule covers this file.")
endforeach()
list(LENGTH checked count)
if(errors)
  message(FATAL_ERROR "These includes break the rules in ${CMAKE_CURRENT_LIST_FILE}:${errors}")
elseif(count EQUAL 0)
  message(FATAL_ERROR "There is no file to check below ${ROOT}.")
endif()
message(STATUS "The includes of ${count} files keep the rules.")
