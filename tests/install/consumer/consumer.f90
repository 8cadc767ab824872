! consumer.f90 - the inner product of the README.
program consumer
    implicit none
    double precision, external :: ddot
    double precision :: x(3) = [1, 2, 3], y(3) = [4, 5, 6]
    print '(i0)', nint(ddot(3, x, 1, y, 1))
end program
