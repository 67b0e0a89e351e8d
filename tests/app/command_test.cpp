// The command from outside: what it writes, what it says and its exit status.
#include <algorithm>
#include <doctest/doctest.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "tests/app/shell.h"
#include "tests/report/markup_reader.h"

using namespace shell_test;
namespace fs = std::filesystem;

TEST_CASE("the report goes where the options say, in the form of the ending") {
  const Directory directory;
  const Outcome plain = shell("hierfit " + kDocuments);
  CHECK(plain.status == 0);
  CHECK(plain.errors.empty());
  CHECK(plain.output.find("Negative binomial") != std::string::npos);

  const Outcome several =
      shell("hierfit -o " + (directory / "r.html") + " --output=" + (directory / "r.JSON") +
            " -o- " + kDocuments + " --journal " + (directory / "j.jsonl"));
  CHECK(several.status == 0);
  CHECK(several.output == plain.output);
  CHECK(directory.listing() == "j.jsonl r.JSON r.html ");
  CHECK(text_of(directory / "r.html").starts_with("<!doctype html>"));
  CHECK(text_of(directory / "r.JSON").starts_with("{"));
  CHECK(text_of(directory / "j.jsonl").starts_with("{\"call\":\"BpHeading::PivotTable\""));

  CHECK(shell("hierfit --format json " + kDocuments).output == text_of(directory / "r.JSON"));
  const Outcome from_input =
      shell("hierfit -- - " + kExample + "result.xml < " + kExample + "model.pmml");
  CHECK(results_of(from_input.output) == results_of(plain.output));
  CHECK(from_input.output.find("standard input\n") != std::string::npos);
}

TEST_CASE("options and documents reach the report") {
  const std::string with_labels =
      shell("hierfit -d " + kExample + "dictionary.json --format json " + kDocuments).output;
  CHECK(with_labels.find("mountaintop") != std::string::npos);
  const std::string dictionary = " -d " + kExample + "dictionary.json ";
  CHECK(shell("hierfit --labels name" + dictionary + kDocuments).output.find("\nspp * mined ") !=
        std::string::npos);
  CHECK(shell("hierfit --labels both" + dictionary + kDocuments).output.find("\nSpecies (spp) ") !=
        std::string::npos);
  CHECK(shell("hierfit -l C " + kDocuments).output.find("Model Summary") != std::string::npos);
  CHECK(shell("LC_ALL= LC_MESSAGES=sv_SE.UTF-8 " + kCommand + " " + kDocuments).output ==
        shell("hierfit " + kDocuments).output);
  CHECK(shell("hierfit -s apa " + kDocuments).output.find("< .001") != std::string::npos);
  CHECK(shell("hierfit -l xx " + kDocuments).errors ==
        "hierfit: there is no string table for the language \"xx\"; texts show as their keys\n");
  CHECK(shell("hierfit --help").output.starts_with("Usage: hierfit"));
  CHECK(shell("hierfit --version nothing").output.starts_with("hierfit "));
}

TEST_CASE("tables are chosen by name, and of a name that there is not the others are told") {
  const Outcome one = shell("hierfit -t fixedeffects,Contrast --fragment -f html " + kDocuments);
  CHECK(one.status == 0);
  CHECK(one.output.find("Table 2") == std::string::npos);
  CHECK(one.output.find("Corrected model") != std::string::npos);
  CHECK(one.errors.starts_with(
      "hierfit: the report has no table or figure \"Contrast\"; it has Abo"));
}

TEST_CASE("colour is for terminals, unless it is asked for") {
  CHECK(shell("hierfit --color always /nowhere x").errors.find("\033[") != std::string::npos);
  CHECK(shell("hierfit /nowhere x").errors.find("\033[") == std::string::npos);
}

