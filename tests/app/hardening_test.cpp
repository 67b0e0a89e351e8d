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
  CHECK(odd.errors ==
        "hierfit: a\uFFFD[31mb\uFFFDc\uFFFDde f: cannot be read: No such file or "
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
  for (const std::string option : {"--resolution nan", "--chart-width nan", "--chart-width -nan",
                                   "--resolution inf", "--journal -"}) {
    CAPTURE(option);
    const Outcome outcome = shell("hierfit " + option + " " + kDocuments);
    CHECK(outcome.status == 2);
    CHECK(outcome.output.empty());
  }
  CHECK_FALSE(fs::exists("-"));
}

TEST_CASE("an output that does not wait is waited for") {
  const Outcome slow =
      shell("{ python3 -c 'import os; os.set_blocking(1, False)'; hierfit -o - -f html " +
            kDocuments + "; } | { sleep 0.2; cat; }");
  CHECK(slow.status == 0);
  CHECK(slow.errors.empty());
  CHECK(slow.output.ends_with("</html>\n"));
}

TEST_CASE("an input that does not wait is waited for") {
  const Outcome slow =
      shell("{ sleep 0.7; cat " + kExample + "result.xml; } | { python3 -c 'import " +
            "os; os.set_blocking(0, False)'; hierfit " + kExample + "model.pmml -; }");
  CHECK(slow.errors.empty());
  CHECK(results_of(slow.output) == results_of(shell("hierfit " + kDocuments).output));
}

TEST_CASE("a dictionary ends at its end") {
  const Directory directory;
  write(directory / "d.json", "{\n\"fields\": []}" + std::string(1, '\0') + "junk");
  const Outcome outcome = shell("hierfit -d " + (directory / "d.json") + " " + kDocuments);
  CHECK(outcome.status == 2);
  CHECK(outcome.errors == (directory / "d.json") + ":2:14: not well-formed JSON\n");
}

TEST_CASE("a workbook needs no folder for temporary files") {
  const std::string alone = "unshare -rm sh -c 'mount -t tmpfs -o ro none /tmp && cd /tmp && exec ";
  if (shell(alone + "test -x " + kCommand + "'").status != 0) return;
  const Outcome outcome = shell(alone + kCommand + " -f xlsx -o - " + kDocuments + "' | head -c 2");
  CHECK(outcome.errors.empty());
  CHECK(outcome.output == "PK");
}

