# How this project's own targets are compiled and linked. All of it is scoped to the project's
# directory: nothing reaches a parent project's targets or a consumer.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
check_pie_supported(LANGUAGES CXX)

# zlv_compile_options(options...), zlv_link_options(options...): those of the options that the compiler
# and the linker know.
function(zlv_compile_options)
  foreach(option IN LISTS ARGN)
    string(MAKE_C_IDENTIFIER "ZLV_HAS_${option}" is_known)
    check_cxx_compiler_flag(${option} ${is_known})
    add_compile_options($<$<BOOL:${${is_known}}>:${option}>)
  endforeach()
endfunction()
function(zlv_link_options)
  foreach(option IN LISTS ARGN)
    string(MAKE_C_IDENTIFIER "ZLV_HAS_${option}" is_known)
    check_linker_flag(CXX ${option} ${is_known})
    add_link_options($<$<BOOL:${${is_known}}>:${option}>)
  endforeach()
endfunction()

# Most of the JSON library that is compiled in goes unused: let the linker drop it.
zlv_compile_options(-ffunction-sections -fdata-sections)
if(APPLE)
  zlv_link_options(LINKER:-dead_strip)
else()
  zlv_link_options(LINKER:--gc-sections)
endif()

if(ZLV_WARNINGS_AS_ERRORS)
  add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    add_compile_options(-Wno-restrict) # sees overlaps in the concatenation of strings
  endif()
endif()

if(ZLV_HARDENING)
  zlv_compile_options(-fstack-protector-strong)
  if(MINGW)
    zlv_link_options(-fstack-protector-strong) # stands in a library of its own there
  endif()
  # Fortification needs optimisation; distributions may define it already.
  add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  zlv_compile_options(-fcf-protection)
  zlv_link_options(LINKER:-z,relro,-z,now)
endif()
