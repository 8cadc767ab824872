// distributions.cpp - the distributions, each by its description; see distributions.hpp.
#include "rng/entry/distributions.hpp"

#include "rng/uniform_bits.hpp"

VOX_DISTRIBUTION(sRngUniform, srnguniform, SRNGUNIFORM, float,
                 (method & ~RSK_UNIFORM_CLAMP_BIT) != RSK_UNIFORM_DEFAULT, (float, a, false),
                 (float, b, b <= a))
VOX_DISTRIBUTION(dRngUniform, drnguniform, DRNGUNIFORM, double,
                 (method & ~RSK_UNIFORM_CLAMP_BIT) != RSK_UNIFORM_DEFAULT, (double, a, false),
                 (double, b, b <= a))
VOX_DISTRIBUTION(iRngUniform, irnguniform, IRNGUNIFORM, vox_int, method > RSK_UNIFORM_DEFAULT,
                 (vox_int, a, false), (vox_int, b, b <= a))
VOX_DISTRIBUTION_OF_ALL(iRngUniformBits, irnguniformbits, IRNGUNIFORMBITS, uint32_t,
                        method > RSK_UNIFORM_BITS_DEFAULT)
VOX_DISTRIBUTION_OF_ALL(iRngUniformBits32, irnguniformbits32, IRNGUNIFORMBITS32, uint32_t,
                        method > RSK_UNIFORM_BITS_DEFAULT)
VOX_DISTRIBUTION_OF_ALL(iRngUniformBits64, irnguniformbits64, IRNGUNIFORMBITS64, uint64_t,
                        method > RSK_UNIFORM_BITS_DEFAULT)
VOX_DISTRIBUTION(iRngBernoulli, irngbernoulli, IRNGBERNOULLI, vox_int,
                 method > RSK_BERNOULLI_DEFAULT, (double, p, p<0 || p> 1))
VOX_DISTRIBUTION(sRngGaussian, srnggaussian, SRNGGAUSSIAN, float, method > RSK_GAUSSIAN_INVERSE,
                 (float, a, false), (float, sigma, sigma <= 0))
VOX_DISTRIBUTION(dRngGaussian, drnggaussian, DRNGGAUSSIAN, double, method > RSK_GAUSSIAN_INVERSE,
                 (double, a, false), (double, sigma, sigma <= 0))
VOX_DISTRIBUTION(sRngExponential, srngexponential, SRNGEXPONENTIAL, float,
                 method > RSK_EXPONENTIAL_INVERSE, (float, a, false), (float, beta, beta <= 0))
VOX_DISTRIBUTION(dRngExponential, drngexponential, DRNGEXPONENTIAL, double,
                 method > RSK_EXPONENTIAL_INVERSE, (double, a, false), (double, beta, beta <= 0))
VOX_DISTRIBUTION(iRngPoisson, irngpoisson, IRNGPOISSON, vox_int, method > RSK_POISSON_INVERSE,
                 (double, lambda, lambda <= 0 || lambda > 2e9))