TEST_CASE("a failure is one sentence with its file, and a status") {
  const Directory directory;
  write(directory / "empty", "");
  write(directory / "broken.xml", "<StatXML>\n  <a></b>\n</StatXML>");
  write(directory / "other.xml", "<StatXML>\n<PMMLModel/>\n</StatXML>");
  write(directory / "table.pmm", "<PMML>\n<DataDictionary/>\n</PMML>");
  write(directory / "schema.json", "{\"fields\": [{\"name\": \"spp\", \"title\": 3}]}");
  write(directory / "broken.json", "{\n\"fields\"; []}");
  const std::string model = kExample + "model.pmml ";
  const std::string result = " " + kExample + "result.xml";

  struct Row {
    std::string arguments;
    int status;
    std::string message;
  };
  const std::string at = HIERFIT_BINARY_DIR "/command-test/";
  const Row rows[] = {
      {model + at + "empty", 1, at + "empty:1:1: the document is empty"},
      {at + "empty" + result, 1, at + "empty:1:1: the document is empty"},
      {model + at + "broken.xml", 1,
       at + "broken.xml:2:8: not well-formed: this end tag does not match its start tag"},
      {model + at + "other.xml", 1,
       at + "other.xml:1: element StatXML lacks the element PMMLModel/PredictiveSummary"},
      {at + "table.pmm" + result, 1,
       at + "table.pmm:1: the document has no model: its root element PMML holds none"},
      {at + "nothing" + result, 2,
       "hierfit: " + at + "nothing: cannot be read: No such file or directory"},
      {model + at, 2, "hierfit: \"" + kExample + "model.pmml\" needs a result document behind it."},
      {"-d " + at + "schema.json " + model + result, 2,
       "hierfit: " + at + "schema.json: fields[0].title: must be a string"},
      {"-d " + at + "broken.json " + model + result, 2,
       at + "broken.json:2:9: not well-formed JSON"},
      {"-o " + at + "no/r.html " + model + result, 2,
       "hierfit: " + at + "no/r.html: cannot be written: No such file or directory"},
      {"-o " + at + " --format html " + model + result, 2,
       "hierfit: \"" + at + "\" is a folder, and the form html is one file. Try "},
      {"", 2,
       "hierfit: a model document and a result document are needed, or a fit. Try 'hierfit "
       "--help'"},
      {model + result + " third", 2,
       "hierfit: \"third\" needs a result document behind it. Try 'hierfit --help'"},
      {"--formt html " + model + result, 2,
       "hierfit: there is no option --formt; did you mean --format? Try 'hierfit --help'"},
      {"--xyzzy " + model + result, 2, "hierfit: there is no option --xyzzy. Try 'hierfit --help'"},
      {"--chart 1.5 " + model + result, 2,
       "hierfit: --chart cannot be \"1.5\"; it is a whole number from 1 to 1000000."},
      {"-o r.docm " + model + result, 2,
       "hierfit: the ending of \"r.docm\" tells no form; say it with --format. Try "
       "'hierfit --help'"},
      {"--format jsn " + model + result, 2, "hierfit: --format cannot be \"jsn\"; it is one of "},
      {"--style= " + model + result, 2, "hierfit: --style needs an argument that is not empty."},
      {"--color sometimes " + model + result, 2,
       "hierfit: --color cannot be \"sometimes\"; it is one of auto, always or never. Try "},
      {"--fragment -o r.pdf " + model + result, 2,
       "hierfit: the form pdf of \"r.pdf\" has no fragment. Try "},
      {"--id-prefix 1 " + model + result, 2,
       "hierfit: --id-prefix cannot be \"1\"; it is a letter,"},
      {kExample + ".. --format html", 2, "hierfit: several reports need one folder: -o FOLDER."},
      {"-o r.html " + kExample, 2,
       "hierfit: several reports need a folder, and \"r.html\" names a file."},
      {at, 2,
       "hierfit: the folder \"" + at + "\" holds no model document (.pmml) and no fit (fit.json)."},
      {"- -", 2, "hierfit: only one input can be standard input. Try 'hierfit --help'"},
  };
  const std::string before = directory.listing();
  for (const Row& row : rows) {
    CAPTURE(row.arguments);
    const Outcome outcome = shell("hierfit " + row.arguments);
    CHECK(outcome.status == row.status);
    CHECK(outcome.output.empty());
    CHECK(outcome.errors.starts_with(row.message));
    CHECK(std::ranges::count(outcome.errors, '\n') == 1);
  }
  CHECK(directory.listing() == before);
}

TEST_CASE("a document that cannot be read leaves its journal, and no report") {
  const Directory directory;
  write(directory / "other.xml", "<StatXML/>");
  CHECK(shell("hierfit --journal " + (directory / "j.jsonl") + " -o " + (directory / "r.html") +
              " " + kExample + "model.pmml " + (directory / "other.xml"))
            .status == 1);
  CHECK(directory.listing() == "j.jsonl other.xml ");
  CHECK(text_of(directory / "j.jsonl") ==
        "{\"call\":\"BpError\",\"args\":[{\"string\":\"StatXML parsing error ...\",\"key\":true},"
        "2,3]}\n");
}

