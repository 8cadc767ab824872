// catalogue_test.cpp - the built-in texts, the rule for accepting a translated one, and catalogue
// files of gencat: good, misplaced, hostile and damaged ones.
#include "serv/catalogue.hpp"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

#include "tests/support/child.hpp"
#include "tests/support/temporary.hpp"
#include "vox/service.h"

namespace {

using namespace test;
namespace fs = std::filesystem;

TEST(Catalogue, HasTheDocumentedMessagesAndReservesTheOthers) {
    const std::pair<int, std::string> documented[] = {
        {0, ""},      {1, "%s"},    {2, "%s%s"},     {3, "%s"},    {4, "%d"},    {5, "%s%d%d"},
        {6, "%d%s"},  {7, "%d%s"},  {8, "%s"},       {9, "%s"},    {10, ""},     {1089, "%s"},
        {1207, ""},   {1208, ""},   {1209, ""},      {1210, ""},   {1211, ""},   {1212, "%s"},
        {1213, "%d"}, {1300, "%s"}, {1301, "%s%d"},  {1303, "%s"}, {1304, "%s"}, {1305, "%s"},
        {1306, "%s"}, {1307, "%s"}, {1308, "%s%d%g"}};
    int texts = 0;
    for (int number = -1; number <= 1500; ++number)
        texts += *vox::built_in_text(number) != '\0';
    EXPECT_EQ(texts, int(std::size(documented)));
    for (const auto &[number, format] : documented) {
        EXPECT_TRUE(vox::same_conversions(vox::built_in_text(number), format.c_str())) << number;
        EXPECT_EQ(vox::count_conversions(vox::built_in_text(number)), int(format.size()) / 2);
    }
}

TEST(Catalogue, ConversionsMustBeTheSameInTheSameOrder) {
    const std::pair<const char *, const char *> same[] = {
        {"", "no conversion"}, {"100%% of", ""},       {"%d %s", "%%%d%%%s%%"},
        {"%%d", "%%s"},        {"%5.2f", "x %5.2f y"}, {"%-8ld", "%-8ld"}};
    for (const auto &[a, b] : same)
        EXPECT_TRUE(vox::same_conversions(a, b) && vox::same_conversions(b, a)) << a << " | " << b;
    const std::pair<const char *, const char *> different[] = {
        {"", "%s"},      {"%d", "%s"},  {"%d %s", "%s %d"},     {"%d", "%d%d"},
        {"%d", "%n"},    {"%d", "%ld"}, {"%5.2f", "%5.3f"},     {"%d", "%*d"},
        {"%d", "%1$d"},  {"", "%"},     {"", "50% de"},         {"%d", "%d %"},
        {"%d", "%%d"},   {"%s", "%-"},  {"%d %s", "%2$s %1$d"}, {"", "%%%"},
        {"%d", "%hhhd"}, {"%s", "%S"},  {"%s", "%'s"}};
    for (const auto &[a, b] : different)
        EXPECT_FALSE(vox::same_conversions(a, b) || vox::same_conversions(b, a)) << a << " | " << b;
}

// A directory of catalogues; a path below it names a language.
class catalogues {
  public:
    void add(const std::string &language, const std::string &messages) const {
        const std::string source = directory_ / "source.msg";
        std::ofstream(source) << "$set 1\n" << messages;
        compile(language, source);
    }
    void compile(const std::string &language, const std::string &source) const {
        fs::create_directories(directory_ / language);
        const child_result result = run_program({"gencat", file(language), source});
        ASSERT_EQ(result.status, 0) << result.err;
    }
    std::string file(const std::string &language) const {
        return directory_ / language + "/vox_msg.cat";
    }
    environment settings(const std::string &lang) const {
        return {{"NLSPATH", directory_ / "%L/%N"}, {"LC_ALL", "C"}, {"LANG", lang}};
    }

