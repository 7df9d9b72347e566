# Takes the programs out of a Markdown text: each block fenced as c or cpp becomes a file
# DIR/STEM_N.c or .cpp, and the text block that follows it, if any, DIR/STEM_N.expected.
# Prints the names of the programs.
# Usage: awk -v dir=DIR -v stem=STEM -f extract.awk FILE.md

/^```/ && !inside {
    language = substr($0, 4)
    inside = 1
    if (language == "c" || language == "cpp") {
        file = dir "/" stem "_" ++count "." language
        printf "" > file
        print file
        awaited = dir "/" stem "_" count ".expected"
    } else if (language == "text" && awaited != "") {
        file = awaited
        printf "" > file
        awaited = ""
    } else {
        file = ""
        awaited = ""
    }
    next
}
/^```/ {
    inside = 0
    if (file != "") close(file)
    next
}
inside && file != "" { print > file }
