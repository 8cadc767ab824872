# reduced.sed - leaves in the input of LAPACK's test programs few sizes and the routines of this library.
s/^[0-9]*\( *Number of values of [MN]\)$/3\1/
s/^[0-9 ]*\( Values of [MN] \)/0 10 50\1/
s/^[0-9]*\( *Number of values of \(NRHS\|NB\|RANK\)\)$/1\1/
s/^[0-9 ]*\( Values of NRHS \)/2\1/
s/^[0-9 ]*\( Values of NB \)/20\1/
s/^[0-9 ]*\( Values of NX \)/0\1/
s/^[0-9 ]*\( Values of rank \)/60\1/
/^[SDCZ]\(GE\|PO\|TR\|QR\|LQ\|QP\|LS\)\>/b
/^[SDCZ][A-Z][A-Z0-9]\>/d
