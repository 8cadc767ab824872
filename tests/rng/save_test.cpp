// save_test.cpp - streams as bytes: they continue after loading, and what is no intact image is refused.
#include "tests/rng/streams.hpp"

#include <algorithm>
#include <functional>
#include <random>

#include "tests/support/temporary.hpp"

namespace {

using namespace test;

std::string image_of(rskStream s) {
    const int size = rskGetStreamSize(s);
    EXPECT_GT(size, 0);
    std::string image(size_t(size) + 1, '#');
    EXPECT_EQ(rskSaveStreamM(s, image.data()), 0);
    EXPECT_EQ(image.back(), '#') << "writes as many bytes as it says";
    image.pop_back();
    return image;
}

// The status of loading, whether *stream is null after errors, that nothing is kept.
int status_of_loading(const std::function<int(rskStream *)> &load) {
    const int64_t before = vox_mem_stat(nullptr);
    rskStream s = reinterpret_cast<rskStream>(&s);
    const int status = load(&s);
    EXPECT_EQ(s == nullptr, status != 0);
    if (s)
        rskDeleteStream(&s);
    EXPECT_EQ(vox_mem_stat(nullptr), before);
    return status;
}
int load_memory(const std::string &image) {
    // A block of its own, so that a checker sees what is read beyond it.
    const std::vector<char> bytes(image.begin(), image.end());
    return status_of_loading([&](rskStream *s) { return rskLoadStreamM(s, bytes.data()); });
}

const temporary_directory &directory() {
    static const temporary_directory made;
    return made;
}
int load_file(const std::string &content) {
    const std::string name = directory() / "stream";
    std::ofstream(name, std::ios::binary) << content;
    return status_of_loading([&](rskStream *s) { return rskLoadStream(s, name.c_str()); });
}

// CRC-32 bit by bit, to make images that are wrong but intact.
uint32_t crc32(const std::string &bytes) {
    uint32_t c = ~0u;
    for (unsigned char b : bytes) {
        c ^= b;
        for (int i = 0; i < 8; ++i)
            c = c & 1 ? c >> 1 ^ 0xEDB88320 : c >> 1;
    }
    return ~c;
}
void put(std::string &image, size_t at, uint32_t word) { memcpy(image.data() + at, &word, 4); }
std::string sealed(std::string image) {
    put(image, 28, crc32(image.substr(36)));
    put(image, 32, crc32(image.substr(0, 32)));
    return image;
}

constexpr size_t version_at = 8, id_at = 12, bytes_at = 16, state_bytes_at = 20, chunks_at = 24,
                 state_at = 36;

TEST(Save, TheSequenceGoesOn) {
    ASSERT_EQ(crc32("123456789"), 0xCBF43926u); // the check value of CRC-32
    for (generator &s : one_of_each()) {
        SCOPED_TRACE(rskGetStreamStateBrng(s));
        const std::string image = image_of(s), name = directory() / "saved";
        EXPECT_EQ(sealed(image), image);
        ASSERT_EQ(rskSaveStream(s, name.c_str()), 0);
        EXPECT_EQ(contents_of(name), image);
        generator from_memory, from_file;
        ASSERT_EQ(rskLoadStreamM(&from_memory, image.data()), 0);
        ASSERT_EQ(rskLoadStream(&from_file, name.c_str()), 0);
        EXPECT_EQ(rskGetStreamStateBrng(from_file), rskGetStreamStateBrng(s));
        const numbers expected = s.integers(3000);
        EXPECT_EQ(from_memory.integers(3000), expected);
        EXPECT_EQ(from_file.integers(3000), expected);
    }
}

TEST(Save, FortranForms) {
    generator s(RSK_BRNG_MCG31M1, {99}), t, u;
    const std::string name = directory() / "fortran", padded = name + "     ";
    ASSERT_EQ(rsksavestream_(&s, padded.data(), padded.size()), 0);
    EXPECT_EQ(contents_of(name), image_of(s));
    ASSERT_EQ(RSKLOADSTREAM_(&t, padded.data(), padded.size()), 0);
    std::string memory(size_t(rskgetstreamsize_(&s)), ' ');
    ASSERT_EQ(rsksavestreamm_(&s, memory.data()), 0);
    ASSERT_EQ(RSKLOADSTREAMM_(&u, memory.data()), 0);
    EXPECT_EQ(t.integers(5), u.integers(5));
    const std::string too_long(5000, 'x');
    EXPECT_EQ(rsksavestream_(&s, too_long.data(), too_long.size()), RSK_ERROR_FILE_OPEN);
}

TEST(Save, EveryChangedBitIsNoticed) {
    for (uint32_t kind : {private_chunk, standard_chunk}) {
        const generator s(walker(), {11, kind});
        const std::string image = image_of(s);
        for (size_t bit = 0; bit < 8 * image.size(); ++bit) {
            std::string changed = image;
            changed[bit / 8] = char(changed[bit / 8] ^ 1 << bit % 8);
            const int expected = bit < 8 * version_at ? RSK_ERROR_FOREIGN
                                 : bit < 8 * id_at    ? RSK_ERROR_VERSION
                                                      : RSK_ERROR_CHECKSUM;
            EXPECT_EQ(load_memory(changed), expected) << bit;
            if (bit % 8 == 3) {
                EXPECT_EQ(load_file(changed), expected) << bit;
            }
        }
    }
}

TEST(Save, FilesOfAnotherLength) {
    const std::string image = image_of(generator(walker(), {11, standard_chunk}));
    for (size_t length = 0; length < image.size(); ++length)
        EXPECT_EQ(load_file(image.substr(0, length)), RSK_ERROR_FOREIGN) << length;
    EXPECT_EQ(load_file(image + '\0'), RSK_ERROR_FOREIGN);
    EXPECT_EQ(load_file(image + image), RSK_ERROR_FOREIGN);
    EXPECT_EQ(load_file(image), 0);
}

TEST(Save, ForeignFiles) {
    EXPECT_EQ(load_file(std::string(5000, '\0')), RSK_ERROR_FOREIGN);
    EXPECT_EQ(load_file("a line of text that is longer than the head of a saved stream\n"),
              RSK_ERROR_FOREIGN);
    EXPECT_EQ(load_file(contents_of("/proc/self/exe").substr(0, 100000)), RSK_ERROR_FOREIGN);
    const auto load = [](const char *name) {
        return status_of_loading([&](rskStream *s) { return rskLoadStream(s, name); });
    };
    EXPECT_EQ(load("/nonexistent/stream"), RSK_ERROR_FILE_OPEN);
    EXPECT_EQ(load(""), RSK_ERROR_FILE_OPEN);
    EXPECT_EQ(load("/"), RSK_ERROR_FILE_READ);
    EXPECT_EQ(load("/dev/null"), RSK_ERROR_FOREIGN);
    EXPECT_EQ(load("/dev/zero"), RSK_ERROR_FOREIGN);
}

// Intact images that this library would not have written.
TEST(Save, ImagesOfNoStream) {
    const std::string image = image_of(generator(walker(), {11, standard_chunk}));
    const size_t chunk_at = state_at + 8, data_at = chunk_at + 24;
    const auto with = [&](size_t at, uint32_t word) {
        std::string changed = image;
        put(changed, at, word);
        return sealed(changed);
    };
    EXPECT_EQ(load_memory(sealed(image)), 0);
    EXPECT_EQ(load_memory(with(version_at, 2)), RSK_ERROR_VERSION);
    const std::string refused[] = {
        with(id_at, RSK_BRNG_IABSTRACT),
        with(id_at, uint32_t(-5)),
        with(id_at, 279),
        with(id_at, 0x7FF00000),
        with(id_at, uint32_t(walker() + 1)),
        with(id_at, RSK_BRNG_MT19937),
        with(bytes_at, 0),
        with(bytes_at, 43),
        with(bytes_at, 0xFFFFFFFF),
        with(state_bytes_at, 0),
        with(state_bytes_at, 0x7FFFFFFF),
        with(chunks_at, 0),
        with(chunks_at, 2),
        with(chunks_at, 0xFFFFFFFF),
        with(state_at, walker_words),             // the walker's place, behind its words
        with(state_at + 4, 3),                    // its kind of chunk
        with(chunk_at, walker_chunk + 1),         // without the chunk that it needs
        with(chunk_at + 4, walker_words * 4 - 1), // the chunk's size
        with(chunk_at + 4, 0xFFFFFFFF),
    };
    for (const std::string &r : refused)
        EXPECT_EQ(load_memory(r), RSK_ERROR_BAD_STATE) << &r - refused;
    std::string longer = image + "more";
    put(longer, bytes_at, uint32_t(longer.size()));
    EXPECT_EQ(load_memory(sealed(longer)), RSK_ERROR_BAD_STATE);

    // Other data than those which the key stands for are nobody else's.
    generator honest(walker(), {11, standard_chunk});
    generator forged;
    ASSERT_EQ(rskLoadStreamM(&forged, with(data_at + 4 * 11, 12345).data()), 0);
    EXPECT_EQ(forged.integers(1)[0], 12345u);
    EXPECT_NE(honest.integers(1)[0], 12345u);
}

// A word of the state, counted from 0, and what it cannot be after 33 numbers.
TEST(Save, StatesThatCannotBe) {
    constexpr uint32_t most = INT32_MAX, minus_one = ~0u;
    const struct {
        int id;
        std::vector<std::pair<size_t, uint32_t>> bad;
        size_t words = 0;      // of a twister, whose state is not all zeros
        uint32_t no_state = 0; // the bits of its first word that do not matter
    } rows[] = {
        {RSK_BRNG_MCG31M1, {{0, 0}, {0, 0x7FFFFFFF}, {1, 0}, {1, 0x80000000}}},
        {RSK_BRNG_MCG59, {{1, 1u << 27}, {3, 1u << 27}}},
        {RSK_BRNG_MRG32K3A, {{0, 4294967087}, {2, ~0u}, {3, 4294944443}, {5, ~0u}}},
        {RSK_BRNG_R250, {{250, 250}, {251, 102}}},
        {RSK_BRNG_WH, {{0, 0}, {0, 16770647}, {3, 16770617}, {4, 0}, {7, 16770617}}},
        {RSK_BRNG_NIEDERR, {{0, 0}, {0, 11}, {0, ~0u}, {2, 10}, {1, ~0u}}}, // of dimension 10
        {RSK_BRNG_PHILOX4X32X10, {{6, 4}}},
        {RSK_BRNG_MT19937, {{624, 0}, {624, minus_one}, {624, 625}, {624, most}}, 624, 0x7FFFFFFF},
        {RSK_BRNG_SFMT19937, {{624, 0}, {624, minus_one}, {624, 625}, {624, most}}, 624},
        {RSK_BRNG_MT2203, {{69, 0}, {69, minus_one}, {69, 70}, {69, most}, {71, 0}}, 69, 0x1F},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << row.id);
        const auto expect = [&](int status, const std::function<void(uint32_t *)> &change) {
            generator g(row.id, {10});
            g.integers(33);
            EXPECT_EQ(g.call(vox::rng::validate), 0);
            change(reinterpret_cast<uint32_t *>(&g.object() + 1));
            EXPECT_EQ(g.call(vox::rng::validate), status);
        };
        for (const auto &[place, value] : row.bad)
            expect(vox::rng::bad_state,
                   [place = place, value = value](uint32_t *state) { state[place] = value; });
        if (row.words) {
            const auto only = [&](uint32_t first, uint32_t last) {
                return [=](uint32_t *state) {
                    std::fill_n(state, row.words, 0);
                    state[0] = first, state[row.words - 1] = last;
                };
            };
            expect(vox::rng::bad_state, only(row.no_state, 0));
            expect(0, only(row.no_state, 1));
        }
    }
}