  private:
    const temporary_directory directory_;
};

CHILD(print_three) {
    vox_serv_print(0, 6, 2, 3, "DDOT");
    vox_serv_print(0, 1208, 0);
    vox_serv_print(0, 100, 0);
    std::printf("%s", std::getenv("LANG"));
}

const std::string built_in = "Quarn VOX ERROR: Parameter 3 was incorrect on entry to DDOT.\n"
                             "Conditional numerical reproducibility mode is turned OFF\n"
                             "\n";
const std::string german = "6 Quarn VOX FEHLER: Parameter %d war falsch beim Aufruf von %s.\n"
                           "1208 Reproduzierbarkeit ist AUS (100%%)\n"
                           "100 Reserviert\n";
const std::string in_german = "Quarn VOX FEHLER: Parameter 3 war falsch beim Aufruf von DDOT.\n"
                              "Reproduzierbarkeit ist AUS (100%)\n"
                              "Reserviert\n";

TEST(Catalogue, TheLanguageIsTriedWithAndWithoutItsCharacterSet) {
    const catalogues files;
    files.add("de_DE", german);
    files.add("fr.UTF-8", "1208 Mode d'emploi\n");
    const std::pair<std::string, std::string> cases[] = {
        {"de_DE", in_german},
        {"de_DE.UTF-8", in_german},
        {"de_DE.UTF-8.x", in_german}, // cut at the first dot
        {"de_DE@euro", built_in},
        {"fr.UTF-8", "Quarn VOX ERROR: Parameter 3 was incorrect on entry to DDOT.\n"
                     "Mode d'emploi\n\n"},
        {"fr", built_in},
        {".", built_in},
        {"", built_in},
        {"de_DE." + std::string(58, 'x'), in_german}, // 64 characters
        {"de_DE." + std::string(59, 'x'), built_in},  // too long to be read
        {std::string(100000, 'x'), built_in},
    };
    for (const auto &[lang, expected] : cases) {
        const child_result result = run_child(print_three, files.settings(lang));
        EXPECT_EQ(result.out + result.err, expected + lang); // the program's LANG is as it was
    }
}

TEST(Catalogue, TheGuidesTranslationWorks) {
    const catalogues files;
    files.compile("de_DE", EXAMPLE);
    EXPECT_EQ(run_child(print_three, files.settings("de_DE.UTF-8")).out,
              "Quarn VOX FEHLER: Parameter 3 war falsch beim Aufruf von DDOT.\n"
              "Conditional numerical reproducibility mode is turned OFF\n\nde_DE.UTF-8");
}

TEST(Catalogue, HostileTextsAreNotUsed) {
    const catalogues files;
    for (const char *text :
         {"%n%n", "%s %d", "%d %s %s", "%d", "%2$s %1$d", "%*d %s", "%d %ls", "%d %s 100%", "%"}) {
        files.add("xx", std::string("6 ") + text + "\n1208 %s\n100 %d %n\n");
        EXPECT_EQ(run_child(print_three, files.settings("xx")).out, built_in + "xx") << text;
    }
    // Longer than the buffer: cut with the notice, as any message.
    files.add("xx", "1208 " + std::string(1500, 'y') + "\n");
    const std::string out = run_child(print_three, files.settings("xx")).out;
    EXPECT_NE(out.find("Lenght: 1500   Buffer size: 512\n" + std::string(511, 'y') + "\n"),
              std::string::npos)
        << out;
}

TEST(Catalogue, DamagedFilesFallBackToTheBuiltInTexts) {
    const catalogues files;
    files.add("xx", german);
    const std::string whole = contents_of(files.file("xx"));
    const auto out_of = [&](const std::string &content) {
        std::ofstream(files.file("xx"), std::ios::binary) << content;
        const child_result result = run_child(print_three, files.settings("xx"));
        EXPECT_EQ(result.signal, 0);
        return result.out;
    };
    ASSERT_EQ(out_of(whole), in_german + "xx");
    // Cut within its index the file is refused; cut within its texts it may be read, but a message
    // without its conversions is not used.
    for (size_t length = 0; length < whole.size(); length += 4) {
        SCOPED_TRACE(length);
        const std::string out = out_of(whole.substr(0, length));
        EXPECT_EQ(out.compare(0, 10, "Quarn VOX "), 0) << out;
        EXPECT_NE(out.find(" 3 wa"), std::string::npos) << out; // was, war
        EXPECT_NE(out.find(" DDOT"), std::string::npos) << out;
        if (length < 100) {
            EXPECT_EQ(out, built_in + "xx");
        }
    }
    EXPECT_EQ(out_of(std::string(4096, '\0')), built_in + "xx");
    EXPECT_EQ(out_of("$set 1\n" + german), built_in + "xx"); // not compiled
    fs::remove(files.file("xx"));
    fs::create_directory(files.file("xx"));
    EXPECT_EQ(run_child(print_three, files.settings("xx")).out, built_in + "xx");
}

CHILD(remove_and_print) {
    vox_serv_print(0, 1208, 0);
    std::printf("%d|", std::remove(std::getenv("TEST_FILE")));
    std::fflush(stdout);
    vox_serv_print(0, 1208, 0);
}

TEST(Catalogue, IsOpenedOncePerProcess) {
    const catalogues files;
    files.add("xx", "1208 one\n");
    environment settings = files.settings("xx");
    settings.emplace_back("TEST_FILE", files.file("xx"));
    EXPECT_EQ(run_child(remove_and_print, settings).out, "one\n0|one\n");
}

} // namespace
