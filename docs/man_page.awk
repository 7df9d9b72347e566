# Finishes a manual page that Doxygen made from docs/header_for_doxygen.awk: puts back what that hid,
# names every function in the name section, where whatis and apropos look for them, and leaves out the
# date of the build.
{
    gsub(/\001/, "\\(dq")
    gsub(/\002/, "/")
}

NR == 1 { sub(/ 3 "[^"]*"/, " 3 \"\"") }

/^\.SH "Author"/ { exit }

/^\.SH NAME/ {
    inName = 1
    next
}
inName && / \\- / && title == "" {
    page = $1
    title = $0
    sub(/.* \\- /, "", title)
}
/^\.SH SYNOPSIS/ {
    inName = 0
    line[++lines] = $0 "\n.nf\n#include <zelchmx.h>\n.fi"
    next
}
inName { next }

# In the synopsis each function stands as "result name (arguments)".
/^\.RI ".*\\fBzel[A-Za-z0-9_]*\\fP \(/ {
    name = $0
    sub(/\\fP \(.*/, "", name)
    sub(/.*\\fB/, "", name)
    names = names ", " name
}

{
    line[++lines] = $0
    if (lines <= 3) header = lines
}

END {
    for (i = 1; i <= header; ++i) print line[i]
    print ".SH NAME\n" page names " \\- " title
    for (; i <= lines; ++i) print line[i]
}
