! solver.f90 - linear equations, eigenvalues and products in a parallel region, by the BLAS and LAPACK that the
! program is linked with. Prints what does not depend on them: integers, and residuals in classes.
program solver
    implicit none
    integer, parameter :: n = 200, dp = kind(1d0)
    real(dp) :: a(n, n), factor(n, n), b(n, 1), x(n, 1), w(n), work(4 * n), c(n, n, 4), y(n)
    integer :: ipiv(n), info, i, j, k

    do j = 1, n
        do i = 1, n
            a(i, j) = mod(i * i + 3 * i * j + j * j, 17) - 8 + merge(n, 0, i == j)
        end do
        b(j, 1) = sum(a(:, j)) ! the solution has ones only, since A is symmetric but for the mixed term
    end do
    a = (a + transpose(a)) / 2
    b(:, 1) = sum(a, dim=2)
    factor = a
    x = b
    call dgesv(n, 1, factor, n, ipiv, x, n, info)
    print '("dgesv ", i0, 1x, l1)', info, maxval(abs(x - 1)) < 1d-12

    factor = a
    call dsyev('N', 'L', n, factor, n, w, work, 4 * n, info)
    print '("dsyev ", i0, 1x, l1)', info, &
        abs(sum(w) - sum([(a(i, i), i = 1, n)])) < 1d-10 * sum(abs(w))

    call dsymv('U', n, 1d0, a, n, x, 1, 0d0, y, 1)
    print '("dsymv ", i0)', nint(sum(y))
    !$omp parallel do num_threads(4)
    do k = 1, 4
        call dgemm('N', 'N', n, n, n, real(k, dp), a, n, a, n, 0d0, c(:, :, k), n)
    end do
    print '("dgemm ", i0, 1x, l1)', nint(sum(c)), &
        maxval(abs(c(:, :, 4) - 4 * matmul(a, a))) < 1d-12 * maxval(abs(c(:, :, 4)))
end program