TEST_CASE("several pairs make a report each and an index") {
  const Directory directory;
  fs::create_directories(directory / "in/a/b");
  const auto copy = [&](const char* file, const std::string& to) {
    fs::copy_file(kExample + file, directory / to);
  };
  copy("model.pmml", "in/a/model.pmml");
  copy("result.xml", "in/a/result.xml");
  copy("dictionary.json", "in/a/dictionary.json");
  copy("model.pmml", "in/a/b/one.pmml");
  copy("result.xml", "in/a/b/one.xml");
  copy("model.pmml", "in/a/b/two & <three>.pmml");
  write(directory / "in/a/b/two & <three>.xml", "<StatXML>\n<a></b>");
  copy("model.pmml", "in/a/b/alone.pmml");

  const std::string out = directory / "out";
  const Outcome outcome =
      shell("hierfit -o " + out + " -f html -f text --charts " + out + " " + (directory / "in"));
  CHECK(outcome.status == 2);
  CHECK(outcome.errors == "hierfit: " + (directory / "in/a/b/alone.pmml") +
                              ": has no result document (.xml) beside it\n" +
                              (directory / "in/a/b/two & <three>.xml") +
                              ":2:6: not well-formed: this end tag does not match its start tag\n"
                              "hierfit: 2 of 4 reports are not made\n");
  CHECK(results_of(text_of(out + "/a/b/one.txt")) ==
        results_of(shell("hierfit " + kDocuments).output));
  CHECK(text_of(out + "/a.txt") ==
        shell("hierfit -d " + kExample + "dictionary.json " + kDocuments).output);
  CHECK(fs::exists(out + "/a/01-predicted-by-observed.svg"));
  const std::string index = text_of(out + "/index.html");
  CHECK(index.find("<span class=\"title\">Salamander counts near mined streams</span>") !=
        std::string::npos);
  CHECK(index.find("<a href=\"./a/b/one.html\"") != std::string::npos);
  CHECK(index.find("two &amp; &lt;three&gt;") != std::string::npos);
  CHECK(std::ranges::count(index, '\n') < 100000);

  CHECK(shell("hierfit -j 1 -o " + (directory / "two") + " " + kDocuments + " " + kDocuments)
            .status == 0);
  CHECK(fs::exists(directory / "two/salamanders-model.html"));
}

TEST_CASE("what speaks against a result stands in its report, on standard error and in the index") {
  const Directory directory;
  const std::string cbpp = HIERFIT_SOURCE_DIR "/examples/cbpp/";
  std::string result = text_of(cbpp + "result.xml");
  const auto change = [&](const std::string& from, const std::string& to) {
    REQUIRE(result.find(from) != std::string::npos);
    result.replace(result.find(from), from.size(), to);
  };
  change(
      "</TrainingSummary>",
      "<Message><PrintableList pattern=\"kGLMM_C11\" isKey=\"true\"><PrintableValue "
      "value=\"Model failed to converge &lt;b&gt;\"/></PrintableList></Message></TrainingSummary>");
  change("value=\"LOGIT\"", "value=\"LOGITT\"");
  fs::create_directories(directory / "in");
  write(directory / "in/x.xml", result);
  fs::copy_file(cbpp + "model.pmml", directory / "in/x.pmml");
  const std::string at = directory / "in/x.xml";
  const std::string sentence =
      "The engine gave the warning kGLMM_C11: Model failed to converge <b>";

  const Outcome one = shell("hierfit " + (directory / "in/x.pmml") + " " + at);
  CHECK(one.status == 0);
  CHECK(one.errors.find("hierfit: " + at + ": warning: " + sentence + "\n") != std::string::npos);
  CHECK(one.errors.find(at + ":8:5: warning: Parameter LinkFunctionType is \"LOGITT\"") !=
        std::string::npos);
  const size_t first = one.output.find("Error: The engine gave the warning kGLMM_C11");
  const size_t second = one.output.find("Warning: x.xml:8:5: Parameter LinkFunctionType");
  CHECK(first < second);
  CHECK(second < one.output.find("\nTable 1\n"));

  const Outcome batch = shell("hierfit -o " + (directory / "out") + " " + (directory / "in"));
  CHECK(batch.errors == one.errors);
  const std::string index = text_of(directory / "out/index.html");
  CHECK(index.find("Contagious bovine pleuropneumonia") != std::string::npos);
  CHECK(index.find("class=\"message error\"><b>Error:</b> The engine gave the warning kGLMM_C11: "
                   "Model failed to converge &lt;b&gt;") != std::string::npos);
}

