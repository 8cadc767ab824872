// messages_test.cpp - printing: streams, the newline, the buffer's limit, literal formats.
// Where the texts come from: catalogue_test.
#include "vox/service.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "tests/hosts/check.h"
#include "tests/support/child.hpp"

namespace {

using namespace test;

const std::string unsupported = "Quarn VOX ERROR: CPU 9 is not supported.\n";

CHILD(print_on_streams) {
    for (int stream : {1, 0, 2, -1})
        vox_serv_print(stream, 1213, 1, 9);
    vox_serv_format_print(1, "%s-%d", 2, "literal", 5);
    vox_serv_file_format_print(stdout, "%s-%d", 2, "file", 6);
    vox_serv_format_print(0, "never", 0);
    vox_serv_format_print(0, "never", -1);
    vox_serv_file_format_print(stdout, "never", 0);
    vox_serv_file_format_print(nullptr, "%s", 1, "never");
    vox_serv_print(0, 0, 0);
    vox_serv_print(0, 0, 1, "ignored");
}

TEST(Messages, GoToTheirStreamWithANewline) {
    const child_result result = run_child(print_on_streams);
    EXPECT_EQ(result.out, unsupported + unsupported + unsupported + "file-6\n\n\n");
    EXPECT_EQ(result.err, unsupported + "literal-5\n");
}

CHILD(print_with_stderr_closed) {
    fclose(stderr);
    vox_serv_print(1, 1213, 1, 9);
}

CHILD(print_with_descriptor_2_closed) {
    close(2);
    vox_serv_print(1, 1213, 1, 9);
    vox_serv_format_print(0, "%d", 1, 1);
    close(1); // and with both closed
    vox_serv_print(1, 1213, 1, 9);
    vox_serv_print(0, 1213, 1, 9);
    _exit(4); // all is flushed by then
}

CHILD(print_with_stderr_in_memory) {
    char *text = nullptr;
    size_t size = 0;
    stderr = open_memstream(&text, &size);
    vox_serv_print(1, 1213, 1, 9);
    std::printf("in memory: %s", text);
}

TEST(Messages, GoToStandardOutputWhenStandardErrorIsClosed) {
    EXPECT_EQ(run_child(print_with_stderr_closed).out, unsupported);
    const child_result result = run_child(print_with_descriptor_2_closed);
    EXPECT_EQ(result.out, unsupported + "1\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(run_child(print_with_stderr_in_memory).out, "in memory: " + unsupported);
}

CHILD(print_long) {
    const std::string text(size_t(std::atoi(std::getenv("TEST_LENGTH"))), 'x');
    vox_serv_format_print(1, "%s", 1, text.c_str());
}

TEST(Messages, AreCutAtTheBufferWithANotice) {
    const std::string cut = std::string(511, 'x') + "\n";
    expect_said(print_long, "TEST_LENGTH", {"511", "512", "513"}, cut);
    for (const std::string number : {"514", "515", "100000"})
        expect_said(print_long, "TEST_LENGTH", {number},
                    "\nVOX INTERNAL ERROR: message buffer overflow.\n       Lenght: " + number +
                        "   Buffer size: 512\n" + cut);
}

CHILD(print_odd_numbers) {
    for (int number : {-1, 11, 1206, 1499, 1500, 2147483647})
        vox_serv_print(0, number, 0);
    vox_serv_print(0, 6, 1, 3); // one argument short
    vox_serv_print(0, 10, 0);
}

TEST(Messages, ReservedNumbersAreEmptyAndMissingArgumentsAreNotRead) {
    EXPECT_EQ(run_child(print_odd_numbers).out,
              "\n\n\n\n\n\nQuarn VOX ERROR: Parameter %d was incorrect on entry to %s.\n" +
                  std::string(79, '-') + "\n");
}

CHILD(print_keeping_errno) {
    errno = EACCES;
    vox_serv_print(1, 1213, 1, 9); // looks for a catalogue in vain
    vox_serv_format_print(1, "%ls", 1, L"\x20ac");
    std::printf("%d", errno == EACCES);
}

TEST(Messages, PrintingKeepsErrno) { EXPECT_EQ(run_child(print_keeping_errno).out, "1"); }

CHILD_TEST(Messages, AreFormattedWithoutPrinting) {
    const char *const first = vox_serv_get_msg(6, 3, "DDOT");
    CHECK(first == std::string("Quarn VOX ERROR: Parameter 3 was incorrect on entry to DDOT."));
    const char *const second = vox_serv_get_msg(2, "a", std::string(600, 'b').c_str());
    CHECK(first == second && std::strlen(second) == 511);
    CHECK(!*vox_serv_get_msg(99));
}

} // namespace
