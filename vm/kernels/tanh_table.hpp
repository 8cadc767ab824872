// tanh_table.hpp - hyperbolic tangents in single precision, piece by piece.
//
// Pieces are eighths of the octaves of |x| + start, 32 from |x| = 0 on. One has a centre c and, for h = |x| - c,
//
//   tanh |x| = value + h (k[0] + k[1] h + ...)
//
// The polynomials make the largest relative error least, by Remez' algorithm with 40 digits. In the last pieces the
// result is 1.
#pragma once

namespace {
namespace vm {

// Within 2^-28. The centre is such that its tangent is within 2^-33 of a float, the value. In the first pieces c is 0
// and what stands for the value is h.
constexpr float tanh_accurate_start = 1.0f, tanh_first_end = 0.5f;
constexpr float tanh_accurate[32][8] = {
    // c, value, k[0], ..., k[4], nothing
    {0, 0, 0, 0, -0x1.5553dcp-2f, 0, 0x1.0eae02p-3f, 0},
    {0, 0, -0x1.35c1fcp-17f, 0x1.0848e8p-12f, -0x1.580c74p-2f, 0x1.ac0dcap-7f, 0x1.b4062p-4f, 0},
    {0, 0, -0x1.7b8f82p-13f, 0x1.79385ep-9f, -0x1.67a144p-2f, 0x1.afcca8p-5f, 0x1.1360dp-4f, 0},
    {0, 0, -0x1.18ce58p-10f, 0x1.9086b6p-7f, -0x1.8d81e6p-2f, 0x1.e3efecp-4f, 0x1.822898p-6f, 0},
    {0x1.1ffcecp-1f, 0x1.050628p-1f, 0x1.7aed3ap-1f, -0x1.825ce8p-2f, -0x1.bd2b04p-5f,
     0x1.39e5cp-3f, -0x1.630f5p-5f, 0},
    {0x1.5ffc7cp-1f, 0x1.31559cp-1f, 0x1.49e972p-1f, -0x1.897d7p-2f, 0x1.d6fd72p-7f, 0x1.e948cap-4f,
     -0x1.f8004cp-5f, 0},
    {0x1.a00322p-1f, 0x1.578ab8p-1f, 0x1.197d7ep-1f, -0x1.79bfaep-2f, 0x1.0734cep-4f,
     0x1.47384cp-4f, -0x1.00b202p-4f, 0},
    {0x1.dffc92p-1f, 0x1.77d6a4p-1f, 0x1.d83978p-2f, -0x1.5aa416p-2f, 0x1.842ff2p-4f,
     0x1.633a58p-5f, -0x1.b2d026p-5f, 0},
    {0x1.20038p0f, 0x1.9e5f2p-1f, 0x1.61483p-2f, -0x1.1deb86p-2f, 0x1.c68fc6p-4f, 0x1.dfd936p-9f,
     -0x1.07100cp-5f, 0},
    {0x1.6002bp0f, 0x1.c279dcp-1f, 0x1.ce9eb8p-3f, -0x1.970836p-3f, 0x1.97d52p-4f, -0x1.59f508p-6f,
     -0x1.38f854p-7f, 0},
    {0x1.9fff1p0f, 0x1.d9c6b6p-1f, 0x1.266032p-3f, -0x1.106658p-3f, 0x1.33e0e4p-4f, -0x1.9bb38p-6f,
     0x1.6a2402p-10f, 0},
    {0x1.e00076p0f, 0x1.e878b4p-1f, 0x1.6fce64p-4f, -0x1.5ee77ep-4f, 0x1.a85b04p-5f,
     -0x1.559a96p-6f, 0x1.2d4752p-8f, 0},
    {0x1.0ffa5ep1f, 0x1.f1980ep-1f, 0x1.c681fap-5f, -0x1.b9b808p-5f, 0x1.15c9f6p-5f,
     -0x1.eb54b2p-7f, 0x1.25a1a6p-8f, 0},
    {0x1.2ff454p1f, 0x1.f735ep-1f, 0x1.16d9f4p-5f, -0x1.12104ap-5f, 0x1.60d172p-6f, -0x1.48a5fap-7f,
     0x1.c0125p-9f, 0},
    {0x1.500474p1f, 0x1.faa7f2p-1f, 0x1.543a92p-6f, -0x1.50ad34p-6f, 0x1.b781c2p-7f,
     -0x1.a5d8c6p-8f, 0x1.340d26p-9f, 0},
    {0x1.6fd36p1f, 0x1.fcbe0ap-1f, 0x1.9fa768p-7f, -0x1.9d01fap-7f, 0x1.0fd4bep-7f, -0x1.0982bep-8f,
     0x1.918a82p-10f, 0},
    {0x1.a05aeap1f, 0x1.fe78a6p-1f, 0x1.86c482p-8f, -0x1.8592ecp-8f, 0x1.02261ep-8f,
     -0x1.01d75ap-9f, 0x1.9459d2p-11f, 0},
    {0x1.e0246ep1f, 0x1.ff6f6ap-1f, 0x1.210336p-9f, -0x1.20ac2ep-9f, 0x1.800962p-10f,
     -0x1.82b76ep-11f, 0x1.332d9ap-12f, 0},
    {0x1.0f3e7ep2f, 0x1.ffc966p-1f, 0x1.b4b89p-11f, -0x1.b4822p-11f, 0x1.22d6dap-11f,
     -0x1.2592dp-12f, 0x1.c95p-14f, 0},
    {0x1.2dd66p2f, 0x1.ffeb02p-1f, 0x1.4fd8cp-12f, -0x1.4fc69ep-12f, 0x1.bfdf1ap-13f,
     -0x1.c3975cp-14f, 0x1.51f03p-15f, 0},
    {0x1.4cbdaep2f, 0x1.fff802p-1f, 0x1.ff7b36p-14f, -0x1.ff6fc8p-14f, 0x1.553ebap-14f,
     -0x1.574cdep-15f, 0x1.f221bp-17f, 0},
    {0x1.726f64p2f, 0x1.fffd8ap-1f, 0x1.3affcp-15f, -0x1.3af9c8p-15f, 0x1.a39172p-16f,
     -0x1.a7b42ep-17f, 0x1.6eb0c2p-18f, 0},
    {0x1.8b7bccp2f, 0x1.fffeep-1f, 0x1.1fff26p-16f, -0x1.1fff1ep-16f, 0x1.806c3ap-17f,
     -0x1.81446p-18f, 0x1.0e214ep-19f, 0},
    {0x1.ab77e6p2f, 0x1.ffff96p-1f, 0x1.a7ff0ap-18f, -0x1.a7ffa2p-18f, 0x1.1afbb8p-18f,
     -0x1.1b987ap-19f, 0x1.8d8e3p-21f, 0},
    {0x1.e434ep2f, 0x1.ffffeep-1f, 0x1.200f4cp-20f, -0x1.1fbd7cp-20f, 0x1.7cf15cp-21f,
     -0x1.8ef326p-22f, 0x1.6efa66p-23f, 0},
    {0x1.0a2b24p3f, 0x1.fffffcp-1f, 0x1.ffebc4p-23f, -0x1.001cbcp-22f, 0x1.57ea74p-23f,
     -0x1.545354p-24f, 0x1.91550cp-26f, 0},
    {0x1.3p3f, 1, 0, 0, 0, 0, 0, 0},
    {0x1.5p3f, 1, 0, 0, 0, 0, 0, 0},
    {0x1.7p3f, 1, 0, 0, 0, 0, 0, 0},
    {0x1.9p3f, 1, 0, 0, 0, 0, 0, 0},
    {0x1.bp3f, 1, 0, 0, 0, 0, 0, 0},
    {0x1.dp3f, 1, 0, 0, 0, 0, 0, 0},
};

// Within 2^-12.
constexpr float tanh_rough_start = 0.5f;
constexpr float tanh_rough[32][4] = {
    // c, value, k[0], k[1]
    {0, 0, 0x1.000aa4p0f, -0x1.54ce5ep-6f},
    {0x1.8p-4f, 0x1.7ee01ep-4f, 0x1.fb6824p-1f, -0x1.743376p-4f},
    {0x1.4p-3f, 0x1.3d6b88p-3f, 0x1.f3968p-1f, -0x1.33a1bcp-3f},
    {0x1.cp-3f, 0x1.b8fcdap-3f, 0x1.e82892p-1f, -0x1.a30134p-3f},
    {0x1.2p-2f, 0x1.18a38ap-2f, 0x1.d97452p-1f, -0x1.02f7f2p-2f},
    {0x1.6p-2f, 0x1.52c2bap-2f, 0x1.c7e404p-1f, -0x1.2d3632p-2f},
    {0x1.ap-2f, 0x1.8a87d8p-2f, 0x1.b3f014p-1f, -0x1.4f940ap-2f},
    {0x1.ep-2f, 0x1.bfae64p-2f, 0x1.9e18a6p-1f, -0x1.69cc22p-2f},
    {0x1.2p-1f, 0x1.050852p-1f, 0x1.7ad618p-1f, -0x1.8170e6p-2f},
    {0x1.6p-1f, 0x1.3157d4p-1f, 0x1.49ec1ap-1f, -0x1.88edf6p-2f},
    {0x1.ap-1f, 0x1.5788fcp-1f, 0x1.199866p-1f, -0x1.797582p-2f},
    {0x1.ep-1f, 0x1.77d83ap-1f, 0x1.d87d7cp-2f, -0x1.5a8916p-2f},
    {0x1.1p0f, 0x1.92bfb8p-1f, 0x1.86b4dcp-2f, -0x1.331d22p-2f},
    {0x1.3p0f, 0x1.a8dbd2p-1f, 0x1.3f3c18p-2f, -0x1.08bccap-2f},
    {0x1.5p0f, 0x1.bad51p-1f, 0x1.024bdep-2f, -0x1.be8faap-3f},
    {0x1.7p0f, 0x1.c950a8p-1f, 0x1.9eae3cp-3f, -0x1.723558p-3f},
    {0x1.ap0f, 0x1.d9c746p-1f, 0x1.282c2ap-3f, -0x1.11963ep-3f},
    {0x1.ep0f, 0x1.e878d4p-1f, 0x1.724cf4p-4f, -0x1.60bc1p-4f},
    {0x1.1p1f, 0x1.f1997p-1f, 0x1.c99da8p-5f, -0x1.bc198p-5f},
    {0x1.3p1f, 0x1.f7378cp-1f, 0x1.18b9f2p-5f, -0x1.138702p-5f},
    {0x1.5p1f, 0x1.faa7a2p-1f, 0x1.56e6eap-6f, -0x1.52dcfcp-6f},
    {0x1.7p1f, 0x1.fcc056p-1f, 0x1.a1b712p-7f, -0x1.9e832ep-7f},
    {0x1.9p1f, 0x1.fe06fp-1f, 0x1.fc02dcp-8f, -0x1.f96316p-8f},
    {0x1.bp1f, 0x1.fecd6ep-1f, 0x1.349a6p-8f, -0x1.337a68p-8f},
    {0x1.ep1f, 0x1.ff6f3p-1f, 0x1.2ac49p-9f, -0x1.28e6bp-9f},
    {0x1.1p2f, 0x1.ffcab6p-1f, 0x1.b7fa96p-11f, -0x1.b58ac8p-11f},
    {0x1.3p2f, 0x1.ffec64p-1f, 0x1.43cf4p-12f, -0x1.4219cep-12f},
    {0x1.5p2f, 0x1.fff8cap-1f, 0x1.dc8a7ap-14f, -0x1.da126cp-14f},
    {0x1.7p2f, 0x1.fffd58p-1f, 0x1.5ea1f2p-15f, -0x1.5cd41p-15f},
    {0x1.9p2f, 0x1.ffff06p-1f, 0x1.01fc12p-16f, -0x1.00a918p-16f},
    {0x1.bp2f, 0x1.ffffa4p-1f, 0x1.7ba188p-18f, -0x1.79af2ep-18f},
    {0x1.dp2f, 1, 0, 0},
};

} // namespace vm
} // namespace
