// The LaTeX form: an article that compiles as it is, with tables to be taken into others.
#include <algorithm>
#include <array>

#include "report/append.h"
#include "report/chart/figure.h"
#include "report/file_name.h"
#include "report/latex/latex_table.h"
#include "report/latex/latex_text.h"
#include "report/report.h"
#include "report/typeset/blocks.h"

namespace hierfit::report {

using latex::TextWriter;
using output::Document;

namespace {

constexpr std::string_view kPreamble = R"(\documentclass[10pt,a4paper]{article}
\usepackage[hmargin=45.4pt,vmargin=51pt]{geometry}
\usepackage{iftex}
\ifpdftex
  \IfFileExists{lmodern.sty}{\usepackage[T1]{fontenc}\usepackage{lmodern}}{%
    % Outlines for what the first fonts have, bitmaps of the wider ones for the rest.
    \usepackage[T1,OT1]{fontenc}
    \DeclareTextSymbolDefault{\textquotedbl}{T1}
    \DeclareTextSymbolDefault{\guillemotleft}{T1}
    \DeclareTextSymbolDefault{\guillemotright}{T1}
    \DeclareTextSymbolDefault{\guilsinglleft}{T1}
    \DeclareTextSymbolDefault{\guilsinglright}{T1}
    \DeclareTextSymbolDefault{\quotedblbase}{T1}
    \DeclareTextSymbolDefault{\quotesinglbase}{T1}
    \DeclareTextSymbolDefault{\DH}{T1}
    \DeclareTextSymbolDefault{\dh}{T1}
    \DeclareTextSymbolDefault{\DJ}{T1}
    \DeclareTextSymbolDefault{\dj}{T1}
    \DeclareTextSymbolDefault{\NG}{T1}
    \DeclareTextSymbolDefault{\ng}{T1}
    \DeclareTextSymbolDefault{\TH}{T1}
    \DeclareTextSymbolDefault{\th}{T1}
    \DeclareTextAccentDefault{\k}{T1}}
\else
  \usepackage{fontspec}
\fi
\usepackage{array,booktabs,longtable,pdflscape,graphicx}
\setlength{\parindent}{0pt}
\setcounter{secnumdepth}{0}
)";

/// What the body is written with; in a group it leaves nothing behind.
constexpr std::string_view kCommands = R"(\setlength{\tabcolsep}{4.5pt}
\setlength{\LTleft}{0pt}
\setlength{\LTpre}{14pt}
\setlength{\LTpost}{4pt}
% A part of a number beside its decimal mark, in the room of the widest one of its column.
\def\lead#1#2{\hphantom{#1}\llap{#2}}
\def\trail#1#2{\rlap{#2}\hphantom{#1}}
% #1: columns, #2: a title, which may be wider than they are
\def\tabletitle#1#2{\multicolumn{#1}{@{}l@{}}{\rlap{\parbox[t]{\linewidth}{\raggedright #2\strut}}}}
\def\tablenotes{\footnotesize\raggedright}
\def\endtablenotes{\par\medskip}
% What is said about the result: a label, and its values beside it.
\def\facts{\begin{list}{}{\labelwidth=.3\linewidth\leftmargin=.33\linewidth
  \labelsep=.03\linewidth\itemsep=2pt\parsep=0pt\raggedright
  \renewcommand*{\makelabel}[1]{\parbox[t]{\labelwidth}{\raggedright\textbf{##1}\strut}}}}
\def\endfacts{\end{list}}
% The folder of the charts, written by --charts with --chart-format=pdf.
\providecommand*{\chartfolder}{charts}
% #1: file, #2: what it shows
\def\chart#1#2{\IfFileExists{\chartfolder/#1}%
  {\includegraphics[width=\linewidth,height=.8\textheight,keepaspectratio]{\chartfolder/#1}}%
  {\fbox{\parbox{.95\linewidth}{\raggedright\small #2}}}\par}
)";

/// A piece for another article, which is a group of its own.
constexpr std::string_view kFragmentBegin = R"(% In the preamble:
%   \usepackage{array,booktabs,longtable,pdflscape,graphicx}
\begingroup
\parindent=0pt
)";

constexpr std::array<std::string_view, 4> kHeadings = {"section", "subsection", "subsubsection",
                                                       "paragraph"};

class LatexReport {
 public:
  LatexReport(const Document& document, const Options& options)
      : document_(document), options_(options), blocks_(paper_blocks(document)), shown_(document) {
    charts_ = static_cast<size_t>(std::ranges::count_if(blocks_, [](const PaperBlock& paper) {
      return paper.block.as<output::Chart>() != nullptr;
    }));
  }

  std::string write() {
    append(out_, "\\section*{\\Large ", texts_.escaped(report_title(document_)), "}\n");
    write_blocks();
    // What the body needs is known at its end.
    return std::string(kPreamble).append(kCommands) + texts_.declarations() +
           "\\begin{document}\n" + out_ + "\\end{document}\n";
  }

  std::string write_fragment() {
    append(out_, kFragmentBegin, kCommands);
    write_blocks();
    return out_ += "\\endgroup\n";
  }

 private:
  void write_blocks() {
    for (const PaperBlock& paper : blocks_) {
      out_ += '\n';
      std::visit([&](const auto* content) { write(*content, paper); }, paper.block.content);
    }
  }

  void write(const output::Section& section, const PaperBlock& paper) {
    // An article that takes a fragment in has a heading of its own above it.
    const size_t deeper = options_.fragment ? 1 : 0;
    const size_t level = std::min<size_t>(paper.block.level + deeper, kHeadings.size()) - 1;
    append(out_, '\\', kHeadings[level], '{', texts_.escaped(shown_.shown(section.title)), "}\n");
  }

  void write(const output::About& about, const PaperBlock&) {
    append(out_, "\\section*{", texts_.escaped(shown_.shown(about.title)), "}\n");
    if (about.facts.empty()) return;
    out_ += "\\begin{facts}\n";
    for (const output::Fact& fact : about.facts) {
      append(out_, "\\item[", texts_.escaped(shown_.shown(fact.label)), "]");
      for (const output::Text& value : fact.values) {
        if (&value != fact.values.data()) out_ += "\\newline";
        append(out_, ' ', texts_.escaped(shown_.shown(value), "\\newline "));
      }
      out_ += '\n';
    }
    out_ += "\\end{facts}\n";
  }

  void write(const output::Table&, const PaperBlock& paper) {
    latex::append_table(out_, texts_, document_, paper);
  }

  void write(const output::Message& message, const PaperBlock&) {
    append(out_, "\\textbf{", texts_.escaped(severity_word(message.severity, document_)), "} ",
           texts_.escaped(shown_.shown(message.text), "\\newline "), "\\par\n");
  }

  void write(const output::Chart& chart, const PaperBlock& paper) {
    const Block& block = paper.block;
    ((out_ += "\\begin{figure}[htbp]\n\\raggedright\n\\textbf{") +=
     texts_.escaped(numbered(block, document_))) += "}\\\\\n";
    ((out_ += "\\textit{") += texts_.escaped(chart.title, "\\\\ ")) += "}\\par\\smallskip\n";
    ((out_ += "\\chart{") += file_name(block.number, charts_, chart.kind, "chart")) += ".pdf}{";
    (out_ += texts_.escaped(chart::Figure(chart, document_).description(), "\\newline ")) +=
        "}\n\\end{figure}\n";
  }

  const Document& document_;
  const Options& options_;
  std::vector<PaperBlock> blocks_;
  Texts shown_;
  size_t charts_ = 0;
  TextWriter texts_;
  std::string out_;
};

}  // namespace

std::string render_latex(const Document& document, const Options& options) {
  LatexReport report(document, options);
  return options.fragment ? report.write_fragment() : report.write();
}

}  // namespace hierfit::report