TEST_CASE("a title is that of the option, in every form") {
  const Directory directory;
  const std::string title = "--title 'Ours & <theirs>' ";
  const std::string page = shell("hierfit -f html " + title + kDocuments).output;
  CHECK(page.find("<title>Ours &amp; &lt;theirs&gt;</title>") != std::string::npos);
  CHECK(page.find("<h1>Ours &amp; &lt;theirs&gt;</h1>") != std::string::npos);
  CHECK(
      shell("hierfit -f json " + title + kDocuments).output.find("\"title\":\"Ours & <theirs>\"") !=
      std::string::npos);
  CHECK(shell("hierfit " + title + "-o " + (directory / "r.pdf") + " -o " + (directory / "r.docx") +
              " -o " + (directory / "r.xlsx") + " " + kDocuments)
            .status == 0);
  CHECK(shell("pdfinfo " + (directory / "r.pdf")).output.find("Ours & <theirs>") !=
        std::string::npos);
  for (const std::string package : {"r.docx", "r.xlsx"}) {
    CHECK(hierfit::test::part(text_of(directory / package), "docProps/core.xml")
              .find("<dc:title>Ours &amp; &lt;theirs&gt;</dc:title>") != std::string::npos);
  }
  CHECK(shell("hierfit --title x -o " + (directory / "two") + " " + kDocuments + " " + kDocuments)
            .status == 2);
}

TEST_CASE("the manual page and the completions hold every option") {
  const std::string manual = shell("hierfit --manual").output;
  const std::string bash = shell("hierfit --completion bash").output;
  for (const char* option : {"dictionary", "style", "chart-format", "version"}) {
    CHECK(manual.find(std::string("-") + option) != std::string::npos);
    CHECK(bash.find(std::string("--") + option) != std::string::npos);
  }
  CHECK(shell("hierfit --manual | mandoc -T lint -W all").output.empty());
  CHECK(shell("hierfit --completion zsh | zsh -n").status == 0);
  CHECK(shell("hierfit --completion fish | fish -n").status == 0);
  const std::string complete =
      "source <(hierfit --completion bash); _init() { COMP_WORDS=(\"$@\"); COMP_CWORD=$(($#-1)); "
      "_hierfit; echo \"${COMPREPLY[*]}\"; }; _init hierfit ";
  CHECK(shell(complete + "--style = a").output == "apa\n");
  CHECK(shell(complete + "-f js").output == "json\n");
  CHECK(shell(complete + "--dict").output == "--dictionary\n");
}

TEST_CASE("an old report survives every failure, and keeps its mode and its link") {
  const Directory directory;
  const std::string report = directory / "r.txt";
  write(report, "old");
  ::chmod(report.c_str(), 0640);
  fs::create_symlink("r.txt", directory / "link.txt");

  SUBCASE("documents that cannot be read") {
    write(directory / "empty.xml", "");
    CHECK(shell("hierfit -o " + report + " " + kExample + "model.pmml " + (directory / "empty.xml"))
              .status == 1);
    CHECK(text_of(report) == "old");
  }
  SUBCASE("another output that cannot be written") {
    CHECK(shell("hierfit -o " + report + " -o /nowhere/r.txt " + kDocuments).status == 2);
    CHECK(shell("hierfit -o " + report + " -o - " + kDocuments + " >/dev/full").status == 2);
    CHECK(text_of(report) == "old");
    CHECK(directory.listing() == "link.txt r.txt ");
  }
  SUBCASE("a file that may not grow as far as the report") {
    CHECK(shell("ulimit -f 0; hierfit -o " + report + " " + kDocuments + " 2>/dev/null").status ==
          2);
    CHECK(text_of(report) == "old");
    CHECK(directory.listing() == "link.txt r.txt ");
  }
  SUBCASE("success through a link") {
    CHECK(shell("hierfit -o " + (directory / "link.txt") + " " + kDocuments).status == 0);
    CHECK(text_of(report) == shell("hierfit " + kDocuments).output);
    CHECK(fs::is_symlink(directory / "link.txt"));
    CHECK((fs::status(report).permissions() & fs::perms::all) == fs::perms(0640));
    CHECK(directory.listing() == "link.txt r.txt ");
  }
  SUBCASE("a device is written, not replaced") {
    CHECK(shell("hierfit -o /dev/null --format text " + kDocuments).status == 0);
    CHECK(fs::is_character_file("/dev/null"));
  }
}