TEST_CASE("a picture that is too small for its charts says so") {
  const Directory directory;
  const std::string run = "hierfit -o " + (directory / "r.png") + " " + kDocuments;
  const Outcome small = shell(run + " --chart-width 10000");
  CHECK(small.status == 0);
  CHECK(
      small.errors.starts_with("hierfit: " + (directory / "r.png") + ": the charts are too large"));
  CHECK(shell(run).errors.empty());
  CHECK(shell(run + " --resolution 24").errors.empty());
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

TEST_CASE("a chart template that is of no use is told, and so is a chart that cannot be made") {
  const Directory directory;
  const std::string share = HIERFIT_BINARY_DIR "/share/hierfit/";
  const std::string templates = directory / "share/hierfit/template";
  for (const char* folder : {"bin", "lib", "share/hierfit"})
    fs::create_directories(directory / folder);
  fs::copy_file(kCommand, directory / "bin/hierfit");
  fs::copy_file(HIERFIT_BINARY_DIR "/lib/hierfit.so", directory / "lib/hierfit.so");
  fs::create_directory_symlink(share + "locale", directory / "share/hierfit/locale");
  fs::copy(share + "template", templates);
  const std::string run =
      (directory / "bin/hierfit") + " -o " + (directory / "r.txt") + " " + kDocuments;
  const std::string diagram = templates + "/GLMMFixedCoefficients.glyphtemplate";
  const std::string network = templates + "/GLMMPairwiseContrasts.glyphtemplate";
  CHECK(shell(run).errors.empty());
  fs::remove(directory / "r.txt");

  SUBCASE("a template that is missing or is no chart is the program's fault") {
    fs::remove(diagram);
    CHECK(shell(run).errors ==
          "hierfit: " + diagram + ": cannot be read: No such file or directory\n");
    for (const std::string text : {"", "no markup", "<chart>\n<graph></chart>", "<other/>"}) {
      CAPTURE(text);
      write(diagram, text);
      const Outcome outcome = shell(run);
      CHECK(outcome.status == 2);
      CHECK(outcome.errors.starts_with(diagram + ":"));
      CHECK_FALSE(fs::exists(directory / "r.txt"));
    }
  }
  SUBCASE("a chart that is no document any more is left out with a sentence") {
    // The title takes the place of the element's name.
    std::string text = text_of(network);
    write(network, text.replace(text.find("<graph"), 0, "<TitleText/>"));
    const Outcome outcome = shell(run);
    CHECK(outcome.status == 0);
    CHECK(outcome.errors.starts_with("chart document:3:"));
    CHECK(outcome.errors.find(": a chart cannot be made whole: not well-formed") !=
          std::string::npos);
    CHECK(text_of(directory / "r.txt").find("belongs here could not be made") != std::string::npos);
  }
}

namespace {

/// Runs a line as a user who owns nothing here; nothing when that is not to be had.
std::string as_stranger(const std::string& line) {
  if (::geteuid() != 0) return line;
  const std::string stranger = "setpriv --reuid 65534 --regid 65534 --clear-groups ";
  return shell(stranger + "test -x " + kCommand).status == 0 ? stranger + line : "";
}

}  // namespace

TEST_CASE("a folder that cannot be read holds up no other report") {
  const Directory directory;
  fs::permissions(directory / "", fs::perms::all);
  for (const char* folder : {"in/a", "in/closed", "in/b", "shut"}) {
    fs::create_directories(directory / folder);
    fs::copy_file(kExample + "model.pmml", directory / (std::string(folder) + "/model.pmml"));
    fs::copy_file(kExample + "result.xml", directory / (std::string(folder) + "/result.xml"));
  }
  fs::permissions(directory / "in/closed", fs::perms::none);
  fs::permissions(directory / "shut", fs::perms::none);
  const std::string run = as_stranger(kCommand + " -q -f txt -o " + (directory / "out") + " ");
  if (run.empty()) return;

  const Outcome tree = shell(run + (directory / "in"));
  CHECK(tree.status == 2);
  CHECK(tree.errors ==
        "hierfit: " + (directory / "in/closed") + ": cannot be read: Permission denied\n");
  CHECK(fs::exists(directory / "out/a.txt"));
  CHECK(fs::exists(directory / "out/b.txt"));
  CHECK(fs::exists(directory / "out/index.html"));
  const Outcome shut = shell(run + (directory / "shut"));
  CHECK(shut.status == 2);
  CHECK(shut.errors ==
        "hierfit: " + (directory / "shut") + ": cannot be read: Permission denied\n");
  const Outcome both = shell(run + (directory / "shut") + " " + (directory / "in/a"));
  CHECK(both.errors == shut.errors);
  CHECK(fs::exists(directory / "out/model.txt"));
  fs::permissions(directory / "in/closed", fs::perms::all);
  fs::permissions(directory / "shut", fs::perms::all);
}

TEST_CASE("the name of a document leads nowhere else") {
  const Directory directory;
  fs::create_directories(directory / "in");
  for (const char* name : {"..", "...", "."}) {
    const std::string stem = (directory / "in/") + name;
    fs::copy_file(kExample + "model.pmml", stem + ".pmml");
    fs::copy_file(kExample + "result.xml", stem + ".xml");
  }
  const Outcome outcome =
      shell("cd " + (directory / "in") + "; hierfit -f txt -o ../out --charts " +
            "../charts/deep . ...pmml ...xml");
  CHECK(outcome.status == 0);
  CHECK(directory.listing() == "charts in out ");
  CHECK(std::ranges::count_if(fs::directory_iterator(directory / "charts"),
                              [](const auto&) { return true; }) == 1);
  CHECK(std::ranges::count_if(fs::directory_iterator(directory / "charts/deep"),
                              [](const auto& entry) { return !entry.is_directory(); }) == 0);
}

TEST_CASE("no output replaces an input or another output") {
  const Directory directory;
  for (const char* file : {"model.pmml", "result.xml", "dictionary.json", "fit.json"})
    fs::copy_file(kExample + file, directory / file);
  fs::create_directory(directory / "sub");
  fs::create_symlink("../dictionary.json", directory / "sub/to-dictionary.json");
  fs::create_symlink("sub", directory / "sub-too");
  fs::create_hard_link(directory / "result.xml", directory / "same.html");
  const std::string in = "cd " + (directory / "") + "; ";
  const std::string pair = " -q model.pmml result.xml ";

  for (const std::string options :
       {"-d dictionary.json -o dictionary.json", "-d dictionary.json -o sub/to-dictionary.json",
        "-o ./sub/../model.pmml -f txt", "-o same.html", "--journal result.xml",
        "-o r.txt -o sub/../r.txt", "-o sub/r.txt -o sub-too/r.txt", "-o - -o -",
        "-o r.html --journal r.html", "--charts sub -o sub-too/ -f svg", ">>model.pmml",
        "-f json -o . model.pmml result.xml -d dictionary.json dictionary.pmml result.xml"}) {
    CAPTURE(options);
    const Outcome outcome = shell(in + "cp model.pmml dictionary.pmml; hierfit" + pair + options);
    CHECK(outcome.status == 2);
    CHECK(outcome.errors.ends_with("Try 'hierfit --help'\n"));
    CHECK(directory.listing() ==
          "dictionary.json dictionary.pmml fit.json model.pmml result.xml same.html sub sub-too ");
    CHECK(text_of(directory / "fit.json") == text_of(kExample + "fit.json"));
    CHECK(text_of(directory / "model.pmml") == text_of(kExample + "model.pmml"));
    CHECK(text_of(directory / "dictionary.json") == text_of(kExample + "dictionary.json"));
  }
  for (const std::string options : {"-o fit.json", "-o ./sub/../fit.json -f txt"}) {
    CAPTURE(options);
    const Outcome outcome = shell(in + "hierfit " + options + " fit.json");
    CHECK(outcome.status == 2);
    CHECK(text_of(directory / "model.pmml") == text_of(kExample + "model.pmml"));
    CHECK(text_of(directory / "fit.json") == text_of(kExample + "fit.json"));
  }
  for (const std::string options :
       {"-o r.html -o r.txt --journal j.jsonl", "-o /dev/null -f txt -o /dev/null",
        "--charts sub --chart-format svg --chart-format png --chart-format svg -o sub/ -f csv"}) {
    CAPTURE(options);
    CHECK(shell(in + "hierfit" + pair + options).status == 0);
  }
}

TEST_CASE("a folder keeps no file of an older report, and every other") {
  const Directory directory;
  const std::string folder = directory / "charts";
  const std::string other = HIERFIT_SOURCE_DIR "/examples/sleepstudy/";
  const auto run = [&](const std::string& options) {
    return shell("hierfit -o /dev/null -f csv --charts " + folder + " " + options).status;
  };
  const auto names = [&](const std::string& ending) {
    return shell("cd " + folder + "; ls *" + ending).output;
  };
  CHECK(run(other + "model.pmml " + other + "result.xml") == 0);
  const std::string good = names(".svg");
  fs::remove_all(folder);

  CHECK(run("--chart-format svg --chart-format vl.json " + kDocuments) == 0);
  const std::string others = names(".vl.json");
  CHECK(names(".svg") != good);
  write(folder + "/notes.svg", "mine");
  CHECK(run(other + "model.pmml " + other + "result.xml") == 0);
  fs::rename(folder + "/notes.svg", directory / "notes.svg");
  CHECK(names(".svg") == good);
  CHECK(names(".vl.json") == others);
  CHECK(shell("hierfit -o " + folder + "/ -f csv " + kDocuments).status == 0);
  CHECK(names(".svg") == good);

  // A list that others wrote reaches no other folder.
  write(folder + "/.hierfit", "svg ../notes.svg\nsvg mine.svg\nsvg .\nsvg\n\n\xFF\n");
  write(folder + "/mine.svg", "listed");
  CHECK(run(kDocuments) == 0);
  CHECK(fs::exists(directory / "notes.svg"));
  CHECK_FALSE(fs::exists(folder + "/mine.svg"));
}

TEST_CASE("a failure leaves no empty folder") {
  const Directory directory;
  fs::create_directory(directory / "there");
  for (const std::string options :
       {"--charts deep/in/charts -o nowhere/r.txt", "--charts there/charts -o - >/dev/full"}) {
    CAPTURE(options);
    CHECK(shell("cd " + (directory / "") + "; hierfit " + kDocuments + " " + options).status == 2);
    CHECK(directory.listing() == "there ");
    CHECK(fs::is_empty(directory / "there"));
  }
  write(directory / "bad.xml", "");
  CHECK(shell("hierfit -o " + (directory / "out") + " --charts " + (directory / "out/c") + " " +
              kExample + "model.pmml " + (directory / "bad.xml") + " " + kDocuments)
            .status == 1);
  CHECK(fs::exists(directory / "out/index.html"));
  CHECK(std::ranges::count_if(fs::directory_iterator(directory / "out/c"),
                              [](const auto&) { return true; }) == 1);
}

TEST_CASE("a new file takes no power from an old one, nor another user's direction") {
  const Directory directory;
  const auto mode_of = [](const std::string& file) {
    struct stat facts {};
    ::stat(file.c_str(), &facts);
    return facts.st_mode & 07777;
  };
  const std::string report = directory / "r.txt";
  write(report, "old");
  ::chmod(report.c_str(), 06755);
  CHECK(shell("hierfit -o " + report + " " + kDocuments).status == 0);
  CHECK(mode_of(report) == 0755);
  if (::geteuid() != 0) return;

  constexpr uid_t kOther = 65534;
  ::chmod(report.c_str(), 0666);
  CHECK(::chown(report.c_str(), kOther, kOther) == 0);
  CHECK(shell("hierfit -o " + report + " " + kDocuments).status == 0);
  CHECK(mode_of(report) == 0664);

  // In a folder like that for temporary files, a link of another user leads nowhere.
  fs::create_directory(directory / "shared");
  ::chmod((directory / "shared").c_str(), 01777);
  for (const char* target : {"r.txt", "new.txt"}) {
    CAPTURE(target);
    const std::string link = directory / "shared/report.txt";
    write(report, "old");
    fs::create_symlink(directory / target, link);
    CHECK(::lchown(link.c_str(), kOther, kOther) == 0);
    const Outcome outcome = shell("hierfit -o " + link + " " + kDocuments);
    CHECK(outcome.status == 2);
    CHECK(outcome.errors == "hierfit: " + link +
                                ": cannot be written: it is a link of another user in a folder "
                                "that all can write to\n");
    CHECK(text_of(report) == "old");
    CHECK_FALSE(fs::exists(directory / "new.txt"));
    CHECK(::lchown(link.c_str(), 0, 0) == 0);
    CHECK(shell("hierfit -o " + link + " " + kDocuments).status == 0);
    fs::remove(link);
  }
}
