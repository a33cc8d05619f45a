# What Doxygen is shown of a header. The number of lines stays.

# The first paragraph is about the file.
FNR == 1 && /^\/\/\// { print "/// \\file"; added = 1 }
added && /^$/ { added = 0; next }

# Declarations of instantiations would be taken for members of their own.
/^extern template/ { skipping = 1 }
skipping { if (/;/) skipping = 0; $0 = "" }

{ print }
