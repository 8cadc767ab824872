! replacement.f90 - a Fortran program with its own XERBLA and VOX_PROGRESS. The hidden length that
! its compiler adds has 64 bits: the caller leaves rubbish in the upper half.
subroutine xerbla(name, info)
    character(*), intent(in) :: name
    integer, intent(in) :: info
    print '("report ", i0, " ", a, " ", i0)', len(name), name, info
end subroutine

integer function vox_progress(thread, step, stage)
    integer, intent(in) :: thread, step
    character(*), intent(in) :: stage
    print '("progress ", i0, " ", i0, " ", i0, " ", a)', thread, step, len(stage), stage
    vox_progress = 17
end function

program main
    use iso_c_binding
    implicit none
    interface
        subroutine vox_serv_xerbla(name, code, length) bind(C)
            import
            character(c_char), intent(in) :: name(*)
            integer(c_int32_t), intent(in) :: code
            integer(c_int64_t), value :: length
        end subroutine
        subroutine cblas_xerbla(name, parameter) bind(C)
            import
            character(c_char), intent(in) :: name(*)
            integer(c_int32_t), value :: parameter
        end subroutine
        integer(c_int) function vox_serv_progress(thread, step, stage, length) bind(C)
            import
            integer(c_int32_t), intent(in) :: thread, step
            character(c_char), intent(in) :: stage(*)
            integer(c_int64_t), value :: length
        end function
    end interface
    integer(c_int64_t), parameter :: rubbish = ishft(1_c_int64_t, 40)
    integer :: result
    call vox_serv_xerbla('DGEMM ', 3, rubbish + 6)
    call cblas_xerbla('cblas_dgemv' // c_null_char, 7)
    call vox_serv_xerbla('DPOTRF', 4, rubbish + 6)
    result = vox_serv_progress(1, 2, 'DGETRF', rubbish + 6)
    print '("result ", i0)', result
end program
