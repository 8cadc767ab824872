"""numpy_answers.py ANSWERS [TYPE] - linear algebra by NumPy, judged by residuals and by the answers of another BLAS.

The first run writes its answers to the file ANSWERS, later ones compare theirs with them. With TYPE, the process
must be running this library, with the code path of that processor type, a number or "any".

Bounds: products as Higham, Accuracy and Stability of Numerical Algorithms, section 3.5 and 3.6; residuals of
factorisations below 30, and of eigenvalues and singular values below 50, in units of n u norm(A), as the public
testers of LAPACK demand; answers of two backward stable methods differ by that times the condition number.
"""
import ctypes
import os
import sys

import numpy as np
from numpy import linalg as la

answers_file = sys.argv[1]
answers = {}
failures = []


def judge(name, error, bound):
    if not error <= bound:
        failures.append(f"{name}: {error:.3g} is above {bound:.3g}")


def keep(name, value, allowed):
    """An answer, and by how much another may differ: a number or one for each element."""
    answers[name] = value
    if known:
        judge(name + ", compared", np.max(np.abs(value - known[name]) - allowed), 0)


def gamma(k, u):
    return k * u / (1 - k * u)


def conjugated(a):
    return a.conj().T


def random(rng, t, *shape):
    a = rng.standard_normal(shape)
    if np.issubdtype(t, np.complexfloating):
        a = a + 1j * rng.standard_normal(shape)
    return a.astype(t)


def products(t, m, n, k):
    rng = np.random.default_rng([m, n, k])
    name = f"{np.dtype(t).name} {m} {n} {k} "
    u = np.finfo(t).eps / 2
    a, b, x = random(rng, t, m, k), random(rng, t, k, n), random(rng, t, k)
    twice = 2 * gamma(2 * k + 4, u)
    keep(name + "gemm", a @ b, twice * (np.abs(a) @ np.abs(b)))
    keep(name + "gemm of transposes", b.T @ a.T, twice * (np.abs(b.T) @ np.abs(a.T)))
    keep(name + "syrk", a @ a.T, twice * (np.abs(a) @ np.abs(a.T)))
    keep(name + "gemv", a @ x, twice * (np.abs(a) @ np.abs(x)))
    keep(name + "dot", np.vdot(x, x), twice * np.vdot(np.abs(x), np.abs(x)))


def factorisations(t, n):
    rng = np.random.default_rng(n)
    name = f"{np.dtype(t).name} {n} "
    u = np.finfo(t).eps / 2
    a, b = random(rng, t, n, n), random(rng, t, n, 3)
    norm_a, unit, eye = la.norm(a), n * u, np.eye(n)
    condition = norm_a * la.norm(la.inv(a))

    x = la.solve(a, b)
    judge(name + "solve", la.norm(b - a @ x) / (norm_a * la.norm(x) * unit), 30)
    keep(name + "solve", x, 60 * unit * condition * la.norm(x))
    x = la.inv(a)
    judge(name + "inv", la.norm(a @ x - eye) / (norm_a * la.norm(x) * unit), 30)
    keep(name + "inv", x, 60 * unit * condition * la.norm(x))
    sign, logarithm = la.slogdet(a)
    keep(name + "det", np.array([sign, logarithm]), 60 * n * unit * condition)

    h = a @ conjugated(a) + n * eye.astype(t)
    l = la.cholesky(h)
    judge(name + "cholesky", la.norm(h - l @ conjugated(l)) / (la.norm(h) * unit), 30)
    keep(name + "cholesky", l, 60 * unit * la.cond(h) * la.norm(l))
    q, r = la.qr(a)
    judge(name + "qr", la.norm(a - q @ r) / (norm_a * unit), 30)
    judge(name + "qr, orthogonality", la.norm(eye - conjugated(q) @ q) / unit, 30)
    x = la.lstsq(a, b, rcond=None)[0]
    judge(name + "lstsq", la.norm(b - a @ x) / (norm_a * la.norm(x) * unit), 50)

    w, v = la.eig(a)
    judge(name + "eig", la.norm(a @ v - v * w) / (norm_a * la.norm(v) * unit), 50)
    w, v = la.eigh(h)
    judge(name + "eigh", la.norm(h @ v - v * w) / (la.norm(h) * unit), 50)
    keep(name + "eigh", w, 100 * unit * la.norm(h))
    p, s, q = la.svd(a)
    judge(name + "svd", la.norm(a - (p * s) @ q) / (norm_a * unit), 50)
    keep(name + "svd", s, 100 * unit * norm_a)


known = np.load(answers_file) if os.path.exists(answers_file) else None
for t in (np.float32, np.float64, np.complex64, np.complex128):
    for shape in ((3, 5, 2), (100, 30, 70), (500, 400, 300)):
        products(t, *shape)
    for n in (3, 40, 130):
        factorisations(t, n)
if known:
    judge("answers that were not given", len(set(known.files) ^ set(answers)), 0)
else:
    np.savez(answers_file, **answers)

# Asked last, in the same process: the choice that the computations ran with.
cpu_type = getattr(ctypes.CDLL(None), "vox_get_cpu_type", None)
running = str(cpu_type(0)) if cpu_type else None
wanted = sys.argv[2] if len(sys.argv) > 2 else None
if running != wanted and not (running and wanted == "any"):
    failures.append(f"processor type {wanted} was wanted, {running} runs")
print(*failures, f"{len(answers)} answers", sep="\n")
sys.exit(bool(failures))
