# Checks that the file README quotes the file EXAMPLE in full.
file(READ ${README} readme)
file(READ ${EXAMPLE} example)
string(FIND "${readme}" "```cpp\n${example}```\n" position)
if(position EQUAL -1)
  message(FATAL_ERROR "${README} does not quote ${EXAMPLE} as it is: copy the file into the block.")
endif()
