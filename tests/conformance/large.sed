# large.sed - after reduced.sed: sizes beyond the block sizes of the factorisations.
s/^[0-9]*\( *Number of values of [MN]\)$/2\1/
s/^[0-9 ]*\( Values of [MN] \)/40 132\1/
