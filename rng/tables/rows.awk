# rows.awk - makes C++ of a table of numbers:  awk -f rows.awk table.csv > table.inc
#
# A table is a text of lines with comma-separated fields: comments that begin with #, a line with the names of
# the columns, then rows of numbers, decimal or hexadecimal with 0x. Each row becomes VOX_ROW(field, field, ...)
# in the order of the table; who includes the result defines VOX_ROW, packs what is worth keeping, and
# undefines it. Anything else in the table is an error that names its line.

function fail(what) {
    printf "%s:%d: %s\n", FILENAME, FNR, what > "/dev/stderr"
    failed = 1
    exit 1
}

BEGIN { FS = "," }

/^#/ { next }

!columns {
    columns = NF
    printf "// %s\n", $0
    next
}

{
    if (NF != columns)
        fail(NF " fields where " columns " columns are named")
    for (i = 1; i <= NF; ++i)
        if ($i !~ /^(0x[0-9A-Fa-f]+|0|[1-9][0-9]*)$/)
            fail("'" $i "' is no number")
    gsub(/,/, ", ")
    print "VOX_ROW(" $0 ")"
    ++rows
}

END {
    if (!failed && !rows) {
        print FILENAME ": no rows" > "/dev/stderr"
        exit 1
    }
    exit failed
}
