# Groups the accessors of a field, which stand together below one comment, for doxygen.
BEGIN { RS = ""; ORS = "\n\n" }
/\n  void set[A-Z]/ || /const&& / {
  if (sub(/^  \/\/\/ /, "  /// @{\n&") || sub(/\n  \/\/\/ /, "\n  /// @{&")) $0 = $0 "\n  /// @}"
}
{ print }
