# Shows include/zelchmx.h to Doxygen. The header is written to be read as it is; this filter adds
# what Doxygen wants to see, line for line where it can:
#   - a comment in front of declarations becomes their documentation. It speaks of all of them up to
#     the next blank line: the first one gets the text, the others a reference to the first. With a
#     blank line behind it, it belongs to the section;
#   - a comment behind a field or a value becomes the documentation of that;
#   - a section line /* ---- Title ---- */ opens a group with that title, and the example of the
#     same name from examples/families is shown there;
#   - indented lines of a comment keep their layout.
# With format=MAN it prepares the header for manual pages. Doxygen would turn quotes there into
# apostrophes and lose the backslashes of an included program, so quotes become the byte 1 and programs
# are given as text, with byte 2 for the slash that would end the comment around them.
# docs/man_page.awk puts both back.

# Protects what would be a command.
function plain(text) {
    gsub(/[\\@<>&#%]/, "\\\\&", text)
    gsub(/"/, man ? "\001" : "\\&quot;", text)
    return text
}

BEGIN { man = format == "MAN" }

function idOf(title) {
    sub(/^Regular expressions:/, "regexp", title)
    gsub(/[^A-Za-z0-9]+/, "_", title)
    return tolower(title)
}

function add(line) { doc = doc line "\n" }

function endVerbatim() {
    if (verbatim) add("@endverbatim")
    verbatim = 0
}

# One line of a comment, without the leading asterisk. Blank lines wait for what follows them.
function addText(text) {
    if (text ~ /^ *$/) {
        ++blanks
        return
    }
    if (text !~ /^  /) endVerbatim()
    for (; blanks > 0; --blanks) add("")
    if (text ~ /^  /) {
        if (!verbatim) add("@verbatim")
        verbatim = 1
        if (man) gsub(/"/, "\001", text)
    } else {
        sub(/^ /, "", text)
        text = plain(text)
    }
    add(text)
}

function openComment() {
    inComment = 1
    doc = ""
    blanks = 0
    verbatim = 0
}

function closeComment() {
    endVerbatim()
    inComment = 0
    waiting = 1
}

# Shows the example of the section that ends here, and closes its group.
function closeGroup(    line, file) {
    if (group == "") return
    print "/** @} */"
    file = examples "/" id ".c"
    if ((getline line < file) > 0) {
        print "/** @addtogroup " group
        print "@par Example"
        if (man) {
            print "@verbatim"
            do {
                gsub(/"/, "\001", line)
                gsub(/\*\//, "*\002", line)
                print "   " line
            } while ((getline line < file) > 0)
            print "@endverbatim"
        } else
            print "@include " id ".c"
        print "*/"
        close(file)
    }
    group = ""
}

/^\/\* -+ .* -+ \*\/$/ {
    title = $0
    sub(/^\/\* -+ /, "", title)
    sub(/ -+ \*\/$/, "", title)
    closeGroup()
    id = idOf(title)
    group = "zelchmx_" id
    print "/** @defgroup " group " " title
    print "@{ */"
    owner = ""
    next
}

/^\/\*/ && !inComment {
    openComment()
    text = substr($0, 3)
    if (sub(/ *\*\/$/, "", text)) {
        addText(text)
        closeComment()
    } else if (text != "")
        addText(text)
    next
}
inComment {
    text = $0
    ending = sub(/ ?\*\/$/, "", text)
    sub(/^ \*/, "", text)
    if (!ending || text != "") addText(text)
    if (ending) closeComment()
    next
}

# The line behind a comment decides what the comment speaks of.
waiting {
    waiting = 0
    if (!seenFirst)
        print "/** @mainpage\n" doc "*/"
    else if ($0 == "")
        print "/** @} */\n/** @addtogroup " group "\n" doc "@{ */"
    else {
        print "/**\n" doc "*/"
        owner = "new"
    }
    seenFirst = 1
}

/^ZEL_API/ {
    if (owner == "new") {
        owner = $0
        sub(/\(.*/, "", owner)
        sub(/.*[ *]/, "", owner)
    } else if (owner != "")
        print "/** @copybrief " owner " Documented with #" owner ". */"
}

/^$/ { owner = "" }

/^#ifdef __cplusplus$/ { closeGroup() }

{
    sub(/\/\* /, "/**< ")
    print
}
