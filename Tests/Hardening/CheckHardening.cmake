# Checks that readelf shows each of the PROPERTIES of the file FILE.
set(position_independent "Type: +DYN")
set(read_only_relocations "GNU_RELRO")
set(bound_at_start "BIND_NOW")
set(stack_protector "__stack_chk_fail")
set(fortified "__[a-z]+_chk@")
set(control_flow_protection "x86 feature: IBT, SHSTK")

execute_process(COMMAND readelf --file-header --program-headers --dynamic --notes --dyn-syms --wide
                        ${FILE}
                OUTPUT_VARIABLE facts COMMAND_ERROR_IS_FATAL ANY)
foreach(property IN LISTS PROPERTIES)
  if(NOT facts MATCHES "${${property}}")
    message(FATAL_ERROR "${FILE} is not ${property}: readelf does not show \"${${property}}\".")
  endif()
endforeach()
