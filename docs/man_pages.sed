# Finishes a manual page that Doxygen made from docs/header_for_doxygen.awk: puts back what that hid,
# gives the name section the one line that whatis reads, and leaves out the date of the build.
s/\x01/\\(dq/g
s/\x02/\//g
1s/ 3 "[^"]*"/ 3 ""/
/^\.SH NAME/,/^\.SH SYNOPSIS/ {
    /^\.PP/d
    /^ \\-/d
}
s/^\.SH SYNOPSIS$/.SH SYNOPSIS\n.nf\n#include <zelchmx.h>\n.fi/
/^\.SH "Author"/,$d