// Whatever the state is, it is refused, or the generator works with it: uniforms in [0, 1), no byte beyond
// the state (a checker sees to that).
TEST(Save, StatesThatNobodyHad) {
    std::mt19937 random(1);
    for (const generator &s : one_of_each()) {
        const int id = rskGetStreamStateBrng(s);
        SCOPED_TRACE(id);
        const std::string image = image_of(s);
        uint32_t state_bytes;
        memcpy(&state_bytes, image.data() + state_bytes_at, 4);
        const auto try_state = [&](const std::string &changed) {
            generator t;
            const int status = rskLoadStreamM(&t, sealed(changed).data());
            EXPECT_TRUE(status == 0 || status == RSK_ERROR_BAD_STATE) << status;
            std::vector<double> u(2000, 0.5);
            if (status == 0 && properties_of(id).doubles(&t.object(), 2000, u.data(), 0, 1) == 0) {
                EXPECT_GE(*std::min_element(u.begin(), u.end()), 0);
                EXPECT_LT(*std::max_element(u.begin(), u.end()), 1);
            }
            return status;
        };
        for (char byte : {'\0', '\1', '\x7F', '\x80', '\xFF'}) {
            std::string changed = image;
            changed.replace(state_at, state_bytes, std::string(state_bytes, byte));
            try_state(changed);
        }
        for (int i = 0; i < 200; ++i) { // one word or all
            std::string changed = image;
            const size_t words = state_bytes / 4,
                         word = i < 100 ? random() % words : words - 1 - i % 4;
            if (i % 50 == 0)
                for (size_t w = 0; w < words; ++w)
                    put(changed, state_at + 4 * w, uint32_t(random()));
            else
                put(changed, state_at + 4 * std::min(word, words - 1),
                    uint32_t(random() >> i % 32));
            try_state(changed);
        }
    }
}