TEST_CASE("a reader that leaves early is no error, a full disk is") {
  const Directory directory;
  const std::string file = directory / "r.json";
  const Outcome closed =
      shell("hierfit -o - -o " + file + " --format html " + kDocuments + " | head -c 1");
  CHECK(closed.status == 0);
  CHECK(closed.output == "<");
  CHECK(closed.errors.empty());
  CHECK(shell("hierfit " + kDocuments + " | true").status == 0);
  CHECK(text_of(file).starts_with("{"));

  const Outcome full = shell("hierfit " + kDocuments + " >/dev/full");
  CHECK(full.status == 2);
  CHECK(full.errors == "hierfit: standard output: cannot be written: No space left on device\n");
}

TEST_CASE("a fit goes wherever a pair goes") {
  const Directory directory;
  const std::string fit = kExample + "fit.json";
  CHECK(shell("hierfit " + fit + " -o " + directory / "a.json").status == 0);
  CHECK(shell("hierfit -d " + kExample + "dictionary.json " + kDocuments + " -o " +
              directory / "b.json")
            .status == 0);
  const std::string results = results_of(text_of(directory / "b.json"));
  CHECK(results_of(text_of(directory / "a.json")) == results);
  CHECK(results_of(shell("hierfit -f json - < " + fit).output) == results);

  CHECK(shell("hierfit import -o " + directory / "documents" + " " + fit).status == 0);
  const std::string made = directory / "documents/";
  CHECK(text_of(made + "dictionary.json").find("\"width\": 6") != std::string::npos);
  CHECK(results_of(shell("hierfit -f json -d " + made + "dictionary.json " + made + "model.pmml " +
                         made + "result.xml")
                       .output) == results);
}

TEST_CASE("a dictionary is laid over that of a fit") {
  const Directory directory;
  const std::string labels = directory / "labels.json";
  write(labels, R"({"fields": [{"name": "mined", "title": "Mines upstream"}]})");
  const std::string text =
      shell("hierfit -f json -d " + labels + " " + kExample + "fit.json").output;
  CHECK(text.find("Mines upstream") != std::string::npos);
  write(labels, "[1");
  CHECK(shell("hierfit -d " + labels + " " + kExample + "fit.json").status == 2);
}

TEST_CASE("fits in a folder are found where no model document is") {
  const Directory directory;
  fs::create_directories(directory / "in/one");
  fs::copy(kExample + "fit.json", directory / "in/one/fit.json");
  fs::copy(kExample + "fit.json", directory / "in/two.fit.json");
  fs::copy(kExample + "dictionary.json", directory / "in/other.json");
  CHECK(shell("hierfit -q -f json -o " + directory / "out" + " " + directory / "in").errors == "");
  CHECK(results_of(text_of(directory / "out/one.json")) ==
        results_of(text_of(directory / "out/two.json")));
  CHECK(fs::exists(directory / "out/index.html"));
  CHECK(shell("hierfit -q import -o " + directory / "documents" + " " + directory / "in").status ==
        0);
  CHECK(fs::exists(directory / "documents/one/model.pmml"));
  CHECK(fs::exists(directory / "documents/two/result.xml"));
}

TEST_CASE("check says what is wrong and what is odd, and writes nothing") {
  const Directory directory;
  CHECK(shell("hierfit check " + kDocuments).errors == "");
  CHECK(shell("hierfit check " + kExample + "fit.json").errors == "");
  CHECK(shell("hierfit check -o x.html " + kDocuments).status == 2);
  CHECK(shell("hierfit import " + kDocuments).status == 2);

  const std::string bad = directory / "bad.json";
  write(bad, R"({"hierfit": "hierfit-fit-1", "link": 1, "distribution": null})");
  const Outcome wrong = shell("hierfit check " + bad);
  CHECK(wrong.status == 1);
  CHECK(wrong.errors.find("hierfit: " + bad + ": link is 1, which is no text\n") !=
        std::string::npos);
  CHECK(wrong.errors.find("the document lacks the member target\n") != std::string::npos);

  std::string result = text_of(kExample + "result.xml");
  result.replace(result.find("\"NEGBIN\""), 8, "\"negbin\"");
  const std::string odd = directory / "odd.xml";
  write(odd, result);
  const std::string pair = kExample + "model.pmml " + odd;
  const std::string warning = odd + ":6:5: warning: Parameter DistributionOfTarget is \"negbin\"";
  const Outcome checked = shell("hierfit check " + pair);
  CHECK(checked.status == 0);
  CHECK(checked.errors.starts_with(warning));
  CHECK(shell("hierfit " + pair + " -o " + directory / "odd.html").errors == checked.errors);
  CHECK(shell("hierfit -q " + pair + " " + kDocuments + " -o " + directory / "both").errors ==
        checked.errors);
  CHECK(directory.listing() == "bad.json both odd.html odd.xml ");
}
