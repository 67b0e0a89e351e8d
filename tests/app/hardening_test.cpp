// The command among closed streams, odd terminals, other users and little of everything.
#include <algorithm>
#include <doctest/doctest.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/app/shell.h"

using namespace shell_test;
namespace fs = std::filesystem;

TEST_CASE("nothing gets into a report in the place of a closed stream") {
  const Directory directory;
  const std::string page = directory / "r.html";
  CHECK(shell("hierfit -o " + page + " " + kDocuments).status == 0);
  const std::string good = text_of(page);

  CHECK(shell("hierfit -o " + page + " " + kDocuments + " <&- >&- 2>&-").status == 0);
  CHECK(text_of(page) == good);
  const Outcome closed = shell("hierfit -o " + page + " -o - -f html " + kDocuments + " >&-");
  CHECK(closed.status == 2);
  CHECK(closed.errors == "hierfit: standard output: cannot be written: Bad file descriptor\n");
  CHECK(text_of(page) == good);
  CHECK(shell("hierfit - " + kExample + "result.xml <&-").errors ==
        "hierfit: -: cannot be read: Bad file descriptor\n");
}

TEST_CASE("messages leave the terminal alone and end") {
  // Escapes, an 8-bit control as a character and as a bare byte, and an override of the direction.
  const Outcome odd =
      shell("hierfit \"$(printf 'a\\033[31mb\\302\\233c\\233d\\342\\200\\256e\\tf')\" x");
  CHECK(odd.status == 2);
  CHECK(odd.errors == "hierfit: a\uFFFD[31mb\uFFFDc\uFFFDde f: cannot be read: No such file or "
                      "directory\n");
  CHECK(std::ranges::count(shell("hierfit \"$(printf 'a\\nb')\" x").errors, '\n') == 1);

  const std::string many = "$(head -c 100000 /dev/zero | tr '\\0' x)";
  for (const std::string& option : {"--style " + many, "--" + many, "-d " + many}) {
    CAPTURE(option);
    const Outcome outcome = shell("hierfit " + option + " " + kDocuments);
    CHECK(outcome.status == 2);
    CHECK(outcome.errors.size() < 10000);
    CHECK(outcome.errors.ends_with("\n"));
  }
}

TEST_CASE("a language tag has a bound") {
  const std::string plain = shell("hierfit " + kDocuments).output;
  for (const char* length : {"100", "300", "100000"}) {
    const std::string many = "$(head -c " + std::string(length) + " /dev/zero | tr '\\0' a)";
    CHECK(shell("LC_ALL=" + many + " hierfit " + kDocuments).output == plain);
    CHECK(shell("hierfit -l " + many + " " + kDocuments).status == 2);
  }
}

TEST_CASE("options refuse what is no number and no file") {
  for (const char* option : {"--resolution nan", "--chart-width nan", "--chart-width -nan",
                             "--resolution inf", "--journal -"}) {
    CAPTURE(option);
    const Outcome outcome = shell("hierfit " + std::string(option) + " " + kDocuments);
    CHECK(outcome.status == 2);
    CHECK(outcome.output.empty());
  }
  CHECK_FALSE(fs::exists("-"));
}

TEST_CASE("an output that does not wait is waited for") {
  const Outcome slow =
      shell("{ python3 -c 'import os; os.set_blocking(1, False)'; hierfit -o - -f html " + kDocuments +
            "; } | { sleep 0.2; cat; }");
  CHECK(slow.status == 0);
  CHECK(slow.errors.empty());
  CHECK(slow.output.ends_with("</html>\n"));
}

TEST_CASE("a run of many outputs needs few descriptors") {
  const Directory directory;
  const Outcome outcome = shell("ulimit -n 40; cd " + (directory / "") +
                                "; hierfit $(printf ' -o r%d.txt' {1..200}) " + kDocuments);
  CHECK(outcome.errors.empty());
  CHECK(outcome.status == 0);
  CHECK(text_of(directory / "r200.txt") == text_of(directory / "r1.txt"));
  CHECK(std::ranges::count(directory.listing(), ' ') == 200);
}