TEST(Save, ChunksAreSharedAgain) {
    for (uint32_t kind : {private_chunk, standard_chunk, chunk_of_copies}) {
        generator s(walker(), {11, kind}), loaded, alone, copy;
        const std::string image = image_of(s);
        ASSERT_EQ(rskLoadStreamM(&loaded, image.data()), 0);
        EXPECT_EQ(s.object().chunks->data == loaded.object().chunks->data, kind != private_chunk);
        rskDeleteStream(&s);
        rskDeleteStream(&loaded);
        ASSERT_EQ(rskLoadStreamM(&alone, image.data()), 0);
        ASSERT_EQ(rskCopyStream(&copy, alone), 0);
        EXPECT_EQ(alone.object().chunks->data == copy.object().chunks->data, kind != private_chunk);
        EXPECT_EQ(vox::rng::holders(walker_key), 0u) << "data of a file are not the standard's";
    }
}

TEST(Save, NamesAndPointersThatAreReported) {
    reports reported;
    const generator s(RSK_BRNG_MCG31M1);
    rskStream out = s;
    EXPECT_EQ(rskSaveStream(s, nullptr), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(rskSaveStreamM(s, nullptr), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(rskLoadStream(nullptr, "x"), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(rskLoadStreamM(nullptr, "x"), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(rskLoadStream(&out, nullptr), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(rskLoadStreamM(&out, nullptr), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(reported.take(), "rskSaveStream 2;rskSaveStreamM 2;rskLoadStream 1;rskLoadStreamM 1;"
                               "rskLoadStream 2;rskLoadStreamM 2;");
    EXPECT_EQ(rskSaveStream(s, "/nonexistent/stream"), RSK_ERROR_FILE_OPEN);
    EXPECT_EQ(rskSaveStream(s, "/"), RSK_ERROR_FILE_OPEN);
    EXPECT_EQ(rskSaveStream(s, "/dev/full"), RSK_ERROR_FILE_WRITE);
    EXPECT_EQ(reported.take(), "");
}

TEST(Save, MoreChunksThanAnImageMayHave) {
    generator s(walker(), {11, private_chunk});
    for (uint32_t i = 0; i < 16; ++i)
        ASSERT_EQ(vox::rng::add_chunk(s.object(), i, {}, vox::rng::new_chunk_data(4), 4), 0);
    EXPECT_EQ(rskGetStreamSize(s), RSK_ERROR_NOT_SAVABLE);
    generator large(walker(), {11, private_chunk});
    ASSERT_EQ(
        vox::rng::add_chunk(large.object(), 1, {}, vox::rng::new_chunk_data(1 << 20), 1 << 20), 0);
    EXPECT_EQ(rskSaveStream(large, (directory() / "large").c_str()), RSK_ERROR_NOT_SAVABLE);
    EXPECT_FALSE(std::filesystem::exists(directory() / "large"));
}

TEST(Save, EveryAllocationMayFail) {
    const std::string name = directory() / "memory";
    for (uint32_t kind : {private_chunk, standard_chunk, chunk_of_copies}) {
        const generator s(walker(), {3, kind});
        const std::string image = image_of(s);
        refuse_in_turn([&] { return rskSaveStream(s, name.c_str()); });
        refuse_in_turn([&] {
            return status_of_loading([&](rskStream *t) { return rskLoadStream(t, name.c_str()); });
        });
        refuse_in_turn([&] { return load_memory(image); });
    }
}

} // namespace
