// image_test.cpp - the example that rectifies a picture.
#include "tests/examples/example.hpp"

namespace {

using namespace test;

class Image : public Example {};

TEST_F(Image, RectifiesTextAndBytes) {
    const std::string text = file("a.ppm", "P3 # comment\n2 2\n#\n9\n0 4 5\n9 8 7\n1 2 3 6 5 4");
    const std::string bytes =
        file("b.ppm", std::string("P6\n2 2 9\n") + std::string("\0\4\5\11\10\7\1\2\3\6\5\4", 12));
    for (const std::string &name : {text, bytes}) {
        const std::string output = directory_ / "out.ppm";
        const child_result r = run({name, output});
        EXPECT_EQ(r.status, 0) << r.err;
        EXPECT_EQ(r.out, "internal layout: 64 bytes for 48 of values\npicture: 2 x 2\n"
                         "rectified: 6 of 12 values\n");
        EXPECT_EQ(contents_of(output), "P3\n2 2\n9\n4 4 5 9 8 7 4 4 4 6 5 4 ");
        EXPECT_EQ(run({output}).status, 0); // what was written can be read
    }
}

TEST_F(Image, ShowsTheBundledPicture) {
    const child_result r = run({DATA "hills.ppm"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(field(r.out, "picture"), "32 x 24");
    EXPECT_EQ(field(r.out, "internal layout"), "12288 bytes for 9216 of values");
}

TEST_F(Image, SaysWhatIsWrong) {
    const struct {
        const char *text, *message;
    } bad[] = {
        {"", "not a portable pixmap.*"},
        {"P5 1 1 255\n1", "not a portable pixmap.*"},
        {"P3 0 1 255\n", "width and height .*"},
        {"P3 40000 1 255\n", "width and height .*"},
        {"P3 1 1 256\n1 2 3", "width and height .*"},
        {"P3 1 1 99\n1 2", "a value is missing or too large"},
        {"P3 1 1 99\n1 2 100", "a value is missing or too large"},
        {"P3 1 1 99\n1 -2 3", "a value is missing or too large"},
        {"P6 1 1 9\n\1\2", "a value is missing or too large"},
    };
    for (const auto &b : bad)
        expect_failure(run({file("bad", b.text)}), 1, directory_ / "bad",
                       std::string(": ") + b.message);
    expect_failure(run({directory_ / "none"}), 1, directory_ / "none",
                   ": No such file or directory");
    expect_failure(run({DATA "hills.ppm", "/dev/full"}), 1, "/dev/full", ": cannot be written");
    EXPECT_EQ(run({}).status, 2);
    EXPECT_EQ(run({"--what"}).status, 2);
    EXPECT_EQ(run({"--help"}).out.substr(0, 12), "usage: image");
}

} // namespace
