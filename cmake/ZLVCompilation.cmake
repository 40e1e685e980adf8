# How this project's own targets are compiled and linked. All of it is scoped to the project's
# directory: nothing reaches a parent project's targets or a consumer.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
check_pie_supported(LANGUAGES CXX)

# Most of the JSON library that is compiled in goes unused: let the linker drop it.
add_compile_options(-ffunction-sections -fdata-sections)
add_link_options(LINKER:--gc-sections)

if(ZLV_WARNINGS_AS_ERRORS)
  add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    add_compile_options(-Wno-restrict) # sees overlaps in the concatenation of strings
  endif()
endif()

if(ZLV_HARDENING)
  add_compile_options(-fstack-protector-strong)
  # Fortification needs optimisation; distributions may define it already.
  add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  check_cxx_compiler_flag(-fcf-protection ZLV_HAS_CF_PROTECTION)
  if(ZLV_HAS_CF_PROTECTION)
    add_compile_options(-fcf-protection)
  endif()
  add_link_options(LINKER:-z,relro,-z,now)
endif()
