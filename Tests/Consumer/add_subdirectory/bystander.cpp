// Compiled with the parent project's own settings: its language standard, and none of the kit's
// warnings, which would not let the second line pass.
static_assert(__cplusplus == 201703L);
int narrowed = 2.5;
